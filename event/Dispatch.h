// Which decoder a record goes to.
#pragma once

#include "event/MPUEvent.h"

namespace Pegasus::mpu {

// The decoder of a module id, null for a plain event.
DecoderFactory decoderOf(unsigned char source);

} // namespace Pegasus::mpu
