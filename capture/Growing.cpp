#include "capture/Growing.h"

#include <cerrno>
#include <unistd.h>

namespace Pegasus::capture {

GrowingFile::GrowingFile(int descriptor) : descriptor_(descriptor) {
    if (::fstat(descriptor_, &status_) != 0)
        failure_ = errno;
    status_.st_size = 0;
}

GrowingFile::~GrowingFile() {
    ::close(descriptor_);
}

int GrowingFile::poll(Capture& capture, const Each& each, bool last) {
    struct stat now;
    if (::fstat(descriptor_, &now) != 0)
        return errno;
    if (now.st_size == status_.st_size && failure_ == 0 && !last)
        return 0;
    if (static_cast<std::uint64_t>(now.st_size) < place_.offset)
        place_ = {};
    failure_ = 0;
    growing_ = !last;
    next_ = place_.offset;
    capture.open(*this, place_);
    for (Message message; capture.next(message);) {
        place_ = {message.offset, {}}; // to begin with again when it can't be taken now
        each(message);
    }
    place_ = capture.place();
    status_ = now; // more may have come meanwhile: the next call looks again
    return failure_;
}

std::size_t GrowingFile::read(std::uint8_t* to, std::size_t room) {
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
