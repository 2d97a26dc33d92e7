// The distributed lock manager, whose records are those of the system-configuration service. Only
// the source name differs, which comes from the record.
#pragma once

#include "decoders/management/SYSTEM_CONFIGMP_Event.h"

namespace Pegasus {

class MPUEVENT_EXPORT DDLMMP_Event : public SYSTEM_CONFIGMP_Event {
public:
    DDLMMP_Event(const EmpEvLogMsg_s* record, int length);
    ~DDLMMP_Event() override;
};

} // namespace Pegasus
