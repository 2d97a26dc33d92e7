#include "tools/mpuevent/Spool.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace Pegasus::tool {

namespace {

constexpr std::size_t kBuffer = std::size_t{256} * 1024; // holds the longest message

// Before the bytes of each message. The message's spans have only their sizes; other processes
// never see it.
static_assert(std::is_trivially_copyable_v<Message>);

[[noreturn]] void fail(int error) {
    throw std::system_error(error, std::generic_category(), "temporary file");
}

class SpoolStream : public MessageStream {
public:
    SpoolStream(int descriptor, std::uint64_t begin, std::uint64_t end)
        : descriptor_(descriptor), at_(begin), end_(end) {}

    bool next(Message& message) override {
        if (begin_ == size_ && at_ == end_)
            return false;
        std::memcpy(&message, take(sizeof message), sizeof message);
        const std::size_t header = message.header.size();
        const std::size_t record = message.record.size();
        const std::uint8_t* const bytes = take(header + record);
        message.header = {bytes, header};
        message.record = {bytes + header, record};
        return true;
    }

private:
    // The next bytes, which live until the next call.
    const std::uint8_t* take(std::size_t count) {
        if (size_ - begin_ < count) {
            std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(begin_),
                      buffer_.begin() + static_cast<std::ptrdiff_t>(size_), buffer_.begin());
            size_ -= begin_;
            begin_ = 0;
        }
        while (size_ < count) {
            const std::size_t room = static_cast<std::size_t>(
                std::min<std::uint64_t>(buffer_.size() - size_, end_ - at_));
            const ssize_t got =
                ::pread(descriptor_, buffer_.data() + size_, room, static_cast<off_t>(at_));
            if (got == 0)
                fail(EIO); // somebody cut it
            if (got < 0 && errno != EINTR)
                fail(errno);
            size_ += static_cast<std::size_t>(std::max<ssize_t>(got, 0));
            at_ += static_cast<std::uint64_t>(std::max<ssize_t>(got, 0));
        }
        begin_ += count;
        return buffer_.data() + begin_ - count;
    }

    const int descriptor_;
    std::uint64_t at_; // of what is to be read
    const std::uint64_t end_;
    std::vector<std::uint8_t> buffer_ = std::vector<std::uint8_t>(kBuffer);
    std::size_t begin_ = 0; // of what is not taken
    std::size_t size_ = 0;
};

} // namespace

Spool::Spool() {
    std::string name = std::filesystem::temp_directory_path() / "mpueventXXXXXX";
    descriptor_ = ::mkostemp(name.data(), O_CLOEXEC);
    if (descriptor_ < 0)
        fail(errno);
    ::unlink(name.c_str());
}

Spool::~Spool() {
    ::close(descriptor_);
}

void Spool::add(const Message& message) {
    const auto put = [this](const void* bytes, std::size_t size) {
        const auto* const first = static_cast<const std::uint8_t*>(bytes);
        buffer_.insert(buffer_.end(), first, first + size);
    };
    put(&message, sizeof message);
    put(message.header.data(), message.header.size());
    put(message.record.data(), message.record.size());
    if (buffer_.size() >= kBuffer)
        flush();
}

void Spool::flush() {
    for (std::size_t done = 0; done < buffer_.size();) {
        const ssize_t wrote = ::write(descriptor_, buffer_.data() + done, buffer_.size() - done);
        if (wrote < 0 && errno != EINTR)
            fail(errno);
        done += static_cast<std::size_t>(std::max<ssize_t>(wrote, 0));
    }
    written_ += buffer_.size();
    buffer_.clear();
}

std::unique_ptr<MessageStream> Spool::read(std::uint64_t begin, std::uint64_t end) const {
    return std::make_unique<SpoolStream>(descriptor_, begin, end);
}

} // namespace Pegasus::tool
