// Captures: messages back to back, as they came from the controller.
#pragma once

#include "capture/ByteSource.h"
#include "event/Avrel_Event.h"

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

    std::unique_ptr<Avrel_Event> decode() const;
};

// Where the reading of a capture stands.
struct Place {
    std::uint64_t offset = 0; // of what is not dealt with
    std::string fault;        // found before it: the next message is searched for; or empty
};

// Hands out one message at a time. Holds a fixed piece of the capture, however long that is.
//
// A source that may yet grow does not end the capture where its bytes end: what can't be judged
// without what follows is left for later. Only a message whose two lengths disagree has to wait so,
// and damage, until a whole message stands behind it.
//
// Damage is reported and reading goes on:
//   - A message must have room for a record header and end inside the input. One whose length
//     differs from what its record says is odd, but is decoded as it stands.
//   - Only when its own length leads to nothing (neither to another message nor to the end of the
//     input) and the record's does, the record is believed.
//   - Otherwise the next message is searched for byte by byte, from inside the last one, which may
//     have swallowed its beginning. Its length and its evStructLength
//     must agree; source below 34; event type 1, 2, 3, 101, 102 or 103; category 1 to 14; both
//     serial numbers end inside their 64 bytes. Behind it the input must end, or a message must
//     begin whose lengths agree or whose record header is as plausible.
//   - A message whose two lengths disagree, whose record header is not plausible and that has
//     neither the end nor another message behind it is not believed. A bare record has no second
//     length: its header or what is behind it must speak for it.
class Capture {
public:
    Capture(Framing framing, Report report);

    // Reads from `source` from now on; the source stays the caller's, and stands at place.offset.
    void open(ByteSource& source, Place place = {});
    // False at the end, after a failure of the source, and when there is nothing more for now. The
    // message lives until the next call.
    bool next(Message& message);
    // Behind the message handed out: to go on from later.
    Place place() const { return {offset_ + taken_, fault_}; }
    // Bytes of the capture dealt with so far.
    std::uint64_t position() const { return offset_; }

private:
    const std::uint8_t* at(std::size_t ahead) const { return buffer_.get() + begin_ + ahead; }
    bool have(std::size_t count);
    void skip(std::size_t count);
    std::size_t announcedLength(std::size_t ahead) const;
    std::size_t claimedLength(std::size_t ahead) const;
    bool looksLikeRecord(std::size_t ahead) const;
    bool lengthsAgree(std::size_t ahead) const;
    bool isMessage(std::size_t ahead);
    bool standsAlone(std::size_t ahead);
    bool isBoundary(std::size_t ahead);
    std::string fault();
    void beginSearch();
    bool search();
    bool believeRecord();
    bool isConfirmed() const;
    bool messageAhead();

    Report report_;
    std::size_t headerSize_; // of the message in front of the record
    std::size_t minimum_;    // message and record header
    std::unique_ptr<std::uint8_t[]> buffer_;
    ByteSource* source_ = nullptr;
    std::size_t begin_ = 0; // of what is not dealt with, in the buffer
    std::size_t end_ = 0;
    std::uint64_t offset_ = 0; // of begin_ in the capture
    bool ended_ = true;        // the source has no more
    bool waiting_ = false;     // an answer needs bytes that are not there yet
    std::string fault_;        // of the message behind which the next is searched for
    std::size_t taken_ = 0;    // length of the message handed out
    std::size_t kept_ = 0;     // of the one before, still in the buffer in front of begin_
    bool searched_ = false;    // the message handed out was searched for
};

} // namespace Pegasus::capture
