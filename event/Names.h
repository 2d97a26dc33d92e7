// Name tables: what a code means. Packed when compiled, so that a table costs its characters and
// two bytes an entry, and nothing is built when the library loads.
#pragma once

#include "event/TextWriter.h"

#include <algorithm>
#include <array>

namespace Pegasus::mpu {

// What stands for a code without a name.
enum class Fallback : std::uint8_t {
    Unknown, // "Unknown (n)", n unsigned
    Number,  // "%d"
    Decimal, // "%u"
    Last,    // the table's last text
};

struct NameTable {
    const std::uint16_t* starts; // count + 1 positions in `text`
    const char* text;
    std::uint16_t count;
    std::uint16_t room; // longest text this table can give
    Fallback fallback;

    constexpr std::string_view at(std::size_t i) const {
        return {text + starts[i], static_cast<std::size_t>(starts[i + 1] - starts[i])};
    }
    // Empty for a code without a name.
    constexpr std::string_view find(std::uint64_t code) const {
        return code < codes() ? at(static_cast<std::size_t>(code)) : std::string_view();
    }
    // Codes run from 0 to codes() - 1.
    constexpr std::size_t codes() const { return fallback == Fallback::Last ? count - 1u : count; }
    // Writes the name of `code`, or what stands for it; `out` has `room` characters.
    char* put(char* out, std::uint64_t code) const;
    void put(TextWriter& out, std::uint64_t code) const {
        out.commit(put(out.reserve(room), code));
    }
};

template <std::size_t Count, std::size_t Size>
struct PackedNames {
    std::array<std::uint16_t, Count + 1> starts{};
    std::array<char, Size> text{};
    std::uint16_t longest = 0;
};

template <const auto& Texts>
inline constexpr auto kPackedNames = [] {
    constexpr std::size_t size = [] {
        std::size_t sum = 1;
        for (std::string_view text : Texts)
            sum += text.size();
        return sum;
    }();
    static_assert(size < 0xFFFF);
    PackedNames<std::size(Texts), size> packed;
    std::size_t at = 0;
    std::size_t i = 0;
    for (std::string_view text : Texts) {
        for (char c : text)
            packed.text[at++] = c;
        packed.starts[++i] = static_cast<std::uint16_t>(at);
        packed.longest = std::max<std::uint16_t>(packed.longest, text.size() & 0xFFFF);
    }
    return packed;
}();

// The table of the texts in `Texts`, an array of string views in the order of their codes. An empty
// text leaves its code without a name.
template <const auto& Texts>
constexpr NameTable names(Fallback fallback = Fallback::Unknown) {
    constexpr auto& packed = kPackedNames<Texts>;
    constexpr std::uint16_t unknown = kDecimalRoom + sizeof "Unknown ()";
    return {packed.starts.data(), packed.text.data(), std::size(Texts),
            std::max(packed.longest, unknown), fallback};
}

inline constexpr std::string_view kTrueFalseTexts[] = {"FALSE", "TRUE"};
inline constexpr NameTable kTrueFalse = names<kTrueFalseTexts>();

} // namespace Pegasus::mpu
