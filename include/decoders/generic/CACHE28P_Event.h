// The second cache module. The first one, whose decoder it shares, has none yet: a plain event.
#pragma once

#include "event/Avrel_Event.h"

namespace Pegasus {

class MPUEVENT_EXPORT CACHE28P_Event : public Avrel_Event {
public:
    CACHE28P_Event(const EmpEvLogMsg_s* record, int length);
    ~CACHE28P_Event() override;
};

} // namespace Pegasus
