// Where the bytes of a capture come from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace Pegasus::capture {

// Takes what is wrong with an input: its place, a colon and the fault.
using FaultHandler = std::function<void(const std::string&)>;

class ByteSource {
public:
    virtual ~ByteSource() = default;
    // Reads up to `room` bytes, as many as there are without waiting for more; 0 at the end and
    // after a failure.
    virtual std::size_t read(std::uint8_t* to, std::size_t room) = 0;
    // Whether reading returns at once. Who reads has time for other things before, if not.
    virtual bool ready() { return true; }
    // The errno of the failure that ended the reading, or 0.
    virtual int failure() const { return 0; }
    // Whether there may be more than was read so far, although nothing is there now.
    virtual bool growing() const { return false; }
};

// A file descriptor that the caller owns.
class FileSource : public ByteSource {
public:
    explicit FileSource(int descriptor) : descriptor_(descriptor) {}
    std::size_t read(std::uint8_t* to, std::size_t room) override;
    bool ready() override;
    int failure() const override { return failure_; }

private:
    int descriptor_;
    int failure_ = 0;
};

// Memory that the caller keeps alive.
class MemorySource : public ByteSource {
public:
    MemorySource(const void* data, std::size_t size)
        : next_(static_cast<const std::uint8_t*>(data)), left_(size) {}
    std::size_t read(std::uint8_t* to, std::size_t room) override;

private:
    const std::uint8_t* next_;
    std::size_t left_;
};

// A source whose first bytes can be looked at before they are read. The source stays the caller's.
class LookaheadSource : public ByteSource {
public:
    static constexpr std::size_t kSize = std::size_t{64} * 1024;

    explicit LookaheadSource(ByteSource& source) : source_(source) {}
    // Looks further, as far as one read of the source leads. False when the look-ahead is full or
    // the source has no more for now.
    bool lookFurther();
    std::span<const std::uint8_t> ahead() const { return {buffer_.data(), size_}; }
    // Passes over as many bytes, which have been looked at.
    void skip(std::size_t count) { taken_ += count; }
    std::size_t read(std::uint8_t* to, std::size_t room) override;
    bool ready() override { return taken_ != size_ || source_.ready(); }
    int failure() const override { return source_.failure(); }
    bool growing() const override { return source_.growing(); }

private:
    ByteSource& source_;
    std::vector<std::uint8_t> buffer_;
    std::size_t size_ = 0;  // filled
    std::size_t taken_ = 0; // handed out
    bool ended_ = false;    // the source's reads have come to an end
};

} // namespace Pegasus::capture
