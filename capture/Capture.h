// Captures: messages back to back, as they came from the controller, and what became of them since.
#pragma once

#include "capture/ByteSource.h"
#include "event/Avrel_Event.h"
#include "event/EmpEvLogMsg_s.h"

#include <array>
#include <memory>
#include <span>

namespace Pegasus::capture {

enum class Framing : std::uint8_t {
    Message, // a 64-byte message header, whose bytes 10-11 are the total length, and the record
    Record,  // the record alone
};

struct Message {
    std::uint64_t offset;                 // of its first byte in the capture
    std::span<const std::uint8_t> header; // of the message, empty for a bare record
    std::span<const std::uint8_t> record; // at least its header; at most what a message can carry
    std::uint16_t claim = 0;              // evStructLength as it came
    std::string_view input{};             // its name, where the reader gave it one

    std::unique_ptr<Avrel_Event> decode() const;
};

// Bytes that became no event, or a message that is odd.
struct Damage {
    std::uint64_t offset;
    std::uint64_t passedOver; // bytes; 0: the message at this offset was taken all the same
    bool resumed;             // a message follows
    std::string reason;

    // For people: "offset 216: REASON; 100 bytes passed over, resuming at offset 316".
    std::string str() const;
};
using DamageHandler = std::function<void(const Damage&)>;

// Where the reading of a capture is.
struct Place {
    std::uint64_t offset = 0;     // of what is not dealt with
    std::uint64_t passedOver = 0; // bytes directly before it that became no event
    std::string reason;           // why; they are not reported yet
};

// Hands out one message at a time and reports every byte that is not part of one. Holds a fixed
// piece of the capture, however long that is, and looks at each byte a fixed number of times.
//
// A message is known by its own evidence, in bits: how unlikely it is that foreign bytes have it.
//
//    16  both lengths agree: the message's, and the one that follows from its record
//     3  source below 34
//     5  event type 1, 2, 3, 101, 102 or 103
//     4  category 1 to 14
//     2  each serial number that ends inside its 64 bytes
//     4  each of them, in addition, that is not empty and printable
//
// With 32 bits it is strong: taken wherever it is found, unless its end is damaged. It is, when no
// strong message begins at its end and one begins before it; or when the one at its end continues
// one inside it rather than it, by log and sequence number. But when all but its last 10 bytes
// are its own, it is the first bytes of the other that are missing, as likely as not: both are
// taken, and that is reported.
//
// Any other is weak: taken when nothing strong begins inside it, and it has 32 bits together with
//
//     8  the message before ends here, or the capture begins here
//     8  serial numbers that a strong message had
//     8  something of 16 bits begins at its end, or the capture ends there
//
// When its lengths disagree, the last is a must. Of two lengths that have it, the one that leads to
// a strong message or to the end counts, else the shorter. Such a message is reported; its record
// then claims no more than the message carries.
//
// A bare record has no second length: 24 bits make it strong, and are enough for a weak one.
//
// Where more bytes may yet come, what can't be judged without them waits. A strong message that is
// whole does not, unless a strong one begins inside it. Any other waits until a strong one that is
// whole has come after it.
class Capture {
public:
    Capture(Framing framing, DamageHandler onDamage);

    // Reads from `source` from now on; the source stays the caller's, and is at place.offset.
    void open(ByteSource& source, Place place = {});
    // False at the end, after a failure of the source, and when there is nothing more for now. The
    // message lives until the next call.
    bool next(Message& message);
    // After the message handed out: to go on from later.
    Place place() const { return {offset_ + length_ - shared_, passedOver_, reason_}; }
    // Bytes of the capture dealt with so far, the message handed out among them.
    std::uint64_t position() const { return offset_ + length_; }

private:
    enum class Verdict : std::uint8_t { Take, Pass, Wait };
    enum class Follower : std::uint8_t { Unknown, None, Plausible, Strong, End };
    using Serials = std::array<std::uint8_t, 128>; // both fields
    static constexpr std::size_t kUnknown = SIZE_MAX;

    // The bytes from `ahead` on, which are in the buffer.
    const std::uint8_t* at(std::size_t ahead) const { return buffer_.get() + begin_ + ahead; }
    const EmpEvLogMsg_s& recordAt(std::size_t ahead) const {
        return *reinterpret_cast<const EmpEvLogMsg_s*>(at(ahead) + headerSize_);
    }
    std::size_t claimedLength(std::size_t ahead) const {
        return minimum_ + recordAt(ahead).evStructLength;
    }
    std::size_t announcedLength(std::size_t ahead) const {
        return headerSize_ == 0 ? claimedLength(ahead)
                                : mpu::loadBig<std::uint16_t>(at(ahead) + 10);
    }
    bool lengthsAgree(std::size_t ahead) const {
        return headerSize_ != 0 && announcedLength(ahead) == claimedLength(ahead);
    }
    bool mayBegin(std::size_t ahead) const;
    std::size_t mayBeginStrong(std::size_t ahead) const;
    unsigned evidence(std::size_t ahead);
    unsigned weigh(std::size_t ahead) const;

    // Whether the input goes on for `count` bytes; they are in the buffer then.
    bool have(std::size_t count) { return count <= end_ - begin_ || fill(count); }
    bool fill(std::size_t count);
    void skip(std::size_t count) {
        begin_ += count;
        offset_ += count;
    }

    Verdict judge();
    Verdict judgeStrong();
    Verdict judgeWeak(unsigned bits);
    Verdict cutOff(std::size_t found, const char* part, std::size_t expected, std::size_t count);
    Verdict take(std::size_t length);
    template <class Reason>
    Verdict pass(std::size_t count, Reason reason);
    std::string whyNot(std::size_t announced, std::size_t claimed) const;
    Follower follower(std::size_t length);
    std::size_t strongBetween(std::size_t from, std::size_t to);
    std::size_t swallowed(std::size_t length);
    bool isSeen() const;
    void remember();
    void report(bool resumed);
    void checkLengths();

    DamageHandler onDamage_;
    std::size_t headerSize_; // of the message, before the record
    std::size_t minimum_;    // message and record header
    // From where another message may begin inside one. The header of a bare record can look like
    // one once more from a few bytes on, with the ends of its serial numbers.
    std::size_t inside_;
    unsigned strong_; // bits of evidence
    std::unique_ptr<std::uint8_t[]> buffer_;
    ByteSource* source_ = nullptr;
    std::size_t begin_ = 0; // of what is not dealt with, in the buffer
    std::size_t end_ = 0;
    std::uint64_t offset_ = 0; // of begin_ in the capture
    bool ended_ = true;        // the source has no more
    bool waiting_ = false;     // the last have() failed because there was no more yet
    bool patient_ = false;     // have() waits

    std::size_t length_ = 0;       // of the message handed out, at begin_
    std::size_t shared_ = 0;       // of it with the next one, whose first bytes are missing
    std::uint64_t taken_ = 0;      // offset after the message handed out before
    std::uint64_t passedOver_ = 0; // bytes before begin_, not reported yet
    std::string reason_;
    std::uint64_t searched_ = 0;     // offset up to which strongBetween() found nothing
    std::array<Serials, 16> seen_{}; // of strong messages, a ring
    std::size_t latest_ = 0;
    std::uint64_t weighed_ = UINT64_MAX; // offset of what was weighed last: it comes up again soon
    unsigned bits_ = 0;                  // its evidence
};

} // namespace Pegasus::capture
