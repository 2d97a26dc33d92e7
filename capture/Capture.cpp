#include "capture/Capture.h"

#include "event/MPUEvent.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>

namespace Pegasus::capture {

namespace {

constexpr std::size_t kBuffer = std::size_t{1024} * 1024;
constexpr std::size_t kRecordHeader = sizeof(EmpEvLogMsg_s);
// The 16-bit length of a message counts its header.
constexpr std::size_t kMaxMessage = 0xFFFF;
constexpr std::size_t kMaxRecord = kMaxMessage - mpu::message_header::kSize;
// Furthest look ahead: over a message to the headers of the one behind it.
constexpr std::size_t kLookAhead = kMaxMessage + mpu::message_header::kSize + kRecordHeader + 1;
static_assert(kBuffer >= 2 * kLookAhead);

bool isEventType(std::uint8_t v) {
    return (v >= 1 && v <= 3) || (v >= 101 && v <= 103);
}

} // namespace

std::unique_ptr<Avrel_Event> Message::decode() const {
    static constexpr std::uint8_t kNoHeader[mpu::message_header::kSize] = {};
    CMAPMessageHeader wire(header.empty() ? static_cast<const void*>(kNoHeader) : header.data());
    wire.setMessageLength(static_cast<std::uint16_t>(mpu::message_header::kSize + record.size()));
    Avrel_memory_istream in(record.data(), record.size());
    return std::unique_ptr<Avrel_Event>(MPUEvent(wire, in).create_Avrel_Event());
}

Capture::Capture(Framing framing, Report report)
    : report_(std::move(report)),
      headerSize_(framing == Framing::Message ? mpu::message_header::kSize : 0),
      minimum_(headerSize_ + kRecordHeader), buffer_(new std::uint8_t[kBuffer]) {}

void Capture::open(ByteSource& source, Place place) {
    source_ = &source;
    begin_ = end_ = taken_ = kept_ = 0;
    offset_ = place.offset;
    fault_ = std::move(place.fault);
    ended_ = false;
}

bool Capture::next(Message& message) {
    if (taken_ != 0) {
        skip(taken_);
        kept_ = searched_ ? 0 : taken_;
        taken_ = 0;
        searched_ = false;
    }
    waiting_ = false;
    std::size_t length = 0;
    while (length == 0) {
        if (fault_.empty()) {
            if (!have(1))
                return false;
            std::string what = fault();
            if (waiting_) {
                if (isConfirmed() || !messageAhead())
                    return false;
                what = fmt::format("message length {} is not confirmed by the record's",
                                   announcedLength(0));
            }
            if (what.empty()) {
                length = announcedLength(0);
                break;
            }
            if (source_->failure() != 0)
                return false; // the message is short because the reading was
            const std::string fault = fmt::format("offset {}: {}", offset_, what);
            if (believeRecord()) {
                length = claimedLength(0);
                report_(fmt::format("{}; taken as {} bytes, as its record says", fault, length));
                break;
            }
            if (waiting_ && !messageAhead())
                return false;
            fault_ = fault;
            beginSearch();
        }
        const bool found = search();
        if (waiting_)
            return false;
        searched_ = true;
        report_(found ? fmt::format("{}; going on at offset {}", fault_, offset_)
                      : fault_ + "; nothing found behind it");
        fault_.clear();
    }
    message.offset = offset_;
    message.header = {at(0), headerSize_};
    message.record = {at(headerSize_), length - headerSize_};
    taken_ = length;
    return true;
}

// Whether what is there speaks for an unfinished message.
bool Capture::isConfirmed() const {
    return end_ - begin_ < minimum_ || (headerSize_ == 0 ? looksLikeRecord(0) : lengthsAgree(0));
}

// Whether a whole message is there behind the beginning of the current one: no sense in waiting for
// the rest of this one then.
bool Capture::messageAhead() {
    bool found = false;
    for (std::size_t ahead = 1; !found && ahead + minimum_ <= end_ - begin_; ++ahead)
        found = standsAlone(ahead);
    waiting_ = !found;
    return found;
}

// Whether the record's own length leads on where the message's does not.
bool Capture::believeRecord() {
    return have(minimum_) && looksLikeRecord(0) && claimedLength(0) <= headerSize_ + kMaxRecord &&
           isBoundary(claimedLength(0));
}

// What is wrong with the message at the current position, as "found (wanted)"; empty if nothing is.
std::string Capture::fault() {
    if (!have(minimum_)) {
        const std::size_t left = end_ - begin_;
        if (left < headerSize_)
            return fmt::format("the input ends after {} bytes of a message header ({} wanted)",
                               left, headerSize_);
        if (headerSize_ == 0 || announcedLength(0) >= minimum_)
            return fmt::format("the input ends after {} bytes of a record header ({} wanted)",
                               left - headerSize_, kRecordHeader);
    }
    const std::size_t announced = announcedLength(0);
    if (announced < minimum_)
        return fmt::format("message length {} ({} or more wanted)", announced, minimum_);
    if (announced > headerSize_ + kMaxRecord)
        return fmt::format("payload length {} ({} or less wanted)", announced - kRecordHeader,
                           kMaxRecord - kRecordHeader);
    if (!have(announced))
        return fmt::format("the input ends after {} bytes of a {} ({} wanted)", end_ - begin_,
                           headerSize_ == 0 ? "record" : "message", announced);
    const std::size_t claimed = claimedLength(0);
    if (lengthsAgree(0))
        return {};
    if (looksLikeRecord(0)) {
        if (announced == claimed || isBoundary(announced) || claimed > kMaxMessage ||
            !isBoundary(claimed))
            return {};
        return fmt::format("message length {} ({} wanted: there the next message begins)",
                           announced, claimed);
    }
    if (isBoundary(announced))
        return {};
    const std::uint8_t* record = at(headerSize_);
    return fmt::format("no record header (source {}, event type {}, category {} found)",
                       record[146], record[147], record[148]);
}

// The last message may have swallowed the beginning of the next one: the search begins inside it,
// for a bare record, which has only its looks, behind its header. But not inside a message that was
// searched for, lest a capture be read over and over.
void Capture::beginSearch() {
    const std::size_t first = headerSize_ != 0 ? 1 : minimum_;
    const std::size_t back = kept_ > first ? kept_ - first : 0;
    kept_ = 0;
    if (back == 0)
        return skip(1);
    begin_ -= back;
    offset_ -= back;
}

// Goes to the next plausible message, which may be the current one. False, and to the end of the
// input, if there is none.
bool Capture::search() {
    for (; have(minimum_); skip(1)) {
        if (standsAlone(0))
            return true;
        if (waiting_)
            return false;
    }
    if (!waiting_)
        skip(end_ - begin_);
    return false;
}

// Strict: nothing but its looks says that a message begins here.
bool Capture::isMessage(std::size_t ahead) {
    return have(ahead + minimum_) && looksLikeRecord(ahead) &&
           announcedLength(ahead) == claimedLength(ahead) &&
           claimedLength(ahead) <= headerSize_ + kMaxRecord;
}

// Whether a message is here for sure: by its looks and by what is behind it, be it nothing for now.
bool Capture::standsAlone(std::size_t ahead) {
    if (!isMessage(ahead))
        return false;
    const std::size_t end = ahead + announcedLength(ahead);
    if (isBoundary(end))
        return true;
    if (end != end_ - begin_)
        return false;
    waiting_ = false;
    return true;
}

// Whether a message may end here.
bool Capture::isBoundary(std::size_t ahead) {
    if (have(ahead + minimum_))
        return lengthsAgree(ahead) || looksLikeRecord(ahead);
    return have(ahead) && !have(ahead + 1) && !waiting_;
}

bool Capture::lengthsAgree(std::size_t ahead) const {
    return headerSize_ != 0 && announcedLength(ahead) == claimedLength(ahead);
}

bool Capture::looksLikeRecord(std::size_t ahead) const {
    const std::uint8_t* record = at(ahead + headerSize_);
    return record[146] < 34 && isEventType(record[147]) && record[148] >= 1 && record[148] <= 14 &&
           std::memchr(record, 0, 64) && std::memchr(record + 64, 0, 64);
}

std::size_t Capture::announcedLength(std::size_t ahead) const {
    if (headerSize_ == 0)
        return claimedLength(ahead);
    return mpu::loadBig<std::uint16_t>(at(ahead + mpu::message_header::kLength));
}

std::size_t Capture::claimedLength(std::size_t ahead) const {
    constexpr std::size_t field = offsetof(EmpEvLogMsg_s, evStructLength);
    return minimum_ + mpu::loadBig<std::uint16_t>(at(ahead + headerSize_ + field));
}

void Capture::skip(std::size_t count) {
    begin_ += count;
    offset_ += count;
}

// Whether the input goes on for `count` bytes; they are in the buffer then.
bool Capture::have(std::size_t count) {
    while (end_ - begin_ < count) {
        if (ended_)
            return false;
        if (kBuffer - begin_ < kLookAhead) {
            std::memmove(buffer_.get(), at(0) - kept_, end_ - begin_ + kept_);
            end_ -= begin_ - kept_;
            begin_ = kept_;
        }
        const std::size_t got = source_->read(buffer_.get() + end_, kBuffer - end_);
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
