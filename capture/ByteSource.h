// Where the bytes of a capture come from.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
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

// The bytes that a hex text stands for. The text has
//   - plain lines: bytes of two digits, with or without blanks between them;
//   - xxd lines: an offset and a colon, which are skipped, then bytes as above; two blanks behind a
//     byte end them, the characters that follow are not looked at;
//   - comments from "#" to the end of the line, and empty lines.
// A line with anything else is reported with line and column (from 1) and counts up to there.
class HexSource : public ByteSource {
public:
    HexSource(ByteSource& text, FaultHandler onFault) : text_(text), onFault_(std::move(onFault)) {}
    std::size_t read(std::uint8_t* to, std::size_t room) override;
    bool ready() override { return taken_ != bytes_.size() || text_.ready(); }
    int failure() const override { return text_.failure(); }

private:
    static constexpr unsigned kMaxOffsetDigits = 16;

    void take(char c);
    void add(std::uint8_t digit);
    void settleFirst();
    void endToken();
    void wrong(std::uint64_t column, const std::string& what);

    ByteSource& text_;
    FaultHandler onFault_;
    std::vector<std::uint8_t> chunk_ =
        std::vector<std::uint8_t>(std::size_t{64} * 1024); // of the text
    std::vector<std::uint8_t> bytes_;                      // decoded from it
    std::size_t taken_ = 0;                                // of these

    // Where we are.
    std::uint64_t line_ = 1;
    std::uint64_t column_ = 0;
    std::uint64_t digitColumn_ = 0;
    int half_ = -1; // first digit of a byte

    // What this line is. Its first digits may turn out an offset.
    struct {
        std::array<std::uint8_t, kMaxOffsetDigits> first;
        unsigned firstCount = 0;
        bool settled = false; // whether the first digits are an offset
        bool offset = false;  // they are: an xxd line
        bool bytes = false;   // has bytes
        bool ended = false;   // nothing more counts
        int blanks = 0;       // directly before the next character
    } now_;
};

} // namespace Pegasus::capture
