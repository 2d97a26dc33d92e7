#include "decoders/datapath/IOMGR8P_Event.h"

#include "decoders/common/Unknown.h"
#include "decoders/datapath/Entries.h"
#include "decoders/datapath/IOMGR8P_Layouts.h"

namespace Pegasus {

using namespace mpu;
using namespace mpu::iomgr;

namespace {

template <const auto& Rows>
constexpr const Layout& joined = kLayout<Rows, Style::Joined>;

// A data area: what can be read, and where its lists end.
struct Area {
    explicit Area(RecordView payload)
        : bytes(payload.subview(kDataAt)),
          end(std::min<std::size_t>(payload.u32(kLengthAt), bytes.size())) {}

    RecordView bytes;
    std::size_t end;
};

void putDiskline(Entries& entries, RecordView dlm) {
    entries.structure(joined<kDlmRows>, dlm);
    for (std::size_t i = 0; i < kDlmEntries; ++i)
        entries.structure(joined<kDlmEntryRows>, dlm.subview(kDlmHeaderSize + i * kDlmEntrySize));
}

void putGroup(Entries& entries, RecordView group) {
    for (std::size_t i = 0; i < kSgtEntries && group.u32(i * kSgtEntrySize) != 0; ++i)
        entries.structure(joined<kSgtRows>, group.subview(i * kSgtEntrySize));
}

void putGroups(Entries& entries, const Area& area, std::size_t at) {
    for (; at < area.end; at += kSgtSize)
        putGroup(entries, area.bytes.subview(at));
}

// An extent is shown when it begins inside the data area.
void putVolume(Entries& entries, const Area& area, std::size_t at) {
    entries.structure(joined<kVtRows>, area.bytes.subview(at));
    for (at += kVtSize; at < area.end; at += kExtSize)
        entries.structure(joined<kExtRows>, area.bytes.subview(at));
}

// A structure at the start of the data area, and what lies behind it.
struct Plan {
    enum Behind : std::uint8_t { Nothing, Volume, Groups, Diskline };
    const Layout* structure;
    Behind behind = Nothing;
    std::uint8_t at = 0;
};

// By Dump, as far as that is what the area alone says.
constexpr Plan kPlans[] = {
    /* None         */ {nullptr},
    /* VolumeNumber */ {&joined<kVolumeNumberRows>},
    /* Message      */ {&joined<kMessageRows>},
    /* Interrupt    */ {&joined<kInterruptRows>},
    /* Lwsem        */ {&joined<kLwsemRows>},
    /* Drp          */ {&joined<kDrpRows>},
    /* Msa          */ {&joined<kMsaRows>},
    /* Isurp        */ {&joined<kIsurpRows>},
    /* Dlm          */ {nullptr, Plan::Diskline},
    /* Mmsg         */ {&joined<kMmsgRows>},
    /* Dib          */ {&joined<kDibRows>},
    /* Ndfe         */ {&joined<kNdfeRows>},
    /* Vbgt         */ {&joined<kVbgtRows>},
    /* Rcd          */ {&joined<kRcdRows>},
    /* Bcd          */ {&joined<kBcdRows>},
    /* Rbt          */ {&joined<kRbtRows>},
    /* Vt           */ {nullptr, Plan::Volume},
    /* Sgt          */ {nullptr, Plan::Groups},
    /* DrpVt        */ {&joined<kDrpRows>, Plan::Volume, kDrpSize},
    /* DrpSgt       */ {&joined<kDrpRows>, Plan::Groups, kDrpSize},
    /* IsurpVt      */ {&joined<kIsurpRows>, Plan::Volume, kIsurpSize},
    /* IsurpSgt     */ {&joined<kIsurpRows>, Plan::Groups, kIsurpSize},
    /* FerDlm       */ {&joined<kFerRows>, Plan::Diskline, kFerSize},
};
static_assert(std::size(kPlans) == static_cast<std::size_t>(Dump::Failed));

void putArea(Entries& entries, const Plan& plan, RecordView payload) {
    const Area area(payload);
    if (plan.structure)
        entries.structure(*plan.structure, area.bytes);
    switch (plan.behind) {
    case Plan::Nothing:
        break;
    case Plan::Volume:
        putVolume(entries, area, plan.at);
        break;
    case Plan::Groups:
        putGroups(entries, area, plan.at);
        break;
    case Plan::Diskline:
        putDiskline(entries, area.bytes.subview(plan.at));
        break;
    }
}

// Writes the entries of an event and its summary; false when it leaves the summary alone.
bool putClass(Entries& entries, std::size_t eventClass, RecordView payload, TextWriter& summary) {
    const Event* event = findEvent(eventClass, payload.u32(kCodeAt));
    if (!event)
        return eventClass != kDeviceClass;
    std::string_view line = event->text;
    entries.text("Request_Type", line);
    switch (event->dump) {
    case Failed:
    case Fatal:
    case Exception:
        entries.structure(joined<kDriveRows>, payload.subview(kDataAt));
        entries.text("State", event->dump == Exception ? "Exception" : "Failed");
        summary.put("Drive ").integer(payload.u32(kDataAt)).put(", ");
        if (event->dump == Fatal)
            line = "Fatal Error";
        break;
    case File:
        line = assertFile(payload);
        entries.text("File", line);
        break;
    default:
        putArea(entries, kPlans[static_cast<std::size_t>(event->dump)], payload);
    }
    summary.text(line);
    return true;
}

bool putEvent(Entries& entries, RecordView payload, TextWriter& summary) {
    traceLength("IOMGR8P_Event", 208, "IOMGR_Event: Length=0x", payload);
    entries.structure(joined<kFrameRows>, payload);
    const std::uint32_t eventClass = payload.u32(kClassAt);
    return eventClass != 0 && eventClass < kClasses &&
           putClass(entries, eventClass, payload, summary);
}

// The public operations add to a finished event.
RecordView viewOf(const IOMGR_EVL* event) {
    return {event, sizeof *event + std::min<std::size_t>(event->dataLength, kMaxData)};
}

char* addClass(IOMGR8P_Event& to, unsigned eventClass, const IOMGR_EVL* event, char* position) {
    Entries::Scratch scratch;
    Entries entries(scratch, to);
    LineWriter summary;
    if (putClass(entries, eventClass, viewOf(event), summary))
        to.setSummary(summary.string());
    return position;
}

template <class Structure, class Put>
char* add(IOMGR8P_Event& to, const Structure* structure, char* position, Put put) {
    Entries::Scratch scratch;
    Entries entries(scratch, to);
    put(entries, RecordView(structure, sizeof *structure));
    return position;
}

} // namespace

IOMGR8P_Event::IOMGR8P_Event(const EmpEvLogMsg_s* record, int length)
    : AvrelEvent(record, static_cast<unsigned int>(length)) {
    if (!record)
        return;
    if (record->eventId != 1) {
        traceUnknown("IOMGR8P_Event", 115, "Unknown EventID: 0x", record);
        assignAscii(summary_, "Unhandled Event by IOMGR8P");
        assignHexBody(body_, record);
        return;
    }
    const RecordView payload =
        RecordView::of(record, static_cast<unsigned int>(length)).subview(sizeof *record);
    const std::uint32_t eventClass = payload.u32(kClassAt);
    assignAscii(eventID_, kTitles[eventClass < kClasses ? eventClass : 0]);
    BodyWriter body;
    Entries entries(body);
    LineWriter summary;
    putEvent(entries, payload, summary);
    summary.assignTo(summary_);
    startBody(body.view());
}

IOMGR8P_Event::~IOMGR8P_Event() = default;

void IOMGR8P_Event::get_IOMGR8P_event_body(const EmpEvLogMsg_s* record) {
    Entries::Scratch scratch;
    Entries entries(scratch, *this);
    LineWriter summary;
    if (putEvent(entries, RecordView::of(record, 0).subview(sizeof *record), summary))
        setSummary(summary.string());
}

#define MPUEVENT_CLASS(NUMBER, NAME)                                                               \
    char* IOMGR8P_Event::get_IOMGR8P_##NAME##_class_event_body(const IOMGR_EVL* event,             \
                                                               char* position) {                   \
        return addClass(*this, NUMBER, event, position);                                           \
    }
MPUEVENT_CLASS(1, manager)
MPUEVENT_CLASS(2, rebuild)
MPUEVENT_CLASS(3, reconfig)
MPUEVENT_CLASS(4, bbscan)
MPUEVENT_CLASS(5, xoe)
MPUEVENT_CLASS(6, error_recovery)
MPUEVENT_CLASS(7, metadata)
MPUEVENT_CLASS(8, isurpproc)
MPUEVENT_CLASS(9, drpproc)
MPUEVENT_CLASS(10, bg)
MPUEVENT_CLASS(11, database)
MPUEVENT_CLASS(12, isr)
MPUEVENT_CLASS(13, startup)
MPUEVENT_CLASS(14, sv)
MPUEVENT_CLASS(15, dlm)
MPUEVENT_CLASS(16, crc_init)
MPUEVENT_CLASS(17, parity)
MPUEVENT_CLASS(18, parity_init)
MPUEVENT_CLASS(19, parity_error)
MPUEVENT_CLASS(20, parity_scan)
MPUEVENT_CLASS(21, parity_rebuild)
MPUEVENT_CLASS(22, micro_rebuild)
MPUEVENT_CLASS(23, volume_init)
MPUEVENT_CLASS(24, mmsg)
MPUEVENT_CLASS(25, rcp)
MPUEVENT_CLASS(26, fe)
MPUEVENT_CLASS(27, carve)
MPUEVENT_CLASS(28, bg_sys)
MPUEVENT_CLASS(29, macro)
MPUEVENT_CLASS(30, evl)
MPUEVENT_CLASS(31, assert)
MPUEVENT_CLASS(32, math)
MPUEVENT_CLASS(33, device)

#define MPUEVENT_STRUCTURE(NAME, TYPE, ROWS, SIZE)                                                 \
    static_assert(sizeof(IOMGR_EVL_##TYPE) == (SIZE));                                             \
    char* IOMGR8P_Event::get_IOMGR8P_##NAME##_event_body(const IOMGR_EVL_##TYPE* structure,        \
                                                         char* position) {                         \
        return add(*this, structure, position,                                                     \
                   [](Entries& to, RecordView view) { to.structure(joined<ROWS>, view); });        \
    }
MPUEVENT_STRUCTURE(lwsem, LWSEM, kLwsemRows, kLwsemSize)
MPUEVENT_STRUCTURE(drp, DRP, kDrpRows, kDrpSize)
MPUEVENT_STRUCTURE(msa, MSA_Q_EVENT, kMsaRows, kMsaSize)
MPUEVENT_STRUCTURE(isurp, ISURP, kIsurpRows, kIsurpSize)
MPUEVENT_STRUCTURE(mmsg, MMSG, kMmsgRows, kMmsgSize)
MPUEVENT_STRUCTURE(dib, DIB, kDibRows, kDibSize)
MPUEVENT_STRUCTURE(ndfe, NDFE, kNdfeRows, kNdfeSize)
MPUEVENT_STRUCTURE(vbgt, VBGT, kVbgtRows, kVbgtSize)
MPUEVENT_STRUCTURE(rcd, RCD, kRcdRows, kRcdSize)
MPUEVENT_STRUCTURE(bcd, BCD, kBcdRows, kBcdSize)
MPUEVENT_STRUCTURE(fer, FER, kFerRows, kFerSize)
MPUEVENT_STRUCTURE(rbt, RBT, kRbtRows, kRbtSize)
MPUEVENT_STRUCTURE(vt, VT, kVtRows, kVtSize)
MPUEVENT_STRUCTURE(ext, EXT, kExtRows, kExtSize)

static_assert(sizeof(IOMGR_EVL_DLM) == kDlmSize && sizeof(IOMGR_EVL_SGT) == kSgtSize);
char* IOMGR8P_Event::get_IOMGR8P_dlm_event_body(const IOMGR_EVL_DLM* dlm, char* position) {
    return add(*this, dlm, position, putDiskline);
}
char* IOMGR8P_Event::get_IOMGR8P_sgt_event_body(const IOMGR_EVL_SGT* sgt, char* position) {
    return add(*this, sgt, position, putGroup);
}

char* IOMGR8P_Event::dump_volume(const IOMGR_EVL* event, char* position, const char* volume) {
    Entries::Scratch scratch;
    Entries entries(scratch, *this);
    const char* data = reinterpret_cast<const char*>(event + 1);
    putVolume(entries, Area(viewOf(event)), static_cast<std::size_t>(volume - data));
    return position;
}

char* IOMGR8P_Event::dump_sgt_list(const IOMGR_EVL* event, char* position, const char* list) {
    Entries::Scratch scratch;
    Entries entries(scratch, *this);
    const char* data = reinterpret_cast<const char*>(event + 1);
    putGroups(entries, Area(viewOf(event)), static_cast<std::size_t>(list - data));
    return position;
}

} // namespace Pegasus
