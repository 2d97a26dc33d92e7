// Tables of the device-manager decoder. Offsets of versions 1 and 2 are from the event header
// (record offset 152), those of version 3 from the class data (record offset 184).
#pragma once

#include "decoders/protocol/SATA8P_Fields.h"
#include "event/Catalogue.h"
#include "event/FixedString.h"

#include <utility>

namespace Pegasus::mpu::sata {

// ---- rows --------------------------------------------------------------------------------------

constexpr Row dec(std::string_view tag, Value v) {
    return {tag, "%u", v};
}
// Two digits a byte, but eight for the 64-bit ones.
constexpr Row hex(std::string_view tag, Value v) {
    return {tag, v.size == 1 ? "0x%02x" : v.size == 2 ? "0x%04x" : "0x%08x", v};
}
constexpr Row word(std::string_view tag, Value v) {
    return {tag, "%s", v};
}
constexpr Row swapped(std::string_view tag, unsigned at) {
    return {tag, "0x%s", custom(at, 8, kSwapped)};
}

// The event body lies behind the 36 bytes of header.
inline constexpr unsigned kBody = 36;
constexpr unsigned b(unsigned at) {
    return kBody + at;
}

// Nobody wrote down how the bodies of versions 1 and 2 are laid out: all their rows are chosen.
// Fields are words in the order in which the firmware names them.
template <std::size_t Count>
consteval std::array<Row, Count> assumed(const Row (&rows)[Count]) {
    const auto mark = [](const Row& row) { return row.values[0].at < kBody ? row : row.assumed(); };
    return [&]<std::size_t... I>(std::index_sequence<I...>) {
        return std::array<Row, Count>{mark(rows[I])...};
    }
    (std::make_index_sequence<Count>());
}

inline constexpr Row kNoLine[] = {line("")}; // nothing in the summary

// ---- version 1: one object per group of event numbers ------------------------------------------

namespace v1 {

inline constexpr auto kAddressRows = assumed({hex("Address", u32(b(0)))});
inline constexpr auto kInterruptRows = assumed({hex("Interrupt_Status", u32(b(0)))});
inline constexpr auto kNumberedRows = assumed({
    dec("Event_Type", u32(0)),
    dec("Event_Number", u32(4)),
    dec("Line_Number", u32(12)).inferred(),
});
inline constexpr auto kPlaceRows = assumed({
    dec("Drive", u32(b(0))),
    hex("Adapter_Handle", u32(16)),
    dec("PCI_Bus", u32(20)),
    dec("ID_Select", u32(b(4))),
});
inline constexpr auto kRepeatsRows = assumed({
    dec("Drive", u32(b(0))),
    dec("Event_Count", u32(b(4))),
});
inline constexpr auto kStatisticsRows = assumed({
    dec("Drive", u32(b(0))),
    dec("Read_Count", u32(b(4))),
    dec("Write_Count", u32(b(8))),
    dec("WaitQ", u32(b(12))),
    dec("WaitMax", u32(b(16))),
    dec("SortedQ", u32(b(20))),
    dec("SortedMax", u32(b(24))),
    dec("OutstandingQ", u32(b(28))),
    dec("OutstandingMax", u32(b(32))),
    dec("Retry_Count", u32(b(36))),
});
inline constexpr auto kTaskRows = assumed({
    dec("Message_type", u32(b(0))),
    hex("Task_ID", u32(b(4))),
    dec("Status", u32(b(8))),
});
inline constexpr auto kAdapterRows = assumed({
    dec("ChannelConnected_%d", u8(b(0))).repeat(8, 1),
    hex("PCIDLLStatusAndControlRegister", u32(b(8))),
    hex("PCICommandRegister", u32(b(12))),
    hex("PCIModeRegister", u32(b(16))),
    hex("PCISERRMaskRegister", u32(b(20))),
    hex("IntCoalThre_%d", u32(b(24))).repeat(2, 4),
    hex("IntTimeThre_%d", u32(b(32))).repeat(2, 4),
    hex("R00StatusBridgePortRegister_%d", u32(b(40))).repeat(8, 4),
});
inline constexpr auto kResponseRows = assumed({
    dec("Adatper_Number", u32(16)),
    dec("Channel_Index", u32(24)),
    hex("Command_ID", u32(b(0))),
    dec("Time_Stamp", u32(b(4))),
});
inline constexpr auto kCommandRows = assumed({
    dec("Drive", u32(b(0))),
    hex("SectorCountRegister", u8(b(4))),
    hex("LbaLowRegister", u8(b(5))),
    hex("LbaMidRegister", u8(b(6))),
    hex("LbaHighRegister", u8(b(7))),
    hex("DeviceRegister", u8(b(8))),
    hex("StatusRegister", u8(b(9))),
    hex("ErrorRegister", u8(b(10))),
    word("Error_Cause", custom(b(9), 7, kRegisterCause)).overlay(),
    word("Command", name(u32(b(12)), kMarvellCommands)),
    hex("PLBN", u64(b(16))),
    hex("Xfer_Count", u32(b(24))),
});
inline constexpr auto kValueRows = assumed({hex("Value", u32(b(0)))});
inline constexpr auto kBarRows = assumed({hex("BAR_address", u32(b(0)))});
inline constexpr auto kCscbRows = assumed({
    dec("CSCB_Number", u32(b(0))),
    dec("State", u32(b(4))),
    hex("Flags", u32(b(8))),
    hex("Key", u32(b(12))),
    hex("Total_Xfer_Length", u32(b(16))),
    hex("Offset_Length", u32(b(20))),
    hex("PRB_PLBN", u64(b(24))),
    hex("PRB_Error_PLBN", u64(b(32))),
    hex("PRB_Xfer_Count", u32(b(40))),
    dec("PRB_Command", u32(b(44))),
    hex("Resp_Status", u32(b(48))),
});
// The 40-byte drive request packet of the data-path modules, then two words.
inline constexpr auto kRequestRows = assumed({
    swapped("DRP_PLBN", b(4)),
    hex("DRP_Xfer_Count", u32(b(12))),
    swapped("DRP_Error_PLBN", b(16)),
    hex("DRP_Residual_Count", u32(b(24))),
    dec("DRP_Device", u32(b(28))),
    word("DRP_Status", custom(b(32), 2, kRequestStatus)).overlay(),
    hex("DRP_Status_Flags", u8(b(33))),
    word("DRP_Command", name(u8(b(34)), kRequestCommands)),
    hex("DRP_Command_Flags", u8(b(35))),
    hex("DRP_Diskline_Bitmap", u32(b(36))),
    dec("DRP_Timeout", u32(b(40))),
    hex("DRP_Address", u32(b(44))),
});
inline constexpr auto kQueueRows = assumed({
    hex("Handle", u32(b(0))),
    hex("QMIR_wData", u32(b(4))),
});
inline constexpr auto kPhysicalDriveRows = assumed({
    dec("Channel_Number", u32(24)),
    hex("PDT_Handle", u32(b(0))),
    hex("Response", u32(b(4))),
    dec("Timeout", u32(b(8))),
    dec("Processed_Count", u32(b(12))),
    dec("Sorted_Count", u32(b(16))),
    dec("Wait_Count", u32(b(20))),
    dec("CSCB_Count", u32(b(24))),
    dec("Cmds_executed", u32(b(28))),
    dec("Cmds_outstanding", u32(b(32))),
    dec("Cmds_segmented", u32(b(36))),
    dec("Support_Ext_Cmds", u32(b(40))),
});
inline constexpr auto kAdapterNumberRows = assumed({dec("Adapter_Number", u32(16))});
inline constexpr auto kRegionRows = assumed({
    hex("PRD_Address", u32(b(0))),
    hex("SGT_Offset", u32(b(4))),
    dec("Block_Count", u32(b(8))),
    dec("EOT_Flag", u32(b(12))),
    dec("PRD_Count", u32(b(16))),
    dec("Bytes_To_Xfer", u32(b(20))),
    hex("SGT_LH_Address", u32(b(24))),
    dec("Byte_Count", u32(b(28))),
});
inline constexpr auto kOperationRows = assumed({
    dec("Drive", u32(b(0))),
    word("Operation", name(u32(b(4)), kMarvellCommands)),
});
// Where the hardware event of version 2 has it; the cause follows.
inline constexpr Row kPciRows[] = {hex("PCI_Error_Code", u32(b(4))).inferred()};
inline constexpr auto kIdentityRows = assumed({
    dec("Drive", u32(b(0))),
    word("Capacity", custom(b(8), 8, kCapacity)),
    hex("Max_PLBN", u64(b(16))),
    word("Model", trimmed(b(24), 40)),
    word("Serial_Number", trimmed(b(64), 20)),
    dec("Drive_State", u32(b(4))),
});
inline constexpr auto kVectorRows = assumed({dec("Interrupt_Vector", u32(b(0)))});
inline constexpr auto kChannelRows = assumed({
    dec("IsConnected", u8(b(0))),
    dec("DMAEnabled", u8(b(1))),
    dec("QueuedDMA", u8(b(2))),
    dec("OutstandingCommands", u8(b(3))),
    hex("EdmaConfigurationRegister", u32(b(4))),
    hex("EdmaRequestQueueBaseAddressHighRegister", u32(b(8))),
    hex("EdmaRequestQueueInPointerRegister", u32(b(12))),
    hex("EdmaRequestQueueOutPointerRegister", u32(b(16))),
    hex("EdmaResponseQueueBaseAddressHighRegister", u32(b(20))),
    hex("EdmaResponseQueueInPointerRegister", u32(b(24))),
    hex("EdmaResponseQueueOutPointerRegister", u32(b(28))),
    hex("EdmaCommandRegister", u32(b(32))),
    hex("PHYModeRegister", u32(b(36))),
});
inline constexpr auto kModelRows = assumed({
    dec("Drive", u32(b(0))),
    word("ModelNumber", trimmed(b(4), 40)),
});
inline constexpr auto kAlignmentRows = assumed({hex("Structure_Address", u32(b(0)))});
inline constexpr auto kResponseQueueRows = assumed({hex("Response_Queue", u32(b(0)))});
inline constexpr auto kCountersRows = assumed({
    dec("Drive", u32(b(0))),
    dec("Cscb_Count", u32(b(4))),
    dec("Cmds_Executed", u32(b(8))),
    dec("Cmds_Outstanding", u32(b(12))),
    dec("Cmds_Segmented", u32(b(16))),
});
inline constexpr auto kKeyRows = assumed({
    hex("Total_Xfer_Len", u32(b(0))),
    hex("Offset_Len", u32(b(4))),
    hex("CSCB_Key", u32(b(8))),
    hex("Invalid_Key", u32(b(12))),
});
inline constexpr auto kAsynchronousRows = assumed({
    dec("Drive", u32(b(0))),
    word("Type", name(u32(b(4)), kAsynchronous)),
    word("Reason", name(u32(b(8)), kReasons)),
    hex("EDMA_Error_Register", u32(b(12))),
    hex("Async_Data", u32(b(16))),
});
inline constexpr auto kParameterRows = assumed({hex("Parameter", u32(b(0)))});

// Summaries.
inline constexpr Row kResponsiveLine[] = {line("Drive %u, Became responsive", u32(b(0)))};
inline constexpr Row kOfflineLine[] = {line("Drive %u, Offline device", u32(b(0)))};
inline constexpr Row kBusyLine[] = {line("Drive %u, Busy during discovery", u32(b(0)))};
inline constexpr Row kRepeatsLine[] = {line("Drive %u, Reported %u events", u32(b(0)), u32(b(4)))};
inline constexpr Row kStatisticsLine[] = {line("Drive %u Statistics", u32(b(0)))};
inline constexpr Row kTaskLine[] = {line("Status %u", u32(b(8)))};
inline constexpr Row kFailureLine[] = {
    line("Drive %u, Command Failure, PLBN 0x%08x", u32(b(0)), u64(b(16)))};
inline constexpr Row kTimeoutLine[] = {
    line("Drive %u, Command Timeout, PLBN 0x%08x", u32(b(0)), u64(b(16)))};
inline constexpr Row kDriveFailureLine[] = {line("Drive %u Failure", u32(b(0)))};
inline constexpr Row kCscbLine[] = {line("Status %u", u32(b(48)))};
inline constexpr Row kRequestLine[] = {
    line("Drive %u, Command Failure, PLBN 0x%s", u32(b(28)), custom(b(4), 8, kSwapped))};
inline constexpr Row kDriveLine[] = {line("Drive %u", u32(b(0)))};
inline constexpr Row kDiscoveryLine[] = {line("Drive %u, Failed Discovery", u32(b(0)))};

enum Object : std::uint8_t {
    kAddress,
    kInterrupt,
    kNumbered,
    kPlace,
    kRepeats,
    kStatistics,
    kTask,
    kAdapter,
    kResponse,
    kCommand,
    kValue,
    kBar,
    kCscb,
    kRequest,
    kQueue,
    kPhysicalDrive,
    kAdapterNumber,
    kRegion,
    kOperation,
    kPci,
    kIdentity,
    kVector,
    kChannel,
    kModel,
    kAlignment,
    kResponseQueue,
    kCounters,
    kKey,
    kAsync,
    kParameter,
    kObjects,
};

enum Summary : std::uint8_t {
    kName, // the event's name
    kResponsive,
    kOffline,
    kBusy,
    kReported,
    kDriveStatistics,
    kTaskStatus,
    kFailure,
    kTimeout,
    kDriveFailure,
    kCscbStatus,
    kRequestFailure,
    kDrive,
    kDiscovery,
    kSummaries,
};

using Objects =
    LayoutSet<Style::Joined, kAddressRows, kInterruptRows, kNumberedRows, kPlaceRows, kRepeatsRows,
              kStatisticsRows, kTaskRows, kAdapterRows, kResponseRows, kCommandRows, kValueRows,
              kBarRows, kCscbRows, kRequestRows, kQueueRows, kPhysicalDriveRows, kAdapterNumberRows,
              kRegionRows, kOperationRows, kPciRows, kIdentityRows, kVectorRows, kChannelRows,
              kModelRows, kAlignmentRows, kResponseQueueRows, kCountersRows, kKeyRows,
              kAsynchronousRows, kParameterRows>;
static_assert(Objects::size == kObjects);

using Summaries = LayoutSet<Style::Joined, kNoLine, kResponsiveLine, kOfflineLine, kBusyLine,
                            kRepeatsLine, kStatisticsLine, kTaskLine, kFailureLine, kTimeoutLine,
                            kDriveFailureLine, kCscbLine, kRequestLine, kDriveLine, kDiscoveryLine>;
static_assert(Summaries::size == kSummaries);

struct Event {
    std::uint16_t last; // number; the first one follows the row before
    Object object;
    Summary summary;
    FixedString<40> name;
};
inline constexpr unsigned kFirstNumber = 101;
inline constexpr Event kEvents[] = {
    {105, kAddress, kName, "Fatal Error"},
    {110, kInterrupt, kName, "Fatal Error"},
    {117, kNumbered, kName, "Invalid Parameter"},
    {120, kPlace, kResponsive, "Drive Inserted"},
    {123, kPlace, kOffline, "Drive Removed"},
    {127, kPlace, kBusy, "Failed Discovery"},
    {131, kRepeats, kReported, "Port Error"},
    {135, kStatistics, kDriveStatistics, "Drive Stats"},
    {143, kTask, kTaskStatus, "Device Error"},
    {151, kAdapter, kName, "Adapter initialization failure"},
    {159, kResponse, kName, "Invalid CSCB Response"},
    {169, kCommand, kFailure, "Command Failure"},
    {177, kCommand, kTimeout, "Command Timeout"},
    {183, kCommand, kDriveFailure, "Drive Error"},
    {187, kValue, kName, "Adapter initialization failure"},
    {191, kBar, kName, "Adapter initialization failure"},
    {201, kCscb, kCscbStatus, "Invalid CSCB Response"},
    {211, kRequest, kRequestFailure, "Command Failure"},
    {219, kQueue, kName, "Fatal Error"},
    {225, kPhysicalDrive, kName, "Device Offline"},
    {230, kPhysicalDrive, kName, "Failed to initialize a connected drive"},
    {234, kAdapterNumber, kName, "No valid devices discovered"},
    {244, kRegion, kName, "Fatal Error"},
    {249, kOperation, kDrive, "Drive Operation"},
    {257, kPci, kName, "Asynchronous Adapter Error"},
    {263, kIdentity, kDrive, "Drive Discovered"},
    {267, kVector, kName, "Interrupt installation failure"},
    {273, kChannel, kName, "Failed to initialize a connected drive"},
    {277, kModel, kDiscovery, "Failed Discovery"},
    {281, kAlignment, kName, "Structure alignment error"},
    {287, kResponseQueue, kName, "Command response error"},
    {291, kCounters, kDriveStatistics, "Drive Stats"},
    {296, kKey, kName, "Command response with invalid key value"},
    {299, kKey, kName, "Empty CSCB DRP listhead"},
    {305, kAsync, kDriveFailure, "Drive Error"},
    {309, kParameter, kName, "Invalid Parameter"},
};

// The row of each number from kFirstNumber on.
inline constexpr auto kRowOf = [] {
    constexpr std::size_t count = std::end(kEvents)[-1].last - kFirstNumber + 1;
    std::array<std::uint8_t, count> rows{};
    for (std::size_t i = 0, row = 0; i < count; ++i) {
        row += kEvents[row].last < kFirstNumber + i;
        rows[i] = static_cast<std::uint8_t>(row);
    }
    return rows;
}();
static_assert(std::is_sorted(std::begin(kEvents), std::end(kEvents),
                             [](const Event& a, const Event& b) { return a.last < b.last; }));

} // namespace v1

// ---- version 2 ---------------------------------------------------------------------------------

namespace v2 {

inline constexpr Row kHardwareRows[] = {
    word("Event", name(u32(4), kDriveEvents)),
    dec("Adapter", u32(16)),
    dec("PCI_Bus", u32(20)),
};
inline constexpr Row kIdSelectRows[] = {hex("ID_Select", u32(b(0)))};
inline constexpr Row kCountRows[] = {
    hex("Process_Flags", u32(32)).unlessZero(),
    dec("Missed_Events", u32(28)).unlessZero(),
};

inline constexpr Row kPciRows[] = {hex("PCI_Error_Code", u32(b(4)))}; // the cause follows

inline constexpr Row kNotFoundLine[] = {line(
    "Adapter not Found, Adapter %u, PCIX Bus %u, ID Select 0x%08x", u32(16), u32(20), u32(b(0)))};
inline constexpr Row kAdapterLine[] = {
    line("Adapter Error, Adapter %u, PCIX Bus %u", u32(16), u32(20))};

inline constexpr auto kDriveRows = assumed({
    word("Event", name(u32(4), kDriveEvents)),
    dec("Drive", u32(b(0))),
    dec("Adapter", u32(16)),
    dec("PCI_Bus", u32(20)),
    dec("Channel", u32(24)),
});
inline constexpr unsigned kStatusRegister = b(37);
inline constexpr unsigned kErrorRegister = b(38);
inline constexpr unsigned kMilliseconds = b(68);
inline constexpr unsigned kSeconds = b(72);
inline constexpr auto kCommandRows = assumed({
    word("Command", name(u32(b(4)), kOperations)),
    word("Status", name(u32(b(8)), kCompletions)),
    hex("Drive_CMD", u32(b(12))),
    dec("Retry_Count", u32(b(16))),
    hex("Error_LBA", u64(b(24))),
    word("Error_Cause", bit(u8(kErrorRegister), 6, kDriveCauses)).overlay(),
    hex("SectorCountRegister", u8(b(32))),
    hex("LbaLowRegister", u8(b(33))),
    hex("LbaMidRegister", u8(b(34))),
    hex("LbaHighRegister", u8(b(35))),
    hex("DeviceRegister", u8(b(36))),
    hex("StatusRegister", u8(kStatusRegister)),
    hex("ErrorRegister", u8(kErrorRegister)),
    hex("DRP_Starting_LBA", u64(b(40))),
    hex("DRP_Transfer_Count", u32(b(48))),
    hex("Drive_Starting_LBA", u64(b(56))),
    hex("Drive_Transfer_Count", u32(b(64))),
    dec("Milli_Seconds", u32(kMilliseconds)),
    dec("Seconds", u32(kSeconds)),
    word("Detailed_Status", name(u32(b(76)), kDetailedStatus)),
});
inline constexpr auto kAsyncRows = assumed({
    word("Type", name(u32(b(4)), kAsynchronous)),
    word("Reason", name(u32(b(8)), kReasons)),
    hex("EDMA_Error_Register", u32(b(12))),
    hex("Async_Data", u32(b(16))),
});

inline constexpr Row kDriveLine[] = {line("Drive %u, %s", u32(b(0)), name(u32(4), kDriveEvents))};
inline constexpr Row kCommandLine[] = {line(", %s", name(u32(b(8)), kCompletions))};

// Bugchecks: the drive, then the object that failed. Quantities of 64 bits lie at the next offset
// that is a multiple of 8.
inline constexpr auto kBugcheckRows = assumed({
    dec("Drive", u32(b(0))),
    dec("Adapter", u32(16)),
    dec("PCI_Bus", u32(20)),
    dec("Channel", u32(24)),
    dec("Missed_Events", u32(28)).unlessZero(),
});
inline constexpr Row kFlagsRows[] = {hex("Process_Flags", u32(32)).unlessZero()};
inline constexpr auto kSemaphoreRows = assumed({
    hex("Semaphore_Valid", u32(b(4))),
    hex("Semaphore_Value", u32(b(8))),
});
inline constexpr auto kConfigurationRows = assumed({hex("Hardware_Configuration", u32(b(4)))});
inline constexpr auto kPcixInterruptRows = assumed({hex("PCIX_Interrupt_Status", u32(b(4)))});
inline constexpr auto kAddressRows = assumed({hex("Bad_Address", u32(b(4)))});
inline constexpr auto kDriveCommandRows = assumed({
    hex("DRIVE_CMD_Flink", u32(b(4))),
    hex("DRIVE_CMD_Blink", u32(b(8))),
    hex("DCB", u32(b(12))),
    hex("DRIVE_CMD_Flags", u32(b(16))),
    dec("Total_Xfer_Count", u32(b(20))),
    hex("Offset_Length", u32(b(24))),
    dec("Time_Out", u32(b(28))),
    hex("DRP_LH_Flink", u32(b(32))),
    hex("DRP_LH_Blink", u32(b(36))),
    dec("Status", u32(b(40))),
    dec("Retry_Count", u32(b(44))),
    dec("Detailed_Status", u32(b(48))),
    hex("PRD_Table", u32(b(52))),
    hex("PRB_LBA", u64(b(56))),
    hex("PRB_Error_LBA", u64(b(64))),
    dec("PRB_Xfer_Count", u32(b(72))),
    dec("PRB_Command", u32(b(76))),
    dec("PRB_DL_Index", u32(b(80))),
    hex("SATA_CMD_Flags", u32(b(84))),
    hex("SATA_Command", u32(b(88))),
    hex("SATA_CMD_LBA", u64(b(96))),
    dec("SATA_CMD_Xfer_Count", u32(b(104))),
    hex("SATA_CMD_Low_DMA_Address", u32(b(108))),
    dec("SATA_CMD_Channel_Index", u32(b(112))),
    hex("SATA_CMD_Handle", u32(b(116))),
});
inline constexpr auto kAsyncDataRows = assumed({hex("Asynchronous_Data", u32(b(4)))});
inline constexpr auto kRequestRows = assumed({
    dec("Device", u32(b(4))),
    hex("LBA", u64(b(8))),
    hex("SGT_LH_Flink", u32(b(16))),
    hex("SGT_LH_Blink", u32(b(20))),
    hex("Meta_Data_LH_Flink", u32(b(24))),
    hex("Meta_Data_LH_Blink", u32(b(28))),
});
inline constexpr auto kInterruptRows = assumed({
    hex("Peripheral_Interrupt_Register", u32(b(4))),
    hex("Queue_Manager_Interrupt_Register", u32(b(8))),
});
// The queue, then its 32 bytes of state as the data-path modules have it.
inline constexpr auto kQueueRows = assumed({
    hex("MSA_Queue", u32(b(4))),
    hex("Full_High_Level", u16(b(8))),
    hex("Full_Low_Level", u16(b(10))),
    hex("Read_Pointer", u16(b(12))),
    hex("Write_Pointer", u16(b(14))),
    dec("Count", u16(b(16))),
    hex("Not_Empty_Signal", u16(b(18))),
    hex("Base_Address", u32(b(20))),
    dec("Hysteresis", u8(b(24))),
    dec("Mode", u8(b(25))),
    dec("Size", u16(b(26))),
    hex("High_Watermark_Signal", u16(b(28))),
    hex("Low_Watermark_Signal", u16(b(30))),
    hex("Overflow_Signal", u16(b(32))),
    hex("Underflow_Signal", u16(b(34))),
    hex("Write_Checkpoint", u32(b(36))),
});
inline constexpr auto kDriveBlockRows = assumed({
    hex("DCB_Flink", u32(b(4))),
    hex("DCB_Blink", u32(b(8))),
    dec("State", u32(b(12))),
    dec("Active_Commands", u32(b(16))),
    dec("Queue_Depth", u32(b(20))),
    hex("DCB_Flags", u32(b(24))),
    dec("Commands_Executed", u32(b(28))),
    hex("PDT", u32(b(32))),
    hex("Active_Command_LH_Flink", u32(b(36))),
    hex("Active_Command_LH_Blink", u32(b(40))),
    dec("Read_Commands", u32(b(44))),
    dec("Write_Commands", u32(b(48))),
    hex("Pending_Command_LH_Flink", u32(b(52))),
    hex("Pending_Command_LH_Blink", u32(b(56))),
    hex("Pending_SMART_Ops_LH_Flink", u32(b(60))),
    hex("Pending_SMART_Ops_LH_Blink", u32(b(64))),
    dec("Command_Time_Out", u32(b(68))),
    dec("Identify_Retry_Count", u32(b(72))),
    hex("DIB", u32(b(76))),
    hex("Timed_Out_Command_LH_Flink", u32(b(80))),
    hex("Timed_Out_Command_LH_Blink", u32(b(84))),
    hex("Failed_NCQ_Command_Retry_LH_Flink", u32(b(88))),
    hex("Failed_NCQ_Command_Retry_LH_Blink", u32(b(92))),
});
inline constexpr auto kTransferRows = assumed({
    dec("Command_Xfer_Count", u32(b(4))),
    dec("DRP_Xfer_Count", u32(b(8))),
    dec("SGT_Total_Byte_Count", u32(b(12))),
});
// Up to kSegments of them behind the transfer; an address of 0 ends the list.
inline constexpr Row kSegmentRows[] = {
    hex("SGTE_Address", u32(0)).assumed(),
    dec("SGTE_Byte_Count", u32(4)).assumed(),
};
inline constexpr unsigned kSegments = 8;
inline constexpr unsigned kSegmentSize = 8;
inline constexpr auto kPcixRows = assumed({
    dec("Bus", u32(b(4))),
    hex("Address", u32(b(8))),
    word("Command", custom(b(12), 4, kPcixCommand)),
    hex("Write_Data", u32(b(16))),
});
// The ring's entries follow, as words, to the end of the payload.
inline constexpr auto kRingRows = assumed({
    hex("Response_Ring_Base_Address", u32(b(4))),
    dec("Current_Out_Index", u32(b(8))),
    hex("Timed_Out_Response_Entry", u32(b(12))),
});
inline constexpr unsigned kListAt = b(16); // segments and ring entries
inline constexpr auto kEventRows = assumed({dec("Event", u32(b(4)))});
inline constexpr auto kEventTypeRows = assumed({dec("Event_Type", u32(b(4)))});
inline constexpr auto kInformationRows = assumed({hex("Bugcheck_Information", u32(b(4)))});
inline constexpr auto kInvalidRows = assumed({
    dec("Event_Type", u32(b(4))),
    hex("Bugcheck_Information", u32(b(8))),
});

// What follows the bugcheck's name in the summary.
inline constexpr Row kBugcheckLine[] = {line("%s, Drive %u", name(u32(4), kBugchecks), u32(b(0)))};
inline constexpr Row kReturnedLine[] = {line(", Status %u", u32(b(4)))};
inline constexpr Row kSemaphoreLine[] = {
    line(", Semaphore Valid 0x%08x, Semaphore Value 0x%08x", u32(b(4)), u32(b(8)))};
inline constexpr Row kConfigurationLine[] = {line(", Hardware Configuration 0x%08x", u32(b(4)))};
inline constexpr Row kPcixInterruptLine[] = {line(", PCIX Interrupt Status 0x%08x", u32(b(4)))};
inline constexpr Row kAddressLine[] = {line(", Bad Address 0x%08x", u32(b(4)))};
inline constexpr Row kDriveCommandLine[] = {line(", Status %u", u32(b(40)))};
inline constexpr Row kAsyncDataLine[] = {line(", Asynchronous Data 0x%08x", u32(b(4)))};
inline constexpr Row kInterruptLine[] = {line(", PIR 0x%08x, QMIR 0x%08x", u32(b(4)), u32(b(8)))};
inline constexpr Row kQueueLine[] = {line(", MSA Queue 0x%08x", u32(b(4)))};
inline constexpr Row kEventLine[] = {line(", Event %u", u32(b(4)))};
inline constexpr Row kEventTypeLine[] = {line(", Event Type %u", u32(b(4)))};
inline constexpr Row kInformationLine[] = {line(", Bugcheck Information 0x%08x", u32(b(4)))};
inline constexpr Row kInvalidLine[] = {line(", Bugcheck 0x%08x", u32(b(8)))};

enum Object : std::uint8_t {
    kFlags,
    kReturned, // flags, and a status in the summary
    kSemaphore,
    kConfiguration,
    kPcixInterrupt,
    kAddress,
    kDriveCommand,
    kAsyncData,
    kRequest,
    kInterrupt,
    kQueue,
    kDriveBlock,
    kTransfer,
    kPcix,
    kRing,
    kEvent,
    kEventType,
    kInformation,
    kInvalid,
    kObjects,
};

using Objects =
    LayoutSet<Style::Joined, kFlagsRows, kFlagsRows, kSemaphoreRows, kConfigurationRows,
              kPcixInterruptRows, kAddressRows, kDriveCommandRows, kAsyncDataRows, kRequestRows,
              kInterruptRows, kQueueRows, kDriveBlockRows, kTransferRows, kPcixRows, kRingRows,
              kEventRows, kEventTypeRows, kInformationRows, kInvalidRows>;
static_assert(Objects::size == kObjects);

using Summaries =
    LayoutSet<Style::Joined, kNoLine, kReturnedLine, kSemaphoreLine, kConfigurationLine,
              kPcixInterruptLine, kAddressLine, kDriveCommandLine, kAsyncDataLine, kNoLine,
              kInterruptLine, kQueueLine, kNoLine, kNoLine, kNoLine, kNoLine, kEventLine,
              kEventTypeLine, kInformationLine, kInvalidLine>;
static_assert(Summaries::size == kObjects);

// By bugcheck code.
inline constexpr Object kBugcheckObjects[] = {
    /*  0 */ kFlags,        kFlags,         kFlags,         kSemaphore,
    /*  4 */ kReturned,     kConfiguration, kPcixInterrupt, kAddress,
    /*  8 */ kDriveCommand, kDriveCommand,  kDriveCommand,  kDriveCommand,
    /* 12 */ kAsyncData,    kRequest,       kInterrupt,     kInterrupt,
    /* 16 */ kQueue,        kInterrupt,     kInterrupt,     kQueue,
    /* 20 */ kQueue,        kSemaphore,     kQueue,         kDriveBlock,
    /* 24 */ kDriveCommand, kDriveCommand,  kDriveCommand,  kDriveCommand,
    /* 28 */ kDriveCommand, kAddress,       kAddress,       kDriveCommand,
    /* 32 */ kAsyncData,    kTransfer,      kDriveCommand,  kTransfer,
    /* 36 */ kPcix,         kPcix,          kPcix,          kPcix,
    /* 40 */ kPcix,         kPcix,          kFlags,         kRing,
    /* 44 */ kEvent,        kEventType,     kInformation,   kInvalid,
};
static_assert(std::size(kBugcheckObjects) == std::size(kBugcheckTexts));

} // namespace v2

// ---- version 3 ---------------------------------------------------------------------------------

namespace v3 {

// Fields of the event header, from its start, and of the class data behind its 32 bytes.
inline constexpr unsigned kData = 32;
constexpr unsigned c(unsigned at) {
    return kData + at;
}

inline constexpr Row kPathRows[] = {dec("Expander", u32(8)), dec("PHY", u32(12))};
inline constexpr Row kAdapterRows[] = {dec("Adapter", u32(16)), dec("PCI_Bus", u32(20))};
inline constexpr Row kMissedRows[] = {dec("Missed_Events", u32(24)).unlessZero()};

// From here on the offsets are in the class data or in the structure named.
inline constexpr Row kInitiatorHandle = hex("Initiator_Handle", u32(0));
inline constexpr Row kTargetHandle = hex("Target_Handle", u32(4));
inline constexpr Row kLunHandle = hex("LUN_Handle", u32(8));
inline constexpr Row kUnitHandle = hex("LU_Handle", u32(12));

// XPort: what is special, command and outcome, then the transfer.
inline constexpr Row kDevice = dec("Device", u32(28)).assumed();
inline constexpr Row kDeviceRows[] = {kDevice};
inline constexpr Row kSasStatusRows[] = {
    kDevice,
    hex("SAS_Status_Value", u32(104)),
    word("SAS_Status_String", name(u32(104), kSasStatus)).overlay(),
};
inline constexpr Row kExceededRows[] = {
    kDevice,
    dec("Milli_Seconds", u32(112)),
    word("Command_Status", name(u32(116), kCommandStatus)),
};
inline constexpr Row kIocStatusRows[] = {
    hex("IOC_Status_Value", u32(104)),
    word("IOC_Status_String", name(u32(104), kIocStatus)).overlay(),
};
inline constexpr Row kIocLogRows[] = {kDevice, hex("IOC_Log_Information", u32(104))};
inline constexpr Row kTransferRows[] = {
    dec("Total_Byte_Count", u32(92)),
    dec("Current_Byte_Count", u32(96)),
    dec("Residual_Byte_Count", u32(100)),
    word("Protocol", name(u32(16), kProtocols)),
    word("Transport", name(u32(20), kTransports)),
    word("Hardware", name(u32(24), kControllers)),
    kInitiatorHandle,
    kTargetHandle,
    kLunHandle,
    kUnitHandle,
};
inline constexpr Row kDeviceAgainRows[] = {dec("Device", u32(108)).overlay()};
inline constexpr Row kElapsedRows[] = {
    word("Seconds", custom(108, 8, kElapsed)).inferred().overlay()};
inline constexpr Row kPortRows[] = {
    hex("Doorbell_Register", u32(4)),
    hex("Diagnostic_Register", u32(8)),
    hex("IOC_Status", u32(16)),
    hex("Information", u32(20)),
    dec("Line_Number", u32(12)),
    word("Transport", name(u32(28), kTransports)),
    word("Hardware", name(u32(32), kControllers)),
};
inline constexpr Row kZeroReplyRows[] = {
    dec("Loop_Count", u32(0)),
    dec("Zero_Reply_Count", u32(4)),
    word("Transport", name(u32(8), kTransports)),
    word("Hardware", name(u32(12), kControllers)),
};

inline constexpr Row kDriveRows[] = {dec("Drive", u32(56)).inferred()};
inline constexpr Row kSataCountsRows[] = {
    dec("Retry_Count", u32(52)),          hex("DRP_Start_LBA", u64(32)).inferred(),
    hex("DRP_Transfer_Count", u32(148)),  hex("Device_Transfer_Count", u32(152)),
    hex("Error_LBA", u64(40)).inferred(),
};
inline constexpr Row kScsiCountsRows[] = {
    dec("Retry_Count", u32(52)),          hex("DRP_Start_LBA", u64(32)).inferred(),
    hex("DRP_Transfer_Count", u32(160)),  hex("Device_Transfer_Count", u32(164)),
    hex("Error_LBA", u64(40)).inferred(),
};
inline constexpr Row kKindRows[] = {
    word("Protocol", name(u32(16), kProtocols)),
    word("Type", name(u32(20), kDeviceKinds)),
};
inline constexpr Row kSizeRows[] = {
    word("Capacity", custom(24, 8, kCapacity)).inferred(),
    dec("Block_Size", u32(48)),
    kInitiatorHandle,
    kTargetHandle,
    kLunHandle,
    kUnitHandle,
};
inline constexpr Row kResetRows[] = {
    dec("Drive", u32(24)).assumed(),
    word("Protocol", name(u32(16), kProtocols)).inferred(),
    word("Type", name(u32(20), kDeviceKinds)).inferred(),
    kInitiatorHandle,
    kTargetHandle,
    kLunHandle,
    kUnitHandle,
};
inline constexpr Row kIdentifyRows[] = {
    kInitiatorHandle,
    kTargetHandle,
    kLunHandle,
    dec("LUN", u32(20)).assumed(),
    hex("Integrity_Signature", u8(16)),
    hex("Integrity_Checksum", u8(17)),
    word("Protocol", name(u32(12), kProtocols)),
    dec("Opcode", u8(18)).assumed(),
};

inline constexpr Row kTargetRows[] = {
    word("Cause", name(u32(8), kDiscoveries)),
    dec("Target", u32(28)).assumed(),
    word("Protocol", name(u32(12), kProtocols)),
    word("Transport", name(u32(16), kTransports)),
    word("Hardware", name(u32(20), kControllers)),
    word("Link_Speed", name(u32(24), kLinkRates)),
    hex("Durable_Name", u64(32)).assumed(),
    kInitiatorHandle,
    kTargetHandle,
};
inline constexpr Row kLunRows[] = {
    word("Cause", name(u32(16), kDiscoveries)),
    dec("LUN", u32(12)).inferred(),
    word("Protocol", name(u32(20), kProtocols)),
    word("Type", name(u32(24), kDeviceKinds)),
    kInitiatorHandle,
    kTargetHandle,
    kLunHandle,
};
inline constexpr Row kUnitRows[] = {
    word("Cause", name(u32(16), kDiscoveries)),
    dec("LU", u32(40)).assumed(),
    word("Protocol", name(u32(20), kProtocols)),
    word("Type", name(u32(24), kDeviceKinds)),
    word("Capacity", custom(32, 8, kCapacity)).inferred(),
    dec("Block_Size", u32(28)),
    kInitiatorHandle,
    kTargetHandle,
    kLunHandle,
    kUnitHandle,
};

inline constexpr Row kBugcheckRows[] = {
    word("Module", name(u32(0), kComponents)).inferred(),
    dec("Line_Number", u32(4)).inferred(),
    hex("Pameter_1", u32(8)),
    hex("Pameter_2", u32(12)),
    hex("Pameter_3", u32(16)),
    hex("Pameter_4", u32(20)),
};
inline constexpr Row kTraceRows[] = {dec("Line_Number", u32(0)).assumed()};

// Structures of the drive protocols; sense data and FIS as their standards have them.
inline constexpr Row kSataStringRows[] = {
    word("Serial_Number", trimmed(0, 20)),
    word("Model", trimmed(20, 40)),
    word("Firmware_Revision", trimmed(60, 8)),
};
inline constexpr Row kScsiStringRows[] = {
    word("Serial_Number", trimmed(0, 20)),
    word("Model", trimmed(20, 16)),
    word("Vendor", trimmed(36, 8)),
    word("Firmware_Revision", trimmed(44, 4)),
};
inline constexpr unsigned kCdbSize = 16;
inline constexpr Row kCdbRows[] = {
    word("CDB", custom(0, 20, kCdb)),
    dec("CDB_Length", u32(kCdbSize)).overlay(),
};
inline constexpr Row kCommandFisRows[] = {
    Row("Command_FIS_LBA", "0x%s", custom(4, 7, kFisLba)),
    hex("Command_FIS_FIS_Type", u8(0)),
    hex("Command_FIS_C_PM", u8(1)),
    hex("Command_FIS_Command", u8(2)),
    hex("Command_FIS_Features", u8(3)),
    hex("Command_FIS_Device", u8(7)).overlay(),
    hex("Command_FIS_Features_Exp", u8(11)),
    hex("Command_FIS_Sector_Count", u8(12)),
    hex("Command_FIS_Sector_Count_Exp", u8(13)),
    hex("Command_FIS_Control", u8(15)),
};
// Behind the cause of the error.
inline constexpr Row kStatusFisRows[] = {
    Row("Status_FIS_LBA", "0x%s", custom(4, 7, kFisLba)),
    hex("Status_FIS_FIS_Type", u8(0)),
    hex("Status_FIS_C_PM", u8(1)),
    hex("Status_FIS_Status", u8(2)),
    hex("Status_FIS_Error", u8(3)),
    hex("Status_FIS_Features_Exp", u8(11)),
    hex("Status_FIS_Sector_Count", u8(12)),
    hex("Status_FIS_Sector_Count_Exp", u8(13)),
    hex("Status_FIS_Control", u8(15)),
};
inline constexpr unsigned kSenseKeyAt = 2;
inline constexpr Row kSenseRows[] = {
    word("Sense_Key", custom(kSenseKeyAt, 1, kSenseKey)),
    Row("Sense_Key", "0x%s", custom(kSenseKeyAt, 1, kSenseNumber)).overlay(),
    hex("ASC", u8(12)),
    hex("ASCQ", u8(13)),
    hex("Information", u32(3)),
};

// Summaries, with offsets from the event header.
inline constexpr Row kNameLine[] = {line("%s", name(u32(4), kIdentifiers))};
inline constexpr Row kDeviceLine[] = {
    line("%s, Device %u", name(u32(4), kIdentifiers), u32(c(28)))};
inline constexpr Row kSasStatusLine[] = {line("%s, Device %u, %s", name(u32(4), kIdentifiers),
                                              u32(c(28)), name(u32(c(104)), kSasStatus))};
inline constexpr Row kElapsedLine[] = {
    line("%s, Device %u, %s", name(u32(4), kIdentifiers), u32(c(28)), custom(c(108), 8, kElapsed))};
inline constexpr Row kIocStatusLine[] = {line("%s, Device %u, %s", name(u32(4), kIdentifiers),
                                              u32(c(28)), name(u32(c(104)), kIocStatus))};
inline constexpr Row kPortLine[] = {line("SAS Port %u Information 0x%08x", u32(c(0)), u32(c(20)))};
inline constexpr Row kErrorLine[] = {line("Drive %u, %s", u32(c(56)), name(u32(4), kIdentifiers))};
inline constexpr Row kTargetLine[] = {
    line("Target %u, %s", u32(c(28)), name(u32(c(8)), kDiscoveries))};
inline constexpr Row kLunLine[] = {line("LUN %u, %s", u32(c(12)), name(u32(c(16)), kDiscoveries))};
inline constexpr Row kUnitLine[] = {line("LU %u, %s", u32(c(40)), name(u32(c(16)), kDiscoveries))};
inline constexpr Row kBugcheckLine[] = {
    line("%s, Line %u", name(u32(c(0)), kComponents), u32(c(4)))};

enum Summary : std::uint8_t {
    kNameOf,
    kDeviceOf,
    kSasStatusOf,
    kElapsedOf,
    kIocStatusOf,
    kPortOf,
    kErrorOf, // the cause or the sense key follows
    kTargetOf,
    kLunOf,
    kUnitOf,
    kBugcheckOf,
    kSummaries,
};

// What a body is made of: layouts, and steps that look at the record first.
enum Piece : std::uint8_t {
    kEnd,
    kDeviceNumber,
    kSasStatus,
    kExceeded,
    kIocStatus,
    kIocLog,
    kTransfer,
    kDeviceAgain,
    kElapsedTime,
    kPort,
    kZeroReply,
    kDrive,
    kSataCounts,
    kScsiCounts,
    kKind,
    kSize,
    kReset,
    kIdentify,
    kTarget,
    kLun,
    kUnit,
    kBugcheck,
    kTrace,
    kLayouts,

    kSlots = kLayouts, // command and outcome
    kSataStatus,
    kSataCommand,
    kSataStrings,
    kScsiSense,
    kScsiCommand,
    kScsiStrings,
    kIdentifyStrings,
    kUnitStrings,
};

using Pieces =
    LayoutSet<Style::Joined, kNoLine, kDeviceRows, kSasStatusRows, kExceededRows, kIocStatusRows,
              kIocLogRows, kTransferRows, kDeviceAgainRows, kElapsedRows, kPortRows, kZeroReplyRows,
              kDriveRows, kSataCountsRows, kScsiCountsRows, kKindRows, kSizeRows, kResetRows,
              kIdentifyRows, kTargetRows, kLunRows, kUnitRows, kBugcheckRows, kTraceRows>;
static_assert(Pieces::size == kLayouts);

using Summaries =
    LayoutSet<Style::Joined, kNameLine, kDeviceLine, kSasStatusLine, kElapsedLine, kIocStatusLine,
              kPortLine, kErrorLine, kTargetLine, kLunLine, kUnitLine, kBugcheckLine>;
static_assert(Summaries::size == kSummaries);

// Places of the structures that are not on every record. Where the protocol selects one, 0 is SATA
// and all others are SCSI.
inline constexpr unsigned kXportProtocol = 16;
inline constexpr unsigned kXportCommand = 32;
inline constexpr unsigned kXportOutcome = 52;
inline constexpr unsigned kErrorCommand = 60;
inline constexpr unsigned kSataErrorStatus = 156;
inline constexpr unsigned kSataErrorStrings = 80;
inline constexpr unsigned kScsiErrorSense = 80;
inline constexpr unsigned kScsiErrorStrings = 112;
inline constexpr unsigned kIdentifyProtocol = 12;
inline constexpr unsigned kIdentifyStringsAt = 24;
inline constexpr unsigned kUnitProtocol = 20;
inline constexpr unsigned kUnitStringsAt = 44;

struct Event {
    std::uint8_t eventClass;
    std::uint8_t identifier;
    Summary summary;
    Piece pieces[8]; // to kEnd
};
inline constexpr std::uint8_t kAny = 0xFF;
inline constexpr Event kEvents[] = {
    {1, 1, kSasStatusOf, {kSasStatus, kSlots, kTransfer, kElapsedTime}},
    {1, 2, kElapsedOf, {kDeviceNumber, kSlots, kTransfer, kElapsedTime}},
    {1, 3, kElapsedOf, {kExceeded, kSlots, kTransfer, kDeviceAgain, kElapsedTime}},
    {1, 4, kIocStatusOf, {kIocStatus, kSlots, kTransfer, kElapsedTime}},
    {1, 5, kDeviceOf, {kIocLog, kSlots, kTransfer, kElapsedTime}},
    {1, 15, kPortOf, {kPort}},
    {1, 16, kNameOf, {kZeroReply}},
    {2, 10, kErrorOf, {kDrive, kSataStatus, kSataCounts, kSataCommand, kKind, kSataStrings, kSize}},
    {2, 11, kErrorOf, {kDrive, kScsiSense, kScsiCounts, kScsiCommand, kKind, kScsiStrings, kSize}},
    {2, 12, kNameOf, {kReset}},
    {2, 13, kNameOf, {kIdentify, kIdentifyStrings}},
    {3, 7, kTargetOf, {kTarget}},
    {3, 8, kLunOf, {kLun}},
    {3, 9, kUnitOf, {kUnit, kUnitStrings}},
    {4, kAny, kBugcheckOf, {kBugcheck}},
    {5, kAny, kNameOf, {kTrace}},
};

} // namespace v3

} // namespace Pegasus::mpu::sata
