// Where the frame's words are (Records.h), and what is read through them.
#pragma once

#include "decoders/datapath/Records.h"
#include "event/Record.h"

namespace Pegasus::mpu::datapath {

inline constexpr unsigned kClassAt = 0;
inline constexpr unsigned kCodeAt = 4;
inline constexpr unsigned kLineAt = 12;
inline constexpr unsigned kLengthAt = 16;
inline constexpr unsigned kDataAt = 20;
static_assert(sizeof(Frame) == kDataAt);

// No record has a longer payload, whatever a length in it says.
inline constexpr std::size_t kMaxData = 0xFFFF;

// How many bytes of the data area follow where `data` begins, which is a part of it.
std::size_t leftOf(const Record& record, const RecordView& data);

// The file name in the data area of an assert: a text of at most 127 characters.
Untrusted assertFile(const Record& record);

// Traces `what` and the length of the data area in hexadecimal.
void traceLength(const char* source, int line, const char* what, const RecordView& payload);

} // namespace Pegasus::mpu::datapath
