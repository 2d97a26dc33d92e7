#include "decoders/management/STARTUPMP_Event.h"

#include "decoders/Decode.h"
#include "decoders/common/Numbered.h"
#include "decoders/common/Unknown.h"
#include "decoders/management/STARTUPMP_Layouts.h"
#include "platform/trace/ProviderTraceServices.h"

namespace Pegasus {

using namespace mpu;
using namespace mpu::startup;

namespace {

constexpr const char* kTraceSource = "STARTUPMP_Event";
constexpr const Events& events = kEventsOf<kEvents>;
constexpr const Events& reports = kEventsOf<kReports>;

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
    numbered(body, "<Text", counter, ">").untrusted(Untrusted(line));
    numbered(body, "</Text", counter, "> ");
    ++counter;
}

// `length` decides which elements are written.
void writeChannel(TextWriter& body, const RecordView& payload, int length) {
    const std::string_view text = payload.text(0).raw();
    const RecordView header = payload.subview((text.size() + 4) / 4 * 4);
    body.element("Text", Untrusted(firstLine(text)), " ").open("MMCH_contents");
    write(body, kLayout<kChannelSlice<0, 3>>, header);
    for (const ChannelPart& part : kChannelParts)
        if (length > part.above)
            write(body, *part.layout, header);
    body.close("MMCH_contents");
}

const Events::Entry& reportOf(const RecordView& payload) {
    const std::uint32_t signalClass = std::min<std::uint32_t>(payload.u16(kClassAt), kOtherClass);
    return *reports.find(signalClass, payload.u32(kSignalAt));
}

String bodyOf(unsigned int code, const EmpEvLogMsg_s* bytes) {
    const Record record(bytes);
    Draft draft;
    events.writeBody(draft, *events.find(code), record, record.payload());
    return draft.body.string();
}

} // namespace

void startup::putFirstLine(Draft& draft, const Record& record, const RecordView& data) {
    draft.summary.untrusted(Untrusted(firstLine(data.text(0, record.payloadLength()).raw())));
}

void startup::putLines(Draft& draft, const Record&, const RecordView& data) {
    std::string_view text = data.text(0).raw();
    unsigned int counter = 1;
    while (!text.empty()) {
        const std::string_view line = firstLine(text);
        putLine(draft.body, line, counter);
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
}

void startup::putChannel(Draft& draft, const Record& record, const RecordView&) {
    writeChannel(draft.body, record.payload(), kAlways);
}

void startup::putPartialChannel(Draft& draft, const Record& record, const RecordView&) {
    writeChannel(draft.body, record.payload(), record.payloadLength());
}

void startup::putStack(Draft& draft, const Record& record, const RecordView& data) {
    TextWriter& body = draft.body;
    constexpr std::size_t kElementRoom = sizeof "<Sffff>ffffffff</Sffff> ";
    const int words = static_cast<int>(record.payloadLength()) / 4 - 2;
    for (unsigned i = 0; static_cast<int>(i) < words; ++i) {
        char* const start = body.reserve(kElementRoom);
        char* out = start;
        const auto tag = [&](std::string_view lead) {
            out = std::copy(lead.begin(), lead.end(), out);
            out = putHex(out, i, 1, Case::Lower);
            *out++ = '>';
        };
        tag("<S");
        out = putHex(out, data.u32(std::size_t{4} * i), 1, Case::Lower);
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

void startup::putState(Draft& draft, const Record& record, const RecordView& payload) {
    TextWriter& body = draft.body;
    const unsigned int length = record.payloadLength();
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
        numbered(body, "<REG", number, ">").hexUpper(payload.u32(at), 8);
        body.literal(" at ").hexUpper(base + 4 * number, 8);
        numbered(body, "</REG", number, "> ");
    }
    if (at == length)
        return;
    ProviderTraceServices::ptsTrace(kTraceSource, 0, {"out of boundary data\n"});
    const unsigned int left = length - at;
    number = 0;
    if (left >= 2) {
        body.literal("<rsvd0>").hexUpper(payload.u16(at), 4).literal(" reserved</rsvd0> ");
        number = 1;
    }
    if (left != 2) {
        numbered(body, "<rsvd", number, ">").hexUpper(payload.u8(length - 1), 2);
        numbered(body, " reserved</rsvd", number, "> ");
    }
}

void startup::decode(const Record& record, Draft& draft) {
    const RecordView payload = record.payload();
    if (record.eventId() == kSignalEvent)
        return reports.write(draft, reportOf(payload), record, payload);
    const Events::Entry* event = events.find(record.eventId());
    if (!event)
        return decodeUnknown(
            record, draft,
            {kTraceSource, 262, "Unknown EventID: ", "Unhandled Event by STARTUPMP"});
    events.write(draft, *event, record, payload);
}

STARTUPMP_Event::STARTUPMP_Event(const EmpEvLogMsg_s* record, int length)
    : Avrel_Event(record, static_cast<unsigned int>(length)) {
    take(record, length, startup::decode);
}

STARTUPMP_Event::~STARTUPMP_Event() = default;

String get_STARTUPMP_MSG_STRING(const EmpEvLogMsg_s* record) {
    return bodyOf(1, record);
}
String get_STARTUPMP_MSG_MMCH(const EmpEvLogMsg_s* record) {
    return bodyOf(2, record);
}
String get_STARTUPMP_MSG_PARTIAL_MMSG(const EmpEvLogMsg_s* record) {
    return bodyOf(3, record);
}
String get_SignalInfo(const EmpEvLogMsg_s* bytes) {
    const Record record(bytes);
    Draft draft;
    reports.writeBody(draft, reportOf(record.payload()), record, record.payload());
    return draft.body.string();
}
String get_Ravel_stack_dump(const EmpEvLogMsg_s* record) {
    return bodyOf(101, record);
}
String get_Ravel_INVALID_STATE_MMSG(const EmpEvLogMsg_s* record) {
    return bodyOf(100, record);
}

} // namespace Pegasus
