// The structures that the records of the I/O manager and the message/interrupt processor share: a
// frame of five big-endian words at the start of the payload (offset 152), a data area after it,
// and sub-records in that.
#pragma once

#include "event/BigEndian.h"

namespace Pegasus::mpu::datapath {

struct Frame {
    Big<std::uint32_t> eventClass;
    Big<std::uint32_t> code; // meaning depends on the class
    Big<std::uint32_t> unused;
    Big<std::uint32_t> line;       // firmware source line that raised the event
    Big<std::uint32_t> dataLength; // bytes of the data area, which begins after this
};

// Sub-records that both write.
struct LwsemRecord {
    unsigned char bytes[8];
};
struct MmsgRecord {
    unsigned char bytes[20];
};
struct MsaRecord {
    unsigned char bytes[32];
};

} // namespace Pegasus::mpu::datapath
