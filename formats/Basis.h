// What an event rests on, for people.
#pragma once

#include "formats/DecodedEvent.h"

namespace Pegasus::formats {

// Whether title or summary say that the decoder doesn't know the event.
bool saysUnknown(const DecodedEvent& event);

// "? unknown code" where the texts don't say so, "~ layout assumed", "! 172 bytes short", each
// after `before`: what keeps people from taking the event at its word.
void putDoubts(mpu::TextWriter& out, const DecodedEvent& event, std::string_view before,
               std::string_view after);
// "! 172 bytes short"
void putBytes(mpu::TextWriter& out, const char* sign, std::uint32_t count, const char* what);

// The payload in hexadecimal. Returns all that `out` holds.
std::string_view putPayload(mpu::TextWriter& out, const DecodedEvent& event);

} // namespace Pegasus::formats
