#include "event/Digits.h"

#include <charconv>

namespace Pegasus::mpu {

char* putHexBytes(char* out, std::string_view bytes) {
    std::size_t i = 0;
    for (; bytes.size() - i >= 4; i += 4)
        out = putHex8(out, loadBig<std::uint32_t>(bytes.data() + i), Case::Upper);
    for (; i < bytes.size(); ++i)
        out = putHexByte(out, static_cast<std::uint8_t>(bytes[i]), Case::Upper);
    return out;
}

char* putFloat(char* out, std::uint32_t bits) {
    const double value = std::bit_cast<float>(bits);
    return std::to_chars(out, out + kFloatRoom, value, std::chars_format::fixed, 6).ptr;
}

} // namespace Pegasus::mpu
