#include "platform/cmap/Avrel_istream.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <unistd.h>

namespace Pegasus {

Avrel_istream::~Avrel_istream() = default;

Avrel_memory_istream::Avrel_memory_istream(const void* data, std::size_t size)
    : next_(static_cast<const char*>(data)), left_(data ? size : 0), delivered_(0) {}

void Avrel_memory_istream::read(char* buffer, unsigned int count) {
    const std::size_t n = std::min<std::size_t>({left_, count, INT_MAX});
    if (n != 0)
        std::memcpy(buffer, next_, n);
    next_ += n;
    left_ -= n;
    delivered_ = static_cast<int>(n);
}

int Avrel_memory_istream::gcount() const {
    return delivered_;
}

Avrel_fd_istream::Avrel_fd_istream(int descriptor) : descriptor_(descriptor), delivered_(0) {}

void Avrel_fd_istream::read(char* buffer, unsigned int count) {
    const int wanted = static_cast<int>(std::min<unsigned int>(count, INT_MAX));
    delivered_ = 0;
    while (delivered_ < wanted) {
        const ssize_t n =
            ::read(descriptor_, buffer + delivered_, static_cast<std::size_t>(wanted - delivered_));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            delivered_ = -1;
        if (n <= 0)
            return;
        delivered_ += static_cast<int>(n);
    }
}

int Avrel_fd_istream::gcount() const {
    return delivered_;
}

} // namespace Pegasus
