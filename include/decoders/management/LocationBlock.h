// The block at the head of the management decoders' payloads.
#pragma once

#include "event/BigEndian.h"

namespace Pegasus::mpu {

// 32 bytes: where in the firmware's sources the event was raised.
struct LocationBlock {
    Big<std::uint16_t> line;
    char text[30]; // file name and its NUL, then the function name, up to the end of the block
};
static_assert(sizeof(LocationBlock) == 32);

} // namespace Pegasus::mpu
