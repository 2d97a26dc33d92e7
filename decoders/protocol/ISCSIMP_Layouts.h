// Tables of the iSCSI target decoder. Offsets are from the start of the event data, which begin at
// record offset 152, or of a Basic Header Segment.
#pragma once

#include "event/Catalogue.h"
#include "platform/cmap/CMAPMessageHeader.h"

namespace Pegasus::mpu::iscsi {

enum Kind : std::uint16_t { kBasic = 1, kSocket, kParameter, kLogin, kRequest, kMessage };

// The first text is the firmware's own.
inline constexpr std::string_view kEventTexts[] = {
    "Radiation leak detected", "Open Socket Request",  "Close Socket",  "Login",
    "Open Socket Failure",     "Close Socket Failure", "Login Failure", "Text Request Failure",
    "Internal Error",          "Login Error",
};
inline constexpr NameTable kEvents = names<kEventTexts>();

inline constexpr std::string_view kReasonTexts[] = {
    "Radiation leak detected",
    "Socket for close request not found",
    "Socket for login request not found",
    "Socket for text request not found",
    "Socket to open already opened",
    "Socket Closed",
    "Socket Opened",
    "Portal to open not found",
    "No more connections available",
    "Login",
    "Expected parameter not received",
    "Answer not received for parameter offered",
    "Unexpected parameter received",
    "Parameter received more than once",
    "Parameter with invalid numeric value",
    "Parameter less than minimum value",
    "Parameter greater than maximum value",
    "Parameter with invalid boolean value",
    "Illegal answer to AND parameter offered",
    "Illegal answer to OR parameter offered",
    "Illegal answer to Min parameter offered",
    "Illegal answer to Max parameter offered",
    "Illegal answer to List parameter offered",
    "Non-negotiable List parameters offered",
    "Offered parameter rejected",
    "Offered parameter not understood",
    "Continue and Transit bits both set in BHS",
    "Illegal starting current stage in BHS",
    "Incorrect current stage in BHS",
    "Illegal next stage in BHS",
    "Unsupported iSCSI version in BHS",
    "Incorrect CHAP response",
    "Initiator does not have access",
    "Initiator does not have access to target",
    "Target does not exist",
    "Portal used not part of target's portal group",
    "Out of resource",
    "FirstBurstLength exceeded MaxBurstLength",
    "Missing text key delimiter",
    "Missing text value delimiter",
    "Request too large",
    "Continue and Final bits both set",
    "Close listener request not found",
    "Close connections request not found",
    "Received unexpected message",
    "Incorrect CHAP name",
    "Parameter value not on binary boundary",
    "Create Target Failed",
    "Delete Target Failed",
    "Create Logical Unit Failed",
    "Delete Logical Unit Failed",
    "Read of IQN Vendor Name Failed",
    "Target Not Found",
    "Response Handler Not Found",
    "Fatal Allocation Failure",
};
inline constexpr NameTable kReasons = names<kReasonTexts>();
inline constexpr std::uint16_t kSocketClosed = 5;

inline constexpr std::string_view kCloseReasonTexts[] = {
    "Unknown",
    "Cold reset",
    "Close connection logout request",
    "Close session logout request",
    "Remove connection for recovery logout request",
    "Login failure",
    "Protocol error reject",
    "System Shutdown",
    "Connection owned by reinstated session",
    "Login failure",
    "TCP reset",
    "TCP FIN",
    "Connection reinstatment",
    "Connection hardware error",
    "Failed reinstatement time out",
    "Header digest error",
    "System shutdown",
    "Abnormal environmental condition",
    "Rebind connection transfer",
    "Initiator ping response time-out",
    "TCP ACK time-out",
    "Login completion time-out",
};
inline constexpr NameTable kCloseReasons = names<kCloseReasonTexts>();

inline constexpr std::string_view kStageTexts[] = {
    "SecurityNegotiation",
    "LoginOperationalNegotiation",
    "Invalid (2)",
    "FullFeaturePhase",
};
inline constexpr NameTable kStages = names<kStageTexts>();

inline constexpr std::string_view kSessionTypeTexts[] = {"Invalid", "Discovery", "Normal"};
inline constexpr NameTable kSessionTypes = names<kSessionTypeTexts>();

inline constexpr std::string_view kAuthenticationTexts[] = {"None", "None", "CHAP", "CHAP"};
inline constexpr NameTable kAuthentications = names<kAuthenticationTexts>();
constexpr bool isChap(unsigned method) {
    return method == 2 || method == 3;
}

inline constexpr std::string_view kNoYesTexts[] = {"No", "Yes"};
inline constexpr NameTable kNoYes = names<kNoYesTexts>();
inline constexpr std::string_view kDigestTexts[] = {"None", "CRC32C"};
inline constexpr NameTable kDigests = names<kDigestTexts>();

inline constexpr Row kReasonRows[] = {
    {"Reason", "%s", name(u16(2), kReasons)},
    {"Socket", "%u", u32(4)},
};
inline constexpr unsigned kHeadSize = 8;

inline constexpr Row kSocketRows[] = {
    {"Target_TCP_Port", "%u", u16(8)},
    {"Target_IP_Address", "%u.%u.%u.%u", u8(12), u8(13), u8(14), u8(15)},
    {"Initiator_TCP_Port", "%u", u16(10)},
    {"Initiator_IP_Address", "%u.%u.%u.%u", u8(16), u8(17), u8(18), u8(19)},
};
inline constexpr unsigned kTargetPort = 8;
inline constexpr unsigned kInitiatorPort = 10;
inline constexpr unsigned kTargetAddress = 12;
inline constexpr unsigned kInitiatorAddress = 16;
inline constexpr unsigned kCloseReason = 20;
inline constexpr Row kCloseRows[] = {
    {"Close_Reason", "%s", name(u32(kCloseReason), kCloseReasons)},
};
inline constexpr unsigned kSocketSize = 24;

// Lengths of the texts behind the fixed part of login, parameter and request data. There the texts
// lie one directly behind the other in this order.
inline constexpr unsigned kInitiatorNameLength = 56;
inline constexpr unsigned kTargetNameLength = 58;
inline constexpr unsigned kKeyLength = 60; // of parameter data, as the next two
inline constexpr unsigned kOfferLength = 62;
inline constexpr unsigned kAnswerLength = 64;

inline constexpr unsigned kRequestHeader = 60;
inline constexpr unsigned kRequestTexts = 108;
inline constexpr unsigned kParameterHeader = 66;
inline constexpr unsigned kParameterTexts = 114;
inline constexpr unsigned kLoginTexts = 68;

// Login data: the socket, then each name with its identifier, then the rest.
inline constexpr Row kLoginSocketRows[] = {{"Socket", "%u", u32(4)}};
inline constexpr Row kLoginInitiatorRows[] = {{"Initiator_ID", "%u", u16(64)}};
inline constexpr Row kLoginTargetRows[] = {{"Target_ID", "%u", u16(66)}};
inline constexpr Value kLoginFlags = u32(40);
inline constexpr unsigned kOfMarkerFlag = 25;
inline constexpr unsigned kIfMarkerFlag = 24;
inline constexpr Row kLoginRows[] = {
    {"SessionType", "%s", name(u16(18), kSessionTypes)},
    {"TSIH", "%u", u32(8)},
    Row("ISID", "0x%06x", u48(12)).inferred(),
    {"ErrorRecoveryLevel", "%u", u8(39)},
    {"DefaultTime2Wait", "%u", u16(28)},
    {"DefaultTime2Retain", "%u", u16(30)},
    {"FirstBurstLength ", "%u", u32(24)}, // readers know the element by this name
    {"MaxBurstLength", "%u", u32(20)},
    {"MaxConnections", "%u", u16(36)},
    {"ConnectionCount", "%u", u8(38)},
    {"MaxOutstandingR2T", "%u", u32(32)},
    Row("InitialR2T", "%s", bit(kLoginFlags, 31, kNoYes)).assumed(),
    Row("ImmediateData", "%s", bit(kLoginFlags, 30, kNoYes)).assumed(),
    Row("DataPDUInOrder", "%s", bit(kLoginFlags, 29, kNoYes)).assumed(),
    Row("DataSequenceInOrder", "%s", bit(kLoginFlags, 28, kNoYes)).assumed(),
    {"CID", "0x%04x", u16(44)},
    {"ActiveiScsiVersion", "%u", u8(46)},
    {"AuthenticationMethod", "%s", name(u8(47), kAuthentications)},
    {"Target_MaxRecvDataSegmentLength", "%u", u32(48)},
    {"Initiator_MaxRecvDataSegmentLength", "%u", u32(52)},
    Row("HeaderDigest", "%s", bit(kLoginFlags, 27, kDigests)).assumed(),
    Row("DataDigest", "%s", bit(kLoginFlags, 26, kDigests)).assumed(),
    Row("OfMarker", "%s", bit(kLoginFlags, kOfMarkerFlag, kNoYes)).assumed(),
    Row("IfMarker", "%s", bit(kLoginFlags, kIfMarkerFlag, kNoYes)).assumed(),
};
// The low bit of the method changes nothing in its name, so it tells one-way from mutual.
inline constexpr Row kMutualRows[] = {
    Row("MutualAuthentication", "%s", bit(u8(47), 0, kNoYes)).inferred(),
};
inline constexpr Row kOfMarkerRows[] = {{"OfMarkInt", "%u", u16(60)}};
inline constexpr Row kIfMarkerRows[] = {{"IfMarkInt", "%u", u16(62)}};

inline constexpr unsigned kHeaderAt = 8; // of a message event
inline constexpr Row kMessageRows[] = {
    {"Reason", "%s", name(u16(2), kReasons)},
    Row("Protocol", "0x%04x", u8(kHeaderAt + message_header::kProtocol)).inferred(),
    Row("Type", "0x%04x", u24(kHeaderAt + message_header::kType)).inferred(),
    Row("Requestor", "0x%02x", u8(kHeaderAt + message_header::kRequestor)).inferred(),
    Row("Destination", "0x%02x", u8(kHeaderAt + message_header::kDestination)).inferred(),
    Row("Length", "0x%04x", u16(kHeaderAt + message_header::kLength)).inferred(),
    Row("Control", "0x%02x", u8(kHeaderAt + message_header::kControl)).inferred(),
    Row("Handle", "0x%08x", u32(kHeaderAt + message_header::kHandle)).inferred(),
    Row("Return_code", "0x%08x", u32(kHeaderAt + message_header::kReturnCode)).inferred(),
};
inline constexpr unsigned kMessageSize = kHeaderAt + message_header::kSize;

// Basic Header Segments, RFC 3720. The stages of a Login Request are fields of two bits in byte 1,
// written between the two tables.
inline constexpr unsigned kHeaderSize = 48;
inline constexpr unsigned kOpcodeMask = 0x3F;
inline constexpr std::uint8_t kLoginRequest = 0x03;
inline constexpr std::uint8_t kTextRequest = 0x04;

inline constexpr Row kLoginRequestFlagRows[] = {
    // 10.12
    {"Opcode", "Login Request"},
    {"Immediate", "%s", bit(u8(0), 6, kNoYes)},
    {"Transit", "%s", bit(u8(1), 7, kNoYes)},
    {"Continue", "%s", bit(u8(1), 6, kNoYes)},
};
inline constexpr Row kLoginRequestRows[] = {
    {"Version-max", "%u", u8(2)},    {"Version-min", "%u", u8(3)},
    {"TotalAHSLength", "%u", u8(4)}, {"DataSegmentLength", "%u", u24(5)},
    {"ISID", "0x%06x", u48(8)},      {"TSIH", "0x%04x", u16(14)},
    {"ITT", "0x%08x", u32(16)},      {"CID", "0x%04x", u16(20)},
    {"CmdSN", "%u", u32(24)},        {"ExpStatSN", "%u", u32(28)},
};
inline constexpr Row kTextRequestRows[] = {
    // 10.10
    {"Opcode", "Text Request"},
    {"Immediate", "%s", bit(u8(0), 6, kNoYes)},
    {"Final", "%s", bit(u8(1), 7, kNoYes)},
    {"Continue", "%s", bit(u8(1), 6, kNoYes)},
    {"TotalAHSLength", "%u", u8(4)},
    {"DataSegmentLength", "%u", u24(5)},
    {"ITT", "0x%08x", u32(16)},
    {"TTT", "0x%08x", u32(20)},
    {"CmdSN", "%u", u32(24)},
    {"ExpStatSN", "%u", u32(28)},
};

// The catalogue.
inline constexpr std::uint16_t kDataAt = 152;

template <std::uint16_t Event, Kind Payload>
inline constexpr Key kKeys[] = {{150, 2, Event}, {kDataAt, 2, Payload}};
template <std::uint16_t Event, Kind Payload, std::uint16_t HeaderAt, std::uint8_t Opcode>
inline constexpr Key kHeaderKeys[] = {
    {150, 2, Event}, {kDataAt, 2, Payload}, {kDataAt + HeaderAt, 1, Opcode | 0x40}};
inline constexpr Key kClosedKeys[] = {
    {150, 2, 2}, {kDataAt, 2, kSocket}, {kDataAt + 2, 2, kSocketClosed}};

inline constexpr Part kBasicParts[] = {{"Event data", kReasonRows, kDataAt}};
inline constexpr Part kSocketParts[] = {{"Event data", kReasonRows, kDataAt},
                                        {"Socket", kSocketRows, kDataAt}};
inline constexpr Part kClosedParts[] = {{"Event data", kReasonRows, kDataAt},
                                        {"Socket", kSocketRows, kDataAt},
                                        {"Socket closed", kCloseRows, kDataAt}};
template <const auto& Rows, std::uint16_t HeaderAt>
inline constexpr Part kHeaderParts[] = {{"Event data", kReasonRows, kDataAt},
                                        {"Basic Header Segment", Rows, kDataAt + HeaderAt}};
template <std::uint16_t HeaderAt>
inline constexpr Part kLoginHeaderParts[] = {
    {"Event data", kReasonRows, kDataAt},
    {"Basic Header Segment, flags", kLoginRequestFlagRows, kDataAt + HeaderAt},
    {"Basic Header Segment", kLoginRequestRows, kDataAt + HeaderAt}};
inline constexpr Part kLoginParts[] = {
    {"Event data", kLoginSocketRows, kDataAt}, {"Initiator", kLoginInitiatorRows, kDataAt},
    {"Target", kLoginTargetRows, kDataAt},     {"Session", kLoginRows, kDataAt},
    {"CHAP alone", kMutualRows, kDataAt},      {"With OfMarker", kOfMarkerRows, kDataAt},
    {"With IfMarker", kIfMarkerRows, kDataAt}};
inline constexpr Part kMessageParts[] = {{"Event data", kMessageRows, kDataAt}};

inline constexpr std::string_view kSampleNames("iqn.1994-05.com.example:host-7"
                                               "iqn.2002-03.com.example:array.4");
// Lengths: initiator's name 30, target's 31, key 12, offer 4, answer 5.
inline constexpr std::string_view kSampleLengths("\0\x1E\0\x1F\0\x0C\0\x04\0\x05", 10);
inline constexpr std::string_view kSampleParameter("iqn.1994-05.com.example:host-7"
                                                   "iqn.2002-03.com.example:array.4"
                                                   "HeaderDigest"
                                                   "None"
                                                   "CRC32");
inline constexpr Fill kLoginFills[] = {
    {kDataAt + 2, "\0\x09"sv},        {kDataAt + 40, "\xF3"},
    {kDataAt + 47, "\x03"},           {kDataAt + 56, kSampleLengths.substr(0, 4)},
    {kDataAt + 60, "\x08\0\x04\0"sv}, {kDataAt + kLoginTexts, kSampleNames}};
inline constexpr Fill kParameterFills[] = {{kDataAt + 56, kSampleLengths},
                                           {kDataAt + kParameterTexts, kSampleParameter}};
inline constexpr Fill kOfferFills[] = {{kDataAt + 56, kSampleLengths.substr(0, 8)},
                                       {kDataAt + kParameterTexts, kSampleParameter}};
inline constexpr Fill kRequestFills[] = {{kDataAt + 56, kSampleLengths.substr(0, 4)},
                                         {kDataAt + kRequestTexts, kSampleNames}};

inline constexpr std::string_view kHeaderNote =
    "The low six bits of the header's byte 0 are the opcode; others than Login and Text Request "
    "are not shown. `CSG` and `NSG` are bits 3..2 and 1..0 of byte 1 of a Login Request. Lengths "
    "of the initiator's and the target's name are at 56 and 58; `TargetName` and `InitiatorName` "
    "stand in front of the header when one of them is not 0. The texts lie behind the header, the "
    "initiator's first (chosen).";
inline constexpr std::string_view kParameterNote =
    "The header is at 66, names are shown as for a request. Lengths at 60, 62 and 64: key, offered "
    "value, answered "
    "value. From 114, directly behind each other (chosen): initiator's name, target's name, key, "
    "offer, answer. `Parameter` is the key; `Value` an offer without answer, else `Value_Offered` "
    "and `Value_Answered`.";
inline constexpr std::string_view kLoginNote =
    "`InitiatorName` and `TargetName` stand in front of their identifiers: from 68 the "
    "initiator's name, its length at 56, directly behind it the target's, its length at 58 (fits).";

inline constexpr Section kSections[] = {
    {"Basic", kKeys<1, kBasic>, kBasicParts},
    {"Socket", kKeys<4, kSocket>, kSocketParts},
    {"Socket closed", kClosedKeys, kClosedParts},
    {"Login Request", kHeaderKeys<6, kRequest, kRequestHeader, kLoginRequest>,
     kLoginHeaderParts<kRequestHeader>, kRequestFills, kHeaderNote},
    {"Text Request", kHeaderKeys<7, kRequest, kRequestHeader, kTextRequest>,
     kHeaderParts<kTextRequestRows, kRequestHeader>, kRequestFills, kHeaderNote},
    {"Parameter of a Login Request", kHeaderKeys<6, kParameter, kParameterHeader, kLoginRequest>,
     kLoginHeaderParts<kParameterHeader>, kParameterFills, kParameterNote},
    {"Parameter of a Text Request", kHeaderKeys<7, kParameter, kParameterHeader, kTextRequest>,
     kHeaderParts<kTextRequestRows, kParameterHeader>, kOfferFills, kParameterNote},
    {"Login", kKeys<3, kLogin>, kLoginParts, kLoginFills, kLoginNote},
    {"Message", kKeys<8, kMessage>, kMessageParts, {}, "A message header at 8."},
};

inline constexpr auto kCodes = [] {
    std::array<Code, std::size(kEventTexts)> codes{};
    for (std::uint32_t i = 0; i < codes.size(); ++i)
        codes[i] = {i, kEventTexts[i]};
    return codes;
}();

inline constexpr Module kModule{
    22, "ISCSIMP_Event",
    "The event id names the event, the number at 152 says which data follow: 1 basic, 2 socket, 3 "
    "parameter, 4 login, 5 request, 6 message. Headers of requests are those of RFC 3720.",
    kSections, kCodes};

} // namespace Pegasus::mpu::iscsi
