#include "event/MPUEvent.h"

#include "event/Dispatch.h"
#include "event/RecordView.h"
#include "event/TextWriter.h"
#include "platform/cmap/CMAPErrorCodes.h"
#include "platform/cmap/CMAPOperationFailedException.h"

#include <algorithm>
#include <cxxabi.h>

namespace Pegasus {

using namespace mpu;

namespace {

// What stands for an event whose decoder failed.
[[gnu::cold]] Avrel_Event* undecoded(const EmpEvLogMsg_s* record, std::uint32_t length) {
    BodyWriter dump(Sanitize::Yes);
    dump.literal("Exception in XMLizer for EventLog entry;");
    dump.literal("EventLog entry could not be parsed;");
    dump.literal("Source=0x").hexLower(record->source, 1).literal(";");
    dump.literal("EventLog entry (message payload) binary buffer dump;");
    putDump(dump, {reinterpret_cast<const char*>(record), length});
    dump.expectMarkup(); // none of it is safe yet
    std::unique_ptr<Avrel_Event> event(new Avrel_Event(record, length));
    event->setBasis({.missingBytes = event->getBasis().missingBytes}); // the dump has all the rest
    event->setSummary("XMLizer Failure");
    event->setBody(dump.string());
    return event.release();
}

Avrel_Event* decode(const std::uint8_t* bytes, std::uint32_t length) {
    const auto* record = reinterpret_cast<const EmpEvLogMsg_s*>(bytes);
    Avrel_Event* event = nullptr;
    if (const DecoderFactory factory = decoderOf(record->source)) {
        try {
            event = factory(record, static_cast<int>(length));
        } catch (const abi::__forced_unwind&) {
            throw; // the thread is being cancelled
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
    : header_(other.header_), record_(other.record_.padded(other.record_.size())) {}

MPUEvent& MPUEvent::operator=(const MPUEvent& other) {
    return *this = MPUEvent(other);
}

MPUEvent::MPUEvent(MPUEvent&& other) noexcept = default;
MPUEvent& MPUEvent::operator=(MPUEvent&& other) noexcept = default;

MPUEvent::~MPUEvent() = default;

CMAPMessageHeader MPUEvent::getCMAPMessageHeader() const {
    return header_;
}

void MPUEvent::setCMAPMessageHeader(const CMAPMessageHeader& header) {
    header_ = header;
}

[[gnu::cold]] String MPUEvent::str() const {
    LineWriter line;
    if (!record_.data()) {
        line.literal("<No MMSG Data!>");
    } else {
        const RecordView r(record_.data(), record_.size());
        line.literal("SequenceId: ").integer(r.u32(136)).literal(", time: ").integer(r.u32(140));
        line.literal(", len: ").integer(r.u16(144)).literal(", source: ").integer(r.u8(146));
        line.literal(", type: ").integer(r.u8(147)).literal(", category: ").integer(r.u8(148));
        line.literal(", eventId (").integer(r.u8(149)).literal("): ").integer(r.u16(150));
    }
    // Readers of this line hold 256 characters.
    return header_.str() + ", " + toString(line.view().substr(0, 255));
}

Avrel_istream& MPUEvent::deserialize(Avrel_istream& in) {
    // Modulo 65536, as the length field counts.
    Bytes bytes(static_cast<std::uint16_t>(header_.getMessageLength() - message_header::kSize));
    in.read(reinterpret_cast<char*>(bytes.data()), bytes.size());
    const int delivered = in.gcount();
    const std::uint32_t came = delivered < 0 ? 0 : static_cast<std::uint32_t>(delivered);
    if (came < bytes.size())
        std::fill(bytes.data() + came, bytes.data() + bytes.size(), std::uint8_t{0});
    record_ = std::move(bytes);
    if (delivered < 0 || came != record_.size()) {
        const Uint32 code = CMAPErrorCodes::getCode(delivered < 0 ? CMAPErrorCodes::kReadFailed
                                                                  : CMAPErrorCodes::kReadShort);
        throw CMAPOperationFailedException(
            code, CMAPErrorCodes::getTextForIndex(CMAPErrorCodes::getIndex(code)));
    }
    return in;
}

Avrel_Event* MPUEvent::create_Avrel_Event() const {
    if (!record_.data())
        return nullptr;
    const std::uint32_t extent =
        sizeof(EmpEvLogMsg_s) + RecordView(record_.data(), record_.size()).u16(144);
    if (record_.size() >= extent)
        return decode(record_.data(), record_.size());
    // Shorter than its header, or than it claims: decoders get zeros for what is missing.
    return decode(record_.padded(extent).data(), record_.size());
}

} // namespace Pegasus
