#include "decoders/Decode.h"
#include "decoders/common/Unknown.h"
#include "decoders/generic/DRIVEADMP_Event.h"
#include "decoders/generic/HACCMP_Event.h"
#include "decoders/generic/ICHAR_Event.h"
#include "decoders/generic/MSMMP_Event.h"
#include "decoders/generic/OB0_Event.h"
#include "decoders/generic/OB1_Event.h"
#include "decoders/generic/SNMPMP_Event.h"
#include "decoders/generic/Unhandled_Layouts.h"

namespace Pegasus {

using namespace mpu;

void unhandled::putPayload(Draft& draft, const Record& record, const RecordView&) {
    writePayload(draft.body, record);
}

namespace {

// `decoder` is the module with "_Event". Out of line: seven decoders are nothing else.
[[gnu::noinline]] void decodeAs(const char* decoder, int line, const Record& record, Draft& draft) {
    decodeUnknown(record, draft, {decoder, line, "Unknown EventID: 0x", "Unhandled Event by "});
    draft.summary.literal(std::string_view(decoder, std::strlen(decoder) - std::strlen("_Event")));
}

} // namespace

#undef MPUEVENT_UNHANDLED
// The line number is that of the trace line, which shows the event id in decimal after its "0x".
#define MPUEVENT_UNHANDLED(MODULE, NAME, LINE)                                                     \
    void NAME::decode(const Record& record, Draft& draft) {                                        \
        decodeAs(#MODULE "_Event", LINE, record, draft);                                           \
    }                                                                                              \
    MODULE##_Event::MODULE##_Event(const EmpEvLogMsg_s* record, int length)                        \
        : Avrel_Event(record, static_cast<unsigned int>(length)) {                                 \
        take(record, length, NAME::decode);                                                        \
    }                                                                                              \
    MODULE##_Event::~MODULE##_Event() = default;                                                   \
    String get_##MODULE##_such_and_such_event_body(const EmpEvLogMsg_s*) {                         \
        return "Sample Body text";                                                                 \
    }

MPUEVENT_UNHANDLED(ICHAR, ichar, 98)
MPUEVENT_UNHANDLED(OB0, ob0, 102)
MPUEVENT_UNHANDLED(OB1, ob1, 102)
MPUEVENT_UNHANDLED(HACCMP, hacc, 102)
MPUEVENT_UNHANDLED(MSMMP, msm, 102)
MPUEVENT_UNHANDLED(DRIVEADMP, driveAdmin, 98)
MPUEVENT_UNHANDLED(SNMPMP, snmp, 102)

} // namespace Pegasus
