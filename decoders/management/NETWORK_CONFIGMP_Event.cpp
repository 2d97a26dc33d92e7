#include "decoders/management/NETWORK_CONFIGMP_Event.h"

#include "decoders/Decode.h"
#include "decoders/common/Unknown.h"
#include "decoders/management/NETWORK_CONFIGMP_Layouts.h"

namespace Pegasus {

using namespace mpu;
using namespace mpu::ncs;

namespace {

constexpr const Events& events = kEventsOf<kEvents>;

void putRest(TextWriter& body, const RecordView& data, int length) {
    const int textSize = static_cast<int>(data.text(0).size()) + 1;
    const std::size_t left = length > textSize ? static_cast<std::size_t>(length - textSize) : 0;
    body.literal("<Hex>").hexBytes(data.bytes(static_cast<std::size_t>(textSize), left));
    body.literal("</Hex>\n");
}

// The body of `record` as an event with the code has it.
String bodyOf(unsigned int code, const EmpEvLogMsg_s* bytes) {
    const Record record(bytes);
    Draft draft(code == kManagementPort ? Sanitize::Yes : Sanitize::No);
    events.writeBody(draft, *events.find(code), record, record.payload());
    return draft.body.string();
}

} // namespace

char* ncs::putLinkState(char* out, const std::uint8_t* at) {
    return putText(out, loadBig<std::uint32_t>(at) == 1040 ? "UP" : "DOWN");
}

void ncs::putDump(Draft& draft, const Record& record, const RecordView& data) {
    putRest(draft.body, data, record.payloadLength());
}

void ncs::decode(const Record& record, Draft& draft) {
    const Events::Entry* event = events.find(record.eventId());
    if (!event)
        return decodeUnknown(
            record, draft,
            {"NETWORK_CONFIGMP_Event", 104, "Unknown EventID: 0x", "***UNKNOWN EventID***"});
    if (record.eventId() != kManagementPort)
        draft.body.setSanitize(Sanitize::No);
    events.write(draft, *event, record, record.payload());
}

NETWORK_CONFIGMP_Event::NETWORK_CONFIGMP_Event(const EmpEvLogMsg_s* record, int length)
    : Avrel_Event(record, static_cast<unsigned int>(length)) {
    take(record, length, ncs::decode);
}

NETWORK_CONFIGMP_Event::~NETWORK_CONFIGMP_Event() = default;

String get_NCS_tcpConn_stats_event_body(const EmpEvLogMsg_s* record) {
    return bodyOf(1056, record);
}
String get_NCS_tcpSys_stats_event_body(const EmpEvLogMsg_s* record) {
    return bodyOf(1055, record);
}
String get_NCS_mgmt_stats_event_body(const EmpEvLogMsg_s* record) {
    return bodyOf(kManagementPort, record);
}
String get_NCS_ipTcpIscsi_stats_event_body(const EmpEvLogMsg_s* record) {
    return bodyOf(1053, record);
}
String get_NCS_mac_stats_event_body(const EmpEvLogMsg_s* record) {
    const unsigned int code = record->eventId;
    if (code == 1051 || code == 1052)
        return bodyOf(code, record);
    BodyWriter body;
    body.literal("<ClassName>NetworkMacStats</ClassName> ");
    write(body, kLayout<kPortStatsRows>, Record(record).payload());
    return body.string();
}
String get_NCS_link_event_body(const EmpEvLogMsg_s* record) {
    return bodyOf(1040, record);
}
String get_NCS_responseEvent_body(const EmpEvLogMsg_s* record) {
    return bodyOf(1026, record);
}
String get_NCS_mmsg_event_body(const EmpEvLogMsg_s* record) {
    return bodyOf(1021, record);
}
String get_NCS_text_event_body(const EmpEvLogMsg_s* record) {
    return bodyOf(1000, record);
}
String get_NCS_dump_event_body(const EmpEvLogMsg_s* record, int length) {
    const RecordView payload = Record(record).payload();
    BodyWriter body;
    write(body, kLayout<kTextRows>, payload);
    putRest(body, payload, length);
    return body.string();
}

String get_NCS_text_event_summary(const EmpEvLogMsg_s* record) {
    return toString(Record(record).payload().text(0, 255).raw());
}

} // namespace Pegasus
