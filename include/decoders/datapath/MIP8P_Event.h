// Decoder of the message/interrupt processor, the data-path module that starts the processor's ARC
// cores, fields interrupts, runs the DMA and message queues and reports bug-checks.
#pragma once

#include "decoders/datapath/Records.h"
#include "event/Avrel_Event.h"

namespace Pegasus {

using MIP_EVL = mpu::datapath::Frame;

// What a data area can hold. The fields are in the layout tables (`mpuevent formats`).
using MIP_EVL_LWSEM = mpu::datapath::LwsemRecord;     // light-weight semaphore
using MIP_EVL_MMSG = mpu::datapath::MmsgRecord;       // management message
using MIP_EVL_MSA_Q_EVENT = mpu::datapath::MsaRecord; // message queue

// Title by event class, a body of elements with a blank after each ("<tag>value</tag> "), the text
// of the "Request_Type" element as summary; an assert has the file name for it. An event identifier
// other than 1 gives the summary "Unhandled Event by MIP" and a hexadecimal dump.
class MPUEVENT_EXPORT MIP8P_Event : public Avrel_Event {
public:
    MIP8P_Event(const EmpEvLogMsg_s* record, int length);
    ~MIP8P_Event() override;

    // The body of a record, of which 152 + evStructLength bytes are read; sets the summary.
    String get_MIP8P_event_body(const EmpEvLogMsg_s* record);

    // The operations below write elements and a NUL at `out` and return the position after the
    // last character, that of the NUL. `out` has room for this many characters; of the bad data of
    // a bug-check so much is written that it suffices.
    static constexpr unsigned int kOutputRoom = 8192;

    // The elements of one class, whatever class the frame names; these set the summary. The memory
    // from `event` on holds the event's structure whole, whatever dataLength says; the file of an
    // assert and bad data end with the data area. Texts are written as the record has them.
    char* get_MIP8P_management_class_event_body(const MIP_EVL* event, char* out);
    char* get_MIP8P_isr_class_event_body(const MIP_EVL* event, char* out);
    char* get_MIP8P_startup_class_event_body(const MIP_EVL* event, char* out);
    char* get_MIP8P_mmsg_class_event_body(const MIP_EVL* event, char* out);
    char* get_MIP8P_evl_class_event_body(const MIP_EVL* event, char* out);
    char* get_MIP8P_assert_class_event_body(const MIP_EVL* event, char* out);
    char* get_MIP8P_dma_class_event_body(const MIP_EVL* event, char* out);
    char* get_MIP8P_bugcheck_class_event_body(const MIP_EVL* event, char* out);
    // No event class leads to these two.
    char* get_MIP8P_math_class_event_body(const MIP_EVL* event, char* out);
    char* get_MIP8P_database_class_event_body(const MIP_EVL* event, char* out);

    // The elements of one structure.
    static char* get_MIP8P_lwsem_event_body(const MIP_EVL_LWSEM* lwsem, char* out);
    static char* get_MIP8P_mmsg_event_body(const MIP_EVL_MMSG* mmsg, char* out);
    static char* get_MIP8P_msa_event_body(const MIP_EVL_MSA_Q_EVENT* msa, char* out);
    // `data` holds 324 bytes, 48 bytes, and 28 bytes followed by the bad data.
    static char* get_MIP8P_bugcheck_fatal_irq_event_event_body(const char* data, char* out);
    static char* get_MIP8P_bugcheck_fatal_msa_event_event_body(const char* data, char* out);
    static char* get_MIP8P_bugcheck_invalid_param_event_body(const char* data, char* out);
};

} // namespace Pegasus
