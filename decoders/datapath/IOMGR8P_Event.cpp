#include "decoders/datapath/IOMGR8P_Event.h"

#include "decoders/Decode.h"
#include "decoders/common/Unknown.h"
#include "decoders/datapath/Entries.h"
#include "decoders/datapath/IOMGR8P_Layouts.h"

namespace Pegasus {

using namespace mpu;
using namespace mpu::iomgr;

namespace {

constexpr const char* kTraceSource = "IOMGR8P_Event";
constexpr const Events& events = kEventsOf<kEvents>;

void putFrame(Draft& draft, const Record& record) {
    traceLength(kTraceSource, 208, "IOMGR_Event: Length=0x", record.payload());
    draft.body.setSanitize(Sanitize::No);
    events.writeHead(draft, record, record.payload());
}

const Events::Entry* findEvent(const Record& record) {
    const RecordView payload = record.payload();
    return events.find(payload.u32(kClassAt), payload.u32(kCodeAt));
}

void putGroup(TextWriter& body, const RecordView& group) {
    for (std::size_t i = 0; i < kSgtEntries && group.u32(i * kSgtEntrySize) != 0; ++i)
        write(body, kLayout<kSgtRows, Style::Joined>, group.subview(i * kSgtEntrySize));
}

} // namespace

void iomgr::putExtents(Draft& draft, const Record& record, const RecordView& data) {
    const std::size_t left = leftOf(record, data);
    for (std::size_t at = 0; at < left; at += kExtSize)
        write(draft.body, kLayout<kExtRows, Style::Joined>, data.subview(at));
}

void iomgr::putGroups(Draft& draft, const Record& record, const RecordView& data) {
    const std::size_t left = leftOf(record, data);
    for (std::size_t at = 0; at < left; at += kSgtSize)
        putGroup(draft.body, data.subview(at));
}

void iomgr::putFile(Draft& draft, const Record& record, const RecordView&) {
    putEntry(draft.body, "File", assertFile(record));
}

void iomgr::decode(const Record& record, Draft& draft) {
    if (record.eventId() != 1)
        return decodeUnknown(
            record, draft,
            {kTraceSource, 115, "Unknown EventID: 0x", "Unhandled Event by IOMGR8P"});
    events.writeTitle(draft, record);
    putFrame(draft, record);
    const RecordView payload = record.payload();
    const std::uint32_t eventClass = payload.u32(kClassAt);
    if (const Events::Entry* event = findEvent(record))
        events.writeBody(draft, *event, record, payload);
    else if (eventClass == 0 || eventClass > kDeviceClass)
        traceUnknown(record, kTraceSource, 0, "Unknown Event_Type: ", eventClass);
    else
        traceUnknown(record, kTraceSource, 0, "Unknown Event_Number: ", payload.u32(kCodeAt));
}

IOMGR8P_Event::IOMGR8P_Event(const EmpEvLogMsg_s* record, int length)
    : AvrelEvent(record, static_cast<unsigned int>(length)) {
    take(record, length, iomgr::decode);
}

IOMGR8P_Event::~IOMGR8P_Event() = default;

// ---- the public operations, which add to a finished event --------------------------------------

namespace {

// Codes that a class doesn't list empty the summary, but for those of devices.
void addEvent(IOMGR8P_Event& to, std::uint32_t eventClass, const Record& record, Draft& draft) {
    const RecordView payload = record.payload();
    const Events::Entry* event = events.find(eventClass, payload.u32(kCodeAt));
    if (event)
        events.writeBody(draft, *event, record, payload);
    addEntries(to, draft.body, "File");
    if (event || (eventClass != 0 && eventClass < kDeviceClass))
        to.setSummary(draft.summary.string());
}

// As much as lists may need: structures are read by their own size.
Record recordOf(const IOMGR_EVL* event) {
    return Record(RecordView(event, sizeof *event + kMaxData));
}

char* addClass(IOMGR8P_Event& to, unsigned eventClass, const IOMGR_EVL* event, char* position) {
    Draft draft(Sanitize::No);
    addEvent(to, eventClass, recordOf(event), draft);
    return position;
}

char* addData(IOMGR8P_Event& to, Events::Function put, const Record& record, const RecordView& data,
              char* position) {
    Draft draft(Sanitize::No);
    put(draft, record, data);
    addEntries(to, draft.body, {});
    return position;
}

// The first structures of an event, which begin at `data`.
void putStructures(TextWriter& body, Codes event, unsigned count, const RecordView& data) {
    events.writeRows(body, *events.find(event.major, event.first), 1, count, data);
}

char* addStructures(IOMGR8P_Event& to, Codes event, unsigned count, const RecordView& data,
                    char* position) {
    BodyWriter body;
    putStructures(body, event, count, data);
    addEntries(to, body, {});
    return position;
}

// What is at `place`, which is in the data area of `event`.
RecordView dataAt(const Record& record, const IOMGR_EVL* event, const char* place) {
    return record.payload().subview(
        static_cast<std::size_t>(place - reinterpret_cast<const char*>(event)));
}

} // namespace

void IOMGR8P_Event::get_IOMGR8P_event_body(const EmpEvLogMsg_s* bytes) {
    const Record record(bytes);
    Draft draft;
    putFrame(draft, record);
    addEvent(*this, record.payload().u32(kClassAt), record, draft);
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

#define MPUEVENT_STRUCTURE(NAME, TYPE, SIZE, CLASS, CODE, COUNT)                                   \
    static_assert(sizeof(IOMGR_EVL_##TYPE) == (SIZE));                                             \
    char* IOMGR8P_Event::get_IOMGR8P_##NAME##_event_body(const IOMGR_EVL_##TYPE* structure,        \
                                                         char* position) {                         \
        return addStructures(*this, {CLASS, CODE}, COUNT, {structure, SIZE}, position);            \
    }
MPUEVENT_STRUCTURE(lwsem, LWSEM, kLwsemSize, 1, 1, 1)
MPUEVENT_STRUCTURE(drp, DRP, kDrpSize, 1, 26, 1)
MPUEVENT_STRUCTURE(msa, MSA_Q_EVENT, kMsaSize, 1, 32, 1)
MPUEVENT_STRUCTURE(isurp, ISURP, kIsurpSize, 3, 25, 1)
MPUEVENT_STRUCTURE(dlm, DLM, kDlmSize, 3, 517, 5)
MPUEVENT_STRUCTURE(mmsg, MMSG, kMmsgSize, 7, 2, 1)
MPUEVENT_STRUCTURE(dib, DIB, kDibSize, 7, 501, 1)
MPUEVENT_STRUCTURE(ndfe, NDFE, kNdfeSize, 20, 518, 1)
MPUEVENT_STRUCTURE(vbgt, VBGT, kVbgtSize, 24, 1003, 1)
MPUEVENT_STRUCTURE(vt, VT, kVtSize, 25, 28, 1)
MPUEVENT_STRUCTURE(rcd, RCD, kRcdSize, 25, 29, 1)
MPUEVENT_STRUCTURE(bcd, BCD, kBcdSize, 25, 30, 1)
MPUEVENT_STRUCTURE(fer, FER, kFerSize, 26, 509, 1)
MPUEVENT_STRUCTURE(rbt, RBT, kRbtSize, 28, 31, 1)

static_assert(sizeof(IOMGR_EVL_EXT) == kExtSize && sizeof(IOMGR_EVL_SGT) == kSgtSize);
char* IOMGR8P_Event::get_IOMGR8P_ext_event_body(const IOMGR_EVL_EXT* ext, char* position) {
    const auto put = [](Draft& draft, const Record&, const RecordView& data) {
        write(draft.body, kLayout<kExtRows, Style::Joined>, data);
    };
    const RecordView data(ext, sizeof *ext);
    return addData(*this, put, Record(data), data, position);
}
char* IOMGR8P_Event::get_IOMGR8P_sgt_event_body(const IOMGR_EVL_SGT* sgt, char* position) {
    const auto put = [](Draft& draft, const Record&, const RecordView& data) {
        putGroup(draft.body, data);
    };
    const RecordView data(sgt, sizeof *sgt);
    return addData(*this, put, Record(data), data, position);
}

char* IOMGR8P_Event::dump_volume(const IOMGR_EVL* event, char* position, const char* volume) {
    const auto put = [](Draft& draft, const Record& record, const RecordView& data) {
        putStructures(draft.body, {25, 28}, 1, data);
        putExtents(draft, record, data.subview(kVtSize));
    };
    const Record record = recordOf(event);
    return addData(*this, put, record, dataAt(record, event, volume), position);
}

char* IOMGR8P_Event::dump_sgt_list(const IOMGR_EVL* event, char* position, const char* list) {
    const Record record = recordOf(event);
    return addData(*this, putGroups, record, dataAt(record, event, list), position);
}

} // namespace Pegasus
