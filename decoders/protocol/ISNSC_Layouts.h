// Tables of the iSNS client decoder. Offsets are from the start of the event header, which begins
// at record offset 152; the event data follow it at 24.
#pragma once

#include "event/Catalogue.h"
#include "platform/cmap/CMAPMessageHeader.h"

namespace Pegasus::mpu::isns {

enum Kind : std::uint32_t { kRequest = 1, kResponse, kMessage, kText = 7 };

// Titles are a label and a reason word, joined as they stand.
inline constexpr std::string_view kLabelTexts[] = {
    "", "ICS REQ ", "ICS RSP ", "ICS MSG ", "ISNS REQ ", "ISNS RSP ", "ISNS MSG ", "TEXT ",
};
inline constexpr NameTable kLabels = names<kLabelTexts>();
inline constexpr std::string_view kReasonTexts[] = {"", "Information", "Rcvd", "Sent"};
inline constexpr NameTable kReasons = names<kReasonTexts>();

inline constexpr unsigned kKindAt = 4; // the word in front of it is not shown
inline constexpr unsigned kReasonAt = 8;
inline constexpr Row kLocationRows[] = {
    // The event data begin with their own structure, so only the event header has room for these.
    Row("Module", "%s", text(12, 8)).assumed(),
    Row("Line", "%d", u32(20)).assumed(),
};

// ICS events: a message header, then the part that its message type says.
enum Type : std::uint8_t { kConfiguration = 1, kStatus };
inline constexpr unsigned kHeaderAt = 24;
inline constexpr unsigned kTypeAt = kHeaderAt + message_header::kMessageType;
inline constexpr Row kHeaderRows[] = {
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
};
inline constexpr Row kConfigurationRows[] = {
    Row("isns_control", "%08X (hex)", u32(88)).assumed(),
    Row("isns_server_ip", "%08X (hex)", u32(92)).assumed(),
    Row("isns_server_subnet_mask", "%08X (hex)", u32(96)).assumed(),
    Row("isns_server_port", "%08X (hex)", u32(100)).assumed(),
    Row("isns_heartbeat_ip", "%08X (hex)", u32(104)).assumed(),
    Row("isns_heartbeat_subnet_mask", "%08X (hex)", u32(108)).assumed(),
    Row("src_node_id", "%s", text(112)).assumed(),
};
inline constexpr unsigned kNodeAt = 112; // src_node_alias lies behind the identifier's NUL

// Text messages.
inline constexpr unsigned kTextIdentifierAt = 24;
inline constexpr std::uint32_t kKnownText = 1;
inline constexpr unsigned kCountAt = 28;
inline constexpr unsigned kArgumentsAt = 32;
inline constexpr Row kCountRows[] = {
    Row("Arg_Count", "%d", u32(kCountAt)).assumed(),
};

// The catalogue.
inline constexpr std::uint16_t kEventAt = 152;

template <std::uint32_t KindCode, std::uint32_t Reason, std::uint8_t TypeCode>
inline constexpr Key kMessageKeys[] = {{kEventAt + kKindAt, 4, KindCode},
                                       {kEventAt + kReasonAt, 4, Reason},
                                       {kEventAt + kTypeAt, 1, TypeCode}};
inline constexpr Key kTextKeys[] = {{kEventAt + kKindAt, 4, kText},
                                    {kEventAt + kReasonAt, 4, 1},
                                    {kEventAt + kTextIdentifierAt, 4, kKnownText},
                                    {kEventAt + kCountAt, 4, 3}};
inline constexpr Key kOtherKeys[] = {{kEventAt + kKindAt, 4, 4}, {kEventAt + kReasonAt, 4, 3}};

inline constexpr Part kHeaderParts[] = {{"Event header", kLocationRows, kEventAt},
                                        {"Message header", kHeaderRows, kEventAt}};
inline constexpr Part kStatusParts[] = {{"Event header", kLocationRows, kEventAt},
                                        {"Message header", kHeaderRows, kEventAt},
                                        {"Status", kStatusRows, kEventAt}};
inline constexpr Part kConfigurationParts[] = {{"Event header", kLocationRows, kEventAt},
                                               {"Message header", kHeaderRows, kEventAt},
                                               {"Configuration", kConfigurationRows, kEventAt}};
inline constexpr Part kTextParts[] = {{"Event header", kLocationRows, kEventAt},
                                      {"Text message", kCountRows, kEventAt}};

inline constexpr Fill kModuleFill{kEventAt + 12, "isnsc\0\0\0\0\0\1\x2B"sv};
inline constexpr Fill kHeaderFills[] = {kModuleFill};
inline constexpr Fill kConfigurationFills[] = {
    kModuleFill, {kEventAt + kNodeAt, "iqn.2002-03.com.example:array.4\0Array 4, upper shelf\0"sv}};
inline constexpr Fill kTextFills[] = {
    kModuleFill, {kEventAt + kArgumentsAt, "\0\0\0\5\xC0\xA8\0\1\xFF\xFF\xFF\xFE"sv}};
inline constexpr Fill kOtherFills[] = {{kEventAt + 24, "\0\1\0\4\x80\0\0\1"sv}};

inline constexpr std::string_view kHeaderNote = "In an element `ICS_MESSAGE`. Requests, responses "
                                                "and messages (kinds 1 to 3) are decoded alike.";

inline constexpr Section kSections[] = {
    {"ICS status message", kMessageKeys<kMessage, 2, kStatus>, kStatusParts, kHeaderFills,
     kHeaderNote},
    {"ICS configuration request", kMessageKeys<kRequest, 2, kConfiguration>, kConfigurationParts,
     kConfigurationFills,
     "As a status message; behind the identifier's NUL lies `src_node_alias` (chosen)."},
    {"ICS configuration response", kMessageKeys<kResponse, 3, kConfiguration>, kConfigurationParts,
     kConfigurationFills, "As the request."},
    {"ICS message of another type", kMessageKeys<kMessage, 2, 9>, kHeaderParts, kHeaderFills,
     "As a status message, without a part of its own."},
    {"Text", kTextKeys, kTextParts, kTextFills,
     "In an element `Arguments`. The text identifier is at 24, arguments of four bytes lie from 32 "
     "on (chosen), as many as `Arg_Count` says: `Arg01` and so on."},
    {"Any other kind", kOtherKeys, {}, kOtherFills, "The payload in hexadecimal digits."},
};

inline constexpr auto kCodes = [] {
    std::array<Code, std::size(kLabelTexts) - 1> codes{};
    for (std::uint32_t i = 1; i <= codes.size(); ++i)
        codes[i - 1] = {i, kLabelTexts[i].substr(0, kLabelTexts[i].size() - 1)};
    return codes;
}();

inline constexpr Module kModule{
    31, "ISNSC_Event",
    "The word at 156 is the kind, that at 160 the reason: 1 information, 2 received, 3 sent. The "
    "title is made of both.",
    kSections, kCodes};

} // namespace Pegasus::mpu::isns
