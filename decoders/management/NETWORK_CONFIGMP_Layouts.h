// Tables of the network-configuration decoder. Payloads have no location block.
#pragma once

#include "decoders/management/Management_Layouts.h"
#include "event/Catalogue.h"
#include "platform/cmap/NetworkStats_Layouts.h"

namespace Pegasus::mpu::ncs {

inline constexpr Row kConnectionStatsRows[] = {
    {"ObjID", "0x%08X", u32(0)},           {"Controller", "%d", u32(4)},
    {"TcpConnLocalAddress", "%d", u32(8)}, {"TcpConnRemAddress", "%d", u32(12)},
    {"TcpConnLocalPort", "%d", u16(16)},   {"TcpConnRemPort", "%d", u16(18)},
    {"TcpConnState", "%d", u16(20)},       {"TcpSockId", "%d", u16(22)},
};

// Operational_Status stands between the two, by the word at 8.
inline constexpr Row kLinkRows[] = {
    {"LAG_Port", "%d", u32(0)},
};
inline constexpr Row kLinkStateRows[] = {
    {"Admin_State", "%d", u8(14)},
    {"Physical_BladeId", "%d", u8(12)},
};
inline constexpr unsigned kLinkCodeAt = 8;
inline constexpr std::uint16_t kLinkUp = 1040;

inline constexpr Row kMessageRows[] = {
    {"OpCode_Protocol", "%d", u8(0)},     {"OpCode_Type", "0x%08X", u24(1)},
    {"Requestor", "%d", u32(4)},          {"Dest_EP", "%d", u32(8)},
    {"Control_Flags", "0x%02X", u32(12)}, {"MMSG_Length", "%d", u32(16)},
    {"Return_Code", "%d", u32(20)},       {"Handle", "%d", u32(24)},
    {"General_Use1", "0x%08X", u32(28)},  {"General_Use2", "0x%08X", u32(32)},
    {"General_Use3", "0x%08X", u32(36)},
};
inline constexpr unsigned kMessageSize = 56; // the last 16 bytes are not shown

// The catalogue.
inline constexpr std::uint16_t kPayloadAt = 152;

template <std::uint16_t Code>
inline constexpr Key kCode[] = {{150, 2, Code}};
template <const auto& Rows>
inline constexpr Part kPart[] = {{"Payload", Rows, kPayloadAt}};
inline constexpr Part kLinkParts[] = {{"Payload", kLinkRows, kPayloadAt},
                                      {"Behind Operational_Status", kLinkStateRows, kPayloadAt}};

inline constexpr Fill kTextFill[] = {{kPayloadAt, "Default gateway 10.1.0.1 does not answer\0"sv}};
inline constexpr Fill kDumpFill[] = {{kPayloadAt, "Unexpected frame\0\x00\x1B\x21\xA0\xFF\x10"sv}};
template <std::uint16_t At>
inline constexpr Fill kTextBehind[] = {{kPayloadAt + At, "ncs_main: no reply from agent\0"sv}};
inline constexpr Fill kLinkFill[] = {{kPayloadAt + kLinkCodeAt, "\0\0\x04\x10"sv}};
inline constexpr Fill kManagementPortFill[] = {{kPayloadAt + 60, "Management Ethernet port\0"sv},
                                               {kPayloadAt + 316, "eth0\0"sv},
                                               {kPayloadAt + 380, "00:1B:21:A0:FF:10\0"sv}};

inline constexpr Section kSections[] = {
    {"Text", kCode<1000>, {}, kTextFill, "A text, the summary too. Also codes 1001, 1002, 1030."},
    {"Dump", kCode<1003>, {}, kDumpFill, "A text, then bytes that are dumped."},
    {"Management message", kCode<1021>, kPart<kMessageRows>, kTextBehind<kMessageSize>,
     "A text at 56. Also codes 1022 to 1025."},
    {"Response registration", kCode<1026>, kPart<kResponseRows>, kTextBehind<kResponseSize>,
     "A text at 32."},
    {"Link status", kCode<kLinkUp>, kLinkParts, kLinkFill,
     "The summary goes by the code. `Operational_Status`, behind `LAG_Port`, is UP when the u32 at "
     "8 is 1040, else DOWN. Also code 1041."},
    {"Physical port statistics",
     kCode<1051>,
     kPart<kPortStatsRows>,
     {},
     "The class name is `NetworkPortStats`."},
    {"LAG port statistics",
     kCode<1052>,
     kPart<kPortStatsRows>,
     {},
     "The class name is `NetworkLagStats`."},
    {"IP/TCP/iSCSI statistics",
     kCode<1053>,
     kPart<kOffloadStatsRows>,
     {},
     "The class name is `NetworkRvlStats`."},
    {"Management port statistics", kCode<1054>, kPart<kManagementPortStatsRows>,
     kManagementPortFill, "The class name is `NetworkOutbandStats`."},
    {"TCP system statistics",
     kCode<1055>,
     kPart<kTcpStatsRows>,
     {},
     "The class name is `NetworkTcpStats`."},
    {"TCP connection statistics",
     kCode<1056>,
     kPart<kConnectionStatsRows>,
     {},
     "The class name is `NetworkConnectionStats`."},
};

inline constexpr Module kModule{
    24, "NETWORK_CONFIGMP_Event",
    "There is no location block. Texts stand as the record has them, but for the management port's "
    "statistics. A statistics body begins with `ClassName`.",
    kSections};

} // namespace Pegasus::mpu::ncs
