// Character classes of the texts we write. ASCII only, whatever the process's locale says.
#pragma once

#include <array>
#include <string_view>

namespace Pegasus::mpu {

constexpr bool isLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n';
}
constexpr bool isSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
constexpr bool isPrintable(char c) {
    return c >= ' ' && c <= '~';
}

// What stands for `c` in an element name.
constexpr char tagCharacter(char c, bool first) {
    return isLetter(c) || (!first && isDigit(c)) ? c : '_';
}

// What stands for each byte outside markup. "=" is special: it is followed by a blank.
inline constexpr auto kSafeCharacters = [] {
    std::array<char, 256> map{};
    map.fill('?');
    for (int c = 0; c < 128; ++c)
        if (isLetter(static_cast<char>(c)) || isDigit(static_cast<char>(c)) ||
            std::string_view(" \n\t:.,-/#_()[]\"'").find(static_cast<char>(c)) !=
                std::string_view::npos)
            map[static_cast<unsigned>(c)] = static_cast<char>(c);
    map['='] = ':';
    return map;
}();

} // namespace Pegasus::mpu
