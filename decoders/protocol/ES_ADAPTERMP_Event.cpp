#include "decoders/protocol/ES_ADAPTERMP_Event.h"

#include "decoders/common/Unknown.h"
#include "decoders/management/Location.h"
#include "decoders/protocol/ES_ADAPTERMP_Layouts.h"

namespace Pegasus {

using namespace mpu;
using namespace mpu::esa;

namespace {

// "<tag>lead k rest</tag> " for every bit k of `bits` that is set.
void putBits(TextWriter& body, std::uint64_t bits, std::string_view tag, std::string_view lead,
             std::string_view rest) {
    for (; bits != 0; bits &= bits - 1) {
        body.open(tag).put(lead).decimal(static_cast<unsigned>(std::countr_zero(bits)));
        body.put(rest).close(tag).put(" ");
    }
}

void putError(TextWriter& body, RecordView data) {
    write(body, kLayout<kErrorRows>, data);
    body.element("Function", locationOf(data).function, " ");
    write(body, kLayout<kMessageRows>, data);
}

void putInformation(TextWriter& body, RecordView data) {
    const std::uint32_t code = data.u32(0);
    if (code != kReadings) {
        write(body, code == kReport ? kLayout<kReportRows> : kLayout<kInformationRows>, data);
        return;
    }
    write(body, kLayout<kVoltageRows>, data);
    const std::int32_t fans = static_cast<std::int32_t>(data.u32(kFanCountAt));
    for (unsigned fan = 0; fan < kMaxFans && static_cast<std::int32_t>(fan) < fans; ++fan) {
        body.put("<Fan_Speed>Fan [").decimal(fan).put("] has ");
        body.integer(data.u32(kFanSpeedAt + 4 * fan)).put(" RPM.</Fan_Speed> ");
    }
    write(body, kLayout<kThresholdRows>, data);
}

void build(TextWriter& body, RecordView record) {
    const RecordView data = record.subview(sizeof(EmpEvLogMsg_s));
    switch (record.u16(offsetof(EmpEvLogMsg_s, eventId))) {
    case kBugcheck:
        return putError(body, data);
    case kState:
        return write(body, kLayout<kStateRows>, data);
    case kMessageBuffer:
    case kWorkspaceBuffer: {
        const std::size_t length = record.u16(offsetof(EmpEvLogMsg_s, evStructLength));
        body.put("<Buffer_Data>").hexBytes(data.bytes(0, length)).put("</Buffer_Data> ");
        return;
    }
    case kDriveLed:
        write(body, kLayout<kEnclosureRows>, data);
        return putBits(body, data.u32(4) | static_cast<std::uint64_t>(data.u32(8)) << 32,
                       "Drive_Fault_LED", "Drive [", "] Fault LED is ON");
    case kPower:
        return write(body, kLayout<kPowerRows>, data);
    case kFan:
        return putBits(body, data.u32(0), "Fan_Fault_Status", "Fan [", "] has Fault");
    case kTemperature:
        return write(body, kLayout<kTemperatureRows>, data);
    case kAlarm:
        return write(body, kLayout<kAlarmRows>, data);
    case kInformation:
        return putInformation(body, data);
    default:
        body.put("Unhandled Event by ES_ADAPTERMP");
    }
}

// The value of the first element `tag` in `body`, which holds no texts from the record.
std::string_view valueOf(std::string_view body, std::string_view tag) {
    LineWriter opening;
    opening.open(tag);
    const std::size_t at = body.find(opening.view());
    if (at == std::string_view::npos)
        return {};
    const std::size_t value = at + opening.view().size();
    return body.substr(value, body.find('<', value) - value);
}

} // namespace

ES_ADAPTERMP_Event::ES_ADAPTERMP_Event(const EmpEvLogMsg_s* record, int length)
    : Avrel_Event(record, static_cast<unsigned int>(length)) {
    if (!record)
        return;
    const RecordView view = RecordView::of(record, static_cast<unsigned int>(length));
    const std::uint16_t id = record->eventId;
    BodyWriter body(Texts::Safe);
    build(body, view);
    body.assignTo(body_);

    LineWriter line;
    if (id == 0 || id >= std::size(kEvents)) {
        traceUnknown("ES_ADAPTERMP_Event", 84, "Unknown EventID: 0x", record);
        line.put("Unknown EventID: 0x").hexLower(id, 8);
        line.assignTo(eventID_);
        summary_ = eventID_;
        return;
    }
    const Event& event = kEvents[id];
    assignAscii(eventID_, event.title);
    const std::string_view tag = event.telling;
    const std::string_view told = id == kBugcheck ? view.text(sizeof *record + kMessageAt)
                                  : tag.empty()   ? std::string_view()
                                                  : valueOf(body.view(), tag);
    line.put(event.title).put(told.empty() ? "" : ": ").text(told);
    line.assignTo(summary_);
}

ES_ADAPTERMP_Event::~ES_ADAPTERMP_Event() = default;

String get_ES_ADAPTERMP_event_body(const EmpEvLogMsg_s* record) {
    BodyWriter body(Texts::Safe);
    build(body, RecordView::of(record, 0));
    return body.string();
}

} // namespace Pegasus
