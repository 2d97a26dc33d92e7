#include "decoders/common/Unknown.h"
#include "decoders/generic/DRIVEADMP_Event.h"
#include "decoders/generic/HACCMP_Event.h"
#include "decoders/generic/ICHAR_Event.h"
#include "decoders/generic/MSMMP_Event.h"
#include "decoders/generic/OB0_Event.h"
#include "decoders/generic/OB1_Event.h"
#include "decoders/generic/SNMPMP_Event.h"
#include "event/TextWriter.h"

namespace Pegasus {

using namespace mpu;

#undef MPUEVENT_UNHANDLED
// The line number is that of the trace line, which shows the event id in decimal behind its "0x".
#define MPUEVENT_UNHANDLED(MODULE, LINE)                                                           \
    MODULE##_Event::MODULE##_Event(const EmpEvLogMsg_s* record, int length)                        \
        : Avrel_Event(record, static_cast<unsigned int>(length)) {                                 \
        if (!record)                                                                               \
            return;                                                                                \
        traceUnknown(#MODULE "_Event", LINE, "Unknown EventID: 0x", record);                       \
        assignAscii(summary_, "Unhandled Event by " #MODULE);                                      \
        assignHexBody(body_, record);                                                              \
    }                                                                                              \
    MODULE##_Event::~MODULE##_Event() = default;                                                   \
    String get_##MODULE##_such_and_such_event_body(const EmpEvLogMsg_s*) {                         \
        return "Sample Body text";                                                                 \
    }

MPUEVENT_UNHANDLED(ICHAR, 98)
MPUEVENT_UNHANDLED(OB0, 102)
MPUEVENT_UNHANDLED(OB1, 102)
MPUEVENT_UNHANDLED(HACCMP, 102)
MPUEVENT_UNHANDLED(MSMMP, 102)
MPUEVENT_UNHANDLED(DRIVEADMP, 98)
MPUEVENT_UNHANDLED(SNMPMP, 102)

} // namespace Pegasus
