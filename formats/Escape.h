// Texts on their way into a format that writes some characters in another way: the control
// characters (C0), and the format's own `Special` ones.
#pragma once

#include "event/TextWriter.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace Pegasus::formats {

template <char... Special>
constexpr bool isSpecial(char c) {
    return static_cast<unsigned char>(c) < 0x20 || ((c == Special) || ...);
}

#ifdef __SSE2__
// Blocks have as many characters.
inline constexpr std::size_t kEscapeBlock = sizeof(__m128i);

// A bit for each special character of a block.
template <char... Special>
unsigned specialOf(__m128i block) {
    __m128i special = _mm_cmpeq_epi8(_mm_min_epu8(block, _mm_set1_epi8(0x1F)), block);
    ((special = _mm_or_si128(special, _mm_cmpeq_epi8(block, _mm_set1_epi8(Special)))), ...);
    return static_cast<unsigned>(_mm_movemask_epi8(special));
}

inline __m128i blockAt(const char* at) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
}

// All characters of a text of 4 to 15, some of them twice, and blanks.
inline __m128i shortBlock(std::string_view text) {
    const auto both = [text](auto half) {
        std::memcpy(&half, text.data(), sizeof half);
        auto other = half;
        std::memcpy(&other, text.data() + text.size() - sizeof half, sizeof half);
        return std::pair(static_cast<long long>(half), static_cast<long long>(other));
    };
    if (text.size() >= 8) {
        const auto [first, last] = both(0LL);
        return _mm_set_epi64x(last, first);
    }
    const auto [first, last] = both(0);
    return _mm_set_epi32(0x20202020, 0x20202020, static_cast<int>(last), static_cast<int>(first));
}
#endif

// The number of characters at the start of which none is special.
template <char... Special>
std::size_t plainRun(std::string_view text) {
#ifdef __SSE2__
    if (text.size() >= kEscapeBlock) {
        const std::size_t last = text.size() - kEscapeBlock; // which overlaps the one before
        for (std::size_t at = 0;; at = std::min(at + kEscapeBlock, last)) {
            if (const unsigned special = specialOf<Special...>(blockAt(text.data() + at)))
                return at + static_cast<unsigned>(std::countr_zero(special));
            if (at == last)
                return text.size();
        }
    }
    if (text.size() >= 4 && specialOf<Special...>(shortBlock(text)) == 0)
        return text.size();
#endif
    std::size_t i = 0;
    while (i < text.size() && !isSpecial<Special...>(text[i]))
        ++i;
    return i;
}

// Appends `text`. At a special character `put(to, rest)` writes at most `most` characters for the
// first ones of `rest`, and returns the end of what it wrote and the number of what that stands
// for.
template <char... Special, class Put>
void putEscaped(mpu::TextWriter& out, std::string_view text, std::size_t most, Put&& put) {
    const std::size_t run = plainRun<Special...>(text); // all of most texts
    out.literal(text.substr(0, run));
    text.remove_prefix(run);
    constexpr std::size_t kPart = 512; // so that little room is made for what never comes
    while (!text.empty()) {
        const std::size_t end = std::min(text.size(), kPart);
        char* to = out.reserve(end * most);
        std::size_t i = 0;
        while (i < end) {
#ifdef __SSE2__
            static_assert(mpu::TextWriter::kSlack >= kEscapeBlock);
            if (end - i >= kEscapeBlock) {
                const __m128i block = blockAt(text.data() + i);
                _mm_storeu_si128(reinterpret_cast<__m128i*>(to), block);
                const unsigned special = specialOf<Special...>(block);
                const std::size_t plain =
                    special ? static_cast<unsigned>(std::countr_zero(special)) : kEscapeBlock;
                to += plain;
                i += plain;
                if (!special)
                    continue;
            }
#endif
            if (!isSpecial<Special...>(text[i])) {
                *to++ = text[i++];
                continue;
            }
            const auto [written, count] = put(to, text.substr(i));
            to = written;
            i += count;
        }
        out.commit(to);
        text.remove_prefix(i);
    }
}

} // namespace Pegasus::formats
