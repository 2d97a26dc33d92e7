// What the layout tables of a decoder say to people: the record reference (`mpuevent formats`) and
// the sample writer (`mpuevent sample`) read these. The decoders themselves don't, so none of it is
// in the shared library. Offsets are from the start of the record: the payload begins at 152.
#pragma once

#include "event/Layout.h"

#include <span>

namespace Pegasus::mpu {

// A structure of the record.
struct Part {
    std::string_view title;
    std::span<const Row> rows;
    std::uint16_t at; // where it begins
};

// A number that selects what the record is: the sample has it, the reference names it.
struct Key {
    std::uint16_t at;
    std::uint8_t size; // bytes
    std::uint32_t value;
};

using namespace std::string_view_literals; // "with its NUL\0"sv

// Bytes of the sample that no row describes: texts with their NUL, lists, and values that a sample
// should rather have than those the writer makes up.
struct Fill {
    std::uint16_t at;
    std::string_view bytes;
};

// One kind of record.
struct Section {
    std::string_view title;
    std::span<const Key> keys;
    std::span<const Part> parts;
    std::span<const Fill> fills = {};
    std::string_view note = {}; // flow that rows can't say, in Markdown
};

// What a code means to the decoder.
struct Code {
    std::uint32_t code;
    std::string_view text;
};

// All that a decoder knows of the records of its module.
struct Module {
    std::uint8_t source; // the record's source byte
    std::string_view decoder;
    std::string_view note; // Markdown
    std::span<const Section> sections;
    std::span<const Code> codes = {};
};

} // namespace Pegasus::mpu
