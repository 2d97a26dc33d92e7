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

void putSentence(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kSentence{putSentence, "The first sentence of the text."};

void putDump(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kDump{
    putDump, "What follows the text's NUL, as `Hex`.", {}, "Bad block\0\xDE\xAD\xBE\xEF\x01\x02"sv};

// The text of the sample is "Ready", so what follows it begins six bytes on.
void putStatus(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kStatus{
    putStatus, "The 64 bytes after the text's NUL; fewer are reported as `Incorrect_data_len`.",
    kStatusRows};

void putTrailer(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kTrailer{putTrailer,
                                      "Unless the severity is 1: `File`, `Func`, `Line`."};
void putStatusTrailer(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kStatusTrailer{
    putStatusTrailer, "Unless the severity is 1 or 101: `File`, `Func`, `Line`."};

// A structure, then a text, whose first sentence is the summary.
constexpr EventRow withText(unsigned code, Title title, Piece structure, unsigned textAt) {
    return {code,
            title,
            summary(kSentence, textAt),
            {structure, rows(kTextRows, textAt), kTrailer,
             sample(textAt, "Lock held by the other controller. Retry later\0"sv)}};
}

inline constexpr EventRow kEventRows[] = {
    {2000,
     {"Error Text", "Warning Text", "Text Information"},
     kSentence,
     {kTextRows, kTrailer, sample(0, "openStore(): failed to open the store. Retrying\0"sv)}},
    {2005,
     {"Error Dump Data", "Warning Dump Data", "Dump Information"},
     kSentence,
     {kTextRows, kDump, kTrailer}},
    {2010,
     "Instantiation of SharedMemory Failed",
     line("Shared Memory Event"),
     {kSharedMemoryRows, kTrailer}},
    withText(2011, {"Locking Error", "Locking Warning", "Locking Information"}, kLockRows, 28),
    {2012,
     "Instantiation of SharedMemory Failed",
     line("Shared Memory Event"),
     {kSharedMemoryRows, kTrailer}},
    withText(2013, {"MMSG Error", "MMSG Warning", "MMSG Information"}, kManagementMessageRows,
             kManagementMessageSize),
    withText(2015,
             {"Error in Request Event processing", "Warning in Request Event processing",
              "Request Event Information"},
             kRequestRows, 32),
    withText(2016,
             {"Error in CEE Response Event processing", "Warning in CEE Response Event processing",
              "CEE Response Event Information"},
             kResponseRows, kResponseSize),
    withText(2017,
             {"Error in CEE Timer Event processing", "Warning in CEE Timer Event processing",
              "CEE Timer Event Information"},
             kTimerRows, 32),
    withText(2018,
             {"Error in DDLM internal processing", "Warning in DDLM internal processing",
              "DDLM Information"},
             kLockManagerRows, 40),
    {2019,
     {"Error in CPM internal processing", "Warning in CPM internal processing", "CPM Information"},
     line("Persistent Memory Event"),
     {kPersistentMemoryRows, kTrailer}},
    {2020,
     {"Error in MPU Global Status Event processing",
      "Warning in MPU Global Status Event processing", "MPU Global Status Information"},
     kSentence,
     {kTextRows, custom(kStatus, 6), kStatusTrailer, sample(0, "Ready\0"sv),
      sample(6 + kStatusSize - 4, "\0\0\0\0"sv)}},
};

inline constexpr Piece kFrame[] = {
    rows(kLocationRows, 152),
    sample(152, "\0\x4d"
                "scc_main.c\0initService"sv),
};
inline constexpr EventTable kEvents{
    .rows = kEventRows,
    .minor = u16(150),
    .dataAt = 184,
    .frame = kFrame,
    .note = "A payload longer than 32 bytes begins with a location block: line, file name and its "
            "NUL, function name up to the end of the block. The data follow it; those of a shorter "
            "one begin with the payload. Modules 19 (DDLM) and 25 (AIM) are decoded alike.",
};
static_assert(accepted<kEvents>);

inline constexpr const EventTable* kTables[] = {&kEvents};
inline constexpr Module kModule{23, "SYSTEM_CONFIGMP_Event", {}, kTables};

} // namespace Pegasus::mpu::scc
