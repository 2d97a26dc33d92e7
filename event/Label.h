// Short constant texts held inside table rows: no pointer, so nothing to relocate at load time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Pegasus::mpu {

template <std::size_t Capacity>
class Label {
public:
    constexpr Label() = default;
    template <std::size_t Size>
    consteval Label(const char (&text)[Size]) : size_(Size - 1) {
        static_assert(Size <= Capacity + 1, "the label is too long for its table");
        for (std::size_t i = 0; i + 1 < Size; ++i)
            text_[i] = text[i];
    }
    constexpr operator std::string_view() const { return {text_, size_}; }

private:
    std::uint8_t size_ = 0;
    char text_[Capacity] = {};
};

} // namespace Pegasus::mpu
