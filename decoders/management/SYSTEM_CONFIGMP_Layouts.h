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
    Row("cpmClassOffset", "[%d], value [%d]", index, u32(36)).times(32, 4),
    Row("cpmClassSize", "[%d], value [%d]", index, u32(164)).times(32, 4),
    Row("cpmClassDirty", "[%d], value [%d]", index, u8(292)).times(32, 1),
    Row("cpmGetObjectAddr", "[%d], value [%d]", index, u32(324)).times(32, 4),
    Row("cpmReleaseObjectAddr", "[%d], value [%d]", index, u32(452)).times(32, 4),
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
inline constexpr NameTable kLockRequests = names<kLockRequestTexts>(Otherwise::Number);

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
inline constexpr NameTable kTransactions = names<kTransactionTexts>(Otherwise::Number);

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

} // namespace Pegasus::mpu::scc
