// Tables of the system-configuration decoder.
#pragma once

#include "decoders/management/Management_Layouts.h"
#include "event/Catalogue.h"

namespace Pegasus::mpu::scc {

inline constexpr Row kStatusRows[] = {
    {"Persistent_Data_Virginity", "%s", bit(u32(0), 0, kTrueFalse)},
    {"Restore_Factory_Defaults", "%s", bit(u32(0), 1, kTrueFalse)},
    {"Moved_is_Valid", "%s", bit(u32(0), 4, kTrueFalse)},
    {"THIS_Moved", "%s", bit(u32(0), 5, kTrueFalse)},
    {"OTHER_Moved", "%s", bit(u32(0), 6, kTrueFalse)},
    {"OTHER_Unavailable", "%s", bit(u32(0), 7, kTrueFalse)},
    {"Prevent_Restart_Recovery", "%s", bit(u32(0), 8, kTrueFalse)},
    {"FW_Upgrade_is_Pending", "%s", bit(u32(0), 9, kTrueFalse)},
    {"CMAP_State", "%d", u8(4)},
    {"RCP_State", "%d", u8(5)},
    {"Failover_Policy", "%d", u8(6)},
    {"Battery_Policy", "%d", u8(7)},
    {"Battery_State", "%d", u8(8)},
    {"Bind_Fail_Reason", "%d", u8(9)},
    {"HACC_State", "%d", u8(10)},
    {"THIS_FW_version", "%d.%d.%d.%d", u16(16), u16(18), u16(20), u16(22)},
    {"THIS_MMSG_version", "%d", u32(24)},
    {"THIS_CMAP_version", "%d", u32(32)},
    {"OTHER_FW_version", "%d.%d.%d.%d", u16(40), u16(42), u16(44), u16(46)},
    {"OTHER_MMSG_version", "%d", u32(48)},
    {"OTHER_CMAP_version", "%d", u32(56)},
};
inline constexpr int kStatusSize = 64;

inline constexpr Row kPersistentMemoryRows[] = {
    {"cpmControlFileFd", "%d", u32(0)},
    {"cpmDataFile0Fd", "%d", u32(4)},
    {"cpmDataFile1Fd", "%d", u32(8)},
    {"cpmInit", "%d", u32(12)},
    {"cpmDone", "%d", u32(16)},
    {"cpmFlush", "%d", u32(20)},
    {"cpmSetAllObjectsValue", "%d", u32(24)},
    {"cpmStart", "%d", u32(28)},
    {"cpmDebug", "%d", u8(32)},
    Row("cpmClassOffset", "[%d], value [%d]", index, u32(36)).repeat(32, 4),
    Row("cpmClassSize", "[%d], value [%d]", index, u32(164)).repeat(32, 4),
    Row("cpmClassDirty", "[%d], value [%d]", index, u8(292)).repeat(32, 1),
    Row("cpmGetObjectAddr", "[%d], value [%d]", index, u32(324)).repeat(32, 4),
    Row("cpmReleaseObjectAddr", "[%d], value [%d]", index, u32(452)).repeat(32, 4),
};

inline constexpr Row kLockManagerRows[] = {
    {"TSS_RdLocks", "%d", u32(0)},           {"TSS_WrLocks", "%d", u32(4)},
    {"TSS_Priority", "%d", u8(8)},           {"TSS_TaskId", "%d", u8(9)},
    {"TSS_TaskStatus", "%d", u8(10)},        {"CLS_ClassId", "%d", u8(11)},
    {"CLS_ClassStatus", "%d", u8(12)},       {"CLS_TaskId", "%d", u8(13)},
    {"CLS_RequestCount", "%d", u8(14)},      {"CLS_HoldsLocks", "%s", flag(u32(16), kTrueFalse)},
    {"OLS_ObjectIx", "%d", u32(20)},         {"OLS_OwningTask", "%d", u8(24)},
    {"OLS_ObjectStatus", "%d", u8(25)},      {"OLS_ReferenceCount", "%d", u16(26)},
    {"TES_ClassId", "%d", u8(28)},           {"TES_TransactionStatus", "%d", u8(29)},
    {"TES_ReplicationParam", "%d", u16(30)}, {"TES_ObjectIx", "%d", u32(32)},
    {"TES_DataLength", "%d", u32(36)},
};

inline constexpr Row kTimerRows[] = {
    {"Thread_Index", "%d", u32(0)},
    {"Delay_seconds", "%d", u32(4)},
    {"Delay_microseconds", "%d", u32(8)},
    {"isRecurring", "%s", flag(u32(12), kTrueFalse)},
    {"isRelativeToWallClock", "%s", flag(u32(16), kTrueFalse)},
    {"pSema", "0x%08X", u32(20)},
    {"pMmsg", "0x%08X", u32(24)},
    {"pCounter", "0x%08X", u32(28)},
};

inline constexpr Row kRequestRows[] = {
    {"Thread_Index", "%d", u32(0)},          {"Dest_Endpoint", "%d", u32(4)},
    {"Request_Opcode", "0x%08X", u32(8)},    {"Timeout_seconds", "%d", u32(12)},
    {"Timeout_microseconds", "%d", u32(16)}, {"pSema", "0x%08X", u32(20)},
    {"pMmsgLh", "0x%08X", u32(24)},          {"pTimedout", "0x%08X", u32(28)},
};

inline constexpr std::string_view kLockRequestTexts[] = {
    "",
    "DDLM_begin",
    "DDLM_end",
    "DDLM_get EX",
    "DDLM_get SH",
    "DDLM_release EX",
    "DDLM_release SH",
    "DDLM_release",
    "DDLM_sync",
};
inline constexpr NameTable kLockRequests = names<kLockRequestTexts>(Fallback::Number);

inline constexpr std::string_view kTransactionTexts[] = {
    "IndeterminateSyncTime",
    "IndeterminateSyncTimePersistenceRequired",
    "",
    "TransactionContinues",
    "TransactionContinuesPersistenceRequired",
    "",
    "TransactionCompletePersistenceOptional",
    "",
    "TransactionComplete",
};
inline constexpr NameTable kTransactions = names<kTransactionTexts>(Fallback::Number);

inline constexpr Row kLockRows[] = {
    open("Lock_Classes"),
    {"Read", "0x%08X", u32(0)},
    {"Write", "0x%08X", u32(4)},
    close("Lock_Classes"),
    open("Object"),
    {"Class", "%d", u32(8)},
    {"Index", "%d", u32(12)},
    close("Object"),
    {"Request_Type", "%s", name(u32(16), kLockRequests)},
    {"Transaction_Status", "%s", name(u32(20), kTransactions)},
    {"Replication_Parameter", "0x%08X", u32(24)},
};

inline constexpr Row kSharedMemoryRows[] = {
    {"ShMem_Key", "%d", u32(0)},
};

// The catalogue. Samples have a location block, so their data begin at 184.
using namespace std::string_view_literals;

inline constexpr std::uint16_t kBlockAt = 152;
inline constexpr std::uint16_t kDataAt = 184;
inline constexpr std::string_view kSampleBlock = "\0\x4d"
                                                 "scc_main.c\0initService"sv;

template <std::uint16_t Code>
inline constexpr Key kCode[] = {{150, 2, Code}};

template <const auto& Rows>
inline constexpr Part kLocated[] = {{"Location block", kLocationRows, kBlockAt},
                                    {"Structure", Rows, kDataAt}};
inline constexpr Part kBlockAlone[] = {{"Location block", kLocationRows, kBlockAt}};
// The text is "Ready", so what follows it begins six bytes on.
inline constexpr Part kStatusParts[] = {{"Location block", kLocationRows, kBlockAt},
                                        {"Structure, behind the text", kStatusRows, kDataAt + 6}};

inline constexpr Fill kBlockFill[] = {{kBlockAt, kSampleBlock}};
inline constexpr Fill kTextFill[] = {
    {kBlockAt, kSampleBlock}, {kDataAt, "openStore(): failed to open the store. Retrying\0"sv}};
inline constexpr Fill kDumpFill[] = {{kBlockAt, kSampleBlock},
                                     {kDataAt, "Bad block header\0\xDE\xAD\xBE\xEF\x01\x02"sv}};
inline constexpr Fill kReadyFill[] = {{kBlockAt, kSampleBlock},
                                      {kDataAt, "Ready\0"sv},
                                      {kDataAt + 6 + kStatusSize - 4, "\0\0\0\0"sv}};
template <std::uint16_t Behind>
inline constexpr Fill kTextBehind[] = {
    {kBlockAt, kSampleBlock},
    {kDataAt + Behind, "Lock held by the other controller. Retry later\0"sv}};

inline constexpr Section kSections[] = {
    {"Text", kCode<2000>, kBlockAlone, kTextFill, "A text."},
    {"Dump", kCode<2005>, kBlockAlone, kDumpFill, "A text, then bytes that are dumped."},
    {"Shared memory", kCode<2010>, kLocated<kSharedMemoryRows>, kBlockFill, "Also code 2012."},
    {"Lock", kCode<2011>, kLocated<kLockRows>, kTextBehind<28>, "A text at 28."},
    {"Management message", kCode<2013>, kLocated<kManagementMessageRows>,
     kTextBehind<kManagementMessageSize>, "A text at 36."},
    {"Request", kCode<2015>, kLocated<kRequestRows>, kTextBehind<32>, "A text at 32."},
    {"Response", kCode<2016>, kLocated<kResponseRows>, kTextBehind<32>, "A text at 32."},
    {"Timer", kCode<2017>, kLocated<kTimerRows>, kTextBehind<32>, "A text at 32."},
    {"Lock manager", kCode<2018>, kLocated<kLockManagerRows>, kTextBehind<40>, "A text at 40."},
    {"Persistent memory", kCode<2019>, kLocated<kPersistentMemoryRows>, kBlockFill},
    {"Global status", kCode<2020>, kStatusParts, kReadyFill,
     "A text, then 64 bytes of status; fewer are reported as `Incorrect_data_len`."},
};

inline constexpr Module kModule{
    23, "SYSTEM_CONFIGMP_Event",
    "A payload longer than 32 bytes begins with a location block: line, file name and its NUL, "
    "function name up to the end of the block. The data follow it; offsets below have the block. "
    "Unless the severity is 1 (or, for the global status, 0x65) the body ends with File, Func and "
    "Line. Modules 19 (DDLM) and 25 (AIM) are decoded alike.",
    kSections};

} // namespace Pegasus::mpu::scc
