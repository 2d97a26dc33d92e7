#include "capture/ByteSource.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <poll.h>
#include <unistd.h>

namespace Pegasus::capture {

std::size_t FileSource::read(std::uint8_t* to, std::size_t room) {
    for (;;) {
        const ssize_t got = ::read(descriptor_, to, room);
        if (got >= 0)
            return static_cast<std::size_t>(got);
        if (errno == EAGAIN) { // somebody else's setting of a shared terminal or pipe
            pollfd ready{descriptor_, POLLIN, 0};
            (void)::poll(&ready, 1, -1);
        } else if (errno != EINTR) {
            failure_ = errno;
            return 0;
        }
    }
}

bool FileSource::ready() {
    pollfd input{descriptor_, POLLIN, 0};
    return ::poll(&input, 1, 0) != 0; // a failure shows when it is read
}

std::size_t MemorySource::read(std::uint8_t* to, std::size_t room) {
    const std::size_t count = std::min(room, left_);
    if (count != 0)
        std::memcpy(to, next_, count);
    next_ += count;
    left_ -= count;
    return count;
}

bool LookaheadSource::lookFurther() {
    if (ended_ || size_ == kSize)
        return false;
    buffer_.resize(kSize);
    const std::size_t got = source_.read(buffer_.data() + size_, kSize - size_);
    size_ += got;
    ended_ = got == 0 && !source_.growing();
    return got != 0;
}

std::size_t LookaheadSource::read(std::uint8_t* to, std::size_t room) {
    if (taken_ == size_)
        return ended_ ? 0 : source_.read(to, room);
    const std::size_t count = std::min(room, size_ - taken_);
    std::memcpy(to, buffer_.data() + taken_, count);
    taken_ += count;
    return count;
}

} // namespace Pegasus::capture
