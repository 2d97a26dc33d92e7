#include "decoders/datapath/MIP8P_Event.h"

#include "decoders/common/Unknown.h"
#include "decoders/datapath/MIP8P_Layouts.h"

namespace Pegasus {

using namespace mpu;
using namespace mpu::mip;

namespace {

// By Dump, as far as that is one structure.
constexpr const Layout* kStructures[] = {
    /* None            */ nullptr,
    /* Lwsem           */ &kLayout<kLwsemRows>,
    /* Mmsg            */ &kLayout<kMmsgRows>,
    /* Msa             */ &kLayout<kMsaRows>,
    /* Interrupt       */ &kLayout<kInterruptRows>,
    /* Message         */ &kLayout<kMessageRows>,
    /* Qmir            */ &kLayout<kQmirRows>,
    /* InterruptStatus */ &kLayout<kInterruptStatusRows>,
    /* FatalMsa        */ &kLayout<kFatalMsaRows>,
};
static_assert(std::size(kStructures) == static_cast<std::size_t>(FatalIrq));

void putFatalIrq(TextWriter& out, RecordView data) {
    write(out, kLayout<kIrqRows>, data);
    if (data.u32(kIrqAt) == 0)
        out.put("<IRQ>Disabled</IRQ> ");
    write(out, kLayout<kInterruptUnitRows>, data);
    write(out, kLayout<kMemoryControllerRows>, data.subview(kMemoryController1At));
    write(out, kLayout<kCacheRows>, data);
    write(out, kLayout<kMemoryControllerRows>, data.subview(kMemoryController2At));
    write(out, kLayout<kQueueUnitRows>, data);
}

// The bad data end with the data area.
void putInvalidParam(TextWriter& out, RecordView data, std::size_t length) {
    write(out, kLayout<kInvalidParamRows>, data);
    const std::string_view area = data.bytes(0, length);
    const std::string_view bad =
        area.substr(std::min<std::size_t>(kBadDataAt, area.size()), data.u32(kBadLengthAt));
    out.put("<Hex>").hexBytes(bad).put("</Hex>");
}

void putElement(TextWriter& out, std::string_view tag, std::uint32_t value) {
    out.open(tag).decimal(value).close(tag).put(" ");
}

// Writes the elements of a builder and returns the summary.
std::string_view build(TextWriter& out, Builder builder, RecordView payload) {
    const std::uint32_t code = payload.u32(kCodeAt);
    const Event* event = findEvent(builder, code);
    const std::string_view text = event ? event->text : std::string_view("Unknown Message ID");
    out.element("Request_Type", text, " ");
    if (!event) {
        putElement(out, "ID", code);
        putElement(out, "Line", kUnlistedLines[builder]);
        return text;
    }
    const RecordView data = payload.subview(kDataAt);
    switch (event->dump) {
    case None:
        break;
    case FatalIrq:
        putFatalIrq(out, data);
        break;
    case InvalidParam:
        putInvalidParam(out, data, payload.u32(kLengthAt));
        break;
    case File: {
        const std::string_view file = assertFile(payload);
        out.element("File", file, " ");
        return file;
    }
    default:
        write(out, *kStructures[static_cast<std::size_t>(event->dump)], data);
    }
    return text;
}

std::string_view buildAny(TextWriter& out, RecordView payload) {
    write(out, kLayout<kFrameRows>, payload);
    const std::uint32_t eventClass = payload.u32(kClassAt);
    if (eventClass < std::size(kClasses) && kClasses[eventClass].builder != kNoBuilder)
        return build(out, kClasses[eventClass].builder, payload);
    constexpr std::string_view text = "Unknown Event Type";
    out.element("Request_Type", text, " ");
    putElement(out, "ID", eventClass);
    putElement(out, "Line", kUnroutedLine);
    return text;
}

void decode(RecordView payload, String& summary, String& body) {
    traceLength("MIP8P_Event", 208, "MIP_Event: Length=0x", payload);
    BodyWriter out(Texts::Safe);
    assignText(summary, buildAny(out, payload));
    out.assignTo(body);
}

// Callers with a buffer of their own get at most so many bytes of bad data.
constexpr std::size_t kMostBadData = 2048;
static_assert(2 * kMostBadData + kLayout<kInvalidParamRows>.room + 512 < MIP8P_Event::kOutputRoom);
static_assert(kLayout<kIrqRows>.room + kLayout<kInterruptUnitRows>.room +
                  2 * kLayout<kMemoryControllerRows>.room + kLayout<kCacheRows>.room +
                  kLayout<kQueueUnitRows>.room + 512 <
              MIP8P_Event::kOutputRoom);

char* copyOut(const TextWriter& text, char* out) {
    out = putText(out, text.view());
    *out = '\0';
    return out;
}

char* copyBuilt(MIP8P_Event& to, Builder builder, const MIP_EVL* event, char* out) {
    const std::size_t length = std::min<std::size_t>(event->dataLength, kBadDataAt + kMostBadData);
    BodyWriter body;
    const std::string_view summary =
        build(body, builder, RecordView(event, sizeof *event + length));
    to.setSummary(toString(summary));
    return copyOut(body, out);
}

char* copyStructure(const Layout& layout, const void* data, char* out) {
    BodyWriter body;
    write(body, layout, RecordView(data, layout.extent));
    return copyOut(body, out);
}

} // namespace

MIP8P_Event::MIP8P_Event(const EmpEvLogMsg_s* record, int length)
    : Avrel_Event(record, static_cast<unsigned int>(length)) {
    if (!record)
        return;
    if (record->eventId != 1) {
        traceUnknown("MIP8P_Event", 115, "Unknown EventID: 0x", record);
        assignAscii(summary_, "Unhandled Event by MIP");
        assignHexBody(body_, record);
        return;
    }
    const RecordView payload =
        RecordView::of(record, static_cast<unsigned int>(length)).subview(sizeof *record);
    const std::uint32_t eventClass = payload.u32(kClassAt);
    assignAscii(eventID_, kClasses[eventClass < std::size(kClasses) ? eventClass : 0].title);
    decode(payload, summary_, body_);
}

MIP8P_Event::~MIP8P_Event() = default;

String MIP8P_Event::get_MIP8P_event_body(const EmpEvLogMsg_s* record) {
    String summary;
    String body;
    decode(RecordView::of(record, 0).subview(sizeof *record), summary, body);
    setSummary(summary);
    return body;
}

#define MPUEVENT_BUILDER(NAME, BUILDER)                                                            \
    char* MIP8P_Event::get_MIP8P_##NAME##_class_event_body(const MIP_EVL* event, char* out) {      \
        return copyBuilt(*this, BUILDER, event, out);                                              \
    }
MPUEVENT_BUILDER(management, kManagement)
MPUEVENT_BUILDER(isr, kIsr)
MPUEVENT_BUILDER(startup, kStartup)
MPUEVENT_BUILDER(mmsg, kMmsg)
MPUEVENT_BUILDER(evl, kEvl)
MPUEVENT_BUILDER(assert, kAssert)
MPUEVENT_BUILDER(dma, kDma)
MPUEVENT_BUILDER(bugcheck, kBugcheck)
MPUEVENT_BUILDER(math, kMath)
MPUEVENT_BUILDER(database, kDatabase)

char* MIP8P_Event::get_MIP8P_lwsem_event_body(const MIP_EVL_LWSEM* lwsem, char* out) {
    return copyStructure(kLayout<kLwsemRows>, lwsem, out);
}
char* MIP8P_Event::get_MIP8P_mmsg_event_body(const MIP_EVL_MMSG* mmsg, char* out) {
    return copyStructure(kLayout<kMmsgRows>, mmsg, out);
}
char* MIP8P_Event::get_MIP8P_msa_event_body(const MIP_EVL_MSA_Q_EVENT* msa, char* out) {
    return copyStructure(kLayout<kMsaRows>, msa, out);
}

char* MIP8P_Event::get_MIP8P_bugcheck_fatal_irq_event_event_body(const char* data, char* out) {
    BodyWriter body;
    putFatalIrq(body, RecordView(data, kFatalIrqSize));
    return copyOut(body, out);
}
char* MIP8P_Event::get_MIP8P_bugcheck_fatal_msa_event_event_body(const char* data, char* out) {
    return copyStructure(kLayout<kFatalMsaRows>, data, out);
}
char* MIP8P_Event::get_MIP8P_bugcheck_invalid_param_event_body(const char* data, char* out) {
    const std::size_t bad =
        std::min<std::size_t>(loadBig<std::uint32_t>(data + kBadLengthAt), kMostBadData);
    BodyWriter body;
    putInvalidParam(body, RecordView(data, kBadDataAt + bad), kBadDataAt + bad);
    return copyOut(body, out);
}

} // namespace Pegasus
