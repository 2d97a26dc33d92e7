// Tables of the message/interrupt processor decoder. Offsets are from the start of each structure.
#pragma once

#include "decoders/datapath/Datapath_Layouts.h"

namespace Pegasus::mpu::mip {

using namespace datapath;
using namespace std::string_view_literals;

// ---- structures --------------------------------------------------------------------------------

inline constexpr Row kFrameRows[] = {
    {"MIP_Event_Type", "%d", u32(kClassAt)},
    {"MIP_Event_Id", "%d", u32(kCodeAt)},
    {"MIP_Event_Line_Num", "%d", u32(kLineAt)},
};

inline constexpr Row kQmirRows[] = {{"QMIR", "0x%08X", u32(0)}};
inline constexpr Row kInterruptStatusRows[] = {{"INT_STAT =", "0x%08X", u32(0)}};

// A register of the dump.
constexpr Row reg(std::string_view name, unsigned at) {
    return Row(name, "0x%08X", u32(at)).assumed();
}

// Fatal interrupt, 324 bytes: all words in the order of the elements, the registers of each unit in
// one run. The two memory controllers have the same thirteen. A two-digit name wants more than ten
// rows: sixteen is the next power of two.
inline constexpr Row kIrqRows[] = {
    Row("ARC_ID", "%u", u32(0)).assumed(),
    Row("IRQ", "%u", u32(4)).assumed().unlessZero(),
};
inline constexpr unsigned kIrqAt = 4; // 0: disabled

inline constexpr Row kInterruptUnitRows[] = {
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
    reg("ECC_Error_Addr_0-0", 24),
    reg("ECC_Error_Addr_1-0", 28),
    reg("ECC_Error_Syndrome_0-0", 32),
    reg("ECC_Error_Syndrome_1-0", 36),
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
    "High Water Provenance",
    "",
    "Low Water Provenance",
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
    Row("Parameter_-_Pointer", "0x%08x", u32(8)).assumed(),
    Row("Parameter_-_Word_Count", "%u", u32(12)).assumed(),
    {"Section_1", "------ Bad Header ------"},
    Row("Bad_Header_-_Source", "%u", u8(18)).inferred(),
    Row("Bad_Header_-_Type", "%u", u8(19)).inferred(),
    Row("Bad_Header_-_Category", "%u", u8(20)).inferred(),
    Row("Bad_Header_-_ID_Version", "%u", u8(21)).inferred(),
    Row("Bad_Header_-_ID", "%u", u16(22)).inferred(),
    Row("Bad_Header_-_Struct_Length", "%u", u16(16)).inferred(),
    {"Section_2", "------- Bad Data -------"},
    Row("Bad_Data_-_Dump_Length", "%u", u32(24)).assumed(),
};
inline constexpr unsigned kBadLengthAt = 24;
inline constexpr unsigned kBadDataAt = 28;

// ---- classes and codes -------------------------------------------------------------------------

// Builders of bodies. Nothing leads to the last two, which other programs call.
enum Builder : std::uint8_t {
    kManagement,
    kIsr,
    kStartup,
    kMmsg,
    kEvl,
    kAssert,
    kDma,
    kBugcheck,
    kMath,
    kDatabase,
    kBuilders,
    kNoBuilder = kBuilders
};

// What the unlisted codes of a builder show as "Line", where it lists codes at all.
inline constexpr std::uint16_t kUnlistedLines[kBuilders] = {361, 479, 526, 580, 0,
                                                            0,   649, 885, 0,   408};
inline constexpr unsigned kUnroutedLine = 262;

struct Class {
    FixedString<38> title;
    Builder builder = kNoBuilder;
};
// By event class; class 7 is named and not built.
inline constexpr Class kClasses[] = {
    {"MIP Unknown Event"},
    {"MIP Task Event", kManagement},
    {"MIP Unknown Event"},
    {"MIP ISR Event", kIsr},
    {"MIP Startup Task Event", kStartup},
    {"MIP Unknown Event"},
    {"MIP Management Message Event", kMmsg},
    {"MIP Redundant Controller Process Event"},
    {"MIP EVL Event", kEvl},
    {"MIP Resource Assert Event", kAssert},
    {"MIP Unknown Event"},
    {"MIP Unknown Event"},
    {"MIP DMA Event", kDma},
    {"MIP Bugcheck Event", kBugcheck},
};

enum class Dump : std::uint8_t {
    None,
    Lwsem,
    Mmsg,
    Msa,
    Interrupt,
    Message,
    Qmir,
    InterruptStatus,
    FatalMsa,
    FatalIrq,
    InvalidParam,
    File, // name of a source file
};

using enum Dump;
using Event = EventCode<Dump, 36>;

// The first column is the builder.
inline constexpr Event kEvents[] = {
    // clang-format off
    {kManagement, 1, "MIP8P MQX Event", Lwsem},
    {kManagement, 3, "MIP8P Unexpected Interrupt", Interrupt},
    {kManagement, 4, "MIP8P QMIR Event", Qmir},
    {kManagement, 5, "MIP8P Unexpected Message Type", Message},
    {kManagement, 6, "MIP8P Unexpected Error Event", None},
    {kManagement, 12, "MIP8P Invalid ARC Number", None},
    {kManagement, 13, "MIP8P Rvl_MPU MBOX Event", None},
    {kManagement, 14, "MIP8P MSA Event", Msa},
    {kManagement, 15, "MIP8P ARC found halted", None},
    {kManagement, 16, "MIP8P ARC found hung", None},
    {kIsr, 1, "Proxy MQX Event", Lwsem},
    {kIsr, 3, "ISR Unexpected Interrupt", Interrupt},
    {kIsr, 7, "ISR Installation Failed", Interrupt},
    {kIsr, 8, "ISR Overflow", None},
    {kIsr, 24, "MIP Ring Buffer Overflow", None},
    {kIsr, 25, "MIP Default Interreupt Handler Error", None},
    {kStartup, 1001, "MIP8P Starting ARCs", None},
    {kStartup, 1, "MIP8P Startup MQX Error", None},
    {kStartup, 1002, "MIP8P ARCs started", None},
    {kMmsg, 10, "MMSG Invalid Param", None},
    {kMmsg, 1, "MMSG MQX Event", Lwsem},
    {kMmsg, 11, "MMSG Invalid MMSG", Mmsg},
    {kEvl, kAnyCode, "EVL Error", None},
    {kAssert, kAnyCode, "ASSERT Error", File},
    {kDma, 10, "Database Invalid Param", None},
    {kDma, 14, "MIP8P MSA Event", Msa},
    {kDma, 502, "MIP8P p32 Xcore Interrupt", InterruptStatus},
    {kDma, 1, "DMA MQX Event", Lwsem},
    {kDma, 3, "MIP8P Unexpected Interrupt", InterruptStatus},
    {kBugcheck, 22, "Error: Fatal MSA queue event", FatalMsa},
    {kBugcheck, 21, "Error: Invalid BUG-CHECK Parameters", InvalidParam},
    {kBugcheck, 23, "Error: Fatal IRQ event", FatalIrq},
    {kMath, kAnyCode, "MATH Error", None},
    {kDatabase, 8, "Database Overflow", None},
    {kDatabase, 2, "Database ENOMEM", None},
    {kDatabase, 10, "Database Invalid Param", None},
    // clang-format on
};

inline const Event* findEvent(Builder builder, std::uint32_t code) {
    return findCode<kEvents, kBuilders>(builder, code);
}

// ---- the catalogue -----------------------------------------------------------------------------

template <std::uint8_t Builder>
inline constexpr auto& kCodes = kCodeList<kEvents, Builder>;

inline constexpr Part kFrame{"Event", kFrameRows, kFrameAt};
inline constexpr Part kBare[] = {kFrame};
template <const auto& Rows>
inline constexpr Part kWith[] = {kFrame, {"Data", Rows, kArea}};
inline constexpr Part kIrqParts[] = {
    kFrame,
    {"Data", kIrqRows, kArea},
    {"Interrupt unit and bus interface", kInterruptUnitRows, kArea},
    {"First memory controller", kMemoryControllerRows, kArea + kMemoryController1At},
    {"Cache", kCacheRows, kArea},
    {"Second memory controller", kMemoryControllerRows, kArea + kMemoryController2At},
    {"Queues and packet engine", kQueueUnitRows, kArea},
};

inline constexpr Fill kFileFills[] = {{kFrameAt + kLengthAt, kWord<11>}, {kArea, "mip_main.c\0"sv}};
inline constexpr Fill kBadDataFills[] = {{kFrameAt + kLengthAt, kWord<kBadDataAt + 4>},
                                         {kArea + kBadLengthAt, kWord<4>},
                                         {kArea + kBadDataAt, "\xBA\xD0\xDA\x7A"sv}};
inline constexpr Fill kReasonFills[] = {{kFrameAt + kLengthAt, kWord<kFatalMsaSize>},
                                        {kArea + 7, "\x08"sv}};

inline constexpr Section kSections[] = {
    {"Management: operating system", kKeys<1, 1>, kWith<kLwsemRows>, kLength<kLwsemSize>,
     kCodes<kManagement>},
    {"Management: interrupt", kKeys<1, 3>, kWith<kInterruptRows>, kLength<4>},
    {"Management: QMIR", kKeys<1, 4>, kWith<kQmirRows>, kLength<4>},
    {"Management: message", kKeys<1, 5>, kWith<kMessageRows>, kLength<4>},
    {"Management: queue", kKeys<1, 14>, kWith<kMsaRows>, kLength<kMsaSize>},
    {"Interrupt service", kKeys<3, 7>, kWith<kInterruptRows>, kLength<4>, kCodes<kIsr>},
    {"Startup", kKeys<4, 1001>, kBare, kLength<0>, kCodes<kStartup>},
    {"Management message", kKeys<6, 11>, kWith<kMmsgRows>, kLength<kMmsgSize>, kCodes<kMmsg>},
    {"EVL", kKeys<8, 1>, kBare, kLength<0>, kCodes<kEvl>},
    {"Assert", kKeys<9, 1>, kBare, kFileFills, kCodes<kAssert>},
    {"DMA: interrupt status", kKeys<12, 502>, kWith<kInterruptStatusRows>, kLength<4>,
     kCodes<kDma>},
    {"Bug-check: fatal interrupt", kKeys<13, 23>, kIrqParts, kLength<kFatalIrqSize>,
     kCodes<kBugcheck>},
    {"Bug-check: fatal queue event", kKeys<13, 22>, kWith<kFatalMsaRows>, kReasonFills},
    {"Bug-check: invalid parameter", kKeys<13, 21>, kWith<kInvalidParamRows>, kBadDataFills,
     "Then the bad data: as many bytes as announced, up to the end of the data area."},
};

inline constexpr Module kModule{
    7, "MIP8P_Event",
    "Event identifier 1; all others are dumped. The payload has the frame of module 5: event class "
    "at 152, code at 156, firmware line at 164, length of the data area at 168, data area at 172. "
    "An IRQ of 0 is shown as Disabled.",
    kSections};

} // namespace Pegasus::mpu::mip
