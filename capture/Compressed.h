// Compressed inputs.
#pragma once

#include "capture/ByteSource.h"

#include <memory>

namespace Pegasus::capture {

enum class Compression : std::uint8_t { Gzip, Xz, Zstd };

// The bytes that `packed` unpacks to, as they come; fixed memory, 128 MiB for data made with the
// largest window that is accepted. What is wrong is reported with the offset in the packed data and
// ends the bytes. Nothing when this build has no such library.
std::unique_ptr<ByteSource> unpack(Compression compression, ByteSource& packed,
                                   FaultHandler report);

} // namespace Pegasus::capture
