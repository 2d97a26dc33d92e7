// Tables of the message/interrupt processor decoder. Offsets are from the start of each structure.
#pragma once

#include "decoders/datapath/Datapath_Layouts.h"

namespace Pegasus::mpu::mip {

using namespace datapath;

// ---- structures --------------------------------------------------------------------------------

inline constexpr Row kFrameRows[] = {
    {"MIP_Event_Type", "%d", u32(kClassAt)},
    {"MIP_Event_Id", "%d", u32(kCodeAt)},
    {"MIP_Event_Line_Num", "%d", u32(kLineAt)},
};

inline constexpr Row kQmirRows[] = {{"QMIR", "0x%08X", u32(0)}};
inline constexpr Row kInterruptStatusRows[] = {{"INT_STAT__", "0x%08X", u32(0)}};

// A register of the dump.
constexpr Row reg(std::string_view name, unsigned at) {
    return Row(name, "0x%08X", u32(at)).assumed();
}

char* putIrq(char* out, const std::uint8_t* at);
inline constexpr CustomField kIrq{putIrq, kDecimalRoom, "the number, Disabled for 0"};

// Fatal interrupt, 324 bytes: all words in the order of the elements, the registers of each unit in
// one run. The two memory controllers have the same thirteen. A two-digit name wants more than ten
// rows: sixteen is the next power of two.
inline constexpr Row kInterruptUnitRows[] = {
    Row("ARC_ID", "%u", u32(0)).assumed(),
    Row("IRQ", "%s", custom(4, 4, kIrq)).assumed(),
    {"Section_1", "----- GIO :: INT -----"},
    Row("PIR_%02u", "0x%08X", u32(8)).repeat(16, 4).assumed(),
    reg("PIC_Global", 72),
    Row("PIC_%02u", "0x%08X", u32(76)).repeat(16, 4).assumed(),
    {"Section_2", "----- BMI -----"},
    reg("Int_Status", 140),
    reg("Int_Mask", 144),
    reg("A2B_Reflect_Cfg", 148),
    reg("A2B_Reflect_0_Base", 152),
    reg("A2B_Reflect_0_Last", 156),
    reg("A2B_Reflect_1_Base", 160),
    reg("A2B_Reflect_1_Last", 164),
    reg("PRX_Reflect_Cfg", 168),
    reg("PRX_Reflect_0_Base", 172),
    reg("PRX_Reflect_0_Last", 176),
    reg("PRX_Reflect_1_Base", 180),
    reg("PRX_Reflect_1_Last", 184),
    {"Section_3", "----- BMI :: XMC -----"},
};
inline constexpr Row kMemoryControllerRows[] = {
    reg("DDR_Enable", 0),
    reg("DDR_Timing", 4),
    reg("DDR_Bank_Size", 8),
    reg("DDR_Refresh", 12),
    reg("ECC_Enable", 16),
    reg("ECC_Scrub_Rate", 20),
    reg("ECC_Error_Addr_0_0", 24),
    reg("ECC_Error_Addr_1_0", 28),
    reg("ECC_Error_Syndrome_0_0", 32),
    reg("ECC_Error_Syndrome_1_0", 36),
    reg("Error_Control", 40),
    reg("Error_Total_0", 44),
    reg("Error_Total_1", 48),
};
inline constexpr unsigned kMemoryController1At = 188;
inline constexpr Row kCacheRows[] = {
    {"Section_4", "----- L2C -----"},
    reg("Int_Status", 240),
    reg("Int_Mask", 244),
    {"Section_5", "----- L2C :: XMC -----"},
};
inline constexpr unsigned kMemoryController2At = 248;
inline constexpr Row kQueueUnitRows[] = {
    {"Section_6", "----- MSA -----"},    reg("Int_Status", 300),    reg("Int_Mask", 304),
    {"Section_7", "----- PIE RX -----"}, reg("Int_Status", 308),    reg("Int_Mask", 312),
    reg("Error_Gross_0", 316),           reg("Error_Gross_1", 320),
};
inline constexpr unsigned kFatalIrqSize = 324;

inline constexpr std::string_view kNoYesTexts[] = {"No", "Yes"};
inline constexpr NameTable kNoYes = names<kNoYesTexts>();
inline constexpr std::string_view kIrqModeTexts[] = {"Processor Select", "Global"};
inline constexpr NameTable kIrqModes = names<kIrqModeTexts>();
inline constexpr std::string_view kIrqLevelTexts[] = {"5", "6"};
inline constexpr NameTable kIrqLevels = names<kIrqLevelTexts>();
inline constexpr std::string_view kQueueModeTexts[] = {"Queue", "Stack"};
inline constexpr NameTable kQueueModes = names<kQueueModeTexts>();
// One bit each; several at once have no name.
inline constexpr std::string_view kReasonTexts[] = {
    "",
    "Not Empty",
    "High Water Mark",
    "",
    "Low Water Mark",
    "",
    "",
    "",
    "Overflow",
    "",
    "",
    "",
    "",
    "",
    "",
    "",
    "Underflow",
    "Unknown",
};
inline constexpr NameTable kReasons = names<kReasonTexts>(Fallback::Last);

// Fatal queue event, 48 bytes. Section 2 has the fields of the 32-byte queue state that other
// events show, so it is one, at 16.
inline constexpr Row kFatalMsaRows[] = {
    {"Section_1", "----- QMIF Register -----"},
    Row("ID", "%u", u32(0)).assumed(),
    Row("FIFO_Overflow", "%s", flag(u8(4), kNoYes)).assumed(),
    Row("IRQ_Mode", "%s", flag(u8(5), kIrqModes)).assumed(),
    Row("IRQ_Level", "%s", flag(u8(6), kIrqLevels)).assumed(),
    Row("Reason", "%s", name(u8(7), kReasons)).assumed(),
    Row("Queue_Number", "%u", u32(8)).assumed(),
    {"Section_2", "------- MSA Queue -------"},
    Row("ID", "%u", u32(12)).assumed(),
    Row("Mode", "%s", flag(u8(16 + 17), kQueueModes)).inferred(),
    Row("Size", "%u", u16(16 + 18)).inferred(),
    Row("High_Level", "0x%04x", u16(16 + 0)).inferred(),
    Row("Low_Level", "0x%04x", u16(16 + 2)).inferred(),
    Row("Read_Pointer", "0x%04x", u16(16 + 4)).inferred(),
    Row("Writer_Pointer", "0x%04x", u16(16 + 6)).inferred(),
    Row("Checkpoint", "0x%04x", u32(16 + 28)).inferred(),
    Row("Count", "%u", u16(16 + 8)).inferred(),
    Row("Base_Address", "0x%08x", u32(16 + 12)).inferred(),
    Row("Hysteresis", "%u", u8(16 + 16)).inferred(),
    Row("Hi_Signal", "0x%04x", u16(16 + 20)).inferred(),
    Row("Low_Signal", "0x%04x", u16(16 + 22)).inferred(),
    Row("Overflow_Signal", "0x%04x", u16(16 + 24)).inferred(),
    Row("Underflow_Signal", "0x%04x", u16(16 + 26)).inferred(),
    Row("Not_Empty_Signal", "0x%04x", u16(16 + 10)).inferred(),
};
inline constexpr unsigned kFatalMsaSize = 48;

// Invalid parameter, 28 bytes and the bad data. The bad header shows just the last eight bytes of a
// record header, so it is them.
inline constexpr Row kInvalidParamRows[] = {
    Row("ARC_Number", "%u", u32(0)).assumed(),
    Row("Call_Trace", "0x%08x", u32(4)).assumed(),
    Row("Parameter___Pointer", "0x%08x", u32(8)).assumed(),
    Row("Parameter___Word_Count", "%u", u32(12)).assumed(),
    {"Section_1", "------ Bad Header ------"},
    Row("Bad_Header___Source", "%u", u8(18)).inferred(),
    Row("Bad_Header___Type", "%u", u8(19)).inferred(),
    Row("Bad_Header___Category", "%u", u8(20)).inferred(),
    Row("Bad_Header___ID_Version", "%u", u8(21)).inferred(),
    Row("Bad_Header___ID", "%u", u16(22)).inferred(),
    Row("Bad_Header___Struct_Length", "%u", u16(16)).inferred(),
    {"Section_2", "------- Bad Data -------"},
    Row("Bad_Data___Dump_Length", "%u", u32(24)).assumed(),
};
inline constexpr unsigned kBadLengthAt = 24;
inline constexpr unsigned kBadDataAt = 28;

// What the data area says of the bad data, and they themselves.
void putBadData(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kBadData{
    putBadData,
    "The bad data as `Hex`: as many bytes as announced, to the end of the data area.",
    {},
    "\0\0\0\x04\xBA\xD0\xDA\x7A"sv,
    Provenance::Assumed};

// ---- classes and codes -------------------------------------------------------------------------

// By event class. Class 7 has a title and no events.
inline constexpr std::string_view kClassTitleTexts[] = {
    "MIP Unknown Event",
    "MIP Task Event",
    "MIP Unknown Event",
    "MIP ISR Event",
    "MIP Startup Task Event",
    "MIP Unknown Event",
    "MIP Management Message Event",
    "MIP Redundant Controller Process Event",
    "MIP EVL Event",
    "MIP Resource Assert Event",
    "MIP Unknown Event",
    "MIP Unknown Event",
    "MIP DMA Event",
    "MIP Bugcheck Event",
    "MIP Unknown Event",
};
inline constexpr NameTable kClassTitles = names<kClassTitleTexts>(Fallback::Last);

void putFile(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kFile{putFile, "The source file, to the end of the data area.",
                                   kFileRows, "mip_main.c\0"sv};

// What the data area of an event holds.
template <const auto& Rows, unsigned Size>
inline constexpr Pieces kOne = {data(Rows), kLength<Size>};
inline constexpr auto& kLwsem = kOne<kLwsemRows, kLwsemSize>;
inline constexpr auto& kMmsg = kOne<kMmsgRows, kMmsgSize>;
inline constexpr auto& kMsa = kOne<kMsaRows, kMsaSize>;
inline constexpr auto& kInterrupt = kOne<kInterruptRows, 4>;
inline constexpr auto& kMessage = kOne<kMessageRows, 4>;
inline constexpr auto& kQmir = kOne<kQmirRows, 4>;
inline constexpr auto& kInterruptStatus = kOne<kInterruptStatusRows, 4>;
inline constexpr Pieces kFatalMsa = {data(kFatalMsaRows), sample(kDataAt + 7, "\x08"sv),
                                     kLength<kFatalMsaSize>};
inline constexpr Pieces kFatalIrq = {
    data(kInterruptUnitRows), data(kMemoryControllerRows, kMemoryController1At),
    data(kCacheRows),         data(kMemoryControllerRows, kMemoryController2At),
    data(kQueueUnitRows),     kLength<kFatalIrqSize>};
inline constexpr Pieces kInvalidParam = {
    data(kInvalidParamRows), custom(kBadData, kDataAt + kBadLengthAt), kLength<kBadDataAt + 4>};
inline constexpr Pieces kSourceFile = {custom(kFile, kDataAt), kLength<sizeof "mip_main.c">};

// All codes of a class that it doesn't list. The line is the one that traces them, three digits.
inline constexpr unsigned kOtherClass = 0; // stands for all that have no codes
inline constexpr std::uint16_t kUnlistedLines[] = {262, 361, 0, 479, 526, 0,   580,
                                                   0,   0,   0, 0,   0,   649, 885}; // by class
template <unsigned Line>
inline constexpr char kLineText[] = {'0' + Line / 100, '0' + Line / 10 % 10, '0' + Line % 10};
template <unsigned Line, unsigned At = kCodeAt>
inline constexpr Row kUnlisted[] = {Row("ID", "%u", u32(At)), Row("Line", {kLineText<Line>, 3})};
template <unsigned Class>
inline constexpr auto& kUnlistedOf = kUnlisted<kUnlistedLines[Class]>;

inline constexpr EventRow kEventRows[] = {
    // clang-format off
    // management
    row({1, 1}, "MIP8P MQX Event", kLwsem),
    row({1, 3}, "MIP8P Unexpected Interrupt", kInterrupt),
    row({1, 4}, "MIP8P QMIR Event", kQmir),
    row({1, 5}, "MIP8P Unexpected Message Type", kMessage),
    row({1, 6}, "MIP8P Unexpected Error Event"),
    row({1, 12}, "MIP8P Invalid ARC Number"),
    row({1, 13}, "MIP8P Rvl_MPU MBOX Event"),
    row({1, 14}, "MIP8P MSA Event", kMsa),
    row({1, 15}, "MIP8P ARC found halted"),
    row({1, 16}, "MIP8P ARC found hung"),
    row(anyOf(1), "Unknown Message ID", {kUnlistedOf<1>}),
    // isr
    row({3, 1}, "Proxy MQX Event", kLwsem),
    row({3, 3}, "ISR Unexpected Interrupt", kInterrupt),
    row({3, 7}, "ISR Installation Failed", kInterrupt),
    row({3, 8}, "ISR Overflow"),
    row({3, 24}, "MIP Ring Buffer Overflow"),
    row({3, 25}, "MIP Default Interreupt Handler Error"),
    row(anyOf(3), "Unknown Message ID", {kUnlistedOf<3>}),
    // startup
    row({4, 1001}, "MIP8P Starting ARCs"),
    row({4, 1}, "MIP8P Startup MQX Error"),
    row({4, 1002}, "MIP8P ARCs started"),
    row(anyOf(4), "Unknown Message ID", {kUnlistedOf<4>}),
    // mmsg
    row({6, 10}, "MMSG Invalid Param"),
    row({6, 1}, "MMSG MQX Event", kLwsem),
    row({6, 11}, "MMSG Invalid MMSG", kMmsg),
    row(anyOf(6), "Unknown Message ID", {kUnlistedOf<6>}),
    // evl
    row(anyOf(8), "EVL Error"),
    // assert
    row(anyOf(9), "ASSERT Error", kSourceFile, kFileSummary),
    // dma
    row({12, 10}, "Database Invalid Param"),
    row({12, 14}, "MIP8P MSA Event", kMsa),
    row({12, 502}, "MIP8P p32 Xcore Interrupt", kInterruptStatus),
    row({12, 1}, "DMA MQX Event", kLwsem),
    row({12, 3}, "MIP8P Unexpected Interrupt", kInterruptStatus),
    row(anyOf(12), "Unknown Message ID", {kUnlistedOf<12>}),
    // bugcheck
    row({13, 22}, "Error: Fatal MSA queue event", kFatalMsa),
    row({13, 21}, "Error: Invalid BUG-CHECK Parameters", kInvalidParam),
    row({13, 23}, "Error: Fatal IRQ event", kFatalIrq),
    row(anyOf(13), "Unknown Message ID", {kUnlistedOf<13>}),
    // all other classes
    row(anyOf(kOtherClass), "Unknown Event Type", {kUnlisted<kUnlistedLines[kOtherClass], kClassAt>}),
    // clang-format on
};

inline constexpr EventTable kEvents{
    .rows = kEventRows,
    .major = kClass,
    .minor = kCode,
    .keys = kKeys,
    .title = line("%s", name(kClass, kClassTitles)),
    .head = {kFrameRows},
    .note = MPUEVENT_DATAPATH_NOTE "Class 0 is for all classes that have no codes.",
};
static_assert(accepted<kEvents>);

// Events that builders make and no class leads to.
inline constexpr unsigned kMath = 1;
inline constexpr unsigned kDatabase = 2;
inline constexpr EventRow kOtherEventRows[] = {
    // clang-format off
    row(anyOf(kMath), "MATH Error"),
    row({kDatabase, 8}, "Database Overflow"),
    row({kDatabase, 2}, "Database ENOMEM"),
    row({kDatabase, 10}, "Database Invalid Param"),
    row(anyOf(kDatabase), "Unknown Message ID", {kUnlisted<408>}),
    // clang-format on
};
inline constexpr EventTable kOtherEvents{.rows = kOtherEventRows, .major = kClass, .minor = kCode};
static_assert(accepted<kOtherEvents>);

inline constexpr const EventTable* kTables[] = {&kEvents};
inline constexpr Module kModule{7, "MIP8P_Event", "Event identifier 1; all others are dumped.",
                                kTables};

} // namespace Pegasus::mpu::mip
