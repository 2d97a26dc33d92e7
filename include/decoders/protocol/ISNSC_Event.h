// Decoder of the management processor's iSNS client: the messages that it exchanges with other
// services (ICS) and with the iSNS server.
#pragma once

#include "event/Avrel_Event.h"

namespace Pegasus {

// Title by kind and reason ("ICS REQ Rcvd"). The body is one element with all fields of the
// message, at most 16383 characters before it is made safe: what is longer is cut. Kinds without a
// layout give a hexadecimal dump.
class MPUEVENT_EXPORT ISNSC_Event : public Avrel_Event {
public:
    ISNSC_Event(const EmpEvLogMsg_s* record, int length);
    ~ISNSC_Event() override;
};

} // namespace Pegasus
