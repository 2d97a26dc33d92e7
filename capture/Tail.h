// Captures that others write while we read them.
#pragma once

#include "capture/Capture.h"

#include <sys/stat.h>

namespace Pegasus::capture {

// A regular file, known by its inode: it may be renamed or deleted while it is read.
class Tail : private ByteSource {
public:
    // Takes the descriptor over.
    explicit Tail(int descriptor, Place place = {});
    ~Tail() override;
    Tail(const Tail&) = delete;
    Tail& operator=(const Tail&) = delete;

    bool is(const struct stat& other) const {
        return other.st_dev == status_.st_dev && other.st_ino == status_.st_ino;
    }

    const struct stat& status() const { return status_; }
    // Of the first so many bytes.
    std::uint64_t fingerprint(std::uint64_t size) const;

    // After the last message handed over.
    const Place& place() const { return place_; }

    // Returns false when it wants no more for now.
    using Visitor = std::function<bool(const Message&)>;
    // Hands over the messages that came since the last call; one that is not whole yet waits for
    // its rest, unless this is the `last` call. A file that has become shorter than what was read
    // of it is a new one under the old inode, and read from its start. Returns the errno of a
    // failure or 0. The next call goes on where this one stopped: when the visitor threw, with the
    // same message.
    int poll(Capture& capture, const Visitor& visitor, bool last = false);

private:
    std::size_t read(std::uint8_t* to, std::size_t room) override;
    int failure() const override { return failure_; }
    bool growing() const override { return growing_; }

    int descriptor_;
    int failure_ = 0;
    bool growing_ = true;
    struct stat status_ {};  // when read last
    bool read_ = false;      // to the end it had then
    std::uint64_t next_ = 0; // to read
    Place place_;
};

} // namespace Pegasus::capture
