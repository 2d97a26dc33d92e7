#include "decoders/protocol/ISNSC_Event.h"

#include "decoders/Decode.h"
#include "decoders/common/Numbered.h"
#include "decoders/common/Unknown.h"
#include "decoders/protocol/ISNSC_Layouts.h"
#include "platform/trace/ProviderTraceServices.h"

namespace Pegasus {

using namespace mpu;
using namespace mpu::isns;

namespace {

constexpr const Events& events = kEventsOf<kEvents>;

constexpr const char* kTraceSource = "ISNSC_Event";

// Most characters of a body. Titles (127) and summaries (255) have limits too, which the longest
// ones don't reach.
constexpr std::size_t kLongestBody = 16383;

// A record up to this size can't make a longer body: a text argument takes most, up to 29
// characters for its four bytes.
constexpr std::size_t kSmallRecord = 2048;

char* putWord(char* out, const NameTable& names, std::uint32_t code, std::string_view unknown) {
    const std::string_view name = names.find(code);
    return name.empty() ? putSigned(putText(out, unknown), static_cast<std::int32_t>(code))
                        : putText(out, name);
}

// A text message from its identifier on.
struct Text {
    explicit Text(const RecordView& data)
        : identifier(data.u32(0)), count(data.u32(4)),
          held(data.size() > 8 ? (data.size() - 8) / 4 : std::size_t{0}) {}

    std::uint32_t identifier;
    std::uint32_t count;
    std::size_t held; // arguments in the record
};

} // namespace

char* isns::putLabel(char* out, const std::uint8_t* at) {
    return putWord(out, kLabels, loadBig<std::uint32_t>(at), "Unknown event: ");
}

char* isns::putReason(char* out, const std::uint8_t* at) {
    return putWord(out, kReasons, loadBig<std::uint32_t>(at), "Unknown reason: ");
}

void isns::tellTitle(Draft& draft, const Record&, const RecordView&) {
    draft.summary.literal(draft.title.view());
}

void isns::putAlias(Draft& draft, const Record&, const RecordView& data) {
    draft.body.element("src_node_alias", data.text(data.text(0).size() + 1), " ");
    draft.body.close("ICS_MESSAGE");
}

void isns::tellArguments(Draft& draft, const Record& record, const RecordView& data) {
    const Text text(data);
    if (text.identifier != kKnownText)
        traceUnknown(record, kTraceSource, 0, "Unknown text_id: ", text.identifier);
    draft.summary.literal(text.identifier != kKnownText ? "Unknown text_id for TEXT_MSG Event"
                          : text.count <= text.held ? "Display Arguments, detail in Message Body"
                                                    : "Invalid Arguments, detail in Message Body");
}

void isns::putArguments(Draft& draft, const Record&, const RecordView& data) {
    const Text text(data);
    const std::size_t shown = text.count >> 31 ? 0 : std::min<std::size_t>(text.count, text.held);
    TextWriter& body = draft.body;
    for (std::uint32_t i = 0; i < shown && body.view().size() <= kLongestBody; ++i) {
        numbered(body, i < 9 ? "<Arg0" : "<Arg", i + 1, ">0x").hexUpper(data.u32(8 + 4 * i), 8);
        numbered(body, i < 9 ? "</Arg0" : "</Arg", i + 1, "> ");
    }
    body.close("Arguments");
}

void isns::putPayload(Draft& draft, const Record& record, const RecordView&) {
    writePayload(draft.body, record);
}

void isns::decode(const Record& record, Draft& draft) {
    ProviderTraceServices::ptsTrace(kTraceSource, 101, {"setEventID, setBody, setSummary: begin"});
    const RecordView data = record.payload();
    const bool small = record.view().size() <= kSmallRecord;
    if (!small)
        draft.body.setSanitize(Sanitize::No);
    events.writeTitle(draft, record);
    const std::uint32_t kind = data.u32(4);
    const Events::Entry* event = events.find(kind, data.u8(kTypeAt));
    if (!event || (kind >= kOtherKind && kind != kTextKind))
        traceUnknown(record, kTraceSource, 0, "Unhandled Event by ISNS Client: ", kind);
    else if (kind < kOtherKind && event->last == Codes::kAnyCode)
        traceUnknown(record, kTraceSource, 0, "Unknown ics_type: ", data.u8(kTypeAt));
    events.writeBody(draft, event ? *event : *events.find(kOtherKind, 0), record, data);
    if (!small) { // cut first, then made safe as a whole
        const std::size_t size = draft.body.view().size();
        draft.body.commit(draft.body.reserve(0) - (size - std::min(size, kLongestBody)));
        draft.body.expectMarkup();
    }
    ProviderTraceServices::ptsTrace(kTraceSource, 107,
                                    {"eventID 128, body 16384, summary 256, setEventID, setBody, "
                                     "setSummary: end"});
}

ISNSC_Event::ISNSC_Event(const EmpEvLogMsg_s* record, int length)
    : Avrel_Event(record, static_cast<unsigned int>(length)) {
    take(record, length, isns::decode);
}

ISNSC_Event::~ISNSC_Event() = default;

} // namespace Pegasus
