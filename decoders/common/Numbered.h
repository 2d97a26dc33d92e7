// Texts with a number in them, as the elements of a series have it in their names.
#pragma once

#include "event/TextWriter.h"

namespace Pegasus::mpu {

// The number in decimal between two constant texts. Out of line: inlining it would bloat callers.
TextWriter& numbered(TextWriter& out, const char* before, std::uint32_t number,
                     const char* after = "");

} // namespace Pegasus::mpu
