// Big-endian integers as they are in records and messages: read and written byte order aware and
// without any alignment, on hosts of either byte order.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace Pegasus::mpu {

template <class T>
inline T toBig(T value) {
    if constexpr (std::endian::native == std::endian::big || sizeof(T) == 1)
        return value;
    else if constexpr (sizeof(T) == 2)
        return static_cast<T>(__builtin_bswap16(value));
    else if constexpr (sizeof(T) == 4)
        return static_cast<T>(__builtin_bswap32(value));
    else
        return static_cast<T>(__builtin_bswap64(value));
}

template <class T>
inline T loadBig(const void* at) {
    T value;
    std::memcpy(&value, at, sizeof value);
    return toBig(value);
}

template <class T>
inline void storeBig(void* at, T value) {
    value = toBig(value);
    std::memcpy(at, &value, sizeof value);
}

// A big-endian field of a wire structure. Alignment 1, so structures made of these have no padding
// and may be at any address.
template <class T>
class Big {
public:
    operator T() const { return loadBig<T>(bytes_); }
    Big& operator=(T value) {
        storeBig(bytes_, value);
        return *this;
    }

private:
    unsigned char bytes_[sizeof(T)];
};

} // namespace Pegasus::mpu
