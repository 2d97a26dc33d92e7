// Numbers that people type, and that elements hold.
#pragma once

#include <charconv>
#include <compare>
#include <cstdint>
#include <optional>
#include <string_view>

namespace Pegasus::tool {

// Of 64 bits and a sign, in decimal or after "0x" in hexadecimal.
struct Integer {
    bool negative;
    std::uint64_t magnitude;

    // Nothing for a text that is not one as a whole.
    static std::optional<Integer> from(std::string_view text) {
        const bool negative = text.starts_with('-');
        text.remove_prefix(negative);
        const bool hex = text.starts_with("0x") || text.starts_with("0X");
        text.remove_prefix(hex ? 2 : 0);
        std::uint64_t magnitude = 0;
        const auto [end, error] =
            std::from_chars(text.data(), text.data() + text.size(), magnitude, hex ? 16 : 10);
        if (error != std::errc() || end != text.data() + text.size())
            return std::nullopt;
        return Integer{negative && magnitude != 0, magnitude};
    }

    std::strong_ordering operator<=>(const Integer& other) const {
        if (negative != other.negative)
            return other.negative <=> negative;
        return negative ? other.magnitude <=> magnitude : magnitude <=> other.magnitude;
    }
};

} // namespace Pegasus::tool
