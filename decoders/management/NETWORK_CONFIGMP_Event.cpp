#include "decoders/management/NETWORK_CONFIGMP_Event.h"

#include "decoders/common/Unknown.h"
#include "decoders/management/Location.h"
#include "decoders/management/NETWORK_CONFIGMP_Layouts.h"
#include "decoders/management/Titles.h"
#include "event/Label.h"

namespace Pegasus {

using namespace mpu;
using namespace mpu::ncs;

namespace {

enum Kind : std::uint8_t {
    kText,
    kDump,
    kMessage,
    kResponse,
    kLink,
    kPortStats,
    kOffloadStats,
    kManagementPortStats,
    kTcpStats,
    kConnectionStats,
};

constexpr std::uint8_t kNoText = 0xFF;

// How the body of an event is made: class name, structure, text, each where there is one.
struct Builder {
    const Layout* layout;
    std::uint8_t textAt; // in the payload
    Label<24> className{};
};
constexpr Builder kBuilders[] = {
    {nullptr, 0},
    {nullptr, 0},
    {&kLayout<kMessageRows>, kMessageSize},
    {&kLayout<kResponseRows>, kResponseSize},
    {&kLayout<kLinkRows>, kNoText},
    {&kLayout<kPortStatsRows>, kNoText, "NetworkMacStats"},
    {&kLayout<kOffloadStatsRows>, kNoText, "NetworkRvlStats"},
    {&kLayout<kManagementPortStatsRows>, kNoText, "NetworkOutbandStats"},
    {&kLayout<kTcpStatsRows>, kNoText, "NetworkTcpStats"},
    {&kLayout<kConnectionStatsRows>, kNoText, "NetworkConnectionStats"},
};

struct Event {
    std::uint16_t code;
    Label<33> title;
    Kind kind;
    std::uint8_t numberAt;    // in the payload
    Label<42> summary;        // up to the number; empty: the payload's text
    Label<26> behindNumber{}; // empty: there is no number
};

constexpr Event kEvents[] = {
    {1000, "NCS:Informational Text", kText, 0, ""},
    {1001, "NCS:Warning message", kText, 0, ""},
    {1002, "NCS:Error message", kText, 0, ""},
    {1003, "Info", kDump, 0, "Informational Text and Hex Dump Data"},
    {1021, "NCS MMSG Request Error", kMessage, 0, "NCS: MMSG with unknown Protocol"},
    {1022, "NCS MMSG Request Error", kMessage, 0, "NCS: MMSG with invalid Request type"},
    {1023, "NCS MMSG Request Error", kMessage, 0, "NCS: MMSG with invalid Requester"},
    {1024, "NCS MMSG Request Error", kMessage, 0, "NCS: MMSG request with Response bit set"},
    {1025, "NCS MMSG Request Error", kMessage, 0, "NCS: MMSG Response Timedout"},
    {1026, "NCS CEE Event registration Error", kResponse, 0,
     "NCS: Failed to Register CEE response event"},
    {1030, "NCS: Socket Open Failure", kText, 0, "NCS: Socket open operation Failed"},
    {1040, "LAG Port Status Event", kLink, 0, "LAG Port ", ", Operational Status UP"},
    {1041, "LAG Port Status Event", kLink, 0, "LAG Port ", ", Operational Status DOWN"},
    {1051, "Physical Port Statistics", kPortStats, 4, "Physical Port ", " stats"},
    {1052, "LAG Port Statistics", kPortStats, 4, "LAG Port ", " stats"},
    {1053, "IP/TCP/iSCSI Statistics", kOffloadStats, 4, "Controller ", " IP/TCP/iSCSI stats"},
    {1054, "Management Port Statistics", kManagementPortStats, 0, "Management Port objId ",
     " stats"},
    {1055, "TCP System Statistics", kTcpStats, 4, "Controller ", " TCP System stats"},
    {1056, "TCP Connection Statistics", kConnectionStats, 4, "Controller ",
     " TCP Connection stats"},
};

constexpr std::size_t kLongestSummary = 255;

std::string_view classNameOf(Kind kind, unsigned int code) {
    if (kind == kPortStats && code == 1051)
        return "NetworkPortStats";
    if (kind == kPortStats && code == 1052)
        return "NetworkLagStats";
    return kBuilders[kind].className;
}

Texts textsOf(Kind kind) {
    return kind == kManagementPortStats ? Texts::Safe : Texts::Raw;
}

// `length` counts the payload's bytes.
void build(Kind kind, RecordView record, int length, TextWriter& body) {
    const Builder& builder = kBuilders[kind];
    const RecordView payload = record.from(sizeof(EmpEvLogMsg_s));
    const std::string_view className =
        classNameOf(kind, record.u16(offsetof(EmpEvLogMsg_s, eventId)));
    if (!className.empty())
        body.element("ClassName", className, " ");
    if (builder.layout)
        write(body, *builder.layout, payload);
    if (kind == kLink) {
        body.element("Operational_Status", payload.u32(kLinkCodeAt) == kLinkUp ? "UP" : "DOWN",
                     " ");
        write(body, kLayout<kLinkStateRows>, payload);
    }
    if (builder.textAt != kNoText) {
        const std::string_view text = payload.text(builder.textAt);
        LocatedRecord::putText(body, text);
        if (kind == kDump) {
            const int left = length - static_cast<int>(text.size()) - 1;
            const std::size_t count = left > 0 ? static_cast<std::size_t>(left) : 0;
            body.put("<Hex>").hexBytes(payload.bytes(text.size() + 1, count)).put("</Hex>\n");
        }
    }
}

String bodyOf(Kind kind, const EmpEvLogMsg_s* record, int length) {
    BodyWriter body(textsOf(kind));
    build(kind, RecordView::of(record, 0), length, body);
    return body.string();
}

String bodyOf(Kind kind, const EmpEvLogMsg_s* record) {
    return bodyOf(kind, record, record->evStructLength);
}

std::string_view textSummary(RecordView payload) {
    return payload.text(0, kLongestSummary);
}

void summarize(const Event& event, RecordView payload, TextWriter& line) {
    line.put(event.summary);
    if (event.summary.empty())
        line.text(textSummary(payload));
    if (!event.behindNumber.empty())
        line.integer(payload.u32(event.numberAt)).put(event.behindNumber);
}

} // namespace

NETWORK_CONFIGMP_Event::NETWORK_CONFIGMP_Event(const EmpEvLogMsg_s* record, int length)
    : Avrel_Event(record, static_cast<unsigned int>(length)) {
    if (!record)
        return;
    const Event* event = findEvent(kEvents, record->eventId);
    if (!event) {
        traceUnknown("NETWORK_CONFIGMP_Event", 104, "Unknown EventID: 0x", record);
        assignAscii(summary_, "***UNKNOWN EventID***");
        assignHexBody(body_, record);
        return;
    }
    const RecordView view = RecordView::of(record, static_cast<unsigned int>(length));
    BodyWriter body(textsOf(event->kind));
    LineWriter summary;
    build(event->kind, view, record->evStructLength, body);
    summarize(*event, view.from(sizeof *record), summary);
    assignAscii(eventID_, event->title);
    summary.assignTo(summary_);
    body.assignTo(body_);
}

NETWORK_CONFIGMP_Event::~NETWORK_CONFIGMP_Event() = default;

String get_NCS_tcpConn_stats_event_body(const EmpEvLogMsg_s* record) {
    return bodyOf(kConnectionStats, record);
}
String get_NCS_tcpSys_stats_event_body(const EmpEvLogMsg_s* record) {
    return bodyOf(kTcpStats, record);
}
String get_NCS_mgmt_stats_event_body(const EmpEvLogMsg_s* record) {
    return bodyOf(kManagementPortStats, record);
}
String get_NCS_ipTcpIscsi_stats_event_body(const EmpEvLogMsg_s* record) {
    return bodyOf(kOffloadStats, record);
}
String get_NCS_mac_stats_event_body(const EmpEvLogMsg_s* record) {
    return bodyOf(kPortStats, record);
}
String get_NCS_link_event_body(const EmpEvLogMsg_s* record) {
    return bodyOf(kLink, record);
}
String get_NCS_responseEvent_body(const EmpEvLogMsg_s* record) {
    return bodyOf(kResponse, record);
}
String get_NCS_mmsg_event_body(const EmpEvLogMsg_s* record) {
    return bodyOf(kMessage, record);
}
String get_NCS_text_event_body(const EmpEvLogMsg_s* record) {
    return bodyOf(kText, record);
}
String get_NCS_dump_event_body(const EmpEvLogMsg_s* record, int length) {
    return bodyOf(kDump, record, length);
}

String get_NCS_text_event_summary(const EmpEvLogMsg_s* record) {
    return toString(textSummary(RecordView::of(record, 0).from(sizeof *record)));
}

} // namespace Pegasus
