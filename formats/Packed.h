// Data inside an HTML page.
#pragma once

#include "event/TextWriter.h"

namespace Pegasus::formats {

void putBase64(mpu::TextWriter& out, std::string_view bytes);

// A script element that runs nothing: <script type="application/gzip" data-holds="WHAT">, the bytes
// compressed and in base64. Builds without zlib write "application/octet-stream" and the bytes as
// they are.
void putPacked(mpu::TextWriter& out, std::string_view what, std::string_view bytes);

} // namespace Pegasus::formats
