// Decoder of the management processor's enclosure-services adapter (ESA), which watches power
// supplies, fans, temperatures, drive fault LEDs and the audible alarm.
#pragma once

#include "event/Avrel_Event.h"

namespace Pegasus {

// Title by event id. The summary is the title, then the first of the values that tell what happened
// where there is one: "ES Adapter Fan Fault Status Event: Fan [2] has Fault".
class MPUEVENT_EXPORT ES_ADAPTERMP_Event : public Avrel_Event {
public:
    ES_ADAPTERMP_Event(const EmpEvLogMsg_s* record, int length);
    ~ES_ADAPTERMP_Event() override;
};

// The body of a record: elements with a blank after each, or a text for an unknown event id. The
// memory behind `record` holds 152 + evStructLength bytes.
MPUEVENT_EXPORT String get_ES_ADAPTERMP_event_body(const EmpEvLogMsg_s* record);

} // namespace Pegasus
