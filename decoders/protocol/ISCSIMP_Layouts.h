// Tables of the iSCSI target decoder. Offsets are from the start of the event data, which begin at
// record offset 152, or of a Basic Header Segment.
#pragma once

#include "event/Catalogue.h"
#include "platform/cmap/CMAPMessageHeader.h"

namespace Pegasus::mpu::iscsi {

enum Kind : std::uint16_t { kBasic = 1, kSocket, kParameter, kLogin, kRequest, kMessage };

// Titles by event id. The first text is the firmware's own.
inline constexpr std::string_view kTitleTexts[] = {
    "Radiation leak detected", "Open Socket Request",  "Close Socket",  "Login",
    "Open Socket Failure",     "Close Socket Failure", "Login Failure", "Text Request Failure",
    "Internal Error",          "Login Error",
};
inline constexpr NameTable kTitles = names<kTitleTexts>();

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
inline constexpr unsigned kCloseReason = 20;
inline constexpr Row kCloseRows[] = {
    {"Close_Reason", "%s", name(u32(kCloseReason), kCloseReasons)},
};
inline constexpr Row kPeersLine[] = {
    line(", Target %u.%u.%u.%u:%u", u8(12), u8(13), u8(14), u8(15), u16(8)),
    line(", Initiator %u.%u.%u.%u:%u", u8(16), u8(17), u8(18), u8(19), u16(10)),
    line(", Socket %u", u32(4)),
};
void putClose(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kClose{
    putClose,
    "`Close_Reason` when the reason is 5. The summary goes on with that and with the addresses, "
    "ports and the socket: `, Target 10.0.0.1:3260, Initiator 10.0.0.9:1025, Socket 7`.",
    kCloseRows};
inline constexpr unsigned kSocketSize = 24;

// Lengths of the texts after the fixed part of login, parameter and request data. There the texts
// are directly one after the other in this order.
inline constexpr unsigned kLengthsAt = 56;
inline constexpr unsigned kInitiatorLength = 0;
inline constexpr unsigned kTargetLength = 2;
inline constexpr unsigned kKeyLength = 4; // of parameter data, as the next two
inline constexpr unsigned kOfferLength = 6;
inline constexpr unsigned kAnswerLength = 8;

inline constexpr unsigned kRequestHeader = 60;
inline constexpr unsigned kRequestTexts = 108;
inline constexpr unsigned kParameterHeader = 66;
inline constexpr unsigned kParameterTexts = 114;
inline constexpr unsigned kLoginTexts = 68;

inline constexpr std::string_view kSampleNames("iqn.1994-05.com.example:host-7"
                                               "iqn.2002-03.com.example:array.4");

// Login data: the socket, then each name with its identifier, then the rest.
inline constexpr Row kLoginSocketRows[] = {{"Socket", "%u", u32(4)}};
void putInitiatorName(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kInitiatorName{
    putInitiatorName,
    "`InitiatorName`, from 68 on, its length at 56.",
    {},
    "\0\x1E\0\x1F\x08\0\x04\0"sv, // lengths of both names, marker intervals
    Provenance::Inferred};
inline constexpr Row kLoginInitiatorRows[] = {{"Initiator_ID", "%u", u16(64)}};
void putTargetName(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kTargetName{putTargetName,
                                         "`TargetName`, directly after it, its length at 58.",
                                         {},
                                         {},
                                         Provenance::Inferred};
inline constexpr Value kLoginFlags = u32(40);
inline constexpr unsigned kOfMarkerFlag = 25;
inline constexpr unsigned kIfMarkerFlag = 24;
inline constexpr Row kLoginRows[] = {
    {"Target_ID", "%u", u16(66)},
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
inline constexpr Row kLoginOptionRows[] = {kMutualRows[0], kOfMarkerRows[0], kIfMarkerRows[0]};
void putLoginOptions(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kLoginOptions{
    putLoginOptions,
    "`MutualAuthentication` for CHAP alone, `OfMarkInt` and `IfMarkInt` for a marker in use.",
    kLoginOptionRows,
    {},
    Provenance::Assumed};

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

// Basic Header Segments, RFC 3720.
inline constexpr unsigned kHeaderSize = 48;
inline constexpr unsigned kOpcodeMask = 0x3F;
inline constexpr std::uint8_t kLoginRequest = 0x03;
inline constexpr std::uint8_t kTextRequest = 0x04;

char* putCurrentStage(char* out, const std::uint8_t* at);
char* putNextStage(char* out, const std::uint8_t* at);
inline constexpr CustomField kCurrentStage{
    putCurrentStage, kStages.room,
    "bits 3 and 2, as 0 SecurityNegotiation, 1 LoginOperationalNegotiation, 2 Invalid (2), 3 "
    "FullFeaturePhase"};
inline constexpr CustomField kNextStage{putNextStage, kStages.room, "bits 1 and 0, as `CSG`"};

inline constexpr Row kLoginRequestRows[] = {
    // 10.12
    {"Opcode", "Login Request"},
    {"Immediate", "%s", bit(u8(0), 6, kNoYes)},
    {"Transit", "%s", bit(u8(1), 7, kNoYes)},
    {"Continue", "%s", bit(u8(1), 6, kNoYes)},
    Row("CSG", "%s", custom(1, 1, kCurrentStage)).overlay(),
    Row("NSG", "%s", custom(1, 1, kNextStage)).overlay(),
    {"Version-max", "%u", u8(2)},
    {"Version-min", "%u", u8(3)},
    {"TotalAHSLength", "%u", u8(4)},
    {"DataSegmentLength", "%u", u24(5)},
    {"ISID", "0x%06x", u48(8)},
    {"TSIH", "0x%04x", u16(14)},
    {"ITT", "0x%08x", u32(16)},
    {"CID", "0x%04x", u16(20)},
    {"CmdSN", "%u", u32(24)},
    {"ExpStatSN", "%u", u32(28)},
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

void putLoginRequest(Draft& draft, const Record& record, const RecordView& data);
void putTextRequest(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kLoginHeader{
    putLoginRequest,
    "The Basic Header Segment of a Login Request, when the low six bits of its byte 0 are 3.",
    kLoginRequestRows};
inline constexpr CustomPiece kTextHeader{
    putTextRequest,
    "The Basic Header Segment of a Text Request, when they are 4; no others are shown.",
    kTextRequestRows};

// Before the header of a request.
void putRequestNames(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kRequestNames{
    putRequestNames,
    "`TargetName` and `InitiatorName`, unless their lengths at 58 and 56 are both 0: from 108 on "
    "the initiator's, directly after it the target's.",
    {},
    "\0\x1E\0\x1F"sv,
    Provenance::Assumed};
void putParameterNames(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kParameterNames{
    putParameterNames,
    "`TargetName` and `InitiatorName`, unless their lengths at 58 and 56 are both 0: from 114 on "
    "the initiator's, directly after it the target's.",
    {},
    "\0\x1E\0\x1F\0\x0C\0\x04\0\x05"sv,
    Provenance::Assumed};
void putParameterTexts(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kParameterElements{
    putParameterTexts,
    "Directly after the names key, offer and answer, their lengths at 60, 62 and 64: `Parameter` "
    "is the key; `Value` an offer without answer, else `Value_Offered` and `Value_Answered`.",
    {},
    {},
    Provenance::Assumed};

inline constexpr Value kReason = name(u16(2), kReasons);
inline constexpr Row kReasonLine = line("%s", kReason);
inline constexpr Row kLoginLine = line("%s, TSIH %u, Target ID %u, Initiator ID %u, Socket %u",
                                       kReason, u32(8), u16(66), u16(64), u32(4));
inline constexpr EventRow kEventRows[] = {
    // clang-format off
    {kBasic, "Basic", kReasonLine, {kReasonRows}},
    {kSocket, "Socket", kReasonLine, {kReasonRows, kSocketRows, kClose, sample(2, "\0\5"sv)}},
    {kParameter, "Parameter", kReasonLine,
     {kReasonRows, custom(kParameterNames, kLengthsAt), custom(kLoginHeader, kParameterHeader), custom(kTextHeader, kParameterHeader), custom(kParameterElements, kLengthsAt),
      sample(kParameterHeader, "\x44"), sample(kParameterTexts, kSampleNames), sample(kParameterTexts + kSampleNames.size(), "HeaderDigestNoneCRC32")}},
    {kLogin, "Login", kLoginLine,
     {kLoginSocketRows, custom(kInitiatorName, kLengthsAt), kLoginInitiatorRows, custom(kTargetName, kLengthsAt), kLoginRows, kLoginOptions,
      sample(2, "\0\x09"sv), sample(40, "\xF3\0\0\0\0\1\0\3"sv), sample(kLoginTexts, kSampleNames)}},
    {kRequest, "Request", kReasonLine,
     {kReasonRows, custom(kRequestNames, kLengthsAt), custom(kLoginHeader, kRequestHeader), custom(kTextHeader, kRequestHeader),
      sample(kRequestHeader, "\x43"), sample(kRequestTexts, kSampleNames)}},
    {kMessage, "Message", kReasonLine, {kMessageRows}},
    // clang-format on
};

inline constexpr EventTable kEvents{
    .rows = kEventRows,
    .minor = u16(152),
    .style = Style::Joined,
    .title = line("%s", name(u16(150), kTitles)),
    .note = "The event id names the event, the number at 152 says which data follow. Data of "
            "another kind have the summary `Unknown (n)` and no body. Headers of requests are "
            "those of RFC 3720.",
};
static_assert(accepted<kEvents>);

inline constexpr const EventTable* kTables[] = {&kEvents};
inline constexpr Module kModule{22, "ISCSIMP_Event", {}, kTables};

} // namespace Pegasus::mpu::iscsi
