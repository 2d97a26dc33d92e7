// Decoder of the VPI module, whose records are plain text: lines of key=value pairs, or of words.
#pragma once

#include "event/Avrel_Event.h"

namespace Pegasus {

// The payload (offset 152) is the text; it ends at its NUL or with the payload. Title "General
// message", the first line as summary. An event identifier other than 1 gives the summary
// "Unhandled Event by VPI8P" and a hexadecimal dump.
class MPUEVENT_EXPORT VPI8P_Event : public Avrel_Event {
public:
    VPI8P_Event(const EmpEvLogMsg_s* record, int length);
    ~VPI8P_Event() override;
};

// The body of a record, of which 152 + evStructLength bytes are read. A line with pairs becomes
// "<Values><key>value</key> ...</Values>", another one "<Text1>line</Text1> ", "<Text2>" ... A
// value ends at a comma or blank.
MPUEVENT_EXPORT String get_VPI8P_MSG_STRING(const EmpEvLogMsg_s* record);

} // namespace Pegasus
