// Decoder of the I/O manager, the data-path module that runs the volume engine: rebuild,
// reconfiguration, parity, bad-block scan, forced errors, metadata and background tasks, with its
// drive requests, queues and messages.
#pragma once

#include "decoders/datapath/Records.h"
#include "event/AvrelEvent.h"

namespace Pegasus {

using IOMGR_EVL = mpu::datapath::Frame;

// What a data area can hold. The fields are in the layout tables (`mpuevent formats`).
using IOMGR_EVL_LWSEM = mpu::datapath::LwsemRecord;     // light-weight semaphore
using IOMGR_EVL_MMSG = mpu::datapath::MmsgRecord;       // management message
using IOMGR_EVL_MSA_Q_EVENT = mpu::datapath::MsaRecord; // message queue
struct IOMGR_EVL_DRP {
    unsigned char bytes[40]; // drive request packet
};
struct IOMGR_EVL_ISURP {
    unsigned char bytes[28]; // internal storage request packet
};
struct IOMGR_EVL_DLM {
    unsigned char bytes[192]; // diskline metadata: a header of 16 bytes, four entries of 44
};
struct IOMGR_EVL_DIB {
    unsigned char bytes[4]; // device information
};
struct IOMGR_EVL_NDFE {
    unsigned char bytes[12]; // forced error on a drive
};
struct IOMGR_EVL_VBGT {
    unsigned char bytes[32]; // background task
};
struct IOMGR_EVL_RCD {
    unsigned char bytes[40];
};
struct IOMGR_EVL_BCD {
    unsigned char bytes[52];
};
struct IOMGR_EVL_FER {
    unsigned char bytes[24]; // forced error record
};
struct IOMGR_EVL_RBT {
    unsigned char bytes[32]; // rebuild task
};
struct IOMGR_EVL_VT {
    unsigned char bytes[264]; // volume table
};
struct IOMGR_EVL_EXT {
    unsigned char bytes[80]; // extent descriptor
};
struct IOMGR_EVL_SGT {
    unsigned char bytes[64]; // scatter-gather group: eight times address and byte count
};

// Title by event class, a body of entries ("<tag>value</tag>", no blank between), the summary in
// most cases the text of the "Request_Type" entry. An event identifier other than 1 gives the
// summary "Unhandled Event by IOMGR8P" and a hexadecimal dump.
class MPUEVENT_EXPORT IOMGR8P_Event : public AvrelEvent {
public:
    IOMGR8P_Event(const EmpEvLogMsg_s* record, int length);
    ~IOMGR8P_Event() override;

    // The operations below add entries to a finished event, each through addEntry(). Those that
    // take a `position` return it as it is.

    // The entries of a whole record, of which 152 + evStructLength bytes are read; sets the
    // summary.
    void get_IOMGR8P_event_body(const EmpEvLogMsg_s* record);

    // The entries of an event of one class, whatever class its frame names; these set the summary.
    // The memory from `event` on holds the event's structures whole, whatever dataLength says;
    // lists end with the data area.
    char* get_IOMGR8P_manager_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_rebuild_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_reconfig_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_bbscan_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_xoe_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_error_recovery_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_metadata_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_isurpproc_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_drpproc_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_bg_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_database_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_isr_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_startup_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_sv_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_dlm_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_crc_init_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_parity_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_parity_init_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_parity_error_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_parity_scan_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_parity_rebuild_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_micro_rebuild_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_volume_init_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_mmsg_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_rcp_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_fe_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_carve_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_bg_sys_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_macro_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_evl_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_assert_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_math_class_event_body(const IOMGR_EVL* event, char* position);
    char* get_IOMGR8P_device_class_event_body(const IOMGR_EVL* event, char* position);

    // The entries of one structure.
    char* get_IOMGR8P_lwsem_event_body(const IOMGR_EVL_LWSEM* lwsem, char* position);
    char* get_IOMGR8P_drp_event_body(const IOMGR_EVL_DRP* drp, char* position);
    char* get_IOMGR8P_msa_event_body(const IOMGR_EVL_MSA_Q_EVENT* msa, char* position);
    char* get_IOMGR8P_isurp_event_body(const IOMGR_EVL_ISURP* isurp, char* position);
    char* get_IOMGR8P_dlm_event_body(const IOMGR_EVL_DLM* dlm, char* position);
    char* get_IOMGR8P_mmsg_event_body(const IOMGR_EVL_MMSG* mmsg, char* position);
    char* get_IOMGR8P_dib_event_body(const IOMGR_EVL_DIB* dib, char* position);
    char* get_IOMGR8P_ndfe_event_body(const IOMGR_EVL_NDFE* ndfe, char* position);
    char* get_IOMGR8P_vbgt_event_body(const IOMGR_EVL_VBGT* vbgt, char* position);
    char* get_IOMGR8P_rcd_event_body(const IOMGR_EVL_RCD* rcd, char* position);
    char* get_IOMGR8P_bcd_event_body(const IOMGR_EVL_BCD* bcd, char* position);
    char* get_IOMGR8P_fer_event_body(const IOMGR_EVL_FER* fer, char* position);
    char* get_IOMGR8P_rbt_event_body(const IOMGR_EVL_RBT* rbt, char* position);
    char* get_IOMGR8P_vt_event_body(const IOMGR_EVL_VT* vt, char* position);
    char* get_IOMGR8P_ext_event_body(const IOMGR_EVL_EXT* ext, char* position);
    char* get_IOMGR8P_sgt_event_body(const IOMGR_EVL_SGT* sgt, char* position);

    // A volume table and the extent descriptors that follow it, all that begin in the data area of
    // `event`, where `volume` is.
    char* dump_volume(const IOMGR_EVL* event, char* position, const char* volume);
    // The scatter-gather groups from `list`, which is in the data area of `event`, to its end. A
    // group ends early at an entry with address 0.
    char* dump_sgt_list(const IOMGR_EVL* event, char* position, const char* list);
};

} // namespace Pegasus
