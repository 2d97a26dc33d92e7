// Decoder of the management processor's start-up supervisor: messages, crash reports, stack dumps.
#pragma once

#include "event/Avrel_Event.h"

namespace Pegasus {

// Title and summary by event code. Bodies are flat runs of elements with a blank after each, some
// of them in groups. An unknown code gives the summary "Unhandled Event by STARTUPMP" and a
// hexadecimal dump.
class MPUEVENT_EXPORT STARTUPMP_Event : public Avrel_Event {
public:
    STARTUPMP_Event(const EmpEvLogMsg_s* record, int length);
    ~STARTUPMP_Event() override;
};

// Each returns the body of a record. The memory behind `record` holds 152 + evStructLength bytes.
MPUEVENT_EXPORT String get_STARTUPMP_MSG_STRING(const EmpEvLogMsg_s* record);
MPUEVENT_EXPORT String get_STARTUPMP_MSG_MMCH(const EmpEvLogMsg_s* record);
MPUEVENT_EXPORT String get_STARTUPMP_MSG_PARTIAL_MMSG(const EmpEvLogMsg_s* record);
MPUEVENT_EXPORT String get_SignalInfo(const EmpEvLogMsg_s* record);
// At most 32768 characters: the words that would pass that are left out, and a line is traced.
MPUEVENT_EXPORT String get_Ravel_stack_dump(const EmpEvLogMsg_s* record);
// Traces a payload that is too short for one register and one that ends inside a word.
MPUEVENT_EXPORT String get_Ravel_INVALID_STATE_MMSG(const EmpEvLogMsg_s* record);

} // namespace Pegasus
