#include "formats/Utf8.h"

#include "formats/Escape.h"

#include <array>

namespace Pegasus::formats {

namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;
constexpr std::string_view kReplacementText = "\xEF\xBF\xBD";

// Writes the ASCII units at the start and returns their number.
Uint32 putAscii(char* out, const Char16* units, Uint32 count) {
    Uint32 i = 0;
#ifdef __SSE2__
    const __m128i high = _mm_set1_epi16(static_cast<short>(0xFF80));
    for (; count - i >= 16; i += 16) {
        const __m128i* from = reinterpret_cast<const __m128i*>(units + i);
        const __m128i a = _mm_loadu_si128(from);
        const __m128i b = _mm_loadu_si128(from + 1);
        const __m128i rest = _mm_and_si128(_mm_or_si128(a, b), high);
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(rest, _mm_setzero_si128())) != 0xFFFF)
            break;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), _mm_packus_epi16(a, b));
    }
#endif
    for (; i < count && Uint16(units[i]) < 0x80; ++i)
        out[i] = static_cast<char>(Uint16(units[i]));
    return i;
}

bool isFirstHalf(std::uint32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}
bool isSecondHalf(std::uint32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

char* putCharacter(char* out, std::uint32_t c) {
    const auto tail = [c](unsigned shift) {
        return static_cast<char>(0x80 | ((c >> shift) & 0x3F));
    };
    if (c < 0x80) {
        *out++ = static_cast<char>(c);
    } else if (c < 0x800) {
        *out++ = static_cast<char>(0xC0 | c >> 6);
        *out++ = tail(0);
    } else if (c < 0x10000) {
        *out++ = static_cast<char>(0xE0 | c >> 12);
        *out++ = tail(6);
        *out++ = tail(0);
    } else {
        *out++ = static_cast<char>(0xF0 | c >> 18);
        *out++ = tail(12);
        *out++ = tail(6);
        *out++ = tail(0);
    }
    return out;
}

constexpr std::string_view kNoCharacters[] = {"\xEF\xBF\xBE", "\xEF\xBF\xBF"};

// What stands for an ASCII character in XML, with its length after it; in most cases the character.
struct XmlCharacter {
    char text[7];
    char length;
};
constexpr auto kXmlCharacters = [] {
    std::array<XmlCharacter, 128> all{};
    const auto set = [&all](std::size_t c, std::string_view by) {
        std::copy(by.begin(), by.end(), all[c].text);
        all[c].length = static_cast<char>(by.size());
    };
    for (std::size_t c = 0; c < all.size(); ++c) {
        const char itself = static_cast<char>(c);
        set(c, c < 0x20 && itself != '\t' && itself != '\n' ? kReplacementText
                                                            : std::string_view(&itself, 1));
    }
    set('\r', "&#13;"); // readers take it for a line feed
    set('<', "&lt;");
    set('>', "&gt;");
    set('&', "&amp;");
    set('"', "&quot;");
    set('\'', "&#39;");
    return all;
}();

} // namespace

void putUtf8(mpu::TextWriter& out, const String& text) {
    const Char16* units = text.getChar16Data();
    const Uint32 count = text.size();
    Uint32 i = 0;
    while (i < count) {
        char* to = out.reserve(count - i);
        const Uint32 ascii = putAscii(to, units + i, count - i);
        out.commit(to + ascii);
        i += ascii;
        for (; i < count && Uint16(units[i]) >= 0x80; ++i) {
            std::uint32_t c = Uint16(units[i]);
            if (isFirstHalf(c) && i + 1 < count && isSecondHalf(Uint16(units[i + 1])))
                c = 0x10000 + ((c - 0xD800) << 10) + (Uint16(units[++i]) - 0xDC00u);
            else if (isFirstHalf(c) || isSecondHalf(c))
                c = kReplacement;
            out.commit(putCharacter(out.reserve(4), c));
        }
    }
}

void putPrintable(mpu::TextWriter& out, std::string_view utf8) {
    constexpr std::size_t kMost = 6;
    const auto put = [](char* to, std::string_view rest) -> std::pair<char*, std::size_t> {
        const auto c = static_cast<unsigned char>(rest[0]);
        if (c == '\n')
            return {mpu::putText(to, "\\n"), 1};
        if (c == '\r')
            return {mpu::putText(to, "\\r"), 1};
        const unsigned char next = rest.size() > 1 ? static_cast<unsigned char>(rest[1]) : 0xFF;
        if (c == 0xC2 && next < 0xA0) // C1
            return {mpu::putHex(mpu::putText(to, "\\u"), next, 4, mpu::Case::Upper), 2};
        if (c < 0x20 ? c != '\t' : c == 0x7F)
            return {mpu::putHex(mpu::putText(to, "\\x"), c, 2, mpu::Case::Upper), 1};
        *to = rest[0];
        return {to + 1, 1};
    };
    putEscaped<'\x7F', '\xC2'>(out, utf8, kMost, put);
}

std::string_view shortened(std::string_view utf8, std::size_t size) {
    if (utf8.size() <= size)
        return utf8;
    while (size != 0 && (static_cast<unsigned char>(utf8[size]) & 0xC0) == 0x80)
        --size;
    return utf8.substr(0, size);
}

mpu::TextWriter& putJson(mpu::TextWriter& out, std::string_view utf8) {
    constexpr std::size_t kMost = 6;
    const auto put = [](char* to, std::string_view rest) -> std::pair<char*, std::size_t> {
        constexpr std::string_view kLetters = "btn?fr"; // of 8 and those after it
        const auto c = static_cast<unsigned char>(rest[0]);
        *to++ = '\\';
        if (c < 0x20 && (c < '\b' || c > '\r' || c == '\v'))
            return {mpu::putHex(mpu::putText(to, "u"), c, 4, mpu::Case::Upper), 1};
        *to = c < 0x20 ? kLetters[c - '\b'] : rest[0];
        return {to + 1, 1};
    };
    out.literal("\"");
    putEscaped<'"', '\\'>(out, utf8, kMost, put);
    return out.literal("\"");
}

void putXml(mpu::TextWriter& out, std::string_view utf8) {
    const auto put = [](char* to, std::string_view rest) -> std::pair<char*, std::size_t> {
        if (const auto c = static_cast<unsigned char>(rest[0]); c < kXmlCharacters.size()) {
            const XmlCharacter& by = kXmlCharacters[c];
            std::memcpy(to, &by, sizeof by); // of one size, into the slack
            return {to + by.length, 1};
        }
        for (const std::string_view none : kNoCharacters)
            if (rest.starts_with(none))
                return {mpu::putText(to, kReplacementText), none.size()};
        *to = rest[0];
        return {to + 1, 1};
    };
    constexpr std::size_t kMost = 6;
    putEscaped<'<', '>', '&', '"', '\'', '\xEF'>(out, utf8, kMost, put);
}

} // namespace Pegasus::formats
