// The SMI-S indication service, whose records are those of the SMI-S provider. Only the source name
// differs, which comes from the record.
#pragma once

#include "decoders/management/SMIS_Event.h"

namespace Pegasus {

class MPUEVENT_EXPORT SMI_IND_Event : public SMIS_Event {
public:
    SMI_IND_Event(const EmpEvLogMsg_s* record, int length);
    ~SMI_IND_Event() override;
};

} // namespace Pegasus
