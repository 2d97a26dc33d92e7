// Tables of the start-up decoder. Payloads have no location block.
#pragma once

#include "event/Catalogue.h"
#include "platform/cmap/CMAPMessageHeader.h"

#include <utility>

namespace Pegasus::mpu::startup {

// The message header that the supervisor logs after a text, at the next multiple of four.
inline constexpr Row kChannelRows[] = {
    {"Message_type", "%d", u8(message_header::kMessageType)},
    {"MMCH_version", "%d", u8(message_header::kVersion)},
    {"Message_length", "%d", u16(message_header::kLength)},
    {"protocol", "%d", u8(message_header::kProtocol)},
    {"type", "%d", u24(message_header::kType)},
    {"requestor", "%d", u8(message_header::kRequestor)},
    {"mmsg_cont", "0x%02x", u8(message_header::kControl)},
    {"return_code", "%d", u32(message_header::kReturnCode)},
    {"general_use1", "0x%08x", u32(message_header::kGeneralUse1)},
    {"general_use2", "0x%08x", u32(message_header::kGeneralUse2)},
    {"general_use3", "0x%08x", u32(message_header::kGeneralUse3)},
};

template <std::size_t First, std::size_t... I>
constexpr std::array<Row, sizeof...(I)> channelRows(std::index_sequence<I...>) {
    return {kChannelRows[First + I]...};
}
template <std::size_t First, std::size_t Count>
inline constexpr auto kChannelSlice = channelRows<First>(std::make_index_sequence<Count>());

// What of the header a partial message shows: the whole payload, text included, has to be longer
// than `above`.
struct ChannelPart {
    std::uint8_t above;
    const Layout* layout;
};
inline constexpr int kAlways = 0xFFFF;
inline constexpr ChannelPart kChannelParts[] = {
    {16, &kLayout<kChannelSlice<3, 2>>},  {17, &kLayout<kChannelSlice<5, 1>>},
    {18, &kLayout<kChannelSlice<6, 1>>},  {40, &kLayout<kChannelSlice<7, 1>>},
    {48, &kLayout<kChannelSlice<8, 1>>},  {52, &kLayout<kChannelSlice<9, 1>>},
    {56, &kLayout<kChannelSlice<10, 1>>},
};

// The crash report: signal, cause, processor, process. The signal code's upper 16 bits are the
// signal class, its lower ones the code in that class.
inline constexpr unsigned kSignalAt = 0;
inline constexpr unsigned kClassAt = 8;
inline constexpr Row kSignalRows[] = {
    {"Exception", "Caught"},
    open("Signal_info"),
    {"Signal_number", "%d", u32(kSignalAt)},
    {"Errno", "%d", u32(4)},
    {"Signal_code", "0x%08x", u32(kClassAt)},
};

inline constexpr Row kKillRows[] = {
    {"__Cause", "Killed by another process"},
    {"__Signal_sent_by", "%d", u32(12)},
    {"__Sending_user", "%d", u32(16)},
};
inline constexpr Row kTimerRows[] = {
    {"__Cause", "Timer event"},
};

inline constexpr std::string_view kPollTexts[] = {"", "Input data available", "Unknown poll event"};
inline constexpr NameTable kPollEvents = names<kPollTexts>(Fallback::Last);
inline constexpr Row kPollRows[] = {
    {"__Cause", "Polled event:"},
    {"__Event", "%s", name(u16(10), kPollEvents)},
    {"__Band", "%ld", u32(12)},
    {"__File_descriptor", "%d", u32(16)},
};

inline constexpr std::string_view kIllegalTexts[] = {"", "Illegal opcode", "Unrecognized error"};
inline constexpr NameTable kIllegalEvents = names<kIllegalTexts>(Fallback::Last);
inline constexpr std::string_view kTrapTexts[] = {"", "Process breakpoint", "Unrecognized error"};
inline constexpr NameTable kTrapEvents = names<kTrapTexts>(Fallback::Last);
inline constexpr std::string_view kBusTexts[] = {"", "Invalid address alignment",
                                                 "Unrecognized error"};
inline constexpr NameTable kBusEvents = names<kBusTexts>(Fallback::Last);
inline constexpr std::string_view kFloatTexts[] = {"", "Integer divide by zero",
                                                   "Unrecognized error"};
inline constexpr NameTable kFloatEvents = names<kFloatTexts>(Fallback::Last);
inline constexpr std::string_view kSegmentTexts[] = {"", "Address not mapped to object",
                                                     "Unrecognized error"};
inline constexpr NameTable kSegmentEvents = names<kSegmentTexts>(Fallback::Last);

// "0x" is the format's own and comes before that of "%p".
inline constexpr Row kAddressRow{"__Address", "0x%p", u32(12)};
constexpr Row faultEvent(const NameTable& events) {
    return Row("__Event", "%s", name(u16(10), events)).overlay();
}
inline constexpr Row kIllegalRows[] = {{"__Cause", "Illegal instruction (code: %d)", u16(10)},
                                       faultEvent(kIllegalEvents),
                                       kAddressRow};
inline constexpr Row kTrapRows[] = {
    {"__Cause", "Trace/breakpoint trap (code: %d)", u16(10)}, faultEvent(kTrapEvents), kAddressRow};
inline constexpr Row kBusRows[] = {
    {"__Cause", "Bus error (code: %d)", u16(10)}, faultEvent(kBusEvents), kAddressRow};
inline constexpr Row kFloatRows[] = {{"__Cause", "Floating point exception (code: %d)", u16(10)},
                                     faultEvent(kFloatEvents),
                                     kAddressRow};
inline constexpr Row kSegmentRows[] = {{"__Cause", "Segmentation violation (code: %d)", u16(10)},
                                       faultEvent(kSegmentEvents),
                                       kAddressRow};
inline constexpr Row kOtherFaultRows[] = {{"__Cause", "Unrecognized processor fault"}, kAddressRow};

inline constexpr std::string_view kChildTexts[] = {"", "Child exited", "Unknown child event"};
inline constexpr NameTable kChildEvents = names<kChildTexts>(Fallback::Last);
inline constexpr Row kChildRows[] = {
    {"__Cause", "Child process signalled an event"},
    {"__Event", "%s", name(u16(10), kChildEvents)},
    {"__Exit_value", "%d", u32(20)},
    {"__User_time", "%ld seconds", u32(24)},
    {"__System_time", "%ld seconds", u32(28)},
};
inline constexpr Row kRealTimeRows[] = {
    {"__Cause", "Real time event"},
    {"__Signal_value_int", "%d", u32(12)},
    {"__Signal_value_ptr", "%p", u32(16)},
};
inline constexpr Row kOtherRows[] = {
    {"__Cause", "Unrecognized event"},
};

inline constexpr Row kProcessorRows[] = {
    close("Signal_info"),
    open("Registers"),
    Row("GPR", "%d: 0x%08lx", index, u32(128)).repeat(32, 4),
    {"NIP", "0x%08lx", u32(256)},
    {"MSR", "0x%08lx", u32(260)},
    {"Orig_GPR3", "0x%08lx", u32(264)},
    {"CTR", "0x%08lx", u32(268)},
    {"LINK", "0x%08lx", u32(272)},
    {"XER", "0x%08lx", u32(276)},
    {"CCR", "0x%08lx", u32(280)},
    {"MQ", "0x%08lx", u32(284)},
    {"TRAP", "0x%08lx", u32(288)},
    {"DAR", "0x%08lx", u32(292)},
    {"DSISR", "0x%08lx", u32(296)},
    {"RESULT", "0x%08lx", u32(300)},
    close("Registers"),
    open("Process_Info"),
    {"PID", "%d", u32(320)},
    {"Name", "%s", text(324)},
    {"_start", "%p", u32(304)},
    {"_end", "%p", u32(308)},
    {"__bss_start", "%p", u32(312)},
    {"__data_start", "%p", u32(316)},
    close("Process_Info"),
};

// Words of the stack follow, up to the end of the payload.
inline constexpr Row kStackRows[] = {
    {"arc_index", "%x", u32(0)},
    {"SP", "%x", u32(4)},
};
inline constexpr unsigned kStackAt = 8;
inline constexpr std::size_t kStackDumpLimit = 32768; // characters of the body

// The controller's registers: the address of the first one, then their words up to the end of the
// payload. Nobody wrote down what they mean, so each is shown with its address.
inline constexpr Row kStateRows[] = {
    Row("BASE_ADDRESS", "%08X base address", u32(0)).assumed(),
};
inline constexpr unsigned kRegistersAt = 4;

// ---- events ------------------------------------------------------------------------------------

void putFirstLine(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kFirstLine{putFirstLine, "The first line of the text."};
void putLines(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kLines{
    putLines,
    "Each line of the text as `Text1`, `Text2` ..., without the white space around it; empty lines "
    "are left out.",
    {},
    "MPU application started\nversion 2.4.1\n\0"sv};
void putChannel(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kChannel{
    putChannel,
    "The text's first line as `Text`, then from the next multiple of four on a message header in a "
    "group `MMCH_contents`.",
    kChannelRows};
void putPartialChannel(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kPartialChannel{
    putPartialChannel,
    "The same, but a header element is only shown when the payload is longer than: `protocol`, "
    "`type` 16; `requestor` 17; `mmsg_cont` 18; `return_code` 40; `general_use1` 48; "
    "`general_use2` 52; `general_use3` 56.",
    kChannelRows};
void putState(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kState{
    putState,
    "Registers to the end of the payload: `REG` and a running number, value and address. The bytes "
    "of an incomplete word at the end are `rsvd`.",
    kStateRows, "\xF0\x00\x10\x00\x80\x00\x00\x01\0\0\0\0\x00\x00\xBE\xEF"sv, Provenance::Assumed};
void putStack(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kStack{
    putStack,
    "The words of the stack to the end of the payload: `S` and a running number in hexadecimal. "
    "The body ends before it would pass 32768 characters.",
    {},
    "\x10\x00\x4A\xF0\x7F\xFF\xE2\x10\0\0\0\0\x0F\xE5\x11\x3C"sv};

inline constexpr EventRow kEventRows[] = {
    {1, "General message", kFirstLine, {kLines}},
    {2,
     "Unrecognized message received",
     line("Startup received a message that it doesn't know how to handle"),
     {custom(kChannel, 20), sample(0, "No handler for this\0"sv),
      sample(20 + message_header::kSize - 8, "\0\0\0\0\0\0\0\0"sv)}},
    {3,
     "Partial message in Alternate Event Log",
     line("An incomplete message was in an Alternate Event Log"),
     {custom(kPartialChannel, 20), sample(0, "Found after record.\0"sv)}},
    {100, "Ravel is in invalid state", line("Ravel is in invalid state"), {kState}},
    {101, "stack dump", line("dump of the stack"), {kStackRows, custom(kStack, kStackAt)}},
};
inline constexpr EventTable kEvents{
    .rows = kEventRows,
    .minor = u16(150),
    .note = "There is no location block.",
};
static_assert(accepted<kEvents>);

constexpr EventRow signal(Codes codes, Piece cause) {
    return {codes,
            "MPU App fatal signal",
            line("MPU application caught and exception"),
            {kSignalRows, cause, kProcessorRows, sample(324, "mpu_app\0"sv)}};
}
inline constexpr unsigned kFault = 3;
inline constexpr unsigned kOtherClass = 6; // stands for all that follow
inline constexpr EventRow kReportRows[] = {
    signal(anyOf(0), kKillRows),
    signal(anyOf(1), kTimerRows),
    signal(anyOf(2), kPollRows),
    signal({kFault, 4}, kIllegalRows),
    signal({kFault, 5}, kTrapRows),
    signal({kFault, 7}, kBusRows),
    signal({kFault, 8}, kFloatRows),
    signal({kFault, 11}, kSegmentRows),
    signal(anyOf(kFault), kOtherFaultRows),
    signal(anyOf(4), kChildRows),
    signal(anyOf(5), kRealTimeRows),
    signal(anyOf(kOtherClass), kOtherRows),
};
inline constexpr std::uint16_t kSignalEvent = 4;
inline constexpr Key kReportKeys[] = {{150, 2, kSignalEvent}};
inline constexpr EventTable kReports{
    .heading = "Crash reports",
    .rows = kReportRows,
    .major = u16(152 + kClassAt),
    .minor = u32(152 + kSignalAt),
    .keys = kReportKeys,
    .note = "The first code is the signal's class, the second its number. Classes from 6 on are "
            "shown alike.",
};
static_assert(accepted<kReports>);

inline constexpr const EventTable* kTables[] = {&kEvents, &kReports};
inline constexpr Module kModule{18, "STARTUPMP_Event", {}, kTables};

} // namespace Pegasus::mpu::startup
