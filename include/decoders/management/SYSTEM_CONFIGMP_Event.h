// Decoder of the management processor's system-configuration service: persistent memory, lock
// manager, shared memory, timers, requests and responses, management messages.
#pragma once

#include "decoders/management/LocationBlock.h"
#include "event/Avrel_Event.h"

namespace Pegasus {

using SCC_EVENT_LOCINFO_t = mpu::LocationBlock;

// Title by event code and severity. Bodies are flat runs of elements with a blank after each;
// unless the severity is 1 they end with File, Func and Line. An unknown code gives the summary
// "***UNKNOWN EventID***" and a hexadecimal dump.
class MPUEVENT_EXPORT SYSTEM_CONFIGMP_Event : public Avrel_Event {
public:
    SYSTEM_CONFIGMP_Event(const EmpEvLogMsg_s* record, int length);
    ~SYSTEM_CONFIGMP_Event() override;
};

// Copies the first sentence of `src` (NUL-terminated) into `dst`, at most 63 characters, or `limit`
// where that is greater than 0 and less. It ends at ";", at the blank after a full stop, at the
// ":" of "():", and if need be at the last blank before position 63.
MPUEVENT_EXPORT void SCC_copySummarized(char* dst, const char* src, int limit);

// Unpacks the location block. `function` and `file` have room for 32 characters.
MPUEVENT_EXPORT void SCC_fetch_event_location_information(const SCC_EVENT_LOCINFO_t* block,
                                                          int* line, char* function, char* file);

// Each returns the body of a record and writes its summary into `summary`, which has room for 64
// characters. The memory behind `record` holds 152 + evStructLength bytes.
MPUEVENT_EXPORT String get_SCC_text_event_body(const EmpEvLogMsg_s* record, char* summary);
MPUEVENT_EXPORT String get_SCC_dump_event_body(const EmpEvLogMsg_s* record, char* summary);
MPUEVENT_EXPORT String get_SCC_shmem_event_body(const EmpEvLogMsg_s* record, char* summary);
MPUEVENT_EXPORT String get_SCC_lock_event_body(const EmpEvLogMsg_s* record, char* summary);
MPUEVENT_EXPORT String get_SCC_mmsg_event_body(const EmpEvLogMsg_s* record, char* summary);
MPUEVENT_EXPORT String get_SCC_requestEvent_body(const EmpEvLogMsg_s* record, char* summary);
MPUEVENT_EXPORT String get_SCC_responseEvent_body(const EmpEvLogMsg_s* record, char* summary);
MPUEVENT_EXPORT String get_SCC_timerEvent_body(const EmpEvLogMsg_s* record, char* summary);
MPUEVENT_EXPORT String get_SCC_ddlm_event_body(const EmpEvLogMsg_s* record, char* summary);
MPUEVENT_EXPORT String get_SCC_cpm_event_body(const EmpEvLogMsg_s* record, char* summary);
MPUEVENT_EXPORT String get_SCC_mpu_global_status_event_body(const EmpEvLogMsg_s* record,
                                                            char* summary);

} // namespace Pegasus
