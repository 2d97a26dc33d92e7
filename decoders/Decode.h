// The decoders as functions: each makes the texts of an event from a record. The exported classes
// are made of these; callers inside the tree take the texts as they are.
#pragma once

#include "event/Draft.h"
#include "event/Record.h"

namespace Pegasus::mpu {

#define MPUEVENT_DECODER(NAME)                                                                     \
    namespace NAME {                                                                               \
    void decode(const Record& record, Draft& draft);                                               \
    }
MPUEVENT_DECODER(awr)
MPUEVENT_DECODER(driveAdmin)
MPUEVENT_DECODER(hacc)
MPUEVENT_DECODER(ichar)
MPUEVENT_DECODER(iomgr)
MPUEVENT_DECODER(mip)
MPUEVENT_DECODER(msm)
MPUEVENT_DECODER(esa)
MPUEVENT_DECODER(iscsi)
MPUEVENT_DECODER(isns)
MPUEVENT_DECODER(ncs)
MPUEVENT_DECODER(ob0)
MPUEVENT_DECODER(ob1)
MPUEVENT_DECODER(sata)
MPUEVENT_DECODER(scc)
MPUEVENT_DECODER(smis)
MPUEVENT_DECODER(snmp)
MPUEVENT_DECODER(startup)
MPUEVENT_DECODER(vpi)
#undef MPUEVENT_DECODER

} // namespace Pegasus::mpu
