#include "decoders/protocol/SATA8P_Event.h"

#include "decoders/protocol/SATA8P_Layouts.h"

namespace Pegasus {

using namespace mpu;
using namespace mpu::sata;

namespace {

constexpr std::size_t kPayload = sizeof(EmpEvLogMsg_s);

template <const auto& Rows>
void put(TextWriter& out, RecordView view) {
    write(out, kLayout<Rows, Style::Joined>, view);
}

// The first cause whose bit is set; without one the code stands in the summary.
void putPciCause(Draft& out, RecordView frame) {
    const std::uint32_t code = frame.u32(b(4));
    for (std::size_t i = 0; i < std::size(kPciCauseBits); ++i)
        if (code & kPciCauseBits[i]) {
            out.body.put("<PCI_Error_Cause>").put(kPciCauses.at(i)).put("</PCI_Error_Cause>");
            return;
        }
    out.summary.put(" PCI Error Data 0x").hexLower(code, 8);
}

// ---- version 1 ---------------------------------------------------------------------------------

void version1(Draft& out, RecordView frame) {
    const std::uint32_t index = frame.u32(4) - v1::kFirstNumber;
    if (index >= v1::kRowOf.size()) {
        constexpr std::size_t kDumped = 64;
        out.title.put("Device Manager Event");
        out.body.put("<Data>").hexBytes(frame.bytes(0, kDumped)).put("</Data>");
        return;
    }
    const v1::Event& event = v1::kEvents[v1::kRowOf[index]];
    out.title.put(event.name);
    if (event.summary == v1::kName)
        out.summary.put(event.name);
    else
        write(out.summary, v1::Summaries::at(event.summary), frame);
    write(out.body, v1::Objects::at(event.object), frame);
    if (event.object == v1::kPci)
        putPciCause(out, frame);
}

// ---- version 2 ---------------------------------------------------------------------------------

enum EventType : std::uint32_t { kHardware = 1, kDrive = 2, kBugcheck = 3 };

enum DriveCode : std::uint32_t {
    kNotFound = 1,
    kNotReady = 3,
    kFailedDiscovery = 4,
    kRemoved = 5,
    kInserted = 6,
    kCommandFailed = 7,
    kCommandTimedOut = 8,
    kAsynchronousError = 9,
    kTimeExceeded = 10,
};

void hardware(Draft& out, RecordView frame) {
    out.title.put("Hardware");
    put<v2::kHardwareRows>(out.body, frame);
    if (frame.u32(4) == kNotFound) {
        put<v2::kNotFoundLine>(out.summary, frame);
        put<v2::kIdSelectRows>(out.body, frame);
    } else {
        put<v2::kAdapterLine>(out.summary, frame);
        put<v2::kPciRows>(out.body, frame);
        putPciCause(out, frame);
    }
    put<v2::kCountRows>(out.body, frame);
}

void drive(Draft& out, RecordView frame) {
    const std::uint32_t code = frame.u32(4);
    out.title.put(code == kRemoved    ? "Drive Removed"
                  : code == kInserted ? "Drive Inserted"
                                      : "Drive Error");
    put<v2::kDriveRows>(out.body, frame);
    put<v2::kDriveLine>(out.summary, frame);
    switch (code) {
    case kNotReady:
    case kFailedDiscovery:
    case kCommandFailed:
    case kCommandTimedOut:
    case kTimeExceeded:
        put<v2::kCommandRows>(out.body, frame);
        put<v2::kCommandLine>(out.summary, frame);
        if (code == kTimeExceeded) {
            out.summary.put(", ");
            out.summary.commit(putSeconds(out.summary.reserve(kElapsedRoom),
                                          frame.u32(v2::kSeconds), frame.u32(v2::kMilliseconds)));
        }
        if ((frame.u8(v2::kStatusRegister) & 0x01) && frame.u8(v2::kErrorRegister) == 0)
            out.summary.put(", ").put(kErrorCauses.at(kNoError));
        break;
    case kAsynchronousError:
        put<v2::kAsyncRows>(out.body, frame);
        break;
    default:
        break;
    }
    put<v2::kCountRows>(out.body, frame);
}

// `payload` is as far as a list goes.
void bugcheck(Draft& out, RecordView frame, std::size_t payload) {
    const std::uint32_t code = frame.u32(4);
    out.title.put("Bugcheck");
    put<v2::kBugcheckRows>(out.body, frame);
    put<v2::kBugcheckLine>(out.summary, frame);
    if (code >= std::size(v2::kBugcheckObjects))
        return;
    const v2::Object object = v2::kBugcheckObjects[code];
    write(out.body, v2::Objects::at(object), frame);
    write(out.summary, v2::Summaries::at(object), frame);
    if (object == v2::kTransfer) {
        for (unsigned i = 0; i < v2::kSegments; ++i) {
            const RecordView segment = frame.subview(v2::kListAt + i * v2::kSegmentSize);
            if (segment.u32(0) == 0)
                break;
            put<v2::kSegmentRows>(out.body, segment);
        }
    } else if (object == v2::kRing) {
        constexpr std::size_t kWord = 4;
        const std::size_t end = std::min(payload, frame.size());
        for (std::uint32_t i = 0; v2::kListAt + (i + 1) * kWord <= end; ++i) {
            out.body.put("<Entry_").decimal(i).put(">0x");
            out.body.hexLower(frame.u32(v2::kListAt + i * kWord), 8);
            out.body.put("</Entry_").decimal(i).put(">");
        }
    }
}

void version2(Draft& out, RecordView record) {
    const RecordView frame = record.subview(kPayload);
    const std::uint32_t type = frame.u32(0);
    const std::uint32_t code = frame.u32(4);
    const std::size_t codes = type == kBugcheck ? kBugchecks.codes() : kDriveEvents.codes();
    if (type < kHardware || type > kBugcheck) {
        out.title.put("Invalid Event Type");
        out.summary.put("(0x").hexLower(type, 8).put(")");
    } else if (code == 0 || code >= codes) {
        out.title.put("Invalid Event");
        out.summary.put("(0x").hexLower(code, 8).put(")");
    } else if (type == kHardware) {
        hardware(out, frame);
    } else if (type == kDrive) {
        drive(out, frame);
    } else {
        bugcheck(out, frame, record.u16(offsetof(EmpEvLogMsg_s, evStructLength)));
    }
}

// Header and body of a version-2 event that lie apart, brought together.
template <class Body>
struct Frame {
    Frame(const DEVICE_MGR_EVL_HDR& header_, const Body& body_, unsigned int code)
        : header(header_), body(body_) {
        header.eventCode = code;
    }
    RecordView view() const { return {this, sizeof *this}; }

    DEVICE_MGR_EVL_HDR header;
    Body body;
};

// ---- version 3 ---------------------------------------------------------------------------------

enum EventClass : std::uint32_t { kXport = 1, kDevice, kAttention, kBugcheckClass, kTraceTime };
constexpr std::uint32_t kSasPort = 15;
constexpr std::uint32_t kSasZeroReply = 16;

// Command and outcome are shown when they are there.

void putSataCommand(TextWriter& body, RecordView fis) {
    constexpr std::uint8_t kHostToDevice = 0x27;
    if (fis.u8(0) == kHostToDevice)
        putCommandFis(body, fis);
}

void putScsiCommand(TextWriter& body, RecordView cdb) {
    const std::uint32_t length = cdb.u32(v3::kCdbSize);
    if (length > 0 && length <= v3::kCdbSize)
        put<v3::kCdbRows>(body, cdb);
}

std::string_view putSataOutcome(TextWriter& body, RecordView fis, RecordView command) {
    constexpr std::uint8_t kDeviceToHost = 0x34;
    if (fis.u8(0) == kDeviceToHost)
        return putStatusFis(body, fis, command.u8(offsetof(SATA_HOST_DEVICE_FIS, command)));
    body.put("<Error_Cause>Unknown</Error_Cause>");
    return kErrorCauses.at(kNoCause);
}

std::string_view putScsiOutcome(TextWriter& body, RecordView sense) {
    const unsigned response = sense.u8(0) & 0x7Fu; // 0x70 current, 0x71 deferred error
    if (response == 0x70 || response == 0x71)
        return putSense(body, sense);
    body.put("<Sense_Key>Unknown</Sense_Key>");
    return "Unknown";
}

void putStrings(TextWriter& body, std::uint32_t protocol, RecordView strings) {
    if (protocol == 0)
        put<v3::kSataStringRows>(body, strings);
    else
        put<v3::kScsiStringRows>(body, strings);
}

void putPiece(Draft& out, v3::Piece piece, RecordView data) {
    switch (piece) {
    case v3::kSlots:
        if (data.u32(v3::kXportProtocol) == 0) {
            putSataCommand(out.body, data.subview(v3::kXportCommand));
            putSataOutcome(out.body, data.subview(v3::kXportOutcome),
                           data.subview(v3::kXportCommand));
        } else {
            putScsiCommand(out.body, data.subview(v3::kXportCommand));
            putScsiOutcome(out.body, data.subview(v3::kXportOutcome));
        }
        break;
    case v3::kSataStatus:
        out.summary.put(", ").put(putSataOutcome(out.body, data.subview(v3::kSataErrorStatus),
                                                 data.subview(v3::kErrorCommand)));
        break;
    case v3::kSataCommand:
        putSataCommand(out.body, data.subview(v3::kErrorCommand));
        break;
    case v3::kSataStrings:
        put<v3::kSataStringRows>(out.body, data.subview(v3::kSataErrorStrings));
        break;
    case v3::kScsiSense:
        out.summary.put(", ").put(putScsiOutcome(out.body, data.subview(v3::kScsiErrorSense)));
        break;
    case v3::kScsiCommand:
        putScsiCommand(out.body, data.subview(v3::kErrorCommand));
        break;
    case v3::kScsiStrings:
        put<v3::kScsiStringRows>(out.body, data.subview(v3::kScsiErrorStrings));
        break;
    case v3::kIdentifyStrings:
        putStrings(out.body, data.u32(v3::kIdentifyProtocol), data.subview(v3::kIdentifyStringsAt));
        break;
    case v3::kUnitStrings:
        putStrings(out.body, data.u32(v3::kUnitProtocol), data.subview(v3::kUnitStringsAt));
        break;
    default:
        write(out.body, v3::Pieces::at(piece), data);
    }
}

// Class data and summary; false when the class has no layout for the identifier.
bool classEvent(Draft& out, RecordView frame, std::uint32_t eventClass) {
    const std::uint32_t identifier = frame.u32(4);
    for (const v3::Event& event : v3::kEvents) {
        if (event.eventClass != eventClass ||
            (event.identifier != identifier && event.identifier != v3::kAny))
            continue;
        write(out.summary, v3::Summaries::at(event.summary), frame);
        const RecordView data = frame.subview(v3::kData);
        for (const v3::Piece* piece = event.pieces; *piece != v3::kEnd; ++piece)
            putPiece(out, *piece, data);
        return true;
    }
    return false;
}

void version3(Draft& out, RecordView frame) {
    const std::uint32_t eventClass = frame.u32(0);
    const std::uint32_t identifier = frame.u32(4);
    put<v3::kNameLine>(out.title, frame);
    classEvent(out, frame, eventClass);
    if (eventClass != kBugcheckClass && eventClass != kTraceTime) {
        if (identifier != kSasPort && identifier != kSasZeroReply)
            put<v3::kPathRows>(out.body, frame);
        put<v3::kAdapterRows>(out.body, frame);
    }
    put<v3::kMissedRows>(out.body, frame);
}

// For callers with a body of their own, which is made safe later.
void appendClass(Avrel_Event& event, const DM_EVL* record, XmlString& body,
                 std::uint32_t eventClass) {
    Draft draft(Texts::Raw);
    const RecordView view = RecordView::of(&record->record, 0);
    if (!classEvent(draft, view.subview(kPayload), eventClass))
        return;
    body.append(draft.body.view());
    event.setSummary(toString(draft.summary.view()));
}

} // namespace

SATA8P_Event::SATA8P_Event(const EmpEvLogMsg_s* record, int length)
    : Avrel_Event(record, static_cast<unsigned int>(length)) {
    if (!record || length == 0)
        return;
    constexpr std::size_t kMarker = kPayload + offsetof(DEVICE_MGR_EVL_HDR, marker);
    const RecordView view = RecordView::of(record, static_cast<unsigned int>(length));
    Draft draft;
    if (record->payloadVersion == 3)
        version3(draft, view.subview(kPayload));
    else if (record->payloadVersion == 2 || view.u32(kMarker) == 0xFFFFFFFF)
        version2(draft, view);
    else
        version1(draft, view.subview(kPayload));
    take(draft);
}

SATA8P_Event::~SATA8P_Event() = default;

void SATA8P_Event::build_version_1_events(const EmpEvLogMsg_s* record, int length) {
    Draft draft;
    version1(draft, RecordView::of(record, static_cast<unsigned int>(length)).subview(kPayload));
    take(draft);
}

void SATA8P_Event::build_version_2_events(const EmpEvLogMsg_s* record) {
    Draft draft;
    version2(draft, RecordView::of(record, 0));
    take(draft);
}

void SATA8P_Event::build_version_3_events(const DM_EVL* record) {
    Draft draft;
    version3(draft, RecordView::of(&record->record, 0).subview(kPayload));
    take(draft);
}

void SATA8P_Event::build_hardware_event(const DEVICE_MGR_HARDWARE_EVENT* event,
                                        const DEVICE_MGR_EVL_HDR* header, unsigned int code) {
    Draft draft;
    hardware(draft, Frame(*header, *event, code).view());
    take(draft);
}

void SATA8P_Event::build_drive_event(const DEVICE_MGR_DRIVE_EVENT* event,
                                     const DEVICE_MGR_EVL_HDR* header, unsigned int code) {
    Draft draft;
    drive(draft, Frame(*header, *event, code).view());
    take(draft);
}

void SATA8P_Event::build_bugcheck_event(const DEVICE_MGR_BUG_CHECK_EVENT* event,
                                        const DEVICE_MGR_EVL_HDR* header, unsigned int code) {
    Draft draft;
    const Frame frame(*header, *event, code);
    bugcheck(draft, frame.view(), sizeof frame);
    take(draft);
}

void SATA8P_Event::build_xport_event_v3(const DM_EVL* record, XmlString& body) {
    appendClass(*this, record, body, kXport);
}
void SATA8P_Event::build_device_event_v3(const DM_EVL* record, XmlString& body) {
    appendClass(*this, record, body, kDevice);
}
void SATA8P_Event::build_attention_event_v3(const DM_EVL* record, XmlString& body) {
    appendClass(*this, record, body, kAttention);
}
void SATA8P_Event::build_bugcheck_event_v3(const DM_EVL* record, XmlString& body) {
    appendClass(*this, record, body, kBugcheckClass);
}
void SATA8P_Event::build_trace_time_v3(const DM_EVL* record, XmlString& body) {
    appendClass(*this, record, body, kTraceTime);
}

} // namespace Pegasus
