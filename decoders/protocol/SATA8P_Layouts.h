// Tables of the device-manager decoder. Offsets of versions 1 and 2 are from the event header
// (record offset 152), those of version 3 from the class data (record offset 184).
#pragma once

#include "decoders/protocol/SATA8P_Fields.h"
#include "event/Catalogue.h"

#include <utility>

namespace Pegasus::mpu::sata {

// ---- rows --------------------------------------------------------------------------------------

constexpr Row dec(std::string_view tag, Value v) {
    return {tag, "%u", v};
}
// Two digits per byte, but eight for the 64-bit ones.
constexpr Row hex(std::string_view tag, Value v) {
    return {tag, v.size == 1 ? "0x%02x" : v.size == 2 ? "0x%04x" : "0x%08x", v};
}
constexpr Row word(std::string_view tag, Value v) {
    return {tag, "%s", v};
}
constexpr Row swapped(std::string_view tag, unsigned at) {
    return {tag, "0x%s", custom(at, 8, kSwapped)};
}

// The event body is after the 36 bytes of header.
inline constexpr unsigned kBody = 36;
constexpr unsigned b(unsigned at) {
    return kBody + at;
}

// Nobody wrote down how the bodies of versions 1 and 2 are laid out: all their rows are assumed.
// Fields are words in the order in which the firmware names them. The event header is documented.
template <std::size_t Count>
consteval std::array<Row, Count> assumed(const Row (&rows)[Count]) {
    const auto mark = [](const Row& row) { return row.values[0].at < kBody ? row : row.assumed(); };
    return [&]<std::size_t... I>(std::index_sequence<I...>) {
        return std::array<Row, Count>{mark(rows[I])...};
    }
    (std::make_index_sequence<Count>());
}

inline constexpr std::string_view kSectors = "\0\0\0\0\x74\x70\x6D\xB0"sv; // of a sample

void putPciCause(Draft& draft, const Record& record, const RecordView& data);
constexpr CustomPiece pciCause(Provenance provenance) {
    return {putPciCause,
            "`PCI_Error_Cause`: the name of the first bit that is set; without one the code is in "
            "the summary.",
            {},
            "\0\0\x01\0"sv,
            provenance};
}

// ---- version 1: one object per group of event numbers ------------------------------------------

namespace v1 {

inline constexpr auto kAddressRows = assumed({hex("Address", u32(b(0)))});
inline constexpr auto kInterruptRows = assumed({hex("Interrupt_Status", u32(b(0)))});
// Of the header, where version 2 has it; the elements of kHeaderRows follow.
inline constexpr Row kTypeRows[] = {dec("Event_Type", u32(0)).inferred()};
inline constexpr auto kPlaceRows = assumed({
    dec("Drive", u32(b(0))),
    hex("Adapter_Handle", u32(16)).assumed(),
    hex("ID_Select", u32(b(4))),
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
    dec("Adatper_Number", u32(16)).inferred(),
    dec("Channel_Index", u32(24)).assumed(),
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
    dec("Channel_Number", u32(24)).inferred(),
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
inline constexpr Row kAdapterNumberRows[] = {dec("Adapter_Number", u32(16)).inferred()};
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
// Where the hardware event of version 2 has it; the cause, by the bits of version 2, follows.
inline constexpr Row kPciRows[] = {hex("PCI_Error_Code", u32(b(4))).inferred()};
inline constexpr CustomPiece kPciCause = pciCause(Provenance::Assumed);
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

// What the event header has for every number, after its object. The line is in the gap before the
// adapter, its place in the data-path modules.
inline constexpr Row kHeaderRows[] = {
    dec("Event_Number", u32(4)),
    dec("Line_Number", u32(12)).inferred(),
    dec("Adapter", u32(16)),
    dec("PCI_Bus", u32(20)),
    dec("Channel", u32(24)),
    hex("Process_Flags", u32(32)).unlessZero(),
    dec("Missed_Events", u32(28)).unlessZero(),
};

// Summaries. Most are the event's name.
inline constexpr Row kNameLine = line("%s", eventName);
inline constexpr Row kFailureLine =
    line("Drive %u, Command Failure, PLBN 0x%08x", u32(b(0)), u64(b(16)));
inline constexpr Row kTimeoutLine =
    line("Drive %u, Command Timeout, PLBN 0x%08x", u32(b(0)), u64(b(16)));
inline constexpr Row kDriveFailureLine = line("Drive %u Failure", u32(b(0)));
inline constexpr Row kRequestLine =
    line("Drive %u, Command Failure, PLBN 0x%s", u32(b(28)), custom(b(4), 8, kSwapped));

// What a number means was settled by us: the objects in the order in which the firmware names them.
constexpr EventRow numbers(unsigned first, unsigned last, std::string_view title,
                           const Row& summary, Pieces pieces) {
    return {{0, first, last}, title, summary.assumed(), pieces, Provenance::Assumed};
}
inline constexpr EventRow kEventRows[] = {
    // clang-format off
    numbers(101, 105, "Fatal Error", kNameLine, {kAddressRows}),
    numbers(106, 110, "Fatal Error", kNameLine, {kInterruptRows}),
    numbers(111, 117, "Invalid Parameter", kNameLine, {kTypeRows}),
    numbers(118, 120, "Drive Inserted", line("Drive %u, Became responsive", u32(b(0))), {kPlaceRows}),
    numbers(121, 123, "Drive Removed", line("Drive %u, Offline device", u32(b(0))), {kPlaceRows}),
    numbers(124, 127, "Failed Discovery", line("Drive %u, Busy during discovery", u32(b(0))), {kPlaceRows}),
    numbers(128, 131, "Port Error", line("Drive %u, Reported %u events", u32(b(0)), u32(b(4))), {kRepeatsRows}),
    numbers(132, 135, "Drive Stats", line("Drive %u Statistics", u32(b(0))), {kStatisticsRows}),
    numbers(136, 143, "Device Error", line("Status %u", u32(b(8))), {kTaskRows}),
    numbers(144, 151, "Adapter initialization failure", kNameLine, {kAdapterRows}),
    numbers(152, 159, "Invalid CSCB Response", kNameLine, {kResponseRows}),
    numbers(160, 169, "Command Failure", kFailureLine, {kCommandRows}),
    numbers(170, 177, "Command Timeout", kTimeoutLine, {kCommandRows}),
    numbers(178, 183, "Drive Error", kDriveFailureLine, {kCommandRows}),
    numbers(184, 187, "Adapter initialization failure", kNameLine, {kValueRows}),
    numbers(188, 191, "Adapter initialization failure", kNameLine, {kBarRows}),
    numbers(192, 201, "Invalid CSCB Response", line("Status 0x%08x", u32(b(48))), {kCscbRows}),
    numbers(202, 211, "Command Failure", kRequestLine, {kRequestRows}),
    numbers(212, 219, "Fatal Error", kNameLine, {kQueueRows}),
    numbers(220, 225, "Device Offline", kNameLine, {kPhysicalDriveRows}),
    numbers(226, 230, "Failed to initialize a connected drive", kNameLine, {kPhysicalDriveRows}),
    numbers(231, 234, "No valid devices discovered", kNameLine, {kAdapterNumberRows}),
    numbers(235, 244, "Fatal Error", kNameLine, {kRegionRows}),
    numbers(245, 249, "Drive Operation", line("Drive %u", u32(b(0))), {kOperationRows}),
    numbers(250, 257, "Asynchronous Adapter Error", kNameLine, {kPciRows, custom(kPciCause, b(4))}),
    numbers(258, 263, "Drive Discovered", line("Drive %u", u32(b(0))), {kIdentityRows, sample(b(8), kSectors)}),
    numbers(264, 267, "Interrupt installation failure", kNameLine, {kVectorRows}),
    numbers(268, 273, "Failed to initialize a connected drive", kNameLine, {kChannelRows}),
    numbers(274, 277, "Failed Discovery", line("Drive %u, Failed Discovery", u32(b(0))), {kModelRows}),
    numbers(278, 281, "Structure alignment error", kNameLine, {kAlignmentRows}),
    numbers(282, 287, "Command response error", kNameLine, {kResponseQueueRows}),
    numbers(288, 291, "Drive Stats", line("Drive %u Statistics", u32(b(0))), {kCountersRows}),
    numbers(292, 296, "Command response with invalid key value", kNameLine, {kKeyRows}),
    numbers(297, 299, "Empty CSCB DRP listhead", kNameLine, {kKeyRows}),
    numbers(300, 305, "Drive Error", kDriveFailureLine, {kAsynchronousRows}),
    numbers(306, 309, "Invalid Parameter", kNameLine, {kParameterRows}),
    // clang-format on
};
inline constexpr Key kKeys[] = {{149, 1, 1}};
inline constexpr EventTable kEvents{
    .heading = "Version 1",
    .rows = kEventRows,
    .minor = u32(156),
    .style = Style::Joined,
    .keys = kKeys,
    .tail = {kHeaderRows},
    .note =
        "Every payload version but 2 and 3, unless the word at 160 is 0xFFFFFFFF: such a record "
        "is of version 2. A number without a row has the title \"Device Manager Event\" and "
        "the first 64 bytes of the payload as `Data`.",
};
static_assert(accepted<kEvents>);

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
inline constexpr CustomPiece kPciCause = pciCause(Provenance::Documented);

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

// Bugchecks: the drive, then the object that failed. Quantities of 64 bits are at the next offset
// that is a multiple of 8.
inline constexpr auto kBugcheckRows = assumed({
    dec("Drive", u32(b(0))),
    dec("Adapter", u32(16)),
    dec("PCI_Bus", u32(20)),
    dec("Channel", u32(24)),
    dec("Missed_Events", u32(28)).unlessZero(),
});
inline constexpr Row kFlagsRows[] = {hex("Process_Flags", u32(32)).unlessZero()}; // comes last
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
    hex("Total_Xfer_Count", u32(b(20))),
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
    hex("PRB_Xfer_Count", u32(b(72))),
    dec("PRB_Command", u32(b(76))),
    dec("PRB_DL_Index", u32(b(80))),
    hex("SATA_CMD_Flags", u32(b(84))),
    hex("SATA_Command", u32(b(88))),
    hex("SATA_CMD_LBA", u64(b(96))),
    hex("SATA_CMD_Xfer_Count", u32(b(104))),
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
    hex("Command_Xfer_Count", u32(b(4))),
    hex("DRP_Xfer_Count", u32(b(8))),
    dec("SGT_Total_Byte_Count", u32(b(12))),
});
// Up to kSegments of them after the transfer; an address of 0 ends the list.
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
inline constexpr auto kOtherEventRows = assumed({dec("Event", u32(b(4)))});
inline constexpr auto kEventTypeRows = assumed({dec("Event_Type", u32(b(4)))});
inline constexpr auto kInformationRows = assumed({hex("Bugcheck_Information", u32(b(4)))});
inline constexpr auto kInvalidRows = assumed({
    dec("Event_Type", u32(b(4))),
    hex("Bugcheck_Information", u32(b(8))),
});

enum EventType : std::uint16_t { kHardware = 1, kDrive = 2, kBugcheck = 3 };

inline constexpr Row kDriveLine = line("Drive %u, %s", u32(b(0)), name(u32(4), kDriveEvents));
inline constexpr Row kCommandLine =
    line("Drive %u, %s, %s", u32(b(0)), name(u32(4), kDriveEvents), name(u32(b(8)), kCompletions));

void putOutcome(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kOutcome{
    putOutcome,
    "In the summary: `Error bit set with no error (0x00)` when the status register has the error "
    "bit and the error register is 0.",
    {},
    {},
    Provenance::Assumed};
void putElapsed(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kElapsedTime{
    putElapsed, "In the summary: the seconds.", {}, {}, Provenance::Assumed};

void putSegments(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kSegmentList{
    putSegments, "Up to eight segments; an address of 0 ends them.", kSegmentRows,
    "\x01\x20\0\0\0\0\x10\0\x01\x20\x40\0\0\0\x08\0\0\0\0\0"sv, Provenance::Assumed};
void putRing(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kRing{
    putRing,
    "The words to the end of the payload as `Entry_0`, `Entry_1` ...",
    {},
    "\x80\0\0\x11\x80\0\0\x12\x80\0\0\x13"sv,
    Provenance::Assumed};

// The codes' names are documented; what else each of them shows was settled by us.
constexpr EventRow drive(unsigned code, std::string_view title, Pieces pieces,
                         const Row& summary = kDriveLine) {
    return {{kDrive, code}, title, summary.assumed(), pieces, Provenance::Assumed};
}
constexpr EventRow command(unsigned code, Pieces pieces) {
    return drive(code, "Drive Error", pieces, kCommandLine);
}
constexpr EventRow bugcheck(unsigned first, unsigned last, Piece object, const Row& summary,
                            Piece list = {}) {
    return {{kBugcheck, first, last},
            "Bugcheck",
            summary.assumed(),
            {kBugcheckRows, object, list, kFlagsRows},
            Provenance::Assumed};
}
inline constexpr Value kName = name(u32(4), kBugchecks);
inline constexpr Value kNumber = u32(b(0));
inline constexpr Row kBugcheckLine = line("%s, Drive %u", kName, kNumber);
inline constexpr Row kUnlistedLine[] = {kBugcheckLine}; // of a code that no record has
inline constexpr Row kStatusLine = line("%s, Drive %u, Status %u", kName, kNumber, u32(b(40)));
inline constexpr Row kSemaphoreLine =
    line("%s, Drive %u, Semaphore Valid 0x%08x, Semaphore Value 0x%08x", kName, kNumber, u32(b(4)),
         u32(b(8)));
inline constexpr Row kAddressLine =
    line("%s, Drive %u, Bad Address 0x%08x", kName, kNumber, u32(b(4)));
inline constexpr Row kAsyncDataLine =
    line("%s, Drive %u, Asynchronous Data 0x%08x", kName, kNumber, u32(b(4)));
inline constexpr Row kInterruptLine =
    line("%s, Drive %u, PIR 0x%08x, QMIR 0x%08x", kName, kNumber, u32(b(4)), u32(b(8)));
inline constexpr Row kQueueLine = line("%s, Drive %u, MSA Queue 0x%08x", kName, kNumber, u32(b(4)));

inline constexpr EventRow kEventRows[] = {
    // clang-format off
    {{kHardware, 1}, "Hardware",
     line("Adapter not Found, Adapter %u, PCIX Bus %u, ID Select 0x%08x", u32(16), u32(20), u32(b(0))),
     {kHardwareRows, kIdSelectRows, kCountRows}},
    {{kHardware, 2, 10}, "Hardware", line("Adapter Error, Adapter %u, PCIX Bus %u", u32(16), u32(20)),
     {kHardwareRows, kPciRows, custom(kPciCause, b(4)), kCountRows}},
    drive(1, "Drive Error", {kDriveRows, kCountRows}),
    drive(2, "Drive Error", {kDriveRows, kCountRows}),
    command(3, {kDriveRows, kCommandRows, kOutcome, kCountRows}),
    command(4, {kDriveRows, kCommandRows, kOutcome, kCountRows}),
    drive(5, "Drive Removed", {kDriveRows, kCountRows}),
    drive(6, "Drive Inserted", {kDriveRows, kCountRows}),
    command(7, {kDriveRows, kCommandRows, kOutcome, kCountRows}),
    command(8, {kDriveRows, kCommandRows, kOutcome, kCountRows}),
    drive(9, "Drive Error", {kDriveRows, kAsyncRows, kCountRows}),
    command(10, {kDriveRows, kCommandRows, kElapsedTime, kOutcome, kCountRows}),
    bugcheck(1, 2, {}, kBugcheckLine),
    bugcheck(3, 3, kSemaphoreRows, kSemaphoreLine),
    bugcheck(4, 4, {}, line("%s, Drive %u, Status %u", kName, kNumber, u32(b(4)))),
    bugcheck(5, 5, kConfigurationRows, line("%s, Drive %u, Hardware Configuration 0x%08x", kName, kNumber, u32(b(4)))),
    bugcheck(6, 6, kPcixInterruptRows, line("%s, Drive %u, PCIX Interrupt Status 0x%08x", kName, kNumber, u32(b(4)))),
    bugcheck(7, 7, kAddressRows, kAddressLine),
    bugcheck(8, 11, kDriveCommandRows, kStatusLine),
    bugcheck(12, 12, kAsyncDataRows, kAsyncDataLine),
    bugcheck(13, 13, kRequestRows, kBugcheckLine),
    bugcheck(14, 15, kInterruptRows, kInterruptLine),
    bugcheck(16, 16, kQueueRows, kQueueLine),
    bugcheck(17, 18, kInterruptRows, kInterruptLine),
    bugcheck(19, 20, kQueueRows, kQueueLine),
    bugcheck(21, 21, kSemaphoreRows, kSemaphoreLine),
    bugcheck(22, 22, kQueueRows, kQueueLine),
    bugcheck(23, 23, kDriveBlockRows, kBugcheckLine),
    bugcheck(24, 28, kDriveCommandRows, kStatusLine),
    bugcheck(29, 30, kAddressRows, kAddressLine),
    bugcheck(31, 31, kDriveCommandRows, kStatusLine),
    bugcheck(32, 32, kAsyncDataRows, kAsyncDataLine),
    bugcheck(33, 33, kTransferRows, kBugcheckLine, custom(kSegmentList, kListAt)),
    bugcheck(34, 34, kDriveCommandRows, kStatusLine),
    bugcheck(35, 35, kTransferRows, kBugcheckLine, custom(kSegmentList, kListAt)),
    bugcheck(36, 41, kPcixRows, kBugcheckLine),
    bugcheck(42, 42, {}, kBugcheckLine),
    bugcheck(43, 43, kRingRows, kBugcheckLine, custom(kRing, kListAt)),
    bugcheck(44, 44, kOtherEventRows, line("%s, Drive %u, Event %u", kName, kNumber, u32(b(4)))),
    bugcheck(45, 45, kEventTypeRows, line("%s, Drive %u, Event Type %u", kName, kNumber, u32(b(4)))),
    bugcheck(46, 46, kInformationRows, line("%s, Drive %u, Bugcheck Information 0x%08x", kName, kNumber, u32(b(4)))),
    bugcheck(47, 47, kInvalidRows, line("%s, Drive %u, Bugcheck 0x%08x", kName, kNumber, u32(b(8)))),
    // clang-format on
};
static_assert(kDriveEvents.codes() == 11 && kBugchecks.codes() == 48);
inline constexpr Key kKeys[] = {{149, 1, 2}};
inline constexpr EventTable kEvents{
    .heading = "Version 2",
    .rows = kEventRows,
    .major = u32(152),
    .minor = u32(156),
    .style = Style::Joined,
    .keys = kKeys,
    .note = "The first code is the event type: 1 hardware, 2 drive, 3 bugcheck. Another one, or a "
            "code without a row, has no body.",
};
static_assert(accepted<kEvents>);

} // namespace v2

// ---- version 3 ---------------------------------------------------------------------------------

namespace v3 {

// Fields of the event header, from its start, and of the class data after its 32 bytes.
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
    kInitiatorHandle.inferred(),
    kTargetHandle.inferred(),
    kLunHandle.inferred(),
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

// Structures of the drive protocols; sense data and FIS as their standards have them. The strings
// just fill the room that the records have for them.
inline constexpr Row kSataStringRows[] = {
    word("Serial_Number", trimmed(0, 20)).inferred(),
    word("Model", trimmed(20, 40)).inferred(),
    word("Firmware_Revision", trimmed(60, 8)).inferred(),
};
inline constexpr Row kScsiStringRows[] = {
    word("Serial_Number", trimmed(0, 20)).inferred(),
    word("Model", trimmed(20, 16)).inferred(),
    word("Vendor", trimmed(36, 8)).inferred(),
    word("Firmware_Revision", trimmed(44, 4)).inferred(),
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
// After the cause of the error.
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

// ---- events ----

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

// Command and outcome are shown when they are there: FIS of the types 0x27 and 0x34, a CDB of 1 to
// 16 bytes, sense data with the response code 0x70 or 0x71.
inline constexpr std::string_view kReadFis = "\x27\x80\x25\0\x10\x20\x30\x40\0\0\0\0\x08\0\0\0"sv;
inline constexpr std::string_view kBadFis = "\x34\x40\x51\x40\x10\x20\x30\x40\0\0\0\0\x08\0\0\0"sv;
inline constexpr std::string_view kReadCdb =
    "\x28\0\0\x10\x20\x30\0\0\x08\0\0\0\0\0\0\0\0\0\0\x0A"sv;
inline constexpr std::string_view kMediumSense = "\xF0\0\x03\0\x10\x20\x30\x0A\0\0\0\0\x11"sv;

void putXportCommand(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kCommandSlot{
    putXportCommand, "The command by the protocol: a FIS of SATA (0), else a CDB.", kCommandFisRows,
    kReadFis, Provenance::Assumed};
void putXportOutcome(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kOutcomeSlot{
    putXportOutcome,
    "The outcome by the protocol: `Error_Cause` and a status FIS, else sense data. The one or "
    "`Sense_Key` is \"Unknown\" without them.",
    kStatusFisRows, kBadFis, Provenance::Assumed};
void putSataStatus(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kSataStatus{putSataStatus,
                                         "`Error_Cause`, in the summary too, and the status FIS.",
                                         kStatusFisRows, kBadFis, Provenance::Assumed};
void putSataCommand(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kSataCommand{putSataCommand, "The command FIS.", kCommandFisRows,
                                          kReadFis, Provenance::Inferred};
void putScsiSense(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kScsiSense{putScsiSense,
                                        "Sense data; the sense key is in the summary too.",
                                        kSenseRows, kMediumSense, Provenance::Inferred};
void putScsiCommand(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kScsiCommand{putScsiCommand, "The CDB.", kCdbRows, kReadCdb,
                                          Provenance::Inferred};
void putIdentifyStrings(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kIdentifyStrings{
    putIdentifyStrings,
    "The strings by the protocol: SATA (0) as here, else those of a SCSI error.",
    kSataStringRows,
    {},
    Provenance::Assumed};
void putUnitStrings(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kUnitStrings{
    putUnitStrings,
    "The strings by the protocol: SATA (0) those of a SATA error, else as here.",
    kScsiStringRows,
    {},
    Provenance::Assumed};

void putHeader(Draft& draft, const Record& record, const RecordView& data);
inline constexpr Row kHeaderRows[] = {kPathRows[0], kPathRows[1], kAdapterRows[0], kAdapterRows[1],
                                      kMissedRows[0]};
inline constexpr CustomPiece kHeader{
    putHeader,
    "Of classes 1 to 3 `Expander` and `PHY` (not with identifiers 15 and 16), `Adapter` and "
    "`PCI_Bus`; of all classes `Missed_Events`.",
    kHeaderRows};

// Rows of the class data.
template <std::size_t Count>
constexpr Piece d(const Row (&table)[Count]) {
    return rows(table, kData);
}
constexpr Piece d(const CustomPiece& function, unsigned at) {
    return custom(function, c(at));
}

inline constexpr Row kUnknownLine[] = {
    line("Unknown data (class %u, identifier %u)", u32(0), u32(4))};
inline constexpr Value kIdentifier = name(u32(4), kIdentifiers);
inline constexpr Row kNameLine = line("%s", kIdentifier);
inline constexpr Row kDeviceLine = line("%s, Device %u", kIdentifier, u32(c(28))).assumed();
inline constexpr Row kElapsedLine =
    line("%s, Device %u, %s", kIdentifier, u32(c(28)), custom(c(108), 8, kElapsed)).assumed();
inline constexpr Row kErrorLine =
    line("Drive %u, %s", u32(c(56)), kIdentifier).inferred(); // the cause follows
inline constexpr Piece kSataSample = sample(c(kXportProtocol), "\0\0\0\0"sv);
inline constexpr Piece kScsiSample = sample(c(kUnitProtocol), "\0\0\0\1"sv);
inline constexpr Piece kTimeSample = sample(c(108), "\0\0\0\x0C\0\0\1\xF4"sv);

// Command, outcome and transfer of an XPort event after what is special, then what follows.
constexpr EventRow xport(unsigned identifier, const Row& summary, Piece special, Piece more = {}) {
    return {{1, identifier},
            kIdentifierTexts[identifier],
            summary,
            {special, d(kCommandSlot, kXportCommand), d(kOutcomeSlot, kXportOutcome),
             d(kTransferRows), more, d(kElapsedRows), kSataSample, kTimeSample}};
}
constexpr EventRow other(unsigned eventClass, unsigned identifier, const Row& summary,
                         Pieces pieces) {
    return {{eventClass, identifier}, kIdentifierTexts[identifier], summary, pieces};
}

inline constexpr EventRow kEventRows[] = {
    // clang-format off
    xport(1, line("%s, Device %u, %s", kIdentifier, u32(c(28)), name(u32(c(104)), kSasStatus)).assumed(), d(kSasStatusRows)),
    xport(2, kElapsedLine, d(kDeviceRows)),
    xport(3, kElapsedLine, d(kExceededRows), d(kDeviceAgainRows)),
    xport(4, line("%s, Device %u, %s", kIdentifier, u32(c(28)), name(u32(c(104)), kIocStatus)).assumed(), d(kIocStatusRows)),
    xport(5, kDeviceLine, d(kIocLogRows)),
    other(1, 15, line("SAS Port %u Information 0x%08x", u32(c(0)), u32(c(20))).assumed(), {d(kPortRows)}),
    other(1, 16, kNameLine, {d(kZeroReplyRows)}),
    other(2, 10, kErrorLine,
          {d(kDriveRows), d(kSataStatus, kSataErrorStatus), d(kSataCountsRows), d(kSataCommand, kErrorCommand),
           d(kKindRows), rows(kSataStringRows, c(kSataErrorStrings)), d(kSizeRows), sample(c(24), kSectors)}),
    other(2, 11, kErrorLine,
          {d(kDriveRows), d(kScsiSense, kScsiErrorSense), d(kScsiCountsRows), d(kScsiCommand, kErrorCommand),
           d(kKindRows), rows(kScsiStringRows, c(kScsiErrorStrings)), d(kSizeRows), sample(c(24), kSectors)}),
    other(2, 12, kNameLine, {d(kResetRows)}),
    other(2, 13, kNameLine, {d(kIdentifyRows), d(kIdentifyStrings, kIdentifyStringsAt), sample(c(kIdentifyProtocol), "\0\0\0\0"sv)}),
    other(3, 7, line("Target %u, %s", u32(c(28)), name(u32(c(8)), kDiscoveries)).assumed(), {d(kTargetRows)}),
    other(3, 8, line("LUN %u, %s", u32(c(12)), name(u32(c(16)), kDiscoveries)).inferred(), {d(kLunRows)}),
    other(3, 9, line("LU %u, %s", u32(c(40)), name(u32(c(16)), kDiscoveries)).assumed(),
          {d(kUnitRows), d(kUnitStrings, kUnitStringsAt), kScsiSample, sample(c(32), kSectors)}),
    {anyOf(4), "Bugcheck", line("%s, Line %u", name(u32(c(0)), kComponents), u32(c(4))).inferred(), {d(kBugcheckRows)}},
    {anyOf(5), "DEVMGR Trace Time", kNameLine, {d(kTraceRows)}},
    // clang-format on
};
inline constexpr Key kKeys[] = {{149, 1, 3}};
inline constexpr EventTable kEvents{
    .heading = "Version 3",
    .rows = kEventRows,
    .major = u32(152),
    .minor = u32(156),
    .style = Style::Joined,
    .keys = kKeys,
    .title = line("%s", name(u32(156), kIdentifiers)),
    .tail = {kHeader},
    .note =
        "The first code is the event class: 1 XPort, 2 device, 3 attention, 4 bugcheck, 5 trace "
        "time; the second the identifier. An event without a row has the summary `Unknown data "
        "(class n, identifier n)`.",
};
static_assert(accepted<kEvents>);

} // namespace v3

inline constexpr const EventTable* kTables[] = {&v1::kEvents, &v2::kEvents, &v3::kEvents};
inline constexpr Module kModule{
    6, "SATA8P_Event", "Three generations of records. Elements have no blank between them.",
    kTables};

} // namespace Pegasus::mpu::sata
