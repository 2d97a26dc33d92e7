// Messages in a temporary file.
#pragma once

#include "capture/Capture.h"

namespace Pegasus::tool {

using namespace capture;

// Messages in order, one at a time.
class MessageStream {
public:
    virtual ~MessageStream() = default;
    // False at the end. The message lives until the next call.
    virtual bool next(Message& message) = 0;
    // No more is wanted; what is to be said at the end is said. So it is after the last message.
    virtual void close() {}
};

// A file that is gone when the object is. What goes wrong with it is thrown as std::system_error.
class Spool {
public:
    Spool();
    ~Spool();
    Spool(const Spool&) = delete;
    Spool& operator=(const Spool&) = delete;

    void add(const Message& message);
    // Where the next message goes.
    std::uint64_t end() const { return written_ + buffer_.size(); }
    // Writes what is still in memory: to be called before reading.
    void flush();
    // The messages between two such places. The stream must not outlive the spool.
    std::unique_ptr<MessageStream> read(std::uint64_t begin, std::uint64_t end) const;

private:
    int descriptor_;
    std::uint64_t written_ = 0;
    std::vector<std::uint8_t> buffer_;
};

} // namespace Pegasus::tool
