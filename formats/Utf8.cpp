#include "formats/Utf8.h"

#include "event/Ascii.h"

#include <bit>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

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

// What stands for a character in XML; empty for itself.
std::string_view inXml(unsigned char c) {
    switch (c) {
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '&':
        return "&amp;";
    case '"':
        return "&quot;";
    case '\'':
        return "&#39;";
    case '\r': // readers take it for a line feed
        return "&#13;";
    case '\t':
    case '\n':
        return {};
    default:
        return c < 0x20 ? kReplacementText : std::string_view();
    }
}

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

std::size_t plainRun(std::string_view utf8) {
    std::size_t i = 0;
#ifdef __SSE2__
    for (; utf8.size() - i >= 16; i += 16) {
        const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(utf8.data() + i));
        // As signed bytes, so that what is no ASCII is below the blank too.
        __m128i special = _mm_cmplt_epi8(c, _mm_set1_epi8(' '));
        for (const char s : {'"', '\\', '\x7F'})
            special = _mm_or_si128(special, _mm_cmpeq_epi8(c, _mm_set1_epi8(s)));
        if (const int found = _mm_movemask_epi8(special); found != 0)
            return i + static_cast<unsigned>(std::countr_zero(static_cast<unsigned>(found)));
    }
#endif
    while (i < utf8.size() && mpu::isPrintable(utf8[i]) && utf8[i] != '"' && utf8[i] != '\\')
        ++i;
    return i;
}

void putPrintable(mpu::TextWriter& out, std::string_view utf8) {
    std::size_t done = 0;
    for (std::size_t i = plainRun(utf8); i < utf8.size(); i += 1 + plainRun(utf8.substr(i + 1))) {
        const unsigned char c = static_cast<unsigned char>(utf8[i]);
        const unsigned char next =
            i + 1 < utf8.size() ? static_cast<unsigned char>(utf8[i + 1]) : 0;
        const bool c1 = c == 0xC2 && next < 0xA0;
        if ((c >= 0x20 && c != 0x7F && !c1) || c == '\t')
            continue;
        out.literal(utf8.substr(done, i - done));
        if (c == '\n')
            out.literal("\\n");
        else if (c == '\r')
            out.literal("\\r");
        else if (c1)
            out.literal("\\u").hexUpper(next, 4);
        else
            out.literal("\\x").hexUpper(c, 2);
        i += c1;
        done = i + 1;
    }
    out.literal(utf8.substr(done));
}

std::string_view shortened(std::string_view utf8, std::size_t size) {
    if (utf8.size() <= size)
        return utf8;
    while (size != 0 && (static_cast<unsigned char>(utf8[size]) & 0xC0) == 0x80)
        --size;
    return utf8.substr(0, size);
}

mpu::TextWriter& putJson(mpu::TextWriter& out, std::string_view utf8) {
    out.literal("\"");
    std::size_t done = 0;
    for (std::size_t i = plainRun(utf8); i < utf8.size(); i += 1 + plainRun(utf8.substr(i + 1))) {
        const unsigned char c = static_cast<unsigned char>(utf8[i]);
        if (c >= 0x20 && c != '"' && c != '\\')
            continue;
        out.literal(utf8.substr(done, i - done));
        if (c >= 0x20)
            out.literal("\\").literal(utf8.substr(i, 1));
        else
            out.literal("\\u").hexUpper(c, 4);
        done = i + 1;
    }
    return out.literal(utf8.substr(done)).literal("\"");
}

void putXml(mpu::TextWriter& out, std::string_view utf8) {
    std::size_t done = 0;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        std::string_view by = inXml(static_cast<unsigned char>(utf8[i]));
        std::size_t count = 1;
        if (utf8[i] == kNoCharacters[0][0])
            for (const std::string_view none : kNoCharacters)
                if (utf8.substr(i).starts_with(none)) {
                    by = kReplacementText;
                    count = none.size();
                }
        if (by.empty())
            continue;
        out.literal(utf8.substr(done, i - done)).literal(by);
        done = i + count;
    }
    out.literal(utf8.substr(done));
}

} // namespace Pegasus::formats
