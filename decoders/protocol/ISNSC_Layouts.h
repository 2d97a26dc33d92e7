// Tables of the iSNS client decoder. Offsets are from the start of the event header, which begins
// at record offset 152; the event data follow it at 24.
#pragma once

#include "event/Catalogue.h"
#include "platform/cmap/CMAPMessageHeader.h"

namespace Pegasus::mpu::isns {

// Titles are a label and a reason word, joined as they are.
inline constexpr std::string_view kLabelTexts[] = {
    "", "ICS REQ ", "ICS RSP ", "ICS MSG ", "ISNS REQ ", "ISNS RSP ", "ISNS MSG ", "TEXT ",
};
inline constexpr NameTable kLabels = names<kLabelTexts>();
inline constexpr std::string_view kReasonTexts[] = {"", "Information", "Rcvd", "Sent"};
inline constexpr NameTable kReasons = names<kReasonTexts>();

char* putLabel(char* out, const std::uint8_t* at);
char* putReason(char* out, const std::uint8_t* at);
inline constexpr CustomField kLabel{
    putLabel, sizeof "Unknown event: " + kDecimalRoom,
    "the kind, as 1 ICS REQ, 2 ICS RSP, 3 ICS MSG, 4 ISNS REQ, 5 ISNS RSP, 6 ISNS MSG, 7 TEXT, "
    "each with a blank, else Unknown event: n"};
inline constexpr CustomField kReason{
    putReason, sizeof "Unknown reason: " + kDecimalRoom,
    "the reason, as 1 Information, 2 Rcvd, 3 Sent, else Unknown reason: n"};
void tellTitle(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kTitle{tellTitle, "the title"};

// The event data begin with their own structure, so only the event header has room for these.
inline constexpr Row kModuleRow = Row("Module", "%s", text(12, 8)).assumed();
inline constexpr Row kLineRow = Row("Line", "%d", u32(20)).assumed();

// ICS events: a message header, then the part that its message type says.
inline constexpr unsigned kHeaderAt = 24;
inline constexpr unsigned kTypeAt = kHeaderAt + message_header::kMessageType;
inline constexpr Row kMessageRows[] = {
    open("ICS_MESSAGE"),
    kModuleRow,
    kLineRow,
    Row("mmch_LH", "(%08X, %08X) (hex)", u32(kHeaderAt + message_header::kListHead),
        u32(kHeaderAt + message_header::kListHead + 4))
        .inferred(),
    Row("Message_Type", "%d", u8(kTypeAt)).inferred(),
    Row("Message_Version", "%d", u8(kHeaderAt + message_header::kVersion)).inferred(),
    Row("Message_Length", "%d", u16(kHeaderAt + message_header::kLength)).inferred(),
    Row("OpCode_Protocol", "%d", u8(kHeaderAt + message_header::kProtocol)).inferred(),
    Row("OpCode_Type", "%08X (hex)", u24(kHeaderAt + message_header::kType)).inferred(),
    Row("Requestor", "%d", u8(kHeaderAt + message_header::kRequestor)).inferred(),
    Row("mmsg_cont", "%02X (hex)", u8(kHeaderAt + message_header::kControl)).inferred(),
    Row("Dest_EP", "%02X (hex)", u8(kHeaderAt + message_header::kDestination)).inferred(),
    Row("Recipient_Loc_BM", "%016X (hex)", u64(kHeaderAt + message_header::kLocalRecipients))
        .inferred(),
    Row("Recipient_OB_BM", "%016X (hex)", u64(kHeaderAt + message_header::kOutOfBoxRecipients))
        .inferred(),
    Row("Return_Code", "%d", u32(kHeaderAt + message_header::kReturnCode)).inferred(),
    Row("Handle", "%08X (hex)", u32(kHeaderAt + message_header::kHandle)).inferred(),
    Row("General_Use_1", "%08X (hex)", u32(kHeaderAt + message_header::kGeneralUse1)).inferred(),
    Row("General_Use_2", "%08X (hex)", u32(kHeaderAt + message_header::kGeneralUse2)).inferred(),
    Row("General_Use_3", "%08X (hex)", u32(kHeaderAt + message_header::kGeneralUse3)).inferred(),
};
inline constexpr Row kStatusRows[] = {
    Row("isns_status", "%08X (hex)", u32(88)).assumed(),
    close("ICS_MESSAGE"),
};
inline constexpr Row kOtherTypeRows[] = {line("Unknown ics_type"), close("ICS_MESSAGE")};
inline constexpr unsigned kNodeAt = 112;
inline constexpr Row kConfigurationRows[] = {
    Row("isns_control", "%08X (hex)", u32(88)).assumed(),
    Row("isns_server_ip", "%08X (hex)", u32(92)).assumed(),
    Row("isns_server_subnet_mask", "%08X (hex)", u32(96)).assumed(),
    Row("isns_server_port", "%08X (hex)", u32(100)).assumed(),
    Row("isns_heartbeat_ip", "%08X (hex)", u32(104)).assumed(),
    Row("isns_heartbeat_subnet_mask", "%08X (hex)", u32(108)).assumed(),
    Row("src_node_id", "%s", text(kNodeAt)).assumed(),
};
void putAlias(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kAlias{putAlias,
                                    "`src_node_alias`, the text after the NUL of `src_node_id`.",
                                    {},
                                    "iqn.2002-03.com.example:array.4\0Array 4, upper shelf\0"sv,
                                    Provenance::Assumed};

// Text messages.
inline constexpr std::uint32_t kKnownText = 1;
inline constexpr unsigned kCountAt = 28;
inline constexpr unsigned kArgumentsAt = 32;
inline constexpr Row kTextRows[] = {
    open("Arguments"),
    kModuleRow,
    kLineRow,
    Row("Arg_Count", "%d", u32(kCountAt)).assumed(),
};
void tellArguments(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kToldArguments{
    tellArguments,
    "Unknown text_id for TEXT_MSG Event, unless the u32 at 24 is 1; Display Arguments, detail in "
    "Message Body, when the record holds as many as `Arg_Count` says; else Invalid Arguments, "
    "detail in Message Body",
    {},
    {},
    Provenance::Assumed};
void putArguments(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kArguments{
    putArguments,
    "As many arguments as `Arg_Count` says and the record holds: `Arg01` and so on, a u32 each "
    "from 32 on.",
    {},
    "\0\0\0\1\0\0\0\3\0\0\0\5\xC0\xA8\0\1\xFF\xFF\xFF\xFE"sv,
    Provenance::Assumed};

void putPayload(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kPayload{
    putPayload, "The payload as `Hex`.", {}, "\0\1\0\4\x80\0\0\1"sv};

// Kind and message type; the types are settled by us.
constexpr EventRow message(Codes codes, Title label, Summary summary, Pieces pieces) {
    return EventRow{codes, label, summary, pieces}.assumed();
}
inline constexpr Row kRequest = line("Client_Config Request Message");
inline constexpr Row kResponse = line("Client_Config Response Message");
inline constexpr Row kOtherType = line("Unknown ICS message");
inline constexpr Row kUnhandled = line("Unhandled Event by ISNS Client");
inline constexpr unsigned kOtherKind = 4; // the first that is not handled, stands for all others
inline constexpr unsigned kTextKind = 7;
inline constexpr EventRow kEventRows[] = {
    // clang-format off
    message({1, 1}, "ICS REQ", kRequest, {kMessageRows, kConfigurationRows, custom(kAlias, kNodeAt)}),
    message({1, 2}, "ICS REQ", kTitle, {kMessageRows, kStatusRows}),
    message(anyOf(1), "ICS REQ", kOtherType, {kMessageRows, kOtherTypeRows}),
    message({2, 1}, "ICS RSP", kResponse, {kMessageRows, kConfigurationRows, custom(kAlias, kNodeAt)}),
    message({2, 2}, "ICS RSP", kTitle, {kMessageRows, kStatusRows}),
    message(anyOf(2), "ICS RSP", kOtherType, {kMessageRows, kOtherTypeRows}),
    message({3, 1}, "ICS MSG", kResponse, {kMessageRows, kConfigurationRows, custom(kAlias, kNodeAt)}),
    message({3, 2}, "ICS MSG", kTitle, {kMessageRows, kStatusRows}),
    message(anyOf(3), "ICS MSG", kOtherType, {kMessageRows, kOtherTypeRows}),
    {anyOf(kOtherKind), "ISNS REQ", kUnhandled, {custom(kPayload, kHeaderAt)}},
    {anyOf(5), "ISNS RSP", kUnhandled, {custom(kPayload, kHeaderAt)}},
    {anyOf(6), "ISNS MSG", kUnhandled, {custom(kPayload, kHeaderAt)}},
    {anyOf(kTextKind), "TEXT", summary(kToldArguments, kHeaderAt), {kTextRows, custom(kArguments, kHeaderAt)}},
    // clang-format on
};

inline constexpr EventTable kEvents{
    .rows = kEventRows,
    .major = u32(156),
    .minor = u8(152 + kTypeAt),
    .title = line("%s%s", custom(156, 4, kLabel), custom(160, 4, kReason)),
    .head = {sample(8, "\0\0\0\2isnsc\0\0\0\0\0\1\x2B"sv)},
    .note = "Events of any other kind are shown as those of 4 to 6. A body is cut at 16383 "
            "characters before it is made safe.",
};
static_assert(accepted<kEvents>);

inline constexpr const EventTable* kTables[] = {&kEvents};
inline constexpr Module kModule{31, "ISNSC_Event", {}, kTables};

} // namespace Pegasus::mpu::isns
