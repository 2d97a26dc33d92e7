#include "event/MPUEvent.h"

#include "event/Dispatch.h"
#include "event/RecordView.h"
#include "event/TextWriter.h"
#include "platform/cmap/CMAPErrorCodes.h"
#include "platform/cmap/CMAPOperationFailedException.h"

#include <algorithm>

namespace Pegasus {

using namespace mpu;

namespace {

// What stands for an event whose decoder failed.
[[gnu::cold]] Avrel_Event* undecoded(const EmpEvLogMsg_s* record, std::uint32_t length) {
    BodyWriter dump(Texts::Safe);
    dump.put("Exception in XMLizer for EventLog entry;");
    dump.put("EventLog entry could not be parsed;");
    dump.put("Source=0x").hexLower(record->source, 1).put(";");
    dump.put("EventLog entry (message payload) binary buffer dump;");
    putDump(dump, {reinterpret_cast<const char*>(record), length});
    dump.expectMarkup(); // none of it is safe yet
    std::unique_ptr<Avrel_Event> event(new Avrel_Event(record, length));
    event->setSummary("XMLizer Failure");
    event->setBody(dump.string());
    return event.release();
}

Avrel_Event* decode(const EmpEvLogMsg_s* record, std::uint32_t length) {
    Avrel_Event* event = nullptr;
    if (const DecoderFactory factory = decoderOf(record->source)) {
        try {
            event = factory(record, static_cast<int>(length));
        } catch (...) {
            return undecoded(record, length);
        }
    }
    return event ? event : new Avrel_Event(record, length);
}

} // namespace

MPUEvent::MPUEvent(const CMAPMessageHeader& header) {
    header_ = header;
}

MPUEvent::MPUEvent(const CMAPMessageHeader& header, Avrel_istream& in) : MPUEvent(header) {
    MPUEvent::deserialize(in);
}

MPUEvent::MPUEvent(const MPUEvent& other)
    : header_(other.header_), record_(new std::uint8_t[other.length_]), length_(other.length_) {
    if (length_ != 0)
        std::memcpy(record_.get(), other.record_.get(), length_);
}

MPUEvent& MPUEvent::operator=(const MPUEvent& other) {
    if (this != &other) {
        MPUEvent copy(other);
        header_ = copy.header_;
        record_.swap(copy.record_);
        length_ = copy.length_;
    }
    return *this;
}

MPUEvent::~MPUEvent() = default;

CMAPMessageHeader MPUEvent::getCMAPMessageHeader() const {
    return header_;
}

void MPUEvent::setCMAPMessageHeader(const CMAPMessageHeader& header) {
    header_ = header;
}

[[gnu::cold]] String MPUEvent::str() const {
    LineWriter line;
    if (!record_) {
        line.put("<No MMSG Data!>");
    } else {
        const RecordView r(record_.get(), length_);
        line.put("SequenceId: ").integer(r.u32(136)).put(", time: ").integer(r.u32(140));
        line.put(", len: ").integer(r.u16(144)).put(", source: ").integer(r.u8(146));
        line.put(", type: ").integer(r.u8(147)).put(", category: ").integer(r.u8(148));
        line.put(", eventId (").integer(r.u8(149)).put("): ").integer(r.u16(150));
    }
    // Readers of this line hold 256 characters.
    return header_.str() + ", " + toString(line.view().substr(0, 255));
}

Avrel_istream& MPUEvent::deserialize(Avrel_istream& in) {
    // Modulo 65536, as the length field counts.
    length_ = static_cast<std::uint16_t>(header_.getMessageLength() - message_header::kSize);
    record_.reset(new std::uint8_t[length_]);
    in.read(reinterpret_cast<char*>(record_.get()), length_);
    const int delivered = in.gcount();
    if (delivered < 0 || static_cast<std::uint32_t>(delivered) != length_) {
        const std::uint32_t came =
            delivered < 0 ? 0 : std::min(static_cast<std::uint32_t>(delivered), length_);
        std::fill(record_.get() + came, record_.get() + length_, std::uint8_t{0});
        const Uint32 code = CMAPErrorCodes::getCode(delivered < 0 ? CMAPErrorCodes::kReadFailed
                                                                  : CMAPErrorCodes::kReadShort);
        throw CMAPOperationFailedException(
            code, CMAPErrorCodes::getTextForIndex(CMAPErrorCodes::getIndex(code)));
    }
    return in;
}

Avrel_Event* MPUEvent::create_Avrel_Event() const {
    if (!record_)
        return nullptr;
    const RecordView view(record_.get(), length_);
    const std::size_t extent = sizeof(EmpEvLogMsg_s) + view.u16(144);
    if (length_ >= extent)
        return decode(record(), length_);
    // Shorter than its header, or than it claims: decoders get zeros for what is missing.
    const std::unique_ptr<std::uint8_t[]> padded(new std::uint8_t[extent]());
    if (length_ != 0)
        std::memcpy(padded.get(), record_.get(), length_);
    return decode(reinterpret_cast<const EmpEvLogMsg_s*>(padded.get()), length_);
}

} // namespace Pegasus
