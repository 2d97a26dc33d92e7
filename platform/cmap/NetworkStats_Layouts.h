// The network statistics objects. The network-configuration service logs them as they are, and they
// travel as managed objects too. Offsets are from the start of the object.
#pragma once

#include "event/TableCompiler.h"

namespace Pegasus::mpu {

// Of a physical port or a link-aggregation port.
inline constexpr Row kPortStatsRows[] = {
    {"ObjID", "0x%08X", u32(0)},
    {"PortIndex", "%d", u32(4)},
    {"Rx_octets", "%llu", u64(8)},
    {"Rx_goodoctets", "%llu", u64(16)},
    {"Rx_unsupportedopcode", "%llu", u64(24)},
    {"Rx_droppkts", "%llu", u64(32)},
    {"Rx_broadcastpkts", "%llu", u64(40)},
    {"Rx_multicastpkts", "%llu", u64(48)},
    {"Rx_lengthtypeerror", "%llu", u64(56)},
    {"Rx_undersizepkts", "%llu", u64(64)},
    {"Rx_oversizepkts", "%llu", u64(72)},
    {"Rx_fragments", "%llu", u64(80)},
    {"Rx_jabbers", "%llu", u64(88)},
    {"Rx_unicastpkts", "%llu", u64(96)},
    {"Rx_alignmenterror", "%llu", u64(104)},
    {"Rx_fcserrors", "%llu", u64(112)},
    {"Rx_pausepkts", "%llu", u64(120)},
    {"Rx_vlantags", "%llu", u64(128)},
    {"Rx_pkts64octets", "%llu", u64(136)},
    {"Rx_pkts65to127octets", "%llu", u64(144)},
    {"Rx_pkts128to255octets", "%llu", u64(152)},
    {"Rx_pkts256to511octets", "%llu", u64(160)},
    {"Rx_pkts512to1023octets", "%llu", u64(168)},
    {"Rx_pkts1024to1522octets", "%llu", u64(176)},
    {"Rx_shortevents", "%llu", u64(184)},
    {"Rx_symbolerrors", "%llu", u64(192)},
    {"Rx_oversizeok", "%llu", u64(200)},
    {"Tx_goodoctets", "%llu", u64(208)},
    {"Tx_droppkts", "%llu", u64(216)},
    {"Tx_broadcastpkts", "%llu", u64(224)},
    {"Tx_multicastpkts", "%llu", u64(232)},
    {"Tx_unicastpkts", "%llu", u64(240)},
    {"Tx_pausepkts", "%llu", u64(248)},
    {"Tx_vlantags", "%llu", u64(256)},
    {"Tx_pkts64octets", "%llu", u64(264)},
    {"Tx_pkts65to127octets", "%llu", u64(272)},
    {"Tx_pkts128to255octets", "%llu", u64(280)},
    {"Tx_pkts256to511octets", "%llu", u64(288)},
    {"Tx_pkts512to1023octets", "%llu", u64(296)},
    {"Tx_pkts1024to1522octets", "%llu", u64(304)},
    {"Tx_oversizeok", "%llu", u64(312)},
};

// Of the IP, TCP and iSCSI offload.
inline constexpr Row kOffloadStatsRows[] = {
    {"ObjID", "0x%08X", u32(0)},         {"Controller", "%d", u32(4)},
    {"PrxIpDiscards", "%llu", u64(8)},   {"IpChksumErr", "%llu", u64(16)},
    {"IpInAddrErr", "%llu", u64(24)},    {"IpHeaderErrDiscards", "%llu", u64(32)},
    {"PrxTcpDiscards", "%llu", u64(40)}, {"TcpChksumErr", "%llu", u64(48)},
    {"IscsiRx", "%llu", u64(56)},        {"IscsiTx", "%llu", u64(64)},
    {"PrxVlanTagErr", "%llu", u64(72)},
};

// Of the TCP stack.
inline constexpr Row kTcpStatsRows[] = {
    {"ObjID", "0x%08X", u32(0)},       {"Controller", "%d", u32(4)},
    {"TcpRtoAlgorithm", "%d", u32(8)}, {"TcpRtoMin", "%d", u32(12)},
    {"TcpRtoMax", "%d", u32(16)},      {"TcpMaxConn", "%d", u32(20)},
    {"TcpActiveOpens", "%d", u32(24)}, {"TcpPassiveOpens", "%d", u32(28)},
    {"TcpAttempfails", "%d", u32(32)}, {"TcpEstabResets", "%d", u32(36)},
    {"TcpCurrEstab", "%d", u32(40)},   {"TcpInSegs", "%d", u32(44)},
    {"TcpOutSegs", "%d", u32(48)},     {"TcpRetransSegs", "%d", u32(52)},
    {"TcpInErrs", "%d", u32(56)},      {"TcpOutRsts", "%d", u32(60)},
};

inline constexpr std::string_view kFalseTrueTexts[] = {"False", "True"};
inline constexpr NameTable kFalseTrue = names<kFalseTrueTexts>();

// Of the management port. The counters are signed 32-bit numbers, as "long" is on the controller.
inline constexpr Row kManagementPortStatsRows[] = {
    {"ObjID", "0x%08X", u32(0)},
    {"IfIndex", "%d", u32(4)},
    {"IfType", "%d", u32(8)},
    {"IfMTU", "%d", u32(12)},
    {"IfSpeed", "%d", u32(16)},
    {"IfAdminStatus", "%s", flag(u32(20), kFalseTrue)},
    {"IfOperStatus", "%s", flag(u32(24), kFalseTrue)},
    {"IfInOctets", "%ld", u32(28)},
    {"IfInUcastPkts", "%ld", u32(32)},
    {"IfInNUcastPkts", "%ld", u32(36)},
    {"IfInDiscards", "%ld", u32(40)},
    {"IfInErrors", "%ld", u32(44)},
    {"IfOutOctets", "%ld", u32(48)},
    {"IfOutDiscards", "%ld", u32(52)},
    {"IfOutErrors", "%ld", u32(56)},
    {"IfPhyAddress", "%s", text(380)},
    {"IfName", "%s", text(316, 64)},
    {"IfDescr", "%s", text(60, 256)},
};

} // namespace Pegasus::mpu
