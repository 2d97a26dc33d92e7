// Decoder of the management processor's SMI-S provider: texts, management messages, managed
// objects, key=value data.
#pragma once

#include "decoders/management/LocationBlock.h"
#include "event/Avrel_Event.h"

namespace Pegasus {

using SMI_EVENT_LOCINFO_t = mpu::LocationBlock;

// Title by event code and severity. Bodies are flat runs of elements with a blank after each;
// unless the severity is 1 they end with File, Func and Line. An unknown code gives the summary
// "***UNKNOWN SMIS EventID***" and a hexadecimal dump.
class MPUEVENT_EXPORT SMIS_Event : public Avrel_Event {
public:
    SMIS_Event(const EmpEvLogMsg_s* record, int length);
    ~SMIS_Event() override;
};

// Copies the first sentence of `src` (NUL-terminated) into `dst`, at most 62 characters, or `limit`
// where that is greater than 0 and less. It ends before "." or ";"; before the ")" of "():"; and a
// text that is longer at its last blank, or before the "(" that the blank follows. A longer text
// without a blank gives an empty summary.
MPUEVENT_EXPORT void SMIS_copySummarized(char* dst, const char* src, int limit);

// Unpacks the location block. `function` and `file` have room for 32 characters.
MPUEVENT_EXPORT void SMIS_fetch_event_location_information(const SMI_EVENT_LOCINFO_t* block,
                                                           int* line, char* function, char* file);

// Each returns the body of a record and writes its summary into `summary`, which has room for 64
// characters. The memory behind `record` holds 152 + evStructLength bytes and is not changed.
MPUEVENT_EXPORT String get_SMIS_text_event_body(const EmpEvLogMsg_s* record, char* summary);
MPUEVENT_EXPORT String get_SMIS_dump_event_body(const EmpEvLogMsg_s* record, char* summary);
MPUEVENT_EXPORT String get_SMIS_mmsg_event_body(const EmpEvLogMsg_s* record, char* summary);
MPUEVENT_EXPORT String get_SMIS_cmapMo_event_body(const EmpEvLogMsg_s* record, char* summary);
MPUEVENT_EXPORT String get_SMIS_keyvalue_event_body(const EmpEvLogMsg_s* record, char* summary);

} // namespace Pegasus
