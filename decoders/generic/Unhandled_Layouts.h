// The modules whose records are dumped, for the record reference.
#pragma once

#include "event/Catalogue.h"

namespace Pegasus::mpu::unhandled {

inline constexpr Key kKeys[] = {{150, 2, 26}};
inline constexpr Fill kFills[] = {{152, "\x01\x02\xFF"}};
inline constexpr Section kSections[] = {
    {"Any event", kKeys, {}, kFills, "The payload in hexadecimal digits."}};

constexpr Module module(std::uint8_t source, std::string_view decoder) {
    return {source, decoder, "Records are named and dumped.", kSections};
}

} // namespace Pegasus::mpu::unhandled
