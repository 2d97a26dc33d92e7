// Numbers and short texts straight into the output. Each function writes at `out` and returns the
// position behind its last character.
#pragma once

#include "event/BigEndian.h"

#include <bit>
#include <string_view>

namespace Pegasus::mpu {

enum class Case : std::uint8_t { Lower, Upper };

// Longest outputs.
inline constexpr unsigned kDecimalRoom = 20;
inline constexpr unsigned kHexRoom = 16;
inline constexpr unsigned kFloatRoom = 48; // "%f" of the largest single: 39 digits, point, 6, sign

inline constexpr char kDigitPairs[] = "00010203040506070809101112131415161718192021222324"
                                      "25262728293031323334353637383940414243444546474849"
                                      "50515253545556575859606162636465666768697071727374"
                                      "75767778798081828384858687888990919293949596979899";

template <class T>
inline char* putDecimal(char* out, T value) {
    char digits[kDecimalRoom];
    char* at = digits + kDecimalRoom;
    while (value >= 100) {
        at -= 2;
        std::memcpy(at, kDigitPairs + value % 100 * 2, 2);
        value /= 100;
    }
    if (value >= 10) {
        at -= 2;
        std::memcpy(at, kDigitPairs + value * 2, 2);
    } else {
        *--at = static_cast<char>('0' + value);
    }
    const std::size_t n = static_cast<std::size_t>(digits + kDecimalRoom - at);
    std::memcpy(out, at, n);
    return out + n;
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

inline char* putHex(char* out, std::uint64_t value, unsigned minDigits, Case letters) {
    const unsigned needed = (static_cast<unsigned>(std::bit_width(value | 1)) + 3) / 4;
    const unsigned count = needed > minDigits ? needed : minDigits;
    char digits[kHexRoom];
    putHex8(digits, static_cast<std::uint32_t>(value >> 32), letters);
    putHex8(digits + 8, static_cast<std::uint32_t>(value), letters);
    std::memcpy(out, digits + kHexRoom - count, count);
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

// Two upper-case digits a byte, no separators.
char* putHexBytes(char* out, std::string_view bytes);

// "%f" of an IEEE 754 single-precision number given by its bits.
char* putFloat(char* out, std::uint32_t bits);

} // namespace Pegasus::mpu
