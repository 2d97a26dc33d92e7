#include "decoders/protocol/SATA8P_Event.h"

#include "decoders/Decode.h"
#include "decoders/common/Numbered.h"
#include "decoders/common/Unknown.h"
#include "decoders/protocol/SATA8P_Layouts.h"
#include "platform/trace/ProviderTraceServices.h"

namespace Pegasus {

using namespace mpu;
using namespace mpu::sata;

namespace {

constexpr const char* kTraceSource = "SATA8P_Event";

template <const auto& Rows>
void put(TextWriter& out, const RecordView& view) {
    write(out, kLayout<Rows, Style::Joined>, view);
}

void decode1(const Record& record, Draft& draft) {
    constexpr const Events& events = kEventsOf<v1::kEvents>;
    const RecordView frame = record.payload();
    if (const Events::Entry* event = events.find(frame.u32(4))) {
        events.write(draft, *event, record, frame);
        return events.writeTail(draft, record, frame);
    }
    constexpr std::size_t kDumped = 64;
    traceUnknown(record, kTraceSource, 0, "Unknown Event_Number: ", frame.u32(4));
    draft.title.literal("Device Manager Event");
    draft.body.literal("<Data>").hexBytes(frame.bytes(0, kDumped)).literal("</Data>");
}

constexpr const Events& events2 = kEventsOf<v2::kEvents>;

// An event of a type in 1 to 3, for any code.
void decodeType(const Record& record, Draft& draft, std::uint32_t type, std::uint32_t code) {
    if (type == v2::kHardware)
        code = code == 1 ? 1 : 2;
    const Events::Entry* event = events2.find(type, code);
    if (!event && type == v2::kDrive)
        event = events2.find(type, 1);
    if (event)
        return events2.write(draft, *event, record, record.payload());
    draft.title.literal("Bugcheck");
    write(draft.summary, kLayout<v2::kUnlistedLine>, record.payload());
    put<v2::kBugcheckRows>(draft.body, record.payload());
    put<v2::kFlagsRows>(draft.body, record.payload());
}

void decode2(const Record& record, Draft& draft) {
    const std::uint32_t type = record.payload().u32(0);
    const std::uint32_t code = record.payload().u32(4);
    const auto invalid = [&](std::string_view title, std::uint32_t number) {
        draft.title.literal(title);
        draft.summary.literal("(0x").hexLower(number, 8).literal(")");
        noteUnknown(record);
        ProviderTraceServices::ptsTrace(kTraceSource, 0, {title, " ", draft.summary.view()});
    };
    if (type < v2::kHardware || type > v2::kBugcheck)
        invalid("Invalid Event Type", type);
    else if (!events2.find(type, code))
        invalid("Invalid Event", code);
    else
        decodeType(record, draft, type, code);
}

// A version-2 record of header and body that are apart, brought together.
template <class Body>
struct Frame {
    Frame(const DEVICE_MGR_EVL_HDR& header_, const Body& body_, unsigned int code)
        : header(header_), body(body_) {
        record.evStructLength = static_cast<std::uint16_t>(sizeof header + sizeof body);
        header.eventCode = code;
    }

    EmpEvLogMsg_s record{};
    DEVICE_MGR_EVL_HDR header;
    Body body;
};

// ---- version 3 ---------------------------------------------------------------------------------

constexpr const Events& events3 = kEventsOf<v3::kEvents>;

void writeSataCommand(TextWriter& body, const RecordView& fis) {
    constexpr std::uint8_t kHostToDevice = 0x27;
    if (fis.u8(0) == kHostToDevice)
        putCommandFis(body, fis);
}

void writeScsiCommand(TextWriter& body, const RecordView& cdb) {
    const std::uint32_t length = cdb.u32(v3::kCdbSize);
    if (length > 0 && length <= v3::kCdbSize)
        put<v3::kCdbRows>(body, cdb);
}

std::string_view writeSataOutcome(TextWriter& body, const RecordView& fis,
                                  const RecordView& command) {
    constexpr std::uint8_t kDeviceToHost = 0x34;
    if (fis.u8(0) == kDeviceToHost)
        return putStatusFis(body, fis, command.u8(offsetof(SATA_HOST_DEVICE_FIS, command)));
    body.literal("<Error_Cause>Unknown</Error_Cause>");
    return kErrorCauses.at(kNoCause);
}

std::string_view writeScsiOutcome(TextWriter& body, const RecordView& sense) {
    const unsigned response = sense.u8(0) & 0x7Fu; // 0x70 current, 0x71 deferred error
    if (response == 0x70 || response == 0x71)
        return putSense(body, sense);
    body.literal("<Sense_Key>Unknown</Sense_Key>");
    return "Unknown";
}

void writeStrings(TextWriter& body, std::uint32_t protocol, const RecordView& strings) {
    if (protocol == 0)
        put<v3::kSataStringRows>(body, strings);
    else
        put<v3::kScsiStringRows>(body, strings);
}

RecordView classData(const Record& record) {
    return record.payload().subview(v3::kData);
}

void decode3(const Record& record, Draft& draft) {
    const RecordView frame = record.payload();
    events3.writeTitle(draft, record);
    if (const Events::Entry* event = events3.find(frame.u32(0), frame.u32(4))) {
        events3.writeBody(draft, *event, record, frame);
    } else {
        write(draft.summary, kLayout<v3::kUnknownLine>, frame);
        noteUnknown(record);
        ProviderTraceServices::ptsTrace(kTraceSource, 0, {draft.summary.view()});
    }
    events3.writeTail(draft, record, frame);
}

} // namespace

// The first cause whose bit is set; without one the code is in the summary.
void sata::putPciCause(Draft& draft, const Record&, const RecordView& data) {
    const std::uint32_t code = data.u32(0);
    for (std::size_t i = 0; i < std::size(kPciCauseBits); ++i)
        if (code & kPciCauseBits[i]) {
            draft.body.literal("<PCI_Error_Cause>")
                .literal(kPciCauses.at(i))
                .literal("</PCI_Error_Cause>");
            return;
        }
    draft.summary.literal(" PCI Error Data 0x").hexLower(code, 8);
}

void v2::putElapsed(Draft& draft, const Record& record, const RecordView&) {
    const RecordView frame = record.payload();
    draft.summary.literal(", ");
    draft.summary.commit(putSeconds(draft.summary.reserve(kElapsedRoom), frame.u32(kSeconds),
                                    frame.u32(kMilliseconds)));
}

void v2::putOutcome(Draft& draft, const Record& record, const RecordView&) {
    const RecordView frame = record.payload();
    if ((frame.u8(kStatusRegister) & 0x01) && frame.u8(kErrorRegister) == 0)
        draft.summary.literal(", ").literal(kErrorCauses.at(kNoError));
}

void v2::putSegments(Draft& draft, const Record&, const RecordView& data) {
    for (std::size_t i = 0; i < kSegments && data.u32(i * kSegmentSize) != 0; ++i)
        put<kSegmentRows>(draft.body, data.subview(i * kSegmentSize));
}

void v2::putRing(Draft& draft, const Record& record, const RecordView& data) {
    constexpr std::size_t kWord = 4;
    const std::size_t end = std::min<std::size_t>(record.payloadLength(), record.payload().size());
    for (std::uint32_t i = 0; kListAt + (i + 1) * kWord <= end; ++i) {
        numbered(draft.body, "<Entry_", i, ">0x").hexLower(data.u32(i * kWord), 8);
        numbered(draft.body, "</Entry_", i, ">");
    }
}

void v3::putXportCommand(Draft& draft, const Record& record, const RecordView& data) {
    if (classData(record).u32(kXportProtocol) == 0)
        writeSataCommand(draft.body, data);
    else
        writeScsiCommand(draft.body, data);
}

void v3::putXportOutcome(Draft& draft, const Record& record, const RecordView& data) {
    const RecordView event = classData(record);
    if (event.u32(kXportProtocol) == 0)
        writeSataOutcome(draft.body, data, event.subview(kXportCommand));
    else
        writeScsiOutcome(draft.body, data);
}

void v3::putSataStatus(Draft& draft, const Record& record, const RecordView& data) {
    draft.summary.literal(", ").literal(
        writeSataOutcome(draft.body, data, classData(record).subview(kErrorCommand)));
}

void v3::putSataCommand(Draft& draft, const Record&, const RecordView& data) {
    writeSataCommand(draft.body, data);
}

void v3::putScsiSense(Draft& draft, const Record&, const RecordView& data) {
    draft.summary.literal(", ").literal(writeScsiOutcome(draft.body, data));
}

void v3::putScsiCommand(Draft& draft, const Record&, const RecordView& data) {
    writeScsiCommand(draft.body, data);
}

void v3::putIdentifyStrings(Draft& draft, const Record& record, const RecordView& data) {
    writeStrings(draft.body, classData(record).u32(kIdentifyProtocol), data);
}

void v3::putUnitStrings(Draft& draft, const Record& record, const RecordView& data) {
    writeStrings(draft.body, classData(record).u32(kUnitProtocol), data);
}

void v3::putHeader(Draft& draft, const Record&, const RecordView& frame) {
    constexpr std::uint32_t kBugcheckClass = 4;
    constexpr std::uint32_t kTraceTime = 5;
    constexpr std::uint32_t kSasPort = 15;
    constexpr std::uint32_t kSasZeroReply = 16;
    const std::uint32_t eventClass = frame.u32(0);
    const std::uint32_t identifier = frame.u32(4);
    if (eventClass != kBugcheckClass && eventClass != kTraceTime) {
        if (identifier != kSasPort && identifier != kSasZeroReply)
            put<kPathRows>(draft.body, frame);
        put<kAdapterRows>(draft.body, frame);
    }
    put<kMissedRows>(draft.body, frame);
}

void sata::decode(const Record& record, Draft& draft) {
    constexpr std::size_t kMarker = offsetof(DEVICE_MGR_EVL_HDR, marker);
    if (record.payloadVersion() == 3)
        decode3(record, draft);
    else if (record.payloadVersion() == 2 || record.payload().u32(kMarker) == 0xFFFFFFFF)
        decode2(record, draft);
    else
        decode1(record, draft);
}

SATA8P_Event::SATA8P_Event(const EmpEvLogMsg_s* record, int length)
    : Avrel_Event(record, static_cast<unsigned int>(length)) {
    if (length != 0)
        take(record, length, sata::decode);
}

SATA8P_Event::~SATA8P_Event() = default;

void SATA8P_Event::build_version_1_events(const EmpEvLogMsg_s* record, int length) {
    take(record, length, decode1);
}

void SATA8P_Event::build_version_2_events(const EmpEvLogMsg_s* record) {
    take(record, 0, decode2);
}

void SATA8P_Event::build_version_3_events(const DM_EVL* record) {
    take(&record->record, 0, decode3);
}

void SATA8P_Event::build_hardware_event(const DEVICE_MGR_HARDWARE_EVENT* event,
                                        const DEVICE_MGR_EVL_HDR* header, unsigned int code) {
    const Frame frame(*header, *event, code);
    take(&frame.record, 0, [](const Record& record, Draft& draft) {
        decodeType(record, draft, v2::kHardware, record.payload().u32(4));
    });
}

void SATA8P_Event::build_drive_event(const DEVICE_MGR_DRIVE_EVENT* event,
                                     const DEVICE_MGR_EVL_HDR* header, unsigned int code) {
    const Frame frame(*header, *event, code);
    take(&frame.record, 0, [](const Record& record, Draft& draft) {
        decodeType(record, draft, v2::kDrive, record.payload().u32(4));
    });
}

void SATA8P_Event::build_bugcheck_event(const DEVICE_MGR_BUG_CHECK_EVENT* event,
                                        const DEVICE_MGR_EVL_HDR* header, unsigned int code) {
    const Frame frame(*header, *event, code);
    take(&frame.record, 0, [](const Record& record, Draft& draft) {
        decodeType(record, draft, v2::kBugcheck, record.payload().u32(4));
    });
}

namespace {

// For callers with a body of their own, which is made safe later. Returns the summary.
void appendClass(Avrel_Event& event, const DM_EVL* record, XmlString& body,
                 std::uint32_t eventClass) {
    const Record whole(&record->record);
    const Events::Entry* row = events3.find(eventClass, record->identifier);
    if (!row)
        return;
    Draft draft(Sanitize::No);
    events3.writeBody(draft, *row, whole, whole.payload());
    body.append(draft.body.view());
    event.setSummary(toString(draft.summary.view()));
}

} // namespace

void SATA8P_Event::build_xport_event_v3(const DM_EVL* record, XmlString& body) {
    appendClass(*this, record, body, 1);
}
void SATA8P_Event::build_device_event_v3(const DM_EVL* record, XmlString& body) {
    appendClass(*this, record, body, 2);
}
void SATA8P_Event::build_attention_event_v3(const DM_EVL* record, XmlString& body) {
    appendClass(*this, record, body, 3);
}
void SATA8P_Event::build_bugcheck_event_v3(const DM_EVL* record, XmlString& body) {
    appendClass(*this, record, body, 4);
}
void SATA8P_Event::build_trace_time_v3(const DM_EVL* record, XmlString& body) {
    appendClass(*this, record, body, 5);
}

} // namespace Pegasus
