#include "capture/Tail.h"

#include <algorithm>
#include <cerrno>
#include <unistd.h>

namespace Pegasus::capture {

Tail::Tail(int descriptor, Place place) : descriptor_(descriptor), place_(std::move(place)) {
    if (::fstat(descriptor_, &status_) != 0)
        failure_ = errno;
}

Tail::~Tail() {
    ::close(descriptor_);
}

int Tail::poll(Capture& capture, const Visitor& visitor, bool last) {
    struct stat now;
    if (::fstat(descriptor_, &now) != 0)
        return errno;
    if (read_ && now.st_size == status_.st_size && !last)
        return 0;
    read_ = false;
    if (static_cast<std::uint64_t>(now.st_size) < place_.offset)
        place_ = {};
    failure_ = 0;
    growing_ = !last;
    next_ = place_.offset;
    capture.open(*this, place_);
    for (Message message; capture.next(message);) {
        place_ = {message.offset, 0, {}}; // to begin with again when it can't be taken now
        const bool more = visitor(message);
        place_ = capture.place();
        if (!more)
            return 0;
    }
    place_ = capture.place();
    status_ = now; // more may have come meanwhile: the next call looks again
    read_ = failure_ == 0;
    return failure_;
}

std::uint64_t Tail::fingerprint(std::uint64_t size) const {
    std::uint64_t hash = 0xCBF29CE484222325; // FNV-1a
    std::uint8_t bytes[512];
    for (std::uint64_t at = 0; at < size;) {
        const auto room =
            static_cast<std::size_t>(std::min<std::uint64_t>(size - at, sizeof bytes));
        const ssize_t got = ::pread(descriptor_, bytes, room, static_cast<off_t>(at));
        if (got <= 0)
            break;
        for (ssize_t i = 0; i < got; ++i)
            hash = (hash ^ bytes[i]) * 0x100000001B3;
        at += static_cast<std::uint64_t>(got);
    }
    return hash;
}

std::size_t Tail::read(std::uint8_t* to, std::size_t room) {
    for (;;) {
        const ssize_t got = ::pread(descriptor_, to, room, static_cast<off_t>(next_));
        if (got >= 0) {
            next_ += static_cast<std::uint64_t>(got);
            return static_cast<std::size_t>(got);
        }
        if (errno != EINTR) {
            failure_ = errno;
            return 0;
        }
    }
}

} // namespace Pegasus::capture
