// What the tables of a decoder say to people: the record reference (`mpuevent formats`), the schema
// and the sample writer (`mpuevent sample`) read these. The decoders themselves don't, so none of
// it is in the shared library.
#pragma once

#include "event/TableCompiler.h"

#include <span>

namespace Pegasus::mpu {

// A structure of the record.
struct Part {
    std::string_view title;
    std::span<const Row> rows;
    std::uint16_t at; // where it begins
};

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
    std::span<const EventTable* const> tables = {};
};

// ---- until all tables have the one form ----

template <Style S, const auto&... Rows>
class LayoutSet {
public:
    static constexpr std::size_t size = sizeof...(Rows);
    static constexpr std::span<const Row> rows[size] = {Rows...};
    static constexpr Layout layouts[size] = {kLayout<Rows, S>...};
    static const Layout& at(std::size_t i) { return layouts[i]; }
};

} // namespace Pegasus::mpu
