// Structures that several management decoders write. Offsets are from the start of the structure.
#pragma once

#include "event/TableCompiler.h"

namespace Pegasus::mpu {

inline constexpr Row kManagementMessageRows[] = {
    {"OpCode_Protocol", "%d", u8(0)},    {"OpCode_Type", "%d", u24(1)},
    {"Requestor", "%d", u32(4)},         {"Dest_EP", "%d", u32(8)},
    {"MMSG_Len", "%d", u32(12)},         {"Return_Code", "%d", u32(16)},
    {"Handle", "%d", u32(20)},           {"General_Use1", "0x%08X", u32(24)},
    {"General_Use2", "0x%08X", u32(28)}, {"General_Use3", "0x%08X", u32(32)},
};
inline constexpr unsigned kManagementMessageSize = 36;

inline constexpr Row kResponseRows[] = {
    {"Thread_Index", "%d", u32(0)},          {"Dest_Endpoint", "%d", u32(4)},
    {"Request_Handle", "%d", u32(8)},        {"Timeout_seconds", "%d", u32(12)},
    {"Timeout_microseconds", "%d", u32(16)}, {"pSema", "0x%08X", u32(20)},
    {"pMmsgLh", "0x%08X", u32(24)},          {"pTimedout", "0x%08X", u32(28)},
};
inline constexpr unsigned kResponseSize = 32;

inline constexpr Row kTextRows[] = {{"Text", "%s", text(0)}};

// The block itself is unpacked by locationOf(): the function name is after the file name's NUL.
inline constexpr Row kLocationRows[] = {
    {"Line", "%d", u16(0)},
    {"File", "%s", text(2, 30)},
};

} // namespace Pegasus::mpu
