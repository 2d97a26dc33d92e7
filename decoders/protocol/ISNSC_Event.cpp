#include "decoders/protocol/ISNSC_Event.h"

#include "decoders/protocol/ISNSC_Layouts.h"
#include "platform/trace/ProviderTraceServices.h"

namespace Pegasus {

using namespace mpu;
using namespace mpu::isns;

namespace {

constexpr const char* kTraceSource = "ISNSC_Event";

// Most characters of a body. Titles (127) and summaries (255) have limits too, which the longest
// ones don't reach.
constexpr std::size_t kLongestBody = 16383;

// A record up to this size can't make a longer body: a text argument takes most, up to 29
// characters for its four bytes.
constexpr std::size_t kSmallRecord = 2048;

void putTitle(TextWriter& out, RecordView event) {
    const auto word = [&](const NameTable& names, std::uint32_t code, std::string_view unknown) {
        const std::string_view name = names.find(code);
        out.put(name.empty() ? unknown : name);
        if (name.empty())
            out.integer(code);
    };
    word(kLabels, event.u32(kKindAt), "Unknown event: ");
    word(kReasons, event.u32(kReasonAt), "Unknown reason: ");
}

// Returns the summary, empty where that is the title.
std::string_view putMessage(TextWriter& body, RecordView event) {
    std::string_view summary;
    body.open("ICS_MESSAGE");
    write(body, kLayout<kLocationRows>, event);
    write(body, kLayout<kHeaderRows>, event);
    switch (event.u8(kTypeAt)) {
    case kConfiguration:
        write(body, kLayout<kConfigurationRows>, event);
        body.element("src_node_alias", event.text(kNodeAt + event.text(kNodeAt).size() + 1), " ");
        summary = event.u32(kKindAt) == kRequest ? "Client_Config Request Message"
                                                 : "Client_Config Response Message";
        break;
    case kStatus:
        write(body, kLayout<kStatusRows>, event);
        break;
    default:
        body.put("Unknown ics_type");
        summary = "Unknown ICS message";
    }
    body.close("ICS_MESSAGE");
    return summary;
}

void putArgument(TextWriter& body, std::uint32_t number, std::uint32_t value) {
    const auto tag = [&](std::string_view start) {
        body.put(start).put(number < 10 ? "0" : "").decimal(number).put(">");
    };
    tag("<Arg");
    body.put("0x").hexUpper(value, 8);
    tag("</Arg");
    body.put(" ");
}

std::string_view putArguments(TextWriter& body, RecordView event) {
    const std::uint32_t count = event.u32(kCountAt);
    const std::size_t held =
        event.size() > kArgumentsAt ? (event.size() - kArgumentsAt) / 4 : std::size_t{0};
    const std::size_t shown = count >> 31 ? 0 : std::min<std::size_t>(count, held);
    body.open("Arguments");
    write(body, kLayout<kLocationRows>, event);
    write(body, kLayout<kCountRows>, event);
    for (std::uint32_t i = 0; i < shown && body.view().size() <= kLongestBody; ++i)
        putArgument(body, i + 1, event.u32(kArgumentsAt + 4 * i));
    body.close("Arguments");
    if (event.u32(kTextIdentifierAt) != kKnownText)
        return "Unknown text_id for TEXT_MSG Event";
    return count <= held ? "Display Arguments, detail in Message Body"
                         : "Invalid Arguments, detail in Message Body";
}

std::string_view build(TextWriter& body, RecordView event, std::size_t payloadLength) {
    switch (event.u32(kKindAt)) {
    case kRequest:
    case kResponse:
    case kMessage:
        return putMessage(body, event);
    case kText:
        return putArguments(body, event);
    default:
        body.open("Hex").hexBytes(event.bytes(0, payloadLength)).close("Hex");
        return "Unhandled Event by ISNS Client";
    }
}

} // namespace

ISNSC_Event::ISNSC_Event(const EmpEvLogMsg_s* record, int length)
    : Avrel_Event(record, static_cast<unsigned int>(length)) {
    if (!record)
        return;
    const RecordView view = RecordView::of(record, static_cast<unsigned int>(length));
    const RecordView event = view.subview(sizeof *record);
    const bool small = view.size() <= kSmallRecord;
    BodyWriter body(small ? Texts::Safe : Texts::Raw);
    LineWriter title;
    putTitle(title, event);
    const std::string_view summary = build(body, event, record->evStructLength);
    if (!small) { // cut first, then made safe as a whole
        const std::size_t size = body.view().size();
        body.commit(body.reserve(0) - (size - std::min(size, kLongestBody)));
        body.expectMarkup();
    }

    ProviderTraceServices::ptsTrace(kTraceSource, 101, {"setEventID, setBody, setSummary: begin"});
    title.assignTo(eventID_);
    body.assignTo(body_);
    assignAscii(summary_, summary.empty() ? title.view() : summary);
    ProviderTraceServices::ptsTrace(kTraceSource, 107,
                                    {"eventID 128, body 16384, summary 256, setEventID, setBody, "
                                     "setSummary: end"});
}

ISNSC_Event::~ISNSC_Event() = default;

} // namespace Pegasus
