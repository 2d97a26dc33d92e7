#include "decoders/protocol/ES_ADAPTERMP_Event.h"

#include "decoders/Decode.h"
#include "decoders/common/Numbered.h"
#include "decoders/common/Unknown.h"
#include "decoders/management/Location.h"
#include "decoders/protocol/ES_ADAPTERMP_Layouts.h"

namespace Pegasus {

using namespace mpu;
using namespace mpu::esa;

namespace {

constexpr const Events& events = kEventsOf<kEvents>;

const Events::Entry* entryOf(const Record& record) {
    return events.find(record.eventId(), record.payload().u32(0));
}

constexpr std::string_view kUnhandled = "Unhandled Event by ES_ADAPTERMP";

struct BitTexts {
    const char* lead; // of the element of every bit k that is set: lead, k, rest
    const char* rest;
    const char* some; // the summary: that there are some, followed by their numbers
    const char* none;
};
void putBits(Draft& draft, std::uint64_t bits, const BitTexts& texts) {
    draft.summary.literal(bits != 0 ? texts.some : texts.none);
    for (std::uint64_t left = bits; left != 0; left &= left - 1) {
        const auto k = static_cast<unsigned>(std::countr_zero(left));
        numbered(draft.body, texts.lead, k, texts.rest);
        numbered(draft.summary, left == bits ? " " : ", ", k);
    }
}

} // namespace

void esa::putFunction(Draft& draft, const Record&, const RecordView& data) {
    draft.body.element("Function", locationOf(data).function, " ");
}

void esa::putBuffer(Draft& draft, const Record& record, const RecordView& data) {
    draft.body.literal("<Buffer_Data>").hexBytes(data.bytes(0, record.payloadLength()));
    draft.body.literal("</Buffer_Data> ");
}

void esa::putDriveLeds(Draft& draft, const Record&, const RecordView& data) {
    putBits(draft, data.u32(0) | static_cast<std::uint64_t>(data.u32(4)) << 32,
            {"<Drive_Fault_LED>Drive [", "] Fault LED is ON</Drive_Fault_LED> ",
             "Drive Fault LEDs ON:", "No Drive Fault LED is ON"});
}

void esa::putFanFaults(Draft& draft, const Record&, const RecordView& data) {
    putBits(draft, data.u32(0),
            {"<Fan_Fault_Status>Fan [", "] has Fault</Fan_Fault_Status> ",
             "Fans with Fault:", "No Fan has Fault"});
}

void esa::putFanSpeeds(Draft& draft, const Record&, const RecordView& data) {
    const std::int32_t fans = static_cast<std::int32_t>(data.u32(kFanCountAt));
    for (unsigned fan = 0; fan < kMaxFans && static_cast<std::int32_t>(fan) < fans; ++fan) {
        numbered(draft.body, "<Fan_Speed>Fan [", fan, "] has ");
        draft.body.integer(data.u32(kFanSpeedAt + 4 * fan)).literal(" RPM.</Fan_Speed> ");
    }
}

void esa::decode(const Record& record, Draft& draft) {
    if (const Events::Entry* event = entryOf(record))
        return events.write(draft, *event, record, record.payload());
    constexpr const char* kTitle = "Unknown EventID: 0x";
    traceUnknown(record, "ES_ADAPTERMP_Event", 84, kTitle, record.eventId(), 8);
    draft.title.literal(kTitle).hexLower(record.eventId(), 8);
    draft.summary.literal(kUnhandled);
    draft.body.literal(kUnhandled);
}

ES_ADAPTERMP_Event::ES_ADAPTERMP_Event(const EmpEvLogMsg_s* record, int length)
    : Avrel_Event(record, static_cast<unsigned int>(length)) {
    take(record, length, esa::decode);
}

ES_ADAPTERMP_Event::~ES_ADAPTERMP_Event() = default;

String get_ES_ADAPTERMP_event_body(const EmpEvLogMsg_s* bytes) {
    const Record record(bytes);
    Draft draft;
    if (const Events::Entry* event = entryOf(record))
        events.writeBody(draft, *event, record, record.payload());
    else
        draft.body.literal(kUnhandled);
    return draft.body.string();
}

} // namespace Pegasus
