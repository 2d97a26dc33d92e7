#include "decoders/generic/AIMMP_Event.h"
#include "decoders/generic/CACHE28P_Event.h"
#include "decoders/generic/DDLMMP_Event.h"
#include "decoders/generic/ISCSI28P_Event.h"
#include "decoders/generic/SMI_IND_Event.h"

namespace Pegasus {

ISCSI28P_Event::ISCSI28P_Event(const EmpEvLogMsg_s* record, int length)
    : Avrel_Event(record, static_cast<unsigned int>(length)) {}
ISCSI28P_Event::~ISCSI28P_Event() = default;

CACHE28P_Event::CACHE28P_Event(const EmpEvLogMsg_s* record, int length)
    : Avrel_Event(record, static_cast<unsigned int>(length)) {}
CACHE28P_Event::~CACHE28P_Event() = default;

DDLMMP_Event::DDLMMP_Event(const EmpEvLogMsg_s* record, int length)
    : SYSTEM_CONFIGMP_Event(record, length) {}
DDLMMP_Event::~DDLMMP_Event() = default;

AIMMP_Event::AIMMP_Event(const EmpEvLogMsg_s* record, int length)
    : SYSTEM_CONFIGMP_Event(record, length) {}
AIMMP_Event::~AIMMP_Event() = default;

SMI_IND_Event::SMI_IND_Event(const EmpEvLogMsg_s* record, int length)
    : SMIS_Event(record, length) {}
SMI_IND_Event::~SMI_IND_Event() = default;

} // namespace Pegasus
