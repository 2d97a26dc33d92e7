// Texts made safe: markup stays, all else is restricted to a safe set of characters.
#pragma once

#include "event/TextWriter.h"

namespace Pegasus::mpu {

// `text` as Avrel_Event::makeSafeString shows it. One pass to find the elements and one to write,
// on a constant stack. The heap holds about 50 bytes per element that is open, so at most 12 bytes
// per byte of text; next to nothing for elements that follow one another.
void putSafe(TextWriter& out, std::string_view text);

} // namespace Pegasus::mpu
