// Decoders of modules whose records are decoded exactly like another module's. Only the source
// name differs, which comes from the record.
#pragma once

#include "decoders/management/SMIS_Event.h"
#include "decoders/management/SYSTEM_CONFIGMP_Event.h"

namespace Pegasus {

// The first iSCSI data-path and cache modules have no decoder yet: these are plain events.
class MPUEVENT_EXPORT ISCSI28P_Event : public Avrel_Event {
public:
    ISCSI28P_Event(const EmpEvLogMsg_s* record, int length);
    ~ISCSI28P_Event() override;
};

class MPUEVENT_EXPORT CACHE28P_Event : public Avrel_Event {
public:
    CACHE28P_Event(const EmpEvLogMsg_s* record, int length);
    ~CACHE28P_Event() override;
};

class MPUEVENT_EXPORT DDLMMP_Event : public SYSTEM_CONFIGMP_Event {
public:
    DDLMMP_Event(const EmpEvLogMsg_s* record, int length);
    ~DDLMMP_Event() override;
};

class MPUEVENT_EXPORT AIMMP_Event : public SYSTEM_CONFIGMP_Event {
public:
    AIMMP_Event(const EmpEvLogMsg_s* record, int length);
    ~AIMMP_Event() override;
};

class MPUEVENT_EXPORT SMI_IND_Event : public SMIS_Event {
public:
    SMI_IND_Event(const EmpEvLogMsg_s* record, int length);
    ~SMI_IND_Event() override;
};

} // namespace Pegasus
