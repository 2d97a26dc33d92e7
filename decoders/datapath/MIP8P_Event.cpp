#include "decoders/datapath/MIP8P_Event.h"

#include "decoders/Decode.h"
#include "decoders/common/Unknown.h"
#include "decoders/datapath/MIP8P_Layouts.h"

namespace Pegasus {

using namespace mpu;
using namespace mpu::mip;

namespace {

constexpr const char* kTraceSource = "MIP8P_Event";
constexpr const Events& events = kEventsOf<kEvents>;

void putHexElement(TextWriter& body, std::string_view bytes) {
    body.literal("<Hex>").hexBytes(bytes).literal("</Hex>");
}

void putEvent(Draft& draft, const Record& record) {
    const RecordView payload = record.payload();
    traceLength(kTraceSource, 208, "MIP_Event: Length=0x", payload);
    events.writeHead(draft, record, payload);
    const std::uint32_t eventClass = payload.u32(kClassAt);
    const Events::Entry* event = events.find(eventClass, payload.u32(kCodeAt));
    if (!event)
        event = events.find(kOtherClass, 0);
    if (const int line = kUnlistedLines[event->major]; line && event->last == Codes::kAnyCode) {
        if (event->major == kOtherClass)
            traceUnknown(record, kTraceSource, line, "Unknown Event Type: ", eventClass);
        else
            traceUnknown(record, kTraceSource, line, "Unknown Message ID: ", payload.u32(kCodeAt));
    }
    events.writeBody(draft, *event, record, payload);
}

} // namespace

char* mip::putIrq(char* out, const std::uint8_t* at) {
    const std::uint32_t irq = loadBig<std::uint32_t>(at);
    return irq == 0 ? putText(out, "Disabled") : putDecimal(out, irq);
}

void mip::putBadData(Draft& draft, const Record& record, const RecordView& data) {
    const std::string_view area = data.bytes(0, leftOf(record, data)).raw();
    constexpr std::size_t kAt = kBadDataAt - kBadLengthAt;
    putHexElement(draft.body, area.substr(std::min(kAt, area.size()), data.u32(0)));
}

void mip::putFile(Draft& draft, const Record& record, const RecordView&) {
    draft.body.element("File", assertFile(record), " ");
}

void mip::decode(const Record& record, Draft& draft) {
    if (record.eventId() != 1)
        return decodeUnknown(record, draft,
                             {kTraceSource, 115, "Unknown EventID: 0x", "Unhandled Event by MIP"});
    events.writeTitle(draft, record);
    putEvent(draft, record);
}

MIP8P_Event::MIP8P_Event(const EmpEvLogMsg_s* record, int length)
    : Avrel_Event(record, static_cast<unsigned int>(length)) {
    take(record, length, mip::decode);
}

MIP8P_Event::~MIP8P_Event() = default;

String MIP8P_Event::get_MIP8P_event_body(const EmpEvLogMsg_s* record) {
    Draft draft;
    putEvent(draft, Record(record));
    setSummary(draft.summary.string());
    return draft.body.string();
}

// ---- builders, whose callers have a buffer of their own ----------------------------------------

namespace {

// The most that is written of bad data.
constexpr std::size_t kMostBadData = 2048;
static_assert(2 * kMostBadData + kLayout<kInvalidParamRows>.room + 512 < MIP8P_Event::kOutputRoom);
static_assert(kLayout<kInterruptUnitRows>.room + 2 * kLayout<kMemoryControllerRows>.room +
                  kLayout<kCacheRows>.room + kLayout<kQueueUnitRows>.room + 512 <
              MIP8P_Event::kOutputRoom);
// All other structures are shorter.
constexpr std::size_t kMostData = kBadDataAt + kMostBadData;
static_assert(kFatalIrqSize < kMostData);

char* copyOut(const TextWriter& text, char* out) {
    out = putText(out, text.view());
    *out = '\0';
    return out;
}

char* copyEvent(MIP8P_Event& to, const Events& table, unsigned eventClass, const MIP_EVL* event,
                char* out) {
    const RecordView payload(event, sizeof *event + kMostData);
    Draft draft(Sanitize::No);
    table.writeBody(draft, *table.find(eventClass, event->code), Record(payload), payload);
    to.setSummary(draft.summary.string());
    return copyOut(draft.body, out);
}

// The first `count` structures of an event.
char* copyStructures(Codes event, unsigned count, const RecordView& structure, char* out) {
    BodyWriter body;
    events.writeRows(body, *events.find(event.major, event.first), 1, count, structure);
    return copyOut(body, out);
}

} // namespace

#define MPUEVENT_CLASS(NAME, TABLE, CLASS)                                                         \
    char* MIP8P_Event::get_MIP8P_##NAME##_class_event_body(const MIP_EVL* event, char* out) {      \
        return copyEvent(*this, TABLE, CLASS, event, out);                                         \
    }
MPUEVENT_CLASS(management, events, 1)
MPUEVENT_CLASS(isr, events, 3)
MPUEVENT_CLASS(startup, events, 4)
MPUEVENT_CLASS(mmsg, events, 6)
MPUEVENT_CLASS(evl, events, 8)
MPUEVENT_CLASS(assert, events, 9)
MPUEVENT_CLASS(dma, events, 12)
MPUEVENT_CLASS(bugcheck, events, 13)
MPUEVENT_CLASS(math, kEventsOf<kOtherEvents>, kMath)
MPUEVENT_CLASS(database, kEventsOf<kOtherEvents>, kDatabase)

char* MIP8P_Event::get_MIP8P_lwsem_event_body(const MIP_EVL_LWSEM* lwsem, char* out) {
    return copyStructures({1, 1}, 1, RecordView(lwsem, kLwsemSize), out);
}
char* MIP8P_Event::get_MIP8P_mmsg_event_body(const MIP_EVL_MMSG* mmsg, char* out) {
    return copyStructures({6, 11}, 1, RecordView(mmsg, kMmsgSize), out);
}
char* MIP8P_Event::get_MIP8P_msa_event_body(const MIP_EVL_MSA_Q_EVENT* msa, char* out) {
    return copyStructures({1, 14}, 1, RecordView(msa, kMsaSize), out);
}

char* MIP8P_Event::get_MIP8P_bugcheck_fatal_irq_event_event_body(const char* data, char* out) {
    return copyStructures({13, 23}, 5, RecordView(data, kFatalIrqSize), out);
}
char* MIP8P_Event::get_MIP8P_bugcheck_fatal_msa_event_event_body(const char* data, char* out) {
    return copyStructures({13, 22}, 1, RecordView(data, kFatalMsaSize), out);
}
char* MIP8P_Event::get_MIP8P_bugcheck_invalid_param_event_body(const char* data, char* out) {
    out = copyStructures({13, 21}, 1, RecordView(data, kBadDataAt), out);
    const std::uint32_t announced = loadBig<std::uint32_t>(data + kBadLengthAt);
    BodyWriter bad;
    putHexElement(bad, {data + kBadDataAt, std::min<std::size_t>(announced, kMostBadData)});
    return copyOut(bad, out);
}

} // namespace Pegasus
