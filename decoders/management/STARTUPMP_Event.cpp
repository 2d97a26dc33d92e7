#include "decoders/management/STARTUPMP_Event.h"

#include "decoders/common/Unknown.h"
#include "decoders/management/STARTUPMP_Layouts.h"
#include "decoders/management/Titles.h"
#include "platform/trace/ProviderTraceServices.h"

namespace Pegasus {

using namespace mpu;
using namespace mpu::startup;

namespace {

constexpr const char* kTraceSource = "STARTUPMP_Event";

enum Kind : std::uint8_t { kMessage, kChannel, kPartial, kSignalReport, kState, kStack };

struct Event {
    std::uint16_t code;
    Kind kind;
    FixedString<38> title;
    FixedString<62> summary; // empty: the first line of the payload's text
};
constexpr Event kEvents[] = {
    {1, kMessage, "General message", ""},
    {2, kChannel, "Unrecognized message received",
     "Startup received a message that it doesn't know how to handle"},
    {3, kPartial, "Partial message in Alternate Event Log",
     "An incomplete message was in an Alternate Event Log"},
    {4, kSignalReport, "MPU App fatal signal", "MPU application caught and exception"},
    {100, kState, "Ravel is in invalid state", "Ravel is in invalid state"},
    {101, kStack, "stack dump", "dump of the stack"},
};

std::string_view firstLine(std::string_view text) {
    return text.substr(0, text.find('\n'));
}

// Writes the line as an element with the number `counter`, unless it is empty. All white space in
// front is left off, but only one character of it at the end.
void putLine(TextWriter& body, std::string_view line, unsigned int& counter) {
    while (!line.empty() && isSpace(line.front()))
        line.remove_prefix(1);
    if (line.empty())
        return;
    if (isSpace(line.back()))
        line.remove_suffix(1);
    body.put("<Text").decimal(counter).put(">").text(line);
    body.put("</Text").decimal(counter).put("> ");
    ++counter;
}

void putLines(TextWriter& body, std::string_view text) {
    unsigned int counter = 1;
    while (!text.empty()) {
        const std::string_view line = firstLine(text);
        putLine(body, line, counter);
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
}

// `length` decides which elements are written.
void putChannel(TextWriter& body, RecordView payload, int length) {
    const std::string_view text = payload.text(0);
    const RecordView header = payload.subview((text.size() + 4) / 4 * 4);
    body.element("Text", firstLine(text), " ").open("MMCH_contents");
    write(body, kLayout<kChannelSlice<0, 3>>, header);
    for (const ChannelPart& part : kChannelParts)
        if (length > part.above)
            write(body, *part.layout, header);
    body.close("MMCH_contents");
}

const Layout& causeOf(std::uint32_t signalClass, std::uint32_t signal) {
    switch (signalClass) {
    case 0:
        return kLayout<kKillRows>;
    case 1:
        return kLayout<kTimerRows>;
    case 2:
        return kLayout<kPollRows>;
    case 3:
        switch (signal) {
        case 4:
            return kLayout<kIllegalRows>;
        case 5:
            return kLayout<kTrapRows>;
        case 7:
            return kLayout<kBusRows>;
        case 8:
            return kLayout<kFloatRows>;
        case 11:
            return kLayout<kSegmentRows>;
        default:
            return kLayout<kOtherFaultRows>;
        }
    case 4:
        return kLayout<kChildRows>;
    case 5:
        return kLayout<kRealTimeRows>;
    default:
        return kLayout<kOtherRows>;
    }
}

void putSignal(TextWriter& body, RecordView payload) {
    write(body, kLayout<kSignalRows>, payload);
    write(body, causeOf(payload.u16(kClassAt), payload.u32(kSignalAt)), payload);
    write(body, kLayout<kProcessorRows>, payload);
}

void putStack(TextWriter& body, RecordView payload, int length) {
    constexpr std::size_t kElementRoom = sizeof "<Sffff>ffffffff</Sffff> ";
    write(body, kLayout<kStackRows>, payload);
    const int words = length / 4 - 2;
    for (unsigned i = 0; static_cast<int>(i) < words; ++i) {
        char* const start = body.reserve(kElementRoom);
        char* out = start;
        const auto tag = [&](std::string_view lead) {
            out = std::copy(lead.begin(), lead.end(), out);
            out = putHex(out, i, 1, Case::Lower);
            *out++ = '>';
        };
        tag("<S");
        out = putHex(out, payload.u32(kStackAt + 4 * i), 1, Case::Lower);
        tag("</S");
        *out++ = ' ';
        if (body.view().size() + static_cast<std::size_t>(out - start) > kStackDumpLimit) {
            ProviderTraceServices::ptsTrace(kTraceSource, 0,
                                            {"There is not enough space to dump the stack data\n"});
            return;
        }
        body.commit(out);
    }
}

void putState(TextWriter& body, RecordView payload, unsigned int length) {
    if (length < kRegistersAt + 4)
        ProviderTraceServices::ptsTrace(
            kTraceSource, 0, {"There is not enough space to process the data(invalid state)\n"});
    unsigned int at = 0;
    if (length >= kRegistersAt) {
        write(body, kLayout<kStateRows>, payload);
        at = kRegistersAt;
    }
    const std::uint32_t base = payload.u32(0);
    unsigned int number = 0;
    for (; length - at >= 4; at += 4, ++number) {
        body.put("<REG").decimal(number).put(">").hexUpper(payload.u32(at), 8);
        body.put(" at ").hexUpper(base + 4 * number, 8);
        body.put("</REG").decimal(number).put("> ");
    }
    if (at == length)
        return;
    ProviderTraceServices::ptsTrace(kTraceSource, 0, {"out of boundary data\n"});
    const unsigned int left = length - at;
    number = 0;
    if (left >= 2) {
        body.put("<rsvd0>").hexUpper(payload.u16(at), 4).put(" reserved</rsvd0> ");
        number = 1;
    }
    if (left != 2) {
        body.put("<rsvd").decimal(number).put(">").hexUpper(payload.u8(length - 1), 2);
        body.put(" reserved</rsvd").decimal(number).put("> ");
    }
}

void build(Kind kind, RecordView record, TextWriter& body) {
    const RecordView payload = record.subview(sizeof(EmpEvLogMsg_s));
    const unsigned int length = record.u16(offsetof(EmpEvLogMsg_s, evStructLength));
    switch (kind) {
    case kMessage:
        putLines(body, payload.text(0));
        break;
    case kChannel:
        putChannel(body, payload, kAlways);
        break;
    case kPartial:
        putChannel(body, payload, static_cast<int>(length));
        break;
    case kSignalReport:
        putSignal(body, payload);
        break;
    case kState:
        putState(body, payload, length);
        break;
    case kStack:
        putStack(body, payload, static_cast<int>(length));
        break;
    }
}

String bodyOf(Kind kind, const EmpEvLogMsg_s* record) {
    BodyWriter body(Texts::Safe);
    build(kind, RecordView::of(record, 0), body);
    return body.string();
}

} // namespace

STARTUPMP_Event::STARTUPMP_Event(const EmpEvLogMsg_s* record, int length)
    : Avrel_Event(record, static_cast<unsigned int>(length)) {
    if (!record)
        return;
    const Event* event = findEvent(kEvents, record->eventId);
    if (!event) {
        traceUnknown(kTraceSource, 262, "Unknown EventID: ", record);
        assignAscii(summary_, "Unhandled Event by STARTUPMP");
        assignHexBody(body_, record);
        return;
    }
    const RecordView view = RecordView::of(record, static_cast<unsigned int>(length));
    const std::string_view summary = event->summary;
    BodyWriter body(Texts::Safe);
    build(event->kind, view, body);
    assignAscii(eventID_, event->title);
    assignText(summary_, summary.empty()
                             ? firstLine(view.text(sizeof *record, record->evStructLength))
                             : summary);
    body.assignTo(body_);
}

STARTUPMP_Event::~STARTUPMP_Event() = default;

String get_STARTUPMP_MSG_STRING(const EmpEvLogMsg_s* record) {
    return bodyOf(kMessage, record);
}
String get_STARTUPMP_MSG_MMCH(const EmpEvLogMsg_s* record) {
    return bodyOf(kChannel, record);
}
String get_STARTUPMP_MSG_PARTIAL_MMSG(const EmpEvLogMsg_s* record) {
    return bodyOf(kPartial, record);
}
String get_SignalInfo(const EmpEvLogMsg_s* record) {
    return bodyOf(kSignalReport, record);
}
String get_Ravel_stack_dump(const EmpEvLogMsg_s* record) {
    return bodyOf(kStack, record);
}
String get_Ravel_INVALID_STATE_MMSG(const EmpEvLogMsg_s* record) {
    return bodyOf(kState, record);
}

} // namespace Pegasus
