// A message header and what the stream after it delivers, through everything a message can do.
#include "fuzz/Invariants.h"

#include "platform/cmap/CMAPOperationFailedException.h"

namespace Pegasus::fuzz {
namespace {

// Delivers what there is, then fails or ends; counts what was asked for.
class Stream : public Avrel_istream {
public:
    Stream(Bytes bytes, bool fails) : bytes_(bytes), fails_(fails) {}
    void read(char* buffer, unsigned int count) override {
        const Bytes now = bytes_.first(std::min<std::size_t>(count, bytes_.size()));
        std::copy(now.begin(), now.end(), buffer);
        delivered_ = now.size() < count && fails_ ? -1 : static_cast<int>(now.size());
        bytes_ = bytes_.subspan(now.size());
    }
    int gcount() const override { return delivered_; }

private:
    Bytes bytes_;
    bool fails_;
    int delivered_ = 0;
};

void setAll(Avrel_Event& event, const Avrel_Event& from) {
    event.setEnclosureSerialNumber(from.getBody());
    event.setControllerSerialNumber(from.getEnclosureSerialNumber());
    event.setControllerSlotID(from.getTimestamp());
    event.setEventLogInstanceNumber(from.getControllerSlotID());
    event.setSequenceID(from.getEventLogInstanceNumber());
    event.setTimestamp(from.getSequenceID());
    event.setSource(from.getControllerSerialNumber());
    event.setCategory(from.getSource());
    event.setEventType(from.getEventType() + 1);
    event.setEventID(from.getCategory());
    event.setSummary(from.getEventID());
    event.setBody(from.getSummary());
}

// Input: flags, the 64 bytes of the header, the record. Flag 1: the length field is that of the
// input, else it is written verbatim; flag 2: the stream fails where it ends.
void message(Bytes bytes) {
    const test::SuppressTrace quiet;
    Input input(bytes);
    const unsigned flags = input.byte();
    std::uint8_t wire[mpu::message_header::kSize] = {};
    const Bytes given = input.take(sizeof wire);
    std::copy(given.begin(), given.end(), wire);
    CMAPMessageHeader header(static_cast<const void*>(wire));
    if (flags & 1)
        header.setMessageLength(
            static_cast<Uint16>(sizeof wire + std::min(input.rest().size(), kMaxRecord)));

    MPUEvent message(header);
    require(message.create_Avrel_Event() == nullptr, "no record, no event");
    const std::size_t wanted =
        static_cast<Uint16>(header.getMessageLength() - mpu::message_header::kSize);
    Stream stream(input.rest(), (flags & 2) != 0);
    try {
        message.deserialize(stream);
        require(wanted <= input.rest().size(), "a short read throws");
    } catch (const CMAPOperationFailedException&) {
        require(wanted > input.rest().size(), "only a short read throws");
    }

    // What did not come is zero, and all is after a failure.
    const bool failed = (flags & 2) != 0 && wanted > input.rest().size();
    std::string record(failed ? std::string_view() : characters(input.rest()));
    record.resize(wanted);
    Said expected = requireDecodes(bytesOf(record));
    std::unique_ptr<Avrel_Event> event(message.create_Avrel_Event());
    require(event != nullptr, "a message with a record gives an event");
    if (wanted > kMaxRecord) // what is compared with was cut: less of it is unread
        expected.numbers.back() = said(*event).numbers.back();
    require(said(*event) == expected, "the message holds what came");

    MPUEvent other(header);
    other = message;
    const MPUEvent copy(other);
    const std::string line = utf8(message.str());
    requireSame(utf8(copy.str()), line, "copies say the same");
    require(isUtf8(line) && line.size() < 1024, "a message's line is short text");
    const std::unique_ptr<Avrel_Event> copied(copy.create_Avrel_Event());
    require(said(*copied) == expected, "copies decode alike");
    const MPUEvent moved(std::move(other));
    requireSame(utf8(moved.str()), line, "a message moves");
    require(!other.create_Avrel_Event(), "a record moves");

    setAll(*event, *copied);
    requireSame(utf8(event->getSummary()), expected.texts[5], "setters set");
    Avrel_Event plain(nullptr, static_cast<unsigned>(wanted));
    setAll(plain, *copied);
    require(isUtf8(utf8(plain.str())), "a changed event is still text");
}

} // namespace
} // namespace Pegasus::fuzz

using Pegasus::fuzz::message;
MPUEVENT_FUZZ_TARGET(message)
