// Event texts on their way out.
#pragma once

#include "event/TextWriter.h"

namespace Pegasus::formats {

// All of `text` as UTF-8; half a surrogate pair becomes U+FFFD.
void putUtf8(mpu::TextWriter& out, const String& text);

// UTF-8 for a terminal and for readers of lines: line breaks become "\n" and "\r", the other
// control characters (C0 but the tab, DEL, C1) "\x1B" or "\u0085".
void putPrintable(mpu::TextWriter& out, std::string_view utf8);

// At most so many bytes of UTF-8, and whole characters.
std::string_view shortened(std::string_view utf8, std::size_t size);

// UTF-8 as a JSON string, with its quotation marks.
mpu::TextWriter& putJson(mpu::TextWriter& out, std::string_view utf8);

// UTF-8 for XML and HTML, between tags and in attributes. What XML 1.0 can't hold (most control
// characters, U+FFFE, U+FFFF) becomes U+FFFD.
void putXml(mpu::TextWriter& out, std::string_view utf8);

} // namespace Pegasus::formats
