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
MPUEVENT_DECODER(esa)
MPUEVENT_DECODER(iscsi)
MPUEVENT_DECODER(isns)
MPUEVENT_DECODER(ncs)
MPUEVENT_DECODER(sata)
MPUEVENT_DECODER(scc)
MPUEVENT_DECODER(smis)
MPUEVENT_DECODER(startup)
#undef MPUEVENT_DECODER

} // namespace Pegasus::mpu
