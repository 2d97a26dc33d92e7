// What the tables of a decoder say to people: the record reference (`mpuevent formats`), the schema
// and the sample writer (`mpuevent sample`) read these. The decoders themselves don't, so none of
// it is in the shared library.
#pragma once

#include "event/TableCompiler.h"

#include <span>

namespace Pegasus::mpu {

// What a number means to the decoder.
struct Code {
    std::uint32_t code;
    std::string_view text;
};

// All that a decoder knows of the records of its module.
struct Module {
    std::uint8_t source; // the record's source byte
    std::string_view decoder;
    std::string_view note;                          // Markdown
    std::span<const EventTable* const> tables = {}; // none: decoded as another module
    std::span<const Code> codes = {};               // that no table has
};

} // namespace Pegasus::mpu
