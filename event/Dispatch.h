// Which decoder a record goes to.
#pragma once

#include "event/MPUEvent.h"
#include "event/Record.h"

namespace Pegasus::mpu {

// The decoder of a module id, null for a plain event.
DecoderFactory decoderOf(unsigned char source);

// The decoder of a module id as a function; null for a plain event, and for one that was
// registered.
DecodeFunction decodeFunctionOf(unsigned char source);

} // namespace Pegasus::mpu
