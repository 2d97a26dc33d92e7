// Short constant texts held inside table rows: no pointer, so nothing to relocate at load time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace Pegasus::mpu {

template <std::size_t Capacity>
class FixedString {
public:
    constexpr FixedString() = default;
    template <std::size_t Size>
    consteval FixedString(const char (&text)[Size]) : size_(Size - 1) {
        static_assert(Size <= Capacity + 1, "the label is too long for its table");
        for (std::size_t i = 0; i + 1 < Size; ++i)
            text_[i] = text[i];
    }
    constexpr operator std::string_view() const { return {text_, size_}; }
    constexpr bool empty() const { return size_ == 0; }

    // All of it, however short the text is: a copy of a constant size costs next to nothing, where
    // one of a size known to be small costs a slow instruction. `out` has room for it.
    char* put(char* out) const {
        std::memcpy(out, text_, Capacity);
        return out + size_;
    }

private:
    std::uint8_t size_ = 0;
    char text_[Capacity] = {};
};

} // namespace Pegasus::mpu
