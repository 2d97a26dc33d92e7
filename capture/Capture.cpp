#include "capture/Capture.h"

#include "event/Ascii.h"
#include "event/MPUEvent.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>

namespace Pegasus::capture {

namespace {

constexpr std::size_t kRecordHeader = sizeof(EmpEvLogMsg_s);
constexpr std::size_t kClaim = offsetof(EmpEvLogMsg_s, evStructLength);
// The 16-bit length of a message counts its header.
constexpr std::size_t kMaxMessage = 0xFFFF;
constexpr std::size_t kMaxRecord = kMaxMessage - mpu::message_header::kSize;
// Furthest look ahead: over a message that begins inside the current one.
constexpr std::size_t kLookAhead = 2 * kMaxMessage + mpu::message_header::kSize + kRecordHeader;
constexpr std::size_t kBuffer = std::size_t{1024} * 1024;
constexpr std::size_t kStride = 32;
constexpr std::size_t kRead = std::size_t{128} * 1024;
static_assert(kBuffer >= 4 * kLookAhead);

// Nothing of a message is known by its first bytes: it may be them that are missing.
constexpr std::size_t kUnjudged = mpu::message_header::kLength;

// Bits of evidence, as listed in the header.
constexpr unsigned kLengths = 16;
constexpr unsigned kSource = 3;
constexpr unsigned kEventType = 5;
constexpr unsigned kCategory = 4;
constexpr unsigned kSerialEnds = 2;
constexpr unsigned kSerialPrintable = 4;
constexpr unsigned kContext = 8;
constexpr unsigned kStrong = 32;
constexpr unsigned kStrongRecord = 24;
constexpr unsigned kPlausible = 16;

bool isSource(std::uint8_t v) {
    return v < 34;
}
bool isEventType(std::uint8_t v) {
    return (v >= 1 && v <= 3) || (v >= 101 && v <= 103);
}
bool isCategory(std::uint8_t v) {
    return v >= 1 && v <= 14;
}
bool hasCodes(const EmpEvLogMsg_s& record) {
    return isCategory(record.category) && isSource(record.source) && isEventType(record.eventType);
}

// Up to its NUL or the end of the field.
std::string_view serialOf(const char (&field)[64]) {
    return {field, ::strnlen(field, sizeof field)};
}
bool ends(const char (&field)[64]) {
    return field[63] == 0 || std::memchr(field, 0, sizeof field) != nullptr;
}
bool isPrintable(const char (&field)[64]) {
    const std::string_view serial = serialOf(field);
    return !serial.empty() && serial.size() < sizeof field &&
           std::all_of(serial.begin(), serial.end(), mpu::isPrintable);
}

std::string endsInside(std::size_t found, const char* part, std::size_t expected) {
    return fmt::format("the input ends after {} bytes of a {} (expected {})", found, part,
                       expected);
}

std::string beginsInside(std::size_t inner, std::size_t length) {
    return fmt::format("another message begins after {} of its {} bytes", inner, length);
}

} // namespace

std::string Damage::str() const {
    if (passedOver == 0)
        return fmt::format("offset {}: {}", offset, reason);
    const std::string text = fmt::format("offset {}: {}; {} byte{} passed over, ", offset, reason,
                                         passedOver, passedOver == 1 ? "" : "s");
    return resumed ? fmt::format("{}resuming at offset {}", text, offset + passedOver)
                   : text + "no further message found";
}

std::unique_ptr<Avrel_Event> Message::decode() const {
    static constexpr std::uint8_t kNoHeader[mpu::message_header::kSize] = {};
    CMAPMessageHeader wire(header.empty() ? static_cast<const void*>(kNoHeader) : header.data());
    wire.setMessageLength(static_cast<std::uint16_t>(mpu::message_header::kSize + record.size()));
    Avrel_memory_istream in(record.data(), record.size());
    return std::unique_ptr<Avrel_Event>(MPUEvent(wire, in).create_Avrel_Event());
}

Capture::Capture(Framing framing, DamageHandler onDamage)
    : onDamage_(std::move(onDamage)),
      headerSize_(framing == Framing::Message ? mpu::message_header::kSize : 0),
      minimum_(headerSize_ + kRecordHeader),
      inside_(framing == Framing::Message ? 1 : sizeof(EmpEvLogMsg_s::enclosureSerialNumber)),
      strong_(framing == Framing::Message ? kStrong : kStrongRecord),
      buffer_(new std::uint8_t[kBuffer]) {}

void Capture::open(ByteSource& source, Place place) {
    source_ = &source;
    begin_ = end_ = length_ = shared_ = 0;
    taken_ = 0;
    offset_ = searched_ = place.offset;
    weighed_ = UINT64_MAX;
    passedOver_ = place.passedOver;
    reason_ = std::move(place.reason);
    ended_ = false;
}

bool Capture::next(Message& message) {
    if (length_ != 0)
        taken_ = offset_ + length_;
    skip(length_ - shared_);
    length_ = shared_ = 0;
    for (;;) {
        Verdict verdict = judge();
        if (verdict == Verdict::Wait && !source_->growing()) {
            patient_ = true;
            verdict = judge();
            patient_ = false;
        }
        if (verdict == Verdict::Pass)
            continue;
        if (verdict == Verdict::Take)
            report(true);
        else if (!source_->growing())
            report(false);
        if (verdict != Verdict::Take)
            return false;
        break;
    }
    message.offset = offset_;
    message.header = {at(0), headerSize_};
    message.record = {at(headerSize_), length_ - headerSize_};
    message.claim = recordAt(0).evStructLength;
    message.input = {};
    checkLengths();
    return true;
}

// What becomes of the bytes at the current position: a message of length_ bytes, or they are passed
// over. They wait while that can't be known, and at the end.
Capture::Verdict Capture::judge() {
    if (have(minimum_)) {
        const unsigned bits = evidence(0);
        return bits >= strong_ ? judgeStrong() : judgeWeak(bits);
    }
    const std::size_t left = end_ - begin_;
    if (waiting_ || left == 0)
        return Verdict::Wait;
    if (left < headerSize_)
        return cutOff(left, "message header", headerSize_, left);
    return cutOff(left - headerSize_, "record header", kRecordHeader, left);
}

// Quick, and false only for what would be passed over.
inline bool Capture::mayBegin(std::size_t ahead) const {
    return lengthsAgree(ahead) || hasCodes(recordAt(ahead));
}

// Quicker, for as many positions at once: the first at which something strong may begin, or the
// end.
inline std::size_t Capture::mayBeginStrong(std::size_t ahead) const {
    constexpr std::uint8_t kHeaders = mpu::message_header::kSize + kRecordHeader;
    const std::uint8_t* const record = at(ahead) + headerSize_;
    std::array<std::uint8_t, kStride> found;
    if (headerSize_ != 0) // by the lower bytes of both lengths
        for (std::size_t i = 0; i < kStride; ++i)
            found[i] = static_cast<std::uint8_t>(at(ahead)[i + mpu::message_header::kLength + 1] -
                                                 record[i + kClaim + 1]) == kHeaders;
    else
        for (std::size_t i = 0; i < kStride; ++i)
            found[i] = static_cast<std::uint8_t>(
                unsigned{isSource(record[i + offsetof(EmpEvLogMsg_s, source)])} &
                unsigned{isCategory(record[i + offsetof(EmpEvLogMsg_s, category)])});
    const void* const first = std::memchr(found.data(), 1, kStride);
    return first == nullptr ? ahead + kStride
                            : ahead + static_cast<std::size_t>(
                                          static_cast<const std::uint8_t*>(first) - found.data());
}

Capture::Verdict Capture::judgeStrong() {
    const std::size_t length = announcedLength(0);
    if (!have(length))
        return waiting_ ? Verdict::Wait
                        : cutOff(end_ - begin_, headerSize_ != 0 ? "message" : "record", length, 1);
    const Follower then = follower(length);
    std::size_t inner = 0;
    if (then == Follower::Strong)
        inner = swallowed(length);
    else if (then != Follower::End)
        inner = strongBetween(inside_, length);
    if (inner == 0) {
        remember();
        return take(length);
    }
    if (inner == kUnknown || then == Follower::Unknown)
        return Verdict::Wait;
    if (length - inner > kUnjudged)
        return pass(inner, [=] { return beginsInside(inner, length); });
    shared_ = length - inner;
    return take(length);
}

Capture::Verdict Capture::judgeWeak(unsigned bits) {
    bits += (passedOver_ == 0 ? kContext : 0) + (isSeen() ? kContext : 0);
    const std::size_t announced = announcedLength(0);
    const std::size_t claimed = claimedLength(0);
    std::size_t plausible = 0; // of the lengths, which leads to what may be a message
    for (const std::size_t length : {std::min(announced, claimed), std::max(announced, claimed)}) {
        if (bits + kContext < strong_ || length < minimum_ || length > headerSize_ + kMaxRecord)
            continue;
        if (const std::size_t inner = strongBetween(inside_, length); inner != 0) {
            if (inner == kUnknown)
                return Verdict::Wait;
            break;
        }
        if (!have(length)) {
            if (waiting_)
                return Verdict::Wait;
            break;
        }
        if (announced == claimed && bits >= strong_ && mayBegin(0))
            return take(length);
        switch (follower(length)) {
        case Follower::Unknown:
            return Verdict::Wait;
        case Follower::Strong:
        case Follower::End:
            return take(length);
        case Follower::Plausible:
            plausible = plausible != 0 ? plausible : length;
            break;
        case Follower::None:
            break;
        }
    }
    if (plausible != 0)
        return take(plausible);
    return pass(1, [&] { return whyNot(announced, claimed); });
}

// The bytes end where a part of a message does not.
Capture::Verdict Capture::cutOff(std::size_t found, const char* part, std::size_t expected,
                                 std::size_t count) {
    if (source_->failure() != 0) // it is the reading that is cut off
        return Verdict::Wait;
    return pass(count, [=] { return endsInside(found, part, expected); });
}

std::string Capture::whyNot(std::size_t announced, std::size_t claimed) const {
    const EmpEvLogMsg_s& record = recordAt(0);
    if (announced < minimum_)
        return fmt::format("message length {} (expected {} or more)", announced, minimum_);
    if (headerSize_ == 0 && claimed > kMaxRecord)
        return fmt::format("payload length {} (expected {} or less)", claimed - minimum_,
                           kMaxRecord - minimum_);
    if (!hasCodes(record))
        return fmt::format("no record header (source {}, event type {}, category {})",
                           record.source, record.eventType, record.category);
    if (!ends(record.enclosureSerialNumber) || !ends(record.controllerSerialNumber))
        return "no record header (a serial number does not end)";
    const std::size_t shorter = std::min(announced, claimed);
    if (ended_ && end_ - begin_ < shorter)
        return endsInside(end_ - begin_, headerSize_ != 0 ? "message" : "record", shorter);
    if (headerSize_ == 0)
        return fmt::format("no message after a record of {} bytes", claimed);
    return fmt::format("no message after {} bytes (message length) or {} (by its record)",
                       announced, claimed);
}

Capture::Verdict Capture::take(std::size_t length) {
    length_ = length;
    return Verdict::Take;
}

// Passes `count` bytes over, and what follows up to where a message may begin.
template <class Reason>
Capture::Verdict Capture::pass(std::size_t count, Reason reason) {
    if (reason_.empty())
        reason_ = reason();
    const std::uint64_t from = offset_;
    skip(count);
    while (have(minimum_) && !mayBegin(0))
        skip(1);
    passedOver_ += offset_ - from;
    return Verdict::Pass;
}

void Capture::report(bool resumed) {
    if (passedOver_ == 0)
        return;
    const std::uint64_t begin = std::max(offset_ - passedOver_, taken_);
    const Damage damage{begin, offset_ - begin, resumed, std::move(reason_)};
    passedOver_ = 0;
    reason_.clear();
    onDamage_(damage);
}

// Of the message that was taken. Decoders believe evStructLength, so it must not claim more than
// there is.
void Capture::checkLengths() {
    const std::size_t announced = announcedLength(0);
    const std::size_t claimed = claimedLength(0);
    if (shared_ != 0)
        onDamage_({offset_, 0, true, beginsInside(length_ - shared_, length_)});
    if (announced == claimed)
        return;
    std::string reason = length_ == announced
                             ? fmt::format("{} bytes of payload claimed, {} carried",
                                           claimed - minimum_, length_ - minimum_)
                             : fmt::format("message length {} (expected {}, as its record says)",
                                           announced, claimed);
    if (claimed > length_)
        mpu::storeBig(buffer_.get() + begin_ + headerSize_ +
                          offsetof(EmpEvLogMsg_s, evStructLength),
                      static_cast<std::uint16_t>(length_ - minimum_));
    onDamage_({offset_, 0, true, std::move(reason)});
}

Capture::Follower Capture::follower(std::size_t length) {
    if (have(length + minimum_)) {
        const unsigned bits = evidence(length);
        return bits >= strong_      ? Follower::Strong
               : bits >= kPlausible ? Follower::Plausible
                                    : Follower::None;
    }
    if (waiting_)
        return Follower::Unknown;
    return end_ - begin_ == length ? Follower::End : Follower::None;
}

// The first strong message that begins after at least `from` and less than `to` bytes, and is
// whole; 0 if there is none so far, kUnknown if one may yet become whole. To be asked in the order
// of what is searched: nothing is searched twice.
std::size_t Capture::strongBetween(std::size_t from, std::size_t to) {
    for (searched_ = std::max(searched_, offset_ + from); searched_ < offset_ + to; ++searched_) {
        const std::size_t ahead = static_cast<std::size_t>(searched_ - offset_);
        if (!have(ahead + minimum_))
            break;
        if (ahead + minimum_ + kStride <= end_ - begin_) {
            if (const std::size_t next = mayBeginStrong(ahead); next != ahead) {
                searched_ += next - ahead - 1;
                continue;
            }
        }
        if (!mayBegin(ahead) || evidence(ahead) < strong_)
            continue;
        if (have(ahead + announcedLength(ahead)))
            return ahead;
        if (waiting_)
            return kUnknown;
    }
    return 0;
}

// Where a message begins that the one of this length has swallowed, by the sequence numbers: bytes
// are missing then, and the length leads to a message by chance. 0 if there is none.
std::size_t Capture::swallowed(std::size_t length) {
    // From the sequence number of the message at the end, in the same log.
    const auto distance = [this, length](std::size_t ahead) {
        const EmpEvLogMsg_s& last = recordAt(length);
        const EmpEvLogMsg_s& record = recordAt(ahead);
        if (std::memcmp(&record, &last, offsetof(EmpEvLogMsg_s, sequenceId)) != 0)
            return UINT32_MAX;
        return record.sequenceId < last.sequenceId ? last.sequenceId - record.sequenceId
                                                   : record.sequenceId - last.sequenceId;
    };
    const std::uint32_t step = recordAt(length).sequenceId - recordAt(0).sequenceId;
    if (step == 1 || step == UINT32_MAX || step == 0) // as it should be, up or down
        return 0;
    // One that is whole begins after our header and ends where we do at the latest.
    const std::size_t from = headerSize_ != 0 ? minimum_ : inside_;
    if (length < from + minimum_)
        return 0;
    const std::size_t to = length - minimum_ + 1;
    const std::uint32_t own = distance(0);
    const std::uint32_t most = own == UINT32_MAX ? 1 : own - 1;
    std::size_t first = 0;
    for (std::size_t inner = strongBetween(from, to); inner != 0 && inner != kUnknown;
         inner = strongBetween(inner + 1, to)) {
        first = first != 0 ? first : inner;
        const std::size_t end = inner + announcedLength(inner);
        if (end <= length && distance(inner) <= most && evidence(end) >= strong_)
            return first;
    }
    return 0;
}

unsigned Capture::evidence(std::size_t ahead) {
    if (weighed_ == offset_ + ahead)
        return bits_;
    weighed_ = offset_ + ahead;
    return bits_ = weigh(ahead);
}

unsigned Capture::weigh(std::size_t ahead) const {
    const EmpEvLogMsg_s& record = recordAt(ahead);
    if (headerSize_ == 0 && claimedLength(ahead) > kMaxRecord)
        return 0; // no message can have carried it
    unsigned bits = (lengthsAgree(ahead) ? kLengths : 0) + (isSource(record.source) ? kSource : 0) +
                    (isEventType(record.eventType) ? kEventType : 0) +
                    (isCategory(record.category) ? kCategory : 0) +
                    (ends(record.enclosureSerialNumber) ? kSerialEnds : 0) +
                    (ends(record.controllerSerialNumber) ? kSerialEnds : 0);
    if (bits < strong_)
        bits += (isPrintable(record.enclosureSerialNumber) ? kSerialPrintable : 0) +
                (isPrintable(record.controllerSerialNumber) ? kSerialPrintable : 0);
    return bits;
}

bool Capture::isSeen() const {
    return std::any_of(seen_.begin(), seen_.end(), [this](const Serials& serials) {
        return std::memcmp(serials.data(), &recordAt(0), serials.size()) == 0;
    });
}

void Capture::remember() {
    const EmpEvLogMsg_s& record = recordAt(0);
    if (std::memcmp(seen_[latest_].data(), &record, sizeof(Serials)) == 0 || isSeen() ||
        record.enclosureSerialNumber[0] == 0)
        return;
    latest_ = (latest_ + 1) % seen_.size();
    std::memcpy(seen_[latest_].data(), &record, sizeof(Serials));
}

// Brings `count` bytes into the buffer. False at the end, and when there are no more for now.
bool Capture::fill(std::size_t count) {
    while (end_ - begin_ < count) {
        waiting_ = !ended_ && !patient_ && !source_->ready();
        if (ended_ || waiting_)
            return false;
        if (kBuffer - begin_ < kLookAhead) {
            std::memmove(buffer_.get(), at(0), end_ - begin_);
            end_ -= begin_;
            begin_ = 0;
        }
        const std::size_t got =
            source_->read(buffer_.get() + end_, std::min(kBuffer - end_, kRead));
        if (got == 0) {
            waiting_ = source_->growing();
            ended_ = !waiting_;
            return false;
        }
        end_ += got;
    }
    return true;
}

} // namespace Pegasus::capture
