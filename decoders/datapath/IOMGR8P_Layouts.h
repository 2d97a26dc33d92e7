// Tables of the I/O manager decoder. Offsets are from the start of each structure.
#pragma once

#include "decoders/datapath/Datapath_Layouts.h"

namespace Pegasus::mpu::iomgr {

using namespace datapath;

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
inline constexpr unsigned kDlmSize = kDlmHeaderSize + 4 * kDlmEntrySize;

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
// A drive by its number.
inline constexpr Row kFailedRows[] = {{"Drive", "%d", u32(0)}, {"State", "Failed"}};
inline constexpr Row kExceptionRows[] = {{"Drive", "%d", u32(0)}, {"State", "Exception"}};

// ---- classes and codes -------------------------------------------------------------------------

inline constexpr unsigned kDeviceClass = 33; // the last one

// Titles by class, which begin with 1. The math class has none of its own.
inline constexpr std::string_view kClassTitleTexts[] = {
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
    "Unknown Event",
};
inline constexpr NameTable kClassTitles = names<kClassTitleTexts>(Fallback::Last);

void putExtents(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kExtents{
    putExtents, "Extents of 80 bytes, all that begin in the data area.", kExtRows};
void putGroups(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kGroups{
    putGroups,
    "Scatter-gather groups of eight entries, all that begin in the data area; an entry with "
    "address 0 ends its group.",
    kSgtRows, "\x10\x20\x30\x40\0\0\x02\0\x10\x20\x34\0\0\0\x01\0"sv};
void putFile(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kFile{putFile, "The source file, to the end of the data area.",
                                   kFileRows, "iomgr_main.c\0"sv};

// What the data area of an event holds.
template <const auto& Rows, unsigned Size>
inline constexpr Pieces kOne = {data(Rows), kLength<Size>};
inline constexpr auto& kVolumeNumber = kOne<kVolumeNumberRows, 4>;
inline constexpr auto& kMessage = kOne<kMessageRows, 4>;
inline constexpr auto& kInterrupt = kOne<kInterruptRows, 4>;
inline constexpr auto& kLwsem = kOne<kLwsemRows, kLwsemSize>;
inline constexpr auto& kDrp = kOne<kDrpRows, kDrpSize>;
inline constexpr auto& kMsa = kOne<kMsaRows, kMsaSize>;
inline constexpr auto& kIsurp = kOne<kIsurpRows, kIsurpSize>;
inline constexpr auto& kMmsg = kOne<kMmsgRows, kMmsgSize>;
inline constexpr auto& kDib = kOne<kDibRows, kDibSize>;
inline constexpr auto& kNdfe = kOne<kNdfeRows, kNdfeSize>;
inline constexpr auto& kVbgt = kOne<kVbgtRows, kVbgtSize>;
inline constexpr auto& kRcd = kOne<kRcdRows, kRcdSize>;
inline constexpr auto& kBcd = kOne<kBcdRows, kBcdSize>;
inline constexpr auto& kRbt = kOne<kRbtRows, kRbtSize>;
inline constexpr auto& kFailed = kOne<kFailedRows, 4>;
inline constexpr auto& kException = kOne<kExceptionRows, 4>;

// With what follows it, and a sample's number of extents or entries.
inline constexpr Pieces kVt = {data(kVtRows), custom(kExtents, kDataAt + kVtSize),
                               kLength<kVtSize + kExtSize>};
inline constexpr Pieces kSgt = {custom(kGroups, kDataAt), kLength<2 * kSgtEntrySize>};
template <const auto& Rows, unsigned Size>
inline constexpr Pieces kThenVt = {data(Rows), data(kVtRows, Size),
                                   custom(kExtents, kDataAt + Size + kVtSize),
                                   kLength<Size + kVtSize + kExtSize>};
template <const auto& Rows, unsigned Size>
inline constexpr Pieces kThenSgt = {data(Rows), custom(kGroups, kDataAt + Size),
                                    kLength<Size + 2 * kSgtEntrySize>};
inline constexpr auto& kDrpVt = kThenVt<kDrpRows, kDrpSize>;
inline constexpr auto& kIsurpVt = kThenVt<kIsurpRows, kIsurpSize>;
inline constexpr auto& kDrpSgt = kThenSgt<kDrpRows, kDrpSize>;
inline constexpr auto& kIsurpSgt = kThenSgt<kIsurpRows, kIsurpSize>;

constexpr Piece dlmEntry(unsigned i, unsigned at = 0) {
    return data(kDlmEntryRows, at + kDlmHeaderSize + i * kDlmEntrySize);
}
inline constexpr Pieces kDlm = {data(kDlmRows), dlmEntry(0), dlmEntry(1),
                                dlmEntry(2),    dlmEntry(3), kLength<kDlmSize>};
inline constexpr Pieces kFerDlm = {data(kFerRows),
                                   data(kDlmRows, kFerSize),
                                   dlmEntry(0, kFerSize),
                                   dlmEntry(1, kFerSize),
                                   dlmEntry(2, kFerSize),
                                   dlmEntry(3, kFerSize),
                                   kLength<kFerSize + kDlmSize>};
inline constexpr Pieces kSourceFile = {custom(kFile, kDataAt), kLength<sizeof "iomgr_main.c">};

inline constexpr Row kDriveSummary = line("Drive %d, %s", u32(kDataAt), eventName);
inline constexpr Row kFatalSummary = line("Drive %d, Fatal Error", u32(kDataAt));

// One numbering for all classes, though a class may word a code in its own way.
inline constexpr EventRow kEventRows[] = {
    // clang-format off
    // manager
    row({1, 10}, "Manager Unexpected Message Type", kMessage),
    row({1, 32}, "Manager MSA Event", kMsa),
    row({1, 516}, "DRP Detected Error Status", kDrp),
    row({1, 26}, "Manager Invalid DRP", kDrp),
    row({1, 1}, "Manager MQX Event", kLwsem),
    row({1, 9}, "Manager Unexpected Interrupt", kInterrupt),
    // rebuild
    row({2, 26}, "Rebuild Invalid DRP", kDrp),
    row({2, 5}, "Rebuild Extent Search Error", kVt),
    row({2, 11}, "Rebuild Unexpected Error"),
    row({2, 3}, "Rebuild Unregonized Volume Type", kVt),
    row({2, 506}, "Rebuild Task Error", kVolumeNumber),
    row({2, 1001}, "Rebuild Task Started", kVolumeNumber),
    row({2, 1002}, "Rebuild Task Completed", kVolumeNumber),
    row({2, 512}, "Rebuild Medium Error Repaired", kDrp),
    // reconfig
    row({3, 25}, "Reconfig Invalid ISURP", kIsurp),
    row({3, 3}, "Reconfig Unrecognized Volume Type", kVt),
    row({3, 4}, "Reconfig Enomem"),
    row({3, 5}, "Reconfig Extent Search Error", kDrpVt),
    row({3, 11}, "Reconfig Unexpected Error"),
    row({3, 12}, "Reconfig VLBN Error"),
    row({3, 20}, "Reconfig Highwater Error", kVt),
    row({3, 26}, "Reconfig Invalid DRP", kDrp),
    row({3, 506}, "Reconfig Task Error", kVolumeNumber),
    row({3, 512}, "Reconfig Medium Error Repaired", kDrp),
    row({3, 517}, "Reconfig Forced Error Detected", kDlm),
    row({3, 1001}, "Reconfig Task Started", kVolumeNumber),
    row({3, 1002}, "Reconfig Task Completed", kVolumeNumber),
    // bbscan
    row({4, 11}, "Bbscan Unexpected Error"),
    row({4, 4}, "Bbscan Enomem"),
    row({4, 3}, "Bbscan Unrecognized Volume Type", kVt),
    row({4, 5}, "Bbscan Extent Search Error", kDrpVt),
    row({4, 512}, "Bad Block Scan Scan Medium Error Repaired", kDrp),
    row({4, 506}, "Bbscan Task Error", kVolumeNumber),
    row({4, 1001}, "Bbscan Task Started", kVolumeNumber),
    row({4, 1002}, "Bbscan Task Completed", kVolumeNumber),
    // xoe
    row({5, 7}, "XOE Overflow"),
    row({5, 8}, "XOE Empty Buffer"),
    row({5, 1}, "Manager MQX Event", kLwsem),
    // error_recovery
    row({6, 22}, "Error Recovery Translate Error"),
    row({6, 5}, "Error Recovery Extent Search Error", kDrpVt),
    row({6, 3}, "Error Recovery Unrecognized Volume Type", kVt),
    row({6, 12}, "Error Recovery Extent VLBN Error", kDrpVt),
    row({6, 13}, "Error Recovery Invalid Param"),
    row({6, 501}, "Fatal Drive Error", kFailed, kFatalSummary),
    row({6, 26}, "Error Recovery Invalid DRP", kDrp),
    row({6, 510}, "Volume State Transition", kVt),
    row({6, 512}, "Error Recovery Medium Error Repaired", kDrp),
    // metadata
    row({7, 21}, "Metadata Max Volumes Reached"),
    row({7, 1}, "Metadata MQX Event", kLwsem),
    row({7, 2}, "Metadata Invalid MMSG", kMmsg),
    row({7, 3}, "Metadata Unrecognized Volume Type", kVt),
    row({7, 4}, "Metadata Enomem"),
    row({7, 11}, "Metadata Unexpected Error"),
    row({7, 13}, "Metadata Invalid Param"),
    row({7, 23}, "Metadata MPU Metadata Invalid"),
    row({7, 25}, "Metadata Invalid ISURP", kIsurp),
    row({7, 26}, "Metadata Invalid DRP", kDrp),
    row({7, 501}, "Metadata Device Error", kDib),
    row({7, 502}, "Metadata VRE Database Not Found"),
    row({7, 508}, "Drives not found for metadata request"),
    // isurpproc
    row({8, 3}, "ISURPPROC Unrecognized Volume Type", kVt),
    row({8, 1}, "ISURPPROC MQX Event", kLwsem),
    row({8, 25}, "ISURPPROC Invalid ISURP", kIsurp),
    // drpproc
    row({9, 26}, "DRPPROC Invalid DRP", kDrp),
    // bg
    row({10, 1}, "BG MQX Event", kLwsem),
    row({10, 25}, "BG Invalid ISURP", kIsurp),
    // database
    row({11, 6}, "Database Uninit Listhead"),
    row({11, 4}, "Database ENOMEM"),
    row({11, 7}, "Database Overflow"),
    row({11, 13}, "Database Invalid Param"),
    // isr
    row({12, 7}, "ISR Overflow"),
    row({12, 1}, "ISR installation failure"),
    row({12, 8}, "ISR Empty Buffer"),
    row({12, 9}, "ISR Unexpected Interrupt", kInterrupt),
    // startup
    row({13, 1}, "Startup MQX Error"),
    // sv
    row({14, 8}, "SV Empty Buffer", kIsurpSgt),
    row({14, 11}, "SV Unexpected Error"),
    row({14, 12}, "SV VLBN Error", kVt),
    row({14, 13}, "SV Invalid Param"),
    row({14, 14}, "SV Virtualize Error", kIsurp),
    row({14, 24}, "SV Drive Load Error"),
    row({14, 25}, "SV Invalid ISURP", kIsurp),
    // dlm
    row({15, 26}, "DLM Invalid DRP", kDrp),
    row({15, 514}, "DLM Copy Mistmatch Detected", kDlm),
    row({15, 515}, "DLM Search Marker Mismatch Detected", kDlm),
    row({15, 513}, "DLM Search CRC Error Detected", kDlm),
    row({15, 12}, "DLM Extent VLBN Error", kDrpSgt),
    row({15, 16}, "DLM Search Error", kDlm),
    // crc_init
    row({16, 26}, "CRCINIT Invalid DRP", kDrp),
    row({16, 517}, "CRCINIT Forced Error Detected", kDlm),
    row({16, 1001}, "CRCINIT Task Started", kVolumeNumber),
    row({16, 1002}, "CRCINIT Task Completed", kVolumeNumber),
    row({16, 506}, "CRCINIT Task Error", kVolumeNumber),
    row({16, 512}, "CRCINIT Medium Error Repaired", kDrp),
    row({16, 5}, "CRCINIT Extent Search Error", kDrpVt),
    row({16, 11}, "CRCINIT Unexpected Error"),
    row({16, 25}, "CRCINIT Invalid ISURP", kIsurp),
    row({16, 3}, "CRCINIT Unrecognized Volume Type", kVt),
    row({16, 4}, "CRCINIT ENOMEM"),
    // parity
    row({17, 1}, "Parity MQX Event", kLwsem),
    row({17, 3}, "Parity Unrecognized Volume Type", kVt),
    row({17, 4}, "Parity ENOMEM"),
    row({17, 5}, "Parity Extent Search Error", kVt),
    row({17, 11}, "Parity Unexpected Error"),
    row({17, 13}, "Parity Invalid Param"),
    row({17, 17}, "Parity Table Invalid Param", kIsurpSgt),
    row({17, 18}, "Parity Invalid Parity Flag"),
    row({17, 19}, "Parity Build Table Error"),
    row({17, 25}, "Parity Invalid ISURP", kIsurp),
    row({17, 26}, "Parity Invalid DRP", kDrp),
    // parity_init
    row({18, 506}, "Parity Init Task Error", kVolumeNumber),
    row({18, 11}, "Parity Init Unexpected Error"),
    row({18, 4}, "Parity Init ENOMEM"),
    row({18, 19}, "Parity Init Table Error", kIsurpSgt),
    row({18, 25}, "Parity Init Invalid ISURP", kIsurp),
    row({18, 517}, "Parity Init Forced Error Detected", kDlm),
    row({18, 512}, "Parity Init Medium Error Repaired", kDrp),
    row({18, 1001}, "Parity Init Task Started", kVolumeNumber),
    row({18, 1002}, "Parity Init Task Completed", kVolumeNumber),
    // parity_error
    row({19, 12}, "Parity Error Search VLBN Error", kIsurpVt),
    row({19, 19}, "Parity Error Table Error", kIsurpSgt),
    row({19, 511}, "Parity Error Medium Error Unrepairable", kDrp),
    row({19, 512}, "Parity Error Medium Error Repaired", kDrp),
    row({19, 13}, "Parity Error Invalid Param"),
    row({19, 4}, "Parity Error ENOMEM"),
    row({19, 1}, "Parity Error MQX Event", kLwsem),
    row({19, 11}, "Parity Error Unexpected Error"),
    row({19, 5}, "Parity Error Extent Search Error", kVt),
    // parity_scan
    row({20, 506}, "Parity Scan Task Error", kVolumeNumber),
    row({20, 19}, "Parity Scan Table Error", kIsurpSgt),
    row({20, 25}, "Parity Scan Invalid ISURP", kIsurp),
    row({20, 505}, "Parity Scan Miscompare", kIsurp),
    row({20, 4}, "Parity Scan ENOMEM"),
    row({20, 11}, "Parity Scan Unexpected Error"),
    row({20, 518}, "Parity Scan Forced Error Detected", kNdfe),
    row({20, 512}, "Parity Scan Medium Error Repaired", kDrp),
    row({20, 517}, "Parity Scan Forced Error Detected", kDlm),
    row({20, 1001}, "Parity Scan Task Started", kVolumeNumber),
    row({20, 1002}, "Parity Scan Task Completed", kVolumeNumber),
    // parity_rebuild
    row({21, 25}, "Parity Rebuild Invalid ISURP", kIsurp),
    row({21, 11}, "Parity Rebuild Unexpected Error"),
    row({21, 4}, "Parity Rebuild ENOMEM"),
    row({21, 16}, "Parity Rebuild DLM Search Error"),
    row({21, 19}, "Parity Rebuild Table Error", kIsurpSgt),
    row({21, 517}, "Parity Rebuild Forced Error Detected", kDlm),
    row({21, 512}, "Parity Rebuild Medium Error Repaired", kIsurp),
    row({21, 506}, "Parity Rebuild Task Error", kVolumeNumber),
    row({21, 1001}, "Parity Rebuild Task Started", kVolumeNumber),
    row({21, 1002}, "Parity Rebuild Task Completed", kVolumeNumber),
    // micro_rebuild
    row({22, 19}, "Micro Rebuild Table Error", kIsurpSgt),
    row({22, 3}, "Micro Rebuild Unrecognized Volume Type", kVt),
    row({22, 4}, "Micro Rebuild ENOMEM"),
    row({22, 5}, "Micro Rebuild Extent Search Error", kVt),
    row({22, 11}, "Micro Rebuild Unexpected Error"),
    row({22, 13}, "Micro Rebuild Invalid Param"),
    row({22, 16}, "Micro Rebuild DLM Search Error"),
    row({22, 25}, "Micro Rebuild Invalid ISURP", kIsurp),
    row({22, 26}, "Micro Rebuild Invalid DRP", kDrp),
    row({22, 506}, "Micro Rebuild Task Error", kVolumeNumber),
    row({22, 512}, "Micro Rebuild Medium Error Repaired", kDrp),
    row({22, 517}, "Micro Rebuild Forced Error Detected", kDlm),
    row({22, 1001}, "Micro Rebuild Task Started", kVolumeNumber),
    row({22, 1002}, "Micro Rebuild Task Completed", kVolumeNumber),
    // volume_init
    row({23, 503}, "Volume Init Max BG Tasks"),
    row({23, 3}, "Volume Init Unrecognized Volume Type", kVt),
    row({23, 506}, "Volume Init Task Error", kVolumeNumber),
    // mmsg
    row({24, 13}, "MMSG Invalid Param"),
    row({24, 1}, "MMSG MQX Event", kLwsem),
    row({24, 5}, "MMSG Extent Search Error", kVt),
    row({24, 27}, "MMSG Invalid MMSG", kMmsg),
    row({24, 26}, "MMSG Invalid DRP", kDrp),
    row({24, 1003}, "BG Change of State MMSG", kVbgt),
    // rcp
    row({25, 4}, "RCP ENOMEM"),
    row({25, 19}, "RCP Build Parity Table Error", kIsurp),
    row({25, 25}, "RCP Invalid ISURP", kIsurp),
    row({25, 28}, "RCP Invalid VT", kVt),
    row({25, 29}, "RCP Invalid RCD", kRcd),
    row({25, 30}, "RCP Invalid BCD", kBcd),
    // fe
    row({26, 509}, "Force Error Created", kFerDlm),
    row({26, 511}, "Medium Error Unrepairable", kDrp),
    row({26, 517}, "Force Error Detected", kDrp),
    row({26, 15}, "Force Error Failed to be Created", kVt),
    row({26, 501}, "Device Error: Max FEs Reached", kDib),
    row(anyOf(26), "Force Error Unhandled Event"),
    // carve
    row(anyOf(27), "Carve Issue", kSgt),
    // bg_sys
    row({28, 28}, "BGSYS Invalid VT", kVt),
    row({28, 11}, "BGSYS Unexpected Error"),
    row({28, 1}, "BGSYS MQX Event", kLwsem),
    row({28, 4}, "BGSYS ENOMEM"),
    row({28, 13}, "BGSYS Invalid Param"),
    row({28, 25}, "BGSYS Invalid ISURP", kIsurp),
    row({28, 31}, "BGSYS Invalid RBT", kRbt),
    row({28, 29}, "BGSYS Invalid RCD", kRcd),
    row({28, 30}, "BGSYS Invalid BCD", kBcd),
    row({28, 503}, "BGSYS MAX Background Tasks"),
    row({28, 507}, "BGSYS Invalid BTSN"),
    // macro
    row(anyOf(29), "Macro MQX Event", kLwsem),
    // evl
    row(anyOf(30), "EVL Error"),
    // assert
    row(anyOf(31), "ASSERT Error", kSourceFile, kFileSummary),
    // math
    row(anyOf(32), "MATH Error"),
    // device
    row({33, 519}, "Double Drive Exception", kFailed, kDriveSummary),
    row({33, 501}, "Fatal Drive Error", kFailed, kFatalSummary),
    row({33, 520}, "Drive Exception", kException, kDriveSummary),
    // clang-format on
};

inline constexpr EventTable kEvents{
    .rows = kEventRows,
    .major = kClass,
    .minor = kCode,
    .style = Style::Joined,
    .keys = kKeys,
    .title = line("%s", name(kClass, kClassTitles)),
    .head = {kFrameRows},
    .note = MPUEVENT_DATAPATH_NOTE "Other codes have no more than the frame, and no summary.",
};
static_assert(accepted<kEvents>);

inline constexpr const EventTable* kTables[] = {&kEvents};
inline constexpr Module kModule{5, "IOMGR8P_Event", "Event identifier 1; all others are dumped.",
                                kTables};

} // namespace Pegasus::mpu::iomgr
