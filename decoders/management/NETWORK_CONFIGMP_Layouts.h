// Tables of the network-configuration decoder. Payloads have no location block.
#pragma once

#include "decoders/management/Management_Layouts.h"
#include "event/Catalogue.h"
#include "platform/cmap/NetworkStats_Layouts.h"

namespace Pegasus::mpu::ncs {

inline constexpr unsigned kManagementPort = 1054; // the event whose texts are made safe

inline constexpr Row kPortClassRows[] = {{"ClassName", "NetworkPortStats"}};
inline constexpr Row kLagClassRows[] = {{"ClassName", "NetworkLagStats"}};
inline constexpr Row kOffloadClassRows[] = {{"ClassName", "NetworkRvlStats"}};
inline constexpr Row kManagementPortClassRows[] = {{"ClassName", "NetworkOutbandStats"}};
inline constexpr Row kTcpClassRows[] = {{"ClassName", "NetworkTcpStats"}};
inline constexpr Row kConnectionClassRows[] = {{"ClassName", "NetworkConnectionStats"}};

inline constexpr Row kConnectionStatsRows[] = {
    {"ObjID", "0x%08X", u32(0)},           {"Controller", "%d", u32(4)},
    {"TcpConnLocalAddress", "%d", u32(8)}, {"TcpConnRemAddress", "%d", u32(12)},
    {"TcpConnLocalPort", "%d", u16(16)},   {"TcpConnRemPort", "%d", u16(18)},
    {"TcpConnState", "%d", u16(20)},       {"TcpSockId", "%d", u16(22)},
};

char* putLinkState(char* out, const std::uint8_t* at);
inline constexpr CustomField kLinkState{putLinkState, 4, "UP for 1040, else DOWN"};
inline constexpr Row kLinkRows[] = {
    {"LAG_Port", "%d", u32(0)},
    {"Operational_Status", "%s", custom(8, 4, kLinkState)},
    {"Admin_State", "%d", u8(14)},
    {"Physical_BladeId", "%d", u8(12)},
};

inline constexpr Row kMessageRows[] = {
    {"OpCode_Protocol", "%d", u8(0)},     {"OpCode_Type", "0x%08X", u24(1)},
    {"Requestor", "%d", u32(4)},          {"Dest_EP", "%d", u32(8)},
    {"Control_Flags", "0x%02X", u32(12)}, {"MMSG_Length", "%d", u32(16)},
    {"Return_Code", "%d", u32(20)},       {"Handle", "%d", u32(24)},
    {"General_Use1", "0x%08X", u32(28)},  {"General_Use2", "0x%08X", u32(32)},
    {"General_Use3", "0x%08X", u32(36)},
};
inline constexpr unsigned kMessageSize = 56; // the last 16 bytes are not shown

void putDump(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kDump{
    putDump, "What follows the text's NUL, as `Hex`.", {}, "Bad frame\0\x00\x1B\x21\xA0\xFF"sv};

inline constexpr EventRow kEventRows[] = {
    // clang-format off
    {1000, "NCS:Informational Text", line("%s", text(0, 255)), {kTextRows}},
    {1001, "NCS:Warning message", line("%s", text(0, 255)), {kTextRows}},
    {1002, "NCS:Error message", line("%s", text(0, 255)), {kTextRows}},
    {1003, "Info", line("Informational Text and Hex Dump Data"), {kTextRows, kDump}},
    {1021, "NCS MMSG Request Error", line("NCS: MMSG with unknown Protocol"), {kMessageRows, rows(kTextRows, kMessageSize)}},
    {1022, "NCS MMSG Request Error", line("NCS: MMSG with invalid Request type"), {kMessageRows, rows(kTextRows, kMessageSize)}},
    {1023, "NCS MMSG Request Error", line("NCS: MMSG with invalid Requester"), {kMessageRows, rows(kTextRows, kMessageSize)}},
    {1024, "NCS MMSG Request Error", line("NCS: MMSG request with Response bit set"), {kMessageRows, rows(kTextRows, kMessageSize)}},
    {1025, "NCS MMSG Request Error", line("NCS: MMSG Response Timedout"), {kMessageRows, rows(kTextRows, kMessageSize)}},
    {1026, "NCS CEE Event registration Error", line("NCS: Failed to Register CEE response event"), {kResponseRows, rows(kTextRows, kResponseSize)}},
    {1030, "NCS: Socket Open Failure", line("NCS: Socket open operation Failed"), {kTextRows}},
    {1040, "LAG Port Status Event", line("LAG Port %d, Operational Status UP", u32(0)), {kLinkRows, sample(8, "\0\0\x04\x10"sv)}},
    {1041, "LAG Port Status Event", line("LAG Port %d, Operational Status DOWN", u32(0)), {kLinkRows}},
    {1051, "Physical Port Statistics", line("Physical Port %d stats", u32(4)), {kPortClassRows, kPortStatsRows}},
    {1052, "LAG Port Statistics", line("LAG Port %d stats", u32(4)), {kLagClassRows, kPortStatsRows}},
    {1053, "IP/TCP/iSCSI Statistics", line("Controller %d IP/TCP/iSCSI stats", u32(4)), {kOffloadClassRows, kOffloadStatsRows}},
    {kManagementPort, "Management Port Statistics", line("Management Port objId %d stats", u32(0)), {kManagementPortClassRows, kManagementPortStatsRows}},
    {1055, "TCP System Statistics", line("Controller %d TCP System stats", u32(4)), {kTcpClassRows, kTcpStatsRows}},
    {1056, "TCP Connection Statistics", line("Controller %d TCP Connection stats", u32(4)), {kConnectionClassRows, kConnectionStatsRows}},
    // clang-format on
};

inline constexpr EventTable kEvents{
    .rows = kEventRows,
    .minor = u16(150),
    .note = "There is no location block. Texts are as the record has them, but for the management "
            "port's statistics.",
};
static_assert(accepted<kEvents>);

inline constexpr const EventTable* kTables[] = {&kEvents};
inline constexpr Module kModule{24, "NETWORK_CONFIGMP_Event", {}, kTables};

} // namespace Pegasus::mpu::ncs
