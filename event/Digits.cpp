#include "event/Digits.h"

#include <charconv>
#include <cmath>

namespace Pegasus::mpu {

char* putLargeDecimal(char* out, std::uint32_t value) {
    constexpr std::uint32_t kPart = 100000000;
    if (value >= kPart) {
        const std::uint32_t top = value / kPart;
        *out = static_cast<char>('0' + top / 10);
        out += top >= 10;
        *out++ = static_cast<char>('0' + top % 10);
        storeBig(out, spreadDigits(value % kPart) + kZeroDigits);
        return out + 8;
    }
    const std::uint64_t digits = spreadDigits(value);
    const unsigned zeros = static_cast<unsigned>(std::countl_zero(digits | 1)) / 8;
    storeBig(out, (digits << 8 * zeros) + kZeroDigits);
    return out + 8 - zeros;
}

char* putHexBytes(char* out, std::string_view bytes) {
    std::size_t i = 0;
    for (; bytes.size() - i >= 4; i += 4)
        out = putHex8(out, loadBig<std::uint32_t>(bytes.data() + i), Case::Upper);
    for (; i < bytes.size(); ++i)
        out = putHexByte(out, static_cast<std::uint8_t>(bytes[i]), Case::Upper);
    return out;
}

char* putFloat(char* out, std::uint32_t bits) {
    constexpr std::uint32_t kMillion = 1000000;
    const double value = std::bit_cast<float>(bits);
    // Times a million is exact in double precision, so rounding it rounds the decimal fraction.
    const double millionths = std::fabs(value) * kMillion;
    if (!(millionths < 1e15))
        return std::to_chars(out, out + kFloatRoom, value, std::chars_format::fixed, 6).ptr;
    if (std::signbit(value))
        *out++ = '-';
    const auto rounded = static_cast<std::uint64_t>(std::nearbyint(millionths));
    out = putDecimal(out, rounded / kMillion);
    *out++ = '.';
    // A digit in front keeps the zeros after the point.
    char fraction[kDecimalRoom];
    putDecimal(fraction, static_cast<std::uint32_t>(rounded % kMillion + kMillion));
    std::memcpy(out, fraction + 1, 6);
    return out + 6;
}

} // namespace Pegasus::mpu
