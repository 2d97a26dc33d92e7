// Names of the record header's codes.
#pragma once

#include <cstdint>
#include <string_view>

namespace Pegasus::mpu {

// Empty for a code without a name.
std::string_view sourceName(std::uint8_t code);
std::string_view categoryName(std::uint8_t code);
std::string_view eventTypeName(std::uint8_t code);

} // namespace Pegasus::mpu
