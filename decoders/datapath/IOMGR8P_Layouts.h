// Tables of the I/O manager decoder. Offsets are from the start of each structure.
#pragma once

#include "decoders/datapath/Datapath_Layouts.h"

namespace Pegasus::mpu::iomgr {

using namespace datapath;
using namespace std::string_view_literals;

// ---- structures --------------------------------------------------------------------------------

inline constexpr Row kFrameRows[] = {
    {"Event_Type", "%d", u32(kClassAt)},
    {"Event_Number", "%d", u32(kCodeAt)},
    {"Event_Line_Number", "%d", u32(kLineAt)},
};

// Quantities of 64 bits are shown as two words. Some structures hold the low word first: there the
// word at the higher offset is shown first.

// Drive request packet.
inline constexpr Row kDrpRows[] = {
    {"Drive_Number", "%d", u32(28)},
    {"DRP_Command", "0x%08X", u8(34)},
    {"DRP_PLBN", "0x%08X:%08X", u32(8), u32(4)},
    {"DRP_Xfer_Count", "0x%08X", u32(12)},
    {"DRP_Error_PLBN", "0x%08X:%08X", u32(20), u32(16)},
    {"DRP_Residual_Count", "0x%08X", u32(24)},
    {"DRP_Status", "0x%08X", u8(32)},
    {"DRP_Status_Flags", "0x%08X", u8(33)},
    {"DRP_Command_Flags", "0x%08X", u8(35)},
    {"DRP_Type", "0x%08X", u8(1)},
    {"DRP_Diskline_Bitmap", "0x%08X", u32(36)},
};
inline constexpr unsigned kDrpSize = 40;

// Internal storage request packet.
inline constexpr Row kIsurpRows[] = {
    {"isurp_opcode", "0x%08X", u8(1)},
    {"isurp_current_state", "0x%08X", u8(2)},
    {"isurp_sender", "0x%08X", u8(3)},
    {"isurp_scsi_flags", "0x%08X", u32(4)},
    {"isurp_cache_mgr_flags", "0x%08X", u32(8)},
    {"isurp_io_mgr_flags", "0x%08X", u32(12)},
    {"isurp_starting_vlbn", "0x%08X:%08X", u32(20), u32(16)},
    {"isurp_requested_block_count", "0x%08X", u32(24)},
};
inline constexpr unsigned kIsurpSize = 28;

// Diskline metadata: a header and four entries.
inline constexpr Row kDlmRows[] = {
    {"dlm_flags", "0x%08X", u8(1)},       {"dlm_cache_index", "0x%08X", u8(2)},
    {"dlm_index", "0x%08X", u32(4)},      {"dlm_ref_index", "0x%08X", u32(8)},
    {"dlm_fe_device", "0x%08X", u32(12)},
};
inline constexpr Row kDlmEntryRows[] = {
    {"dlm_dlme_vlbn_h", "0x%08X:%08X", u32(4), u32(0)},
    {"dlm_dlme_unique_id", "0x%08X:%08X", u32(8), u32(12)},
    {"dlm_dlme_plbn", "0x%08X:%08X", u32(20), u32(16)},
    {"dlm_dlme_fe_data", "0x%08X", u32(24)},
    Row("dlm_dlme_parity_fe_data", "0x%08X", u16(28)).repeat(8, 2),
};
inline constexpr unsigned kDlmHeaderSize = 16;
inline constexpr unsigned kDlmEntrySize = 44;
inline constexpr unsigned kDlmEntries = 4;
inline constexpr unsigned kDlmSize = kDlmHeaderSize + kDlmEntries * kDlmEntrySize;

// Device information.
inline constexpr Row kDibRows[] = {
    {"Device", "%d", u16(0)},
    {"State", "%d", u16(2)},
};
inline constexpr unsigned kDibSize = 4;

// Forced error on a drive.
inline constexpr Row kNdfeRows[] = {
    {"ndfe_flags", "0x%08X", u16(0)},
    {"ndfe_device_id", "0x%08X", u16(2)},
    {"ndfe_plbn", "0x%08X:%08X", u32(8), u32(4)},
};
inline constexpr unsigned kNdfeSize = 12;

// State of a background task; HWM is its high-water mark.
inline constexpr Row kVbgtRows[] = {
    {"BTSN", "%d", u32(0)},
    {"Volume_Number", "%d", u32(4)},
    {"Task_Priority", "%d", u32(8)},
    {"Task_Type", "0x%08X", u32(12)},
    {"Task_Status", "0x%08X", u32(16)},
    {"Task_Flags", "0x%08X", u32(20)},
    {"HWM", "0x%08X:%08X", u32(24), u32(28)},
};
inline constexpr unsigned kVbgtSize = 32;

inline constexpr Row kRcdRows[] = {
    {"rcd_cache_index", "%d", u8(0)},
    {"rcd_index", "%d", u16(36)},
    {"rcd_btsn", "%d", u32(28)},
    {"rcd_len", "0x%08X", u16(2)},
    {"rcd_vlbn", "0x%08X:%08X", u32(8), u32(4)},
    {"rcd_flags", "0x%08X", u32(32)},
    {"rcd_state", "0x%08X", u16(38)},
    {"rcd_durable_name", "0x%08X:%08X:%08X:%08X", u32(12), u32(16), u32(20), u32(24)},
};
inline constexpr unsigned kRcdSize = 40;

inline constexpr Row kBcdRows[] = {
    {"bcd_btsn", "%d", u32(40)},
    {"bcd_cache_index", "%d", u8(0)},
    {"bcd_index", "%d", u16(2)},
    {"bcd_highwater", "0x%08X:%08X", u32(8), u32(4)},
    {"bcd_men", "%d", u32(12)},
    {"bcd_mlbn", "0x%08X:%08X", u32(20), u32(16)},
    {"bcd_flags", "0x%08X", u32(44)},
    {"bcd_opcode", "0x%08X", u16(48)},
    {"bcd_state", "0x%08X", u16(50)},
    {"bcd_durable_name", "0x%08X:%08X:%08X:%08X", u32(24), u32(28), u32(32), u32(36)},
};
inline constexpr unsigned kBcdSize = 52;

// Forced error record.
inline constexpr Row kFerRows[] = {
    {"fer_volume_index", "0x%08X", u16(0)},        {"fer_flags", "0x%08X", u16(2)},
    {"fer_device_id", "0x%08X", u16(4)},           {"fer_vlbn", "0x%08X:%08X", u32(12), u32(8)},
    {"fer_plbn", "0x%08X:%08X", u32(20), u32(16)},
};
inline constexpr unsigned kFerSize = 24;

// Rebuild task.
inline constexpr Row kRbtRows[] = {
    {"rbt_btsn", "%d", u32(28)},
    {"rbt_volume_index", "%d", u16(2)},
    {"rbt_task_opcode", "0x%08X", u16(0)},
    {"rbt_flags", "0x%08X", u32(4)},
    {"rbt_highwater", "0x%08X:%08X", u32(12), u32(8)},
    {"rbt_men", "%d", u32(16)},
    {"rbt_mlbn", "0x%08X:%08X", u32(24), u32(20)},
};
inline constexpr unsigned kRbtSize = 32;

// Volume table. Readers of the output know its flags under both names.
inline constexpr Row kVtRows[] = {
    {"vt_common_flags", "0x%08X", u32(0)},
    {"vt_common_organization", "0x%08X", u8(4)},
    {"vt_common_stripe_width", "0x%08X", u8(6)},
    {"vt_common_mirror_count", "0x%08X", u8(7)},
    {"vt_common_volume_number", "0x%08X", u32(8)},
    {"vt_common_volume_capacity", "%llu", u64(16)},
    {"vt_common_volume_highwater_mark", "%llu", u64(24)},
    {"vt_common_volume_state", "0x%08X", u32(48)},
    {"iomgr_vt_flags", "0x%08X", u32(240)},
    Row("iomgr_vt_", "0x%08X", u32(240)).overlay(),
    {"iomgr_vt_extent_count", "0x%08X", u16(246)},
    {"iomgr_vt_num_extent_descriptors", "0x%08X", u32(260)},
    {"iomgr_vt_volume_db_update_count", "0x%08X:%08X", u32(252), u32(256)},
    {"iomgr_vt_chunk_size_shift_bits", "0x%08X", u32(248)},
};
inline constexpr unsigned kVtSize = 264;

// Extent descriptor.
inline constexpr Row kExtRows[] = {
    {"ext_men", "%d", u8(1)},
    {"ext_status", "0x%08X", u16(4)},
    {"ext_flag", "0x%08X", u16(6)},
    {"ext_mlbn", "0x%08X:%08X", u32(8), u32(12)},
    {"ext_initial_plbn", "0x%08X:%08X", u32(16), u32(20)},
    {"ext_size", "0x%08X:%08X", u32(24), u32(28)},
    {"ext_vlbn_offset", "0x%08X:%08X", u32(32), u32(36)},
    {"ext_s_chunk", "0x%08X:%08X", u32(40), u32(44)},
    {"ext_e_chunk", "0x%08X:%08X", u32(48), u32(52)},
    {"ext_rebuild_highwater_mark", "0x%08X:%08X", u32(56), u32(60)},
    {"ext_durable_name", "0x%08X:%08X:%08X:%08X", u32(64), u32(68), u32(72), u32(76)},
};
inline constexpr unsigned kExtSize = 80;

// One entry of a scatter-gather group, which has up to eight.
inline constexpr Row kSgtRows[] = {
    {"sgt_address", "0x%08X", u32(0)},
    {"sgt_byte_count", "0x%08X", u32(4)},
};
inline constexpr unsigned kSgtEntrySize = 8;
inline constexpr unsigned kSgtEntries = 8;
inline constexpr unsigned kSgtSize = kSgtEntries * kSgtEntrySize;

inline constexpr Row kVolumeNumberRows[] = {{"Volume_Number", "0x%08X", u32(0)}};
inline constexpr Row kDriveRows[] = {{"Drive", "%d", u32(0)}};

// ---- classes and codes -------------------------------------------------------------------------

inline constexpr unsigned kClasses = 34; // 1 to 33, and 0 for what is none
inline constexpr unsigned kDeviceClass = 33;

// Titles by class. The math class has none of its own.
inline constexpr FixedString<34> kTitles[kClasses] = {
    "Unknown Event",
    "I/O Manager Event",
    "Rebuild Task Event",
    "Reconfigure Task Event",
    "Bad Block Scan Task Event",
    "XOR Engine Event",
    "Drive Error",
    "VMH Task Event",
    "ISURP ProcessEvent",
    "DRP Process Event",
    "Background Task Event",
    "Database Event",
    "ISR Event",
    "Startup Task Event",
    "Storage Virtualization Event",
    "Diskline Metadata Event",
    "CRC Initialize Task Event",
    "Parity Volume Event",
    "Parity Initialize Task Event",
    "Parity Error Task Event",
    "Parity Scan Task Event",
    "Parity Rebuild Task Event",
    "Micro Rebuild Task Event",
    "Volume Initialize Task Event",
    "Management Message Event",
    "Redundant Controller Process Event",
    "Forced Error Event",
    "Resource Carving Event",
    "Background System Task Event",
    "Macro Task Event",
    "EVL Event",
    "Resource Assert Event",
    "Unknown Event",
    "Drive Error",
};

// What the data area of an event holds.
enum class Dump : std::uint8_t {
    None,
    VolumeNumber,
    Message,
    Interrupt,
    Lwsem,
    Drp,
    Msa,
    Isurp,
    Dlm,
    Mmsg,
    Dib,
    Ndfe,
    Vbgt,
    Rcd,
    Bcd,
    Rbt,
    Vt,      // a volume table and its extents
    Sgt,     // scatter-gather groups
    DrpVt,   // a DRP, behind it a volume table and its extents
    DrpSgt,  // a DRP, behind it scatter-gather groups
    IsurpVt, // likewise behind an ISURP
    IsurpSgt,
    FerDlm,    // a forced error record, behind it a DLM
    Failed,    // a drive number: the drive failed
    Fatal,     // the same, shorter in the summary
    Exception, // a drive number: the drive is in exception
    File,      // name of a source file
};

using enum Dump;
using Event = EventCode<Dump, 41>;

// One numbering for all classes, though a class may word a code in its own way.
inline constexpr Event kEvents[] = {
    // clang-format off
    // manager
    {1, 10, "Manager Unexpected Message Type", Message},
    {1, 32, "Manager MSA Event", Msa},
    {1, 516, "DRP Detected Error Status", Drp},
    {1, 26, "Manager Invalid DRP", Drp},
    {1, 1, "Manager MQX Event", Lwsem},
    {1, 9, "Manager Unexpected Interrupt", Interrupt},
    // rebuild
    {2, 26, "Rebuild Invalid DRP", Drp},
    {2, 5, "Rebuild Extent Search Error", Vt},
    {2, 11, "Rebuild Unexpected Error", None},
    {2, 3, "Rebuild Unregonized Volume Type", Vt},
    {2, 506, "Rebuild Task Error", VolumeNumber},
    {2, 1001, "Rebuild Task Started", VolumeNumber},
    {2, 1002, "Rebuild Task Completed", VolumeNumber},
    {2, 512, "Rebuild Medium Error Repaired", Drp},
    // reconfig
    {3, 25, "Reconfig Invalid ISURP", Isurp},
    {3, 3, "Reconfig Unrecognized Volume Type", Vt},
    {3, 4, "Reconfig Enomem", None},
    {3, 5, "Reconfig Extent Search Error", DrpVt},
    {3, 11, "Reconfig Unexpected Error", None},
    {3, 12, "Reconfig VLBN Error", None},
    {3, 20, "Reconfig Highwater Error", Vt},
    {3, 26, "Reconfig Invalid DRP", Drp},
    {3, 506, "Reconfig Task Error", VolumeNumber},
    {3, 512, "Reconfig Medium Error Repaired", Drp},
    {3, 517, "Reconfig Forced Error Detected", Dlm},
    {3, 1001, "Reconfig Task Started", VolumeNumber},
    {3, 1002, "Reconfig Task Completed", VolumeNumber},
    // bbscan
    {4, 11, "Bbscan Unexpected Error", None},
    {4, 4, "Bbscan Enomem", None},
    {4, 3, "Bbscan Unrecognized Volume Type", Vt},
    {4, 5, "Bbscan Extent Search Error", DrpVt},
    {4, 512, "Bad Block Scan Scan Medium Error Repaired", Drp},
    {4, 506, "Bbscan Task Error", VolumeNumber},
    {4, 1001, "Bbscan Task Started", VolumeNumber},
    {4, 1002, "Bbscan Task Completed", VolumeNumber},
    // xoe
    {5, 7, "XOE Overflow", None},
    {5, 8, "XOE Empty Buffer", None},
    {5, 1, "Manager MQX Event", Lwsem},
    // error_recovery
    {6, 22, "Error Recovery Translate Error", None},
    {6, 5, "Error Recovery Extent Search Error", DrpVt},
    {6, 3, "Error Recovery Unrecognized Volume Type", Vt},
    {6, 12, "Error Recovery Extent VLBN Error", DrpVt},
    {6, 13, "Error Recovery Invalid Param", None},
    {6, 501, "Fatal Drive Error", Fatal},
    {6, 26, "Error Recovery Invalid DRP", Drp},
    {6, 510, "Volume State Transition", Vt},
    {6, 512, "Error Recovery Medium Error Repaired", Drp},
    // metadata
    {7, 21, "Metadata Max Volumes Reached", None},
    {7, 1, "Metadata MQX Event", Lwsem},
    {7, 2, "Metadata Invalid MMSG", Mmsg},
    {7, 3, "Metadata Unrecognized Volume Type", Vt},
    {7, 4, "Metadata Enomem", None},
    {7, 11, "Metadata Unexpected Error", None},
    {7, 13, "Metadata Invalid Param", None},
    {7, 23, "Metadata MPU Metadata Invalid", None},
    {7, 25, "Metadata Invalid ISURP", Isurp},
    {7, 26, "Metadata Invalid DRP", Drp},
    {7, 501, "Metadata Device Error", Dib},
    {7, 502, "Metadata VRE Database Not Found", None},
    {7, 508, "Drives not found for metadata request", None},
    // isurpproc
    {8, 3, "ISURPPROC Unrecognized Volume Type", Vt},
    {8, 1, "ISURPPROC MQX Event", Lwsem},
    {8, 25, "ISURPPROC Invalid ISURP", Isurp},
    // drpproc
    {9, 26, "DRPPROC Invalid DRP", Drp},
    // bg
    {10, 1, "BG MQX Event", Lwsem},
    {10, 25, "BG Invalid ISURP", Isurp},
    // database
    {11, 6, "Database Uninit Listhead", None},
    {11, 4, "Database ENOMEM", None},
    {11, 7, "Database Overflow", None},
    {11, 13, "Database Invalid Param", None},
    // isr
    {12, 7, "ISR Overflow", None},
    {12, 1, "ISR installation failure", None},
    {12, 8, "ISR Empty Buffer", None},
    {12, 9, "ISR Unexpected Interrupt", Interrupt},
    // startup
    {13, 1, "Startup MQX Error", None},
    // sv
    {14, 8, "SV Empty Buffer", IsurpSgt},
    {14, 11, "SV Unexpected Error", None},
    {14, 12, "SV VLBN Error", Vt},
    {14, 13, "SV Invalid Param", None},
    {14, 14, "SV Virtualize Error", Isurp},
    {14, 24, "SV Drive Load Error", None},
    {14, 25, "SV Invalid ISURP", Isurp},
    // dlm
    {15, 26, "DLM Invalid DRP", Drp},
    {15, 514, "DLM Copy Mistmatch Detected", Dlm},
    {15, 515, "DLM Search Marker Mismatch Detected", Dlm},
    {15, 513, "DLM Search CRC Error Detected", Dlm},
    {15, 12, "DLM Extent VLBN Error", DrpSgt},
    {15, 16, "DLM Search Error", Dlm},
    // crc_init
    {16, 26, "CRCINIT Invalid DRP", Drp},
    {16, 517, "CRCINIT Forced Error Detected", Dlm},
    {16, 1001, "CRCINIT Task Started", VolumeNumber},
    {16, 1002, "CRCINIT Task Completed", VolumeNumber},
    {16, 506, "CRCINIT Task Error", VolumeNumber},
    {16, 512, "CRCINIT Medium Error Repaired", Drp},
    {16, 5, "CRCINIT Extent Search Error", DrpVt},
    {16, 11, "CRCINIT Unexpected Error", None},
    {16, 25, "CRCINIT Invalid ISURP", Isurp},
    {16, 3, "CRCINIT Unrecognized Volume Type", Vt},
    {16, 4, "CRCINIT ENOMEM", None},
    // parity
    {17, 1, "Parity MQX Event", Lwsem},
    {17, 3, "Parity Unrecognized Volume Type", Vt},
    {17, 4, "Parity ENOMEM", None},
    {17, 5, "Parity Extent Search Error", Vt},
    {17, 11, "Parity Unexpected Error", None},
    {17, 13, "Parity Invalid Param", None},
    {17, 17, "Parity Table Invalid Param", IsurpSgt},
    {17, 18, "Parity Invalid Parity Flag", None},
    {17, 19, "Parity Build Table Error", None},
    {17, 25, "Parity Invalid ISURP", Isurp},
    {17, 26, "Parity Invalid DRP", Drp},
    // parity_init
    {18, 506, "Parity Init Task Error", VolumeNumber},
    {18, 11, "Parity Init Unexpected Error", None},
    {18, 4, "Parity Init ENOMEM", None},
    {18, 19, "Parity Init Table Error", IsurpSgt},
    {18, 25, "Parity Init Invalid ISURP", Isurp},
    {18, 517, "Parity Init Forced Error Detected", Dlm},
    {18, 512, "Parity Init Medium Error Repaired", Drp},
    {18, 1001, "Parity Init Task Started", VolumeNumber},
    {18, 1002, "Parity Init Task Completed", VolumeNumber},
    // parity_error
    {19, 12, "Parity Error Search VLBN Error", IsurpVt},
    {19, 19, "Parity Error Table Error", IsurpSgt},
    {19, 511, "Parity Error Medium Error Unrepairable", Drp},
    {19, 512, "Parity Error Medium Error Repaired", Drp},
    {19, 13, "Parity Error Invalid Param", None},
    {19, 4, "Parity Error ENOMEM", None},
    {19, 1, "Parity Error MQX Event", Lwsem},
    {19, 11, "Parity Error Unexpected Error", None},
    {19, 5, "Parity Error Extent Search Error", Vt},
    // parity_scan
    {20, 506, "Parity Scan Task Error", VolumeNumber},
    {20, 19, "Parity Scan Table Error", IsurpSgt},
    {20, 25, "Parity Scan Invalid ISURP", Isurp},
    {20, 505, "Parity Scan Miscompare", Isurp},
    {20, 4, "Parity Scan ENOMEM", None},
    {20, 11, "Parity Scan Unexpected Error", None},
    {20, 518, "Parity Scan Forced Error Detected", Ndfe},
    {20, 512, "Parity Scan Medium Error Repaired", Drp},
    {20, 517, "Parity Scan Forced Error Detected", Dlm},
    {20, 1001, "Parity Scan Task Started", VolumeNumber},
    {20, 1002, "Parity Scan Task Completed", VolumeNumber},
    // parity_rebuild
    {21, 25, "Parity Rebuild Invalid ISURP", Isurp},
    {21, 11, "Parity Rebuild Unexpected Error", None},
    {21, 4, "Parity Rebuild ENOMEM", None},
    {21, 16, "Parity Rebuild DLM Search Error", None},
    {21, 19, "Parity Rebuild Table Error", IsurpSgt},
    {21, 517, "Parity Rebuild Forced Error Detected", Dlm},
    {21, 512, "Parity Rebuild Medium Error Repaired", Isurp},
    {21, 506, "Parity Rebuild Task Error", VolumeNumber},
    {21, 1001, "Parity Rebuild Task Started", VolumeNumber},
    {21, 1002, "Parity Rebuild Task Completed", VolumeNumber},
    // micro_rebuild
    {22, 19, "Micro Rebuild Table Error", IsurpSgt},
    {22, 3, "Micro Rebuild Unrecognized Volume Type", Vt},
    {22, 4, "Micro Rebuild ENOMEM", None},
    {22, 5, "Micro Rebuild Extent Search Error", Vt},
    {22, 11, "Micro Rebuild Unexpected Error", None},
    {22, 13, "Micro Rebuild Invalid Param", None},
    {22, 16, "Micro Rebuild DLM Search Error", None},
    {22, 25, "Micro Rebuild Invalid ISURP", Isurp},
    {22, 26, "Micro Rebuild Invalid DRP", Drp},
    {22, 506, "Micro Rebuild Task Error", VolumeNumber},
    {22, 512, "Micro Rebuild Medium Error Repaired", Drp},
    {22, 517, "Micro Rebuild Forced Error Detected", Dlm},
    {22, 1001, "Micro Rebuild Task Started", VolumeNumber},
    {22, 1002, "Micro Rebuild Task Completed", VolumeNumber},
    // volume_init
    {23, 503, "Volume Init Max BG Tasks", None},
    {23, 3, "Volume Init Unrecognized Volume Type", Vt},
    {23, 506, "Volume Init Task Error", VolumeNumber},
    // mmsg
    {24, 13, "MMSG Invalid Param", None},
    {24, 1, "MMSG MQX Event", Lwsem},
    {24, 5, "MMSG Extent Search Error", Vt},
    {24, 27, "MMSG Invalid MMSG", Mmsg},
    {24, 26, "MMSG Invalid DRP", Drp},
    {24, 1003, "BG Change of State MMSG", Vbgt},
    // rcp
    {25, 4, "RCP ENOMEM", None},
    {25, 19, "RCP Build Parity Table Error", Isurp},
    {25, 25, "RCP Invalid ISURP", Isurp},
    {25, 28, "RCP Invalid VT", Vt},
    {25, 29, "RCP Invalid RCD", Rcd},
    {25, 30, "RCP Invalid BCD", Bcd},
    // fe
    {26, 509, "Force Error Created", FerDlm},
    {26, 511, "Medium Error Unrepairable", Drp},
    {26, 517, "Force Error Detected", Drp},
    {26, 15, "Force Error Failed to be Created", Vt},
    {26, 501, "Device Error: Max FEs Reached", Dib},
    {26, kAnyCode, "Force Error Unhandled Event", None},
    // carve
    {27, kAnyCode, "Carve Issue", Sgt},
    // bg_sys
    {28, 28, "BGSYS Invalid VT", Vt},
    {28, 11, "BGSYS Unexpected Error", None},
    {28, 1, "BGSYS MQX Event", Lwsem},
    {28, 4, "BGSYS ENOMEM", None},
    {28, 13, "BGSYS Invalid Param", None},
    {28, 25, "BGSYS Invalid ISURP", Isurp},
    {28, 31, "BGSYS Invalid RBT", Rbt},
    {28, 29, "BGSYS Invalid RCD", Rcd},
    {28, 30, "BGSYS Invalid BCD", Bcd},
    {28, 503, "BGSYS MAX Background Tasks", None},
    {28, 507, "BGSYS Invalid BTSN", None},
    // macro
    {29, kAnyCode, "Macro MQX Event", Lwsem},
    // evl
    {30, kAnyCode, "EVL Error", None},
    // assert
    {31, kAnyCode, "ASSERT Error", File},
    // math
    {32, kAnyCode, "MATH Error", None},
    // device
    {33, 519, "Double Drive Exception", Failed},
    {33, 501, "Fatal Drive Error", Fatal},
    {33, 520, "Drive Exception", Exception},
    // clang-format on
};

inline const Event* findEvent(std::size_t eventClass, std::uint32_t code) {
    return findCode<kEvents, kClasses>(eventClass, code);
}

// ---- the catalogue -----------------------------------------------------------------------------

template <std::uint8_t Class>
inline constexpr auto& kCodes = kCodeList<kEvents, Class>;

inline constexpr Fill kFileFills[] = {{kFrameAt + kLengthAt, kWord<13>},
                                      {kArea, "iomgr_main.c\0"sv}};

inline constexpr Part kFrame{"Event", kFrameRows, kFrameAt};
inline constexpr Part kBare[] = {kFrame};
template <const auto& Rows>
inline constexpr Part kWith[] = {kFrame, {"Data", Rows, kArea}};
inline constexpr Part kDlmParts[] = {
    kFrame,
    {"Diskline metadata", kDlmRows, kArea},
    {"Entry 0", kDlmEntryRows, kArea + kDlmHeaderSize},
    {"Entry 1", kDlmEntryRows, kArea + kDlmHeaderSize + kDlmEntrySize},
    {"Entry 2", kDlmEntryRows, kArea + kDlmHeaderSize + 2 * kDlmEntrySize},
    {"Entry 3", kDlmEntryRows, kArea + kDlmHeaderSize + 3 * kDlmEntrySize},
};
inline constexpr Part kFerParts[] = {
    kFrame,
    {"Forced error record", kFerRows, kArea},
    {"Diskline metadata", kDlmRows, kArea + kFerSize},
    {"Entry 0", kDlmEntryRows, kArea + kFerSize + kDlmHeaderSize},
    {"Entry 1", kDlmEntryRows, kArea + kFerSize + kDlmHeaderSize + kDlmEntrySize},
    {"Entry 2", kDlmEntryRows, kArea + kFerSize + kDlmHeaderSize + 2 * kDlmEntrySize},
    {"Entry 3", kDlmEntryRows, kArea + kFerSize + kDlmHeaderSize + 3 * kDlmEntrySize},
};
inline constexpr Part kVtParts[] = {
    kFrame,
    {"Volume table", kVtRows, kArea},
    {"Extent 0", kExtRows, kArea + kVtSize},
    {"Extent 1", kExtRows, kArea + kVtSize + kExtSize},
};
// Behind a request packet: a volume with an extent, or scatter-gather entries.
template <const auto& Rows, unsigned Size>
inline constexpr Part kBehindVt[] = {
    kFrame,
    {"Request packet", Rows, kArea},
    {"Volume table", kVtRows, kArea + Size},
    {"Extent 0", kExtRows, kArea + Size + kVtSize},
};
template <const auto& Rows, unsigned Size>
inline constexpr Part kBehindSgt[] = {
    kFrame,
    {"Request packet", Rows, kArea},
    {"Scatter-gather entry 0", kSgtRows, kArea + Size},
    {"Scatter-gather entry 1", kSgtRows, kArea + Size + kSgtEntrySize},
};
inline constexpr Part kSgtParts[] = {
    kFrame,
    {"Group 0, entry 0", kSgtRows, kArea},
    {"Group 0, entry 1", kSgtRows, kArea + kSgtEntrySize},
    {"Group 1, entry 0", kSgtRows, kArea + kSgtSize},
};

inline constexpr Section kSections[] = {
    {"Manager: message queue", kKeys<1, 32>, kWith<kMsaRows>, kLength<kMsaSize>, kCodes<1>},
    {"Manager: message", kKeys<1, 10>, kWith<kMessageRows>, kLength<4>},
    {"Rebuild: task started", kKeys<2, 1001>, kWith<kVolumeNumberRows>, kLength<4>, kCodes<2>},
    {"Reconfigure: extent search", kKeys<3, 5>, kBehindVt<kDrpRows, kDrpSize>,
     kLength<kDrpSize + kVtSize + kExtSize>, kCodes<3>},
    {"Bad block scan: medium error", kKeys<4, 512>, kWith<kDrpRows>, kLength<kDrpSize>, kCodes<4>},
    {"XOR engine: operating system", kKeys<5, 1>, kWith<kLwsemRows>, kLength<kLwsemSize>,
     kCodes<5>},
    {"Error recovery: volume state", kKeys<6, 510>, kVtParts, kLength<kVtSize + 2 * kExtSize>,
     kCodes<6>},
    {"Metadata: management message", kKeys<7, 2>, kWith<kMmsgRows>, kLength<kMmsgSize>, kCodes<7>},
    {"ISURP process: invalid ISURP", kKeys<8, 25>, kWith<kIsurpRows>, kLength<kIsurpSize>,
     kCodes<8>},
    {"DRP process: invalid DRP", kKeys<9, 26>, kWith<kDrpRows>, kLength<kDrpSize>, kCodes<9>},
    {"Background: invalid ISURP", kKeys<10, 25>, kWith<kIsurpRows>, kLength<kIsurpSize>,
     kCodes<10>},
    {"Database", kKeys<11, 4>, kBare, kLength<0>, kCodes<11>},
    {"Interrupt", kKeys<12, 9>, kWith<kInterruptRows>, kLength<4>, kCodes<12>},
    {"Startup", kKeys<13, 1>, kBare, kLength<0>, kCodes<13>},
    {"Storage virtualization: empty buffer", kKeys<14, 8>, kBehindSgt<kIsurpRows, kIsurpSize>,
     kLength<kIsurpSize + 2 * kSgtEntrySize>, kCodes<14>},
    {"Diskline metadata: VLBN", kKeys<15, 12>, kBehindSgt<kDrpRows, kDrpSize>,
     kLength<kDrpSize + 2 * kSgtEntrySize>, kCodes<15>},
    {"CRC initialize: forced error", kKeys<16, 517>, kDlmParts, kLength<kDlmSize>, kCodes<16>},
    {"Parity: volume type", kKeys<17, 3>, kVtParts, kLength<kVtSize + 2 * kExtSize>, kCodes<17>},
    {"Parity initialize: task error", kKeys<18, 506>, kWith<kVolumeNumberRows>, kLength<4>,
     kCodes<18>},
    {"Parity error: VLBN", kKeys<19, 12>, kBehindVt<kIsurpRows, kIsurpSize>,
     kLength<kIsurpSize + kVtSize + kExtSize>, kCodes<19>},
    {"Parity scan: forced error", kKeys<20, 518>, kWith<kNdfeRows>, kLength<kNdfeSize>, kCodes<20>},
    {"Parity rebuild: medium error", kKeys<21, 512>, kWith<kIsurpRows>, kLength<kIsurpSize>,
     kCodes<21>},
    {"Micro rebuild: task completed", kKeys<22, 1002>, kWith<kVolumeNumberRows>, kLength<4>,
     kCodes<22>},
    {"Volume initialize", kKeys<23, 503>, kBare, kLength<0>, kCodes<23>},
    {"Management message: background task", kKeys<24, 1003>, kWith<kVbgtRows>, kLength<kVbgtSize>,
     kCodes<24>},
    {"Redundant controller: invalid RCD", kKeys<25, 29>, kWith<kRcdRows>, kLength<kRcdSize>,
     kCodes<25>},
    {"Redundant controller: invalid BCD", kKeys<25, 30>, kWith<kBcdRows>, kLength<kBcdSize>},
    {"Forced error created", kKeys<26, 509>, kFerParts, kLength<kFerSize + kDlmSize>, kCodes<26>},
    {"Forced error: device", kKeys<26, 501>, kWith<kDibRows>, kLength<kDibSize>},
    {"Resource carving", kKeys<27, 1>, kSgtParts, kLength<2 * kSgtSize>, kCodes<27>},
    {"Background system: invalid RBT", kKeys<28, 31>, kWith<kRbtRows>, kLength<kRbtSize>,
     kCodes<28>},
    {"Macro", kKeys<29, 1>, kWith<kLwsemRows>, kLength<kLwsemSize>, kCodes<29>},
    {"EVL", kKeys<30, 1>, kBare, kLength<0>, kCodes<30>},
    {"Assert", kKeys<31, 1>, kBare, kFileFills, kCodes<31>},
    {"Math", kKeys<32, 1>, kBare, kLength<0>, kCodes<32>},
    {"Drive error", kKeys<33, 519>, kWith<kDriveRows>, kLength<4>, kCodes<33>},
};

inline constexpr Module kModule{
    5, "IOMGR8P_Event",
    "Event identifier 1; all others are dumped. The payload is a frame (event class at 152, code "
    "at 156, firmware line at 164, length of the data area at 168) and the data area at 172. "
    "Behind a volume table extents of 80 bytes run to the end of the data area, and so do "
    "scatter-gather groups of eight entries; a group ends early at an entry with address 0.",
    kSections};

} // namespace Pegasus::mpu::iomgr
