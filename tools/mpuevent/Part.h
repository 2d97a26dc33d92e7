// Some of a capture's bytes, for who decodes it on several machines.
#pragma once

#include "tools/mpuevent/Integer.h"

namespace Pegasus::tool {

// One of `count` parts of about the same size, numbered from 1: the messages, and the damage, that
// begin in its bytes.
struct Part {
    std::uint64_t number = 1;
    std::uint64_t count = 1;

    static constexpr std::uint64_t kMost = 1'000'000;

    // "K/N"; nothing for another text.
    static std::optional<Part> from(std::string_view text) {
        const std::size_t slash = text.find('/');
        if (slash == text.npos)
            return std::nullopt;
        const auto number = Integer::from(text.substr(0, slash));
        const auto count = Integer::from(text.substr(slash + 1));
        if (!number || !count || number->negative || number->magnitude == 0 ||
            number->magnitude > count->magnitude || count->magnitude > kMost)
            return std::nullopt;
        return Part{number->magnitude, count->magnitude};
    }

    bool isWhole() const { return count == 1; }
    bool isFirst() const { return number == 1; }
    bool isLast() const { return number == count; }
    // Of its bytes among `size`. The last part takes what a growing file got in the meantime.
    std::uint64_t begin(std::uint64_t size) const { return cut(number - 1, size); }
    std::uint64_t end(std::uint64_t size) const {
        return isLast() ? UINT64_MAX : cut(number, size);
    }

private:
    // size * parts / count, which may need more than 64 bits in between.
    std::uint64_t cut(std::uint64_t parts, std::uint64_t size) const {
        return size / count * parts + size % count * parts / count;
    }
};

} // namespace Pegasus::tool
