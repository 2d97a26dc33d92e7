// The second iSCSI data-path module. The first one, whose decoder it shares, has none yet: a plain
// event.
#pragma once

#include "event/Avrel_Event.h"

namespace Pegasus {

class MPUEVENT_EXPORT ISCSI28P_Event : public Avrel_Event {
public:
    ISCSI28P_Event(const EmpEvLogMsg_s* record, int length);
    ~ISCSI28P_Event() override;
};

} // namespace Pegasus
