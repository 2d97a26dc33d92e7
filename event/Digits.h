// Numbers and short texts straight into the output. Each function writes at `out` and returns the
// position after its last character.
#pragma once

#include "event/BigEndian.h"

#include <bit>
#include <string_view>

namespace Pegasus::mpu {

enum class Case : std::uint8_t { Lower, Upper };

// Longest outputs.
inline constexpr unsigned kDecimalRoom = 28; // 20 digits, written in blocks of eight
inline constexpr unsigned kHexRoom = 16;
inline constexpr unsigned kFloatRoom = 48; // "%f" of the largest single: 39 digits, point, 6, sign

// The eight digits of a number below 10^8, one a byte, the first in the highest byte: halves,
// quarters and eighths of the number are divided side by side in one word.
inline std::uint64_t spreadDigits(std::uint32_t value) {
    std::uint64_t x = static_cast<std::uint64_t>(value / 10000) << 32 | value % 10000;
    const std::uint64_t hundreds = (x * 5243 >> 19) & 0x0000007F0000007Fu;
    x = hundreds << 16 | (x - hundreds * 100);
    const std::uint64_t tens = (x * 103 >> 10) & 0x000F000F000F000Fu;
    return tens << 8 | (x - tens * 10);
}
inline constexpr std::uint64_t kZeroDigits = 0x3030303030303030u;

// From 10,000 on. Like the two below it may write kDecimalRoom characters at `out`, whatever it
// returns.
char* putLargeDecimal(char* out, std::uint32_t value);

inline char* putDecimal(char* out, std::uint32_t value) {
    if (value >= 10000)
        return putLargeDecimal(out, value);
    // As spreadDigits(), for the numbers that are most frequent.
    const std::uint32_t hundreds = value * 5243 >> 19;
    const std::uint32_t pairs = hundreds << 16 | (value - hundreds * 100);
    const std::uint32_t tens = (pairs * 103 >> 10) & 0x000F000Fu;
    const std::uint32_t digits = tens << 8 | (pairs - tens * 10);
    const unsigned zeros = static_cast<unsigned>(std::countl_zero(digits | 1)) / 8;
    storeBig(out, (digits << 8 * zeros) + 0x30303030u);
    return out + 4 - zeros;
}

inline char* putDecimal(char* out, std::uint64_t value) {
    constexpr std::uint32_t kPart = 100000000;
    if (value <= 0xFFFFFFFFu)
        return putDecimal(out, static_cast<std::uint32_t>(value));
    out = putDecimal(out, value / kPart);
    storeBig(out, spreadDigits(static_cast<std::uint32_t>(value % kPart)) + kZeroDigits);
    return out + 8;
}

inline char* putSigned(char* out, std::int32_t value) {
    std::uint32_t magnitude = static_cast<std::uint32_t>(value);
    if (value < 0) {
        *out++ = '-';
        magnitude = 0u - magnitude;
    }
    return putDecimal(out, magnitude);
}

// Eight digits at once: the nibbles are spread over the bytes of one word.
inline char* putHex8(char* out, std::uint32_t value, Case letters) {
    std::uint64_t x = value;
    x = ((x << 16) | x) & 0x0000FFFF0000FFFFu;
    x = ((x << 8) | x) & 0x00FF00FF00FF00FFu;
    x = ((x << 4) | x) & 0x0F0F0F0F0F0F0F0Fu;
    const std::uint64_t above9 = ((x + 0x0606060606060606u) >> 4) & 0x0101010101010101u;
    x += 0x3030303030303030u + above9 * (letters == Case::Upper ? 'A' - '9' - 1 : 'a' - '9' - 1);
    storeBig(out, x);
    return out + 8;
}

// Writes kHexRoom characters at `out`, whatever it returns.
inline char* putHex(char* out, std::uint64_t value, unsigned minDigits, Case letters) {
    const unsigned needed = (static_cast<unsigned>(std::bit_width(value | 1)) + 3) / 4;
    const unsigned count = needed > minDigits ? needed : minDigits;
    if (count <= 8) {
        putHex8(out, static_cast<std::uint32_t>(value << (32 - 4 * count)), letters);
        return out + count;
    }
    const std::uint64_t left = value << (64 - 4 * count); // first digit in the highest bits
    putHex8(out, static_cast<std::uint32_t>(left >> 32), letters);
    putHex8(out + 8, static_cast<std::uint32_t>(left), letters);
    return out + count;
}

inline char* putText(char* out, std::string_view text) {
    if (!text.empty())
        std::memcpy(out, text.data(), text.size());
    return out + text.size();
}

inline char* putHexByte(char* out, std::uint8_t value, Case letters) {
    const char* digits = letters == Case::Upper ? "0123456789ABCDEF" : "0123456789abcdef";
    out[0] = digits[value >> 4];
    out[1] = digits[value & 15];
    return out + 2;
}

// Two upper-case digits per byte, no separators.
char* putHexBytes(char* out, std::string_view bytes);

// "%f" of an IEEE 754 single-precision number given by its bits.
char* putFloat(char* out, std::uint32_t bits);

} // namespace Pegasus::mpu
