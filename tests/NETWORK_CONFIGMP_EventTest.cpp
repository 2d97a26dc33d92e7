#include "tests/RecordBuilder.h"

#include "decoders/management/NETWORK_CONFIGMP_Event.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Pegasus::test {
namespace {

RecordBuilder ncs(std::uint16_t code) {
    return RecordBuilder(24, code);
}

TEST(NetworkConfig, TitlesAndSummaries) {
    const struct {
        std::uint16_t code;
        const char *title, *summary;
    } cases[] = {
        {1000, "NCS:Informational Text", "a<b"},
        {1001, "NCS:Warning message", "a<b"},
        {1002, "NCS:Error message", "a<b"},
        {1003, "Info", "Informational Text and Hex Dump Data"},
        {1021, "NCS MMSG Request Error", "NCS: MMSG with unknown Protocol"},
        {1022, "NCS MMSG Request Error", "NCS: MMSG with invalid Request type"},
        {1023, "NCS MMSG Request Error", "NCS: MMSG with invalid Requester"},
        {1024, "NCS MMSG Request Error", "NCS: MMSG request with Response bit set"},
        {1025, "NCS MMSG Request Error", "NCS: MMSG Response Timedout"},
        {1026, "NCS CEE Event registration Error", "NCS: Failed to Register CEE response event"},
        {1030, "NCS: Socket Open Failure", "NCS: Socket open operation Failed"},
        {1040, "LAG Port Status Event", "LAG Port 1631347200, Operational Status UP"},
        {1041, "LAG Port Status Event", "LAG Port 1631347200, Operational Status DOWN"},
        {1051, "Physical Port Statistics", "Physical Port -2 stats"},
        {1052, "LAG Port Statistics", "LAG Port -2 stats"},
        {1053, "IP/TCP/iSCSI Statistics", "Controller -2 IP/TCP/iSCSI stats"},
        {1054, "Management Port Statistics", "Management Port objId 1631347200 stats"},
        {1055, "TCP System Statistics", "Controller -2 TCP System stats"},
        {1056, "TCP Connection Statistics", "Controller -2 TCP Connection stats"},
    };
    for (const auto& c : cases) {
        const auto event = ncs(c.code).text(0, "a<b").u32(4, 0xFFFFFFFEu).decode();
        EXPECT_EQ(utf8(event->getEventID()), c.title);
        EXPECT_EQ(utf8(event->getSummary()), c.summary);
    }
}

TEST(NetworkConfig, UnknownCodes) {
    for (unsigned code : {999u, 1004u, 1010u, 1042u, 1050u, 1057u}) {
        CaptureTrace trace;
        const auto event = ncs(static_cast<std::uint16_t>(code)).bytes(0, "\x1F").decode();
        EXPECT_EQ(utf8(event->getEventID()), std::to_string(code));
        EXPECT_EQ(utf8(event->getSummary()), "***UNKNOWN EventID***");
        EXPECT_EQ(utf8(event->getBody()), "<Hex>1F</Hex>");
        EXPECT_EQ(trace.lines(), std::vector<std::string>{"NETWORK_CONFIGMP_Event:104    :----: "
                                                          "Unknown EventID: 0x" +
                                                          std::to_string(code)});
    }
}

TEST(NetworkConfig, TextsStandAsTheyAre) {
    const std::string text(300, '&');
    const auto event = ncs(1001).text(0, text).decode();
    EXPECT_EQ(utf8(event->getSummary()), text.substr(0, 255));
    EXPECT_EQ(utf8(event->getBody()), "<Text>" + text + "</Text> ");
    EXPECT_EQ(utf8(ncs(1003).text(0, "a=<b>").bytes(6, "\x0A\xFF").decode()->getBody()),
              "<Text>a=<b></Text> <Hex>0AFF</Hex>\n");
    const auto odd = ncs(1000).text(0, "a\xFF").decode();
    EXPECT_EQ(utf8(odd->getSummary()), "a?");
    EXPECT_EQ(utf8(odd->getBody()), "<Text>a?</Text> ");
    // No NUL, so nothing is after the text.
    EXPECT_EQ(utf8(ncs(1003).bytes(0, "ab").decode()->getBody()), "<Text>ab</Text> <Hex></Hex>\n");
    EXPECT_EQ(utf8(ncs(1000).decode()->getBody()), "<Text></Text> ");
}

TEST(NetworkConfig, SummaryFollowsTheCodeAndBodyTheWord) {
    const auto body = [](const char* status) {
        return std::string("<LAG_Port>-3</LAG_Port> <Operational_Status>") + status +
               "</Operational_Status> <Admin_State>200</Admin_State> "
               "<Physical_BladeId>7</Physical_BladeId> ";
    };
    RecordBuilder record = ncs(1041).u32(0, 0xFFFFFFFDu).u32(8, 1040).u8(12, 7).u8(14, 200);
    EXPECT_EQ(utf8(record.decode()->getSummary()), "LAG Port -3, Operational Status DOWN");
    EXPECT_EQ(utf8(record.decode()->getBody()), body("UP"));
    EXPECT_EQ(utf8(record.u32(8, 0x00010410).decode()->getBody()), body("DOWN"));
}

TEST(NetworkConfig, Bodies) {
    const auto words = [](RecordBuilder record, unsigned n) { return record.words(0, n, 10); };
    const struct {
        RecordBuilder record;
        const char* body;
    } cases[] = {
        {words(ncs(1022), 14).u32(0, 0x05ABCDEF).u32(12, 0x123).text(56, "m"),
         "<OpCode_Protocol>5</OpCode_Protocol> <OpCode_Type>0x00ABCDEF</OpCode_Type> "
         "<Requestor>11</Requestor> <Dest_EP>12</Dest_EP> <Control_Flags>0x123</Control_Flags> "
         "<MMSG_Length>14</MMSG_Length> <Return_Code>15</Return_Code> <Handle>16</Handle> "
         "<General_Use1>0x00000011</General_Use1> <General_Use2>0x00000012</General_Use2> "
         "<General_Use3>0x00000013</General_Use3> <Text>m</Text> "},
        {words(ncs(1026), 8).text(32, "r"),
         "<Thread_Index>10</Thread_Index> <Dest_Endpoint>11</Dest_Endpoint> "
         "<Request_Handle>12</Request_Handle> <Timeout_seconds>13</Timeout_seconds> "
         "<Timeout_microseconds>14</Timeout_microseconds> <pSema>0x0000000F</pSema> "
         "<pMmsgLh>0x00000010</pMmsgLh> <pTimedout>0x00000011</pTimedout> <Text>r</Text> "},
        {words(ncs(1053), 20).u64(72, 0xFFFFFFFFFFFFFFFFu),
         "<ClassName>NetworkRvlStats</ClassName> <ObjID>0x0000000A</ObjID> "
         "<Controller>11</Controller> <PrxIpDiscards>51539607565</PrxIpDiscards> "
         "<IpChksumErr>60129542159</IpChksumErr> <IpInAddrErr>68719476753</IpInAddrErr> "
         "<IpHeaderErrDiscards>77309411347</IpHeaderErrDiscards> "
         "<PrxTcpDiscards>85899345941</PrxTcpDiscards> <TcpChksumErr>94489280535</TcpChksumErr> "
         "<IscsiRx>103079215129</IscsiRx> <IscsiTx>111669149723</IscsiTx> "
         "<PrxVlanTagErr>18446744073709551615</PrxVlanTagErr> "},
        {words(ncs(1054), 15)
             .u32(20, 5)
             .u32(24, 0)
             .u32(28, 0xFFFFFFFFu)
             .bytes(60, std::string(256, 'd'))
             .text(316, "eth=0")
             .text(380, "00:01"),
         "<ClassName>NetworkOutbandStats</ClassName> <ObjID>0x0000000A</ObjID> "
         "<IfIndex>11</IfIndex> <IfType>12</IfType> <IfMTU>13</IfMTU> <IfSpeed>14</IfSpeed> "
         "<IfAdminStatus>True</IfAdminStatus> <IfOperStatus>False</IfOperStatus> "
         "<IfInOctets>-1</IfInOctets> <IfInUcastPkts>18</IfInUcastPkts> "
         "<IfInNUcastPkts>19</IfInNUcastPkts> <IfInDiscards>20</IfInDiscards> "
         "<IfInErrors>21</IfInErrors> <IfOutOctets>22</IfOutOctets> "
         "<IfOutDiscards>23</IfOutDiscards> <IfOutErrors>24</IfOutErrors> "
         "<IfPhyAddress>00:01</IfPhyAddress> <IfName>eth: 0</IfName> <IfDescr>"},
        {words(ncs(1055), 16),
         "<ClassName>NetworkTcpStats</ClassName> <ObjID>0x0000000A</ObjID> "
         "<Controller>11</Controller> <TcpRtoAlgorithm>12</TcpRtoAlgorithm> "
         "<TcpRtoMin>13</TcpRtoMin> <TcpRtoMax>14</TcpRtoMax> <TcpMaxConn>15</TcpMaxConn> "
         "<TcpActiveOpens>16</TcpActiveOpens> <TcpPassiveOpens>17</TcpPassiveOpens> "
         "<TcpAttempfails>18</TcpAttempfails> <TcpEstabResets>19</TcpEstabResets> "
         "<TcpCurrEstab>20</TcpCurrEstab> <TcpInSegs>21</TcpInSegs> <TcpOutSegs>22</TcpOutSegs> "
         "<TcpRetransSegs>23</TcpRetransSegs> <TcpInErrs>24</TcpInErrs> "
         "<TcpOutRsts>25</TcpOutRsts> "},
        {words(ncs(1056), 6).u32(8, 0xC0A80001u).u16(16, 3260).u16(18, 65535),
         "<ClassName>NetworkConnectionStats</ClassName> <ObjID>0x0000000A</ObjID> "
         "<Controller>11</Controller> <TcpConnLocalAddress>-1062731775</TcpConnLocalAddress> "
         "<TcpConnRemAddress>13</TcpConnRemAddress> <TcpConnLocalPort>3260</TcpConnLocalPort> "
         "<TcpConnRemPort>65535</TcpConnRemPort> <TcpConnState>0</TcpConnState> "
         "<TcpSockId>15</TcpSockId> "},
    };
    for (const auto& c : cases) {
        const std::string body = utf8(c.record.decode()->getBody());
        std::string expected = c.body;
        if (expected.ends_with("<IfDescr>"))
            expected += std::string(256, 'd') + "</IfDescr> ";
        EXPECT_EQ(body, expected);
    }
}

TEST(NetworkConfig, PortStatisticsHave39Counters) {
    // Each counter is its place, so that an element on the wrong one shows.
    RecordBuilder record = ncs(1051);
    record.u32(0, 0xABCDEF).u32(4, 3);
    std::string expected = "<ObjID>0x00ABCDEF</ObjID> <PortIndex>3</PortIndex> ";
    unsigned at = 8;
    std::istringstream tags(
        "Rx_octets Rx_goodoctets Rx_unsupportedopcode Rx_droppkts Rx_broadcastpkts "
        "Rx_multicastpkts Rx_lengthtypeerror Rx_undersizepkts Rx_oversizepkts Rx_fragments "
        "Rx_jabbers Rx_unicastpkts Rx_alignmenterror Rx_fcserrors Rx_pausepkts Rx_vlantags "
        "Rx_pkts64octets Rx_pkts65to127octets Rx_pkts128to255octets Rx_pkts256to511octets "
        "Rx_pkts512to1023octets Rx_pkts1024to1522octets Rx_shortevents Rx_symbolerrors "
        "Rx_oversizeok Tx_goodoctets Tx_droppkts Tx_broadcastpkts Tx_multicastpkts "
        "Tx_unicastpkts Tx_pausepkts Tx_vlantags Tx_pkts64octets Tx_pkts65to127octets "
        "Tx_pkts128to255octets Tx_pkts256to511octets Tx_pkts512to1023octets "
        "Tx_pkts1024to1522octets Tx_oversizeok");
    for (std::string tag; tags >> tag;) {
        record.u64(at, at);
        expected.append("<").append(tag).append(">").append(std::to_string(at));
        expected.append("</").append(tag).append("> ");
        at += 8;
    }
    EXPECT_EQ(at, 320u);
    EXPECT_EQ(utf8(record.decode()->getBody()),
              "<ClassName>NetworkPortStats</ClassName> " + expected);
    // Half a counter, then nothing: zeros.
    SuppressTrace quiet;
    const auto cut = ncs(1052).bytes(0, std::string(12, '\1')).decode();
    EXPECT_TRUE(utf8(cut->getBody())
                    .starts_with("<ClassName>NetworkLagStats</ClassName> "
                                 "<ObjID>0x01010101</ObjID> <PortIndex>16843009</PortIndex> "
                                 "<Rx_octets>72340172821233664</Rx_octets> "
                                 "<Rx_goodoctets>0</Rx_goodoctets> "));
}

TEST(NetworkConfig, PublicBuilders) {
    const auto bytes = ncs(7).text(0, "up").bytes(3, "\x01\x02\x03").record();
    const EmpEvLogMsg_s* record = reinterpret_cast<const EmpEvLogMsg_s*>(bytes.data());
    EXPECT_TRUE(utf8(get_NCS_mac_stats_event_body(record))
                    .starts_with("<ClassName>NetworkMacStats</ClassName> "));
    EXPECT_EQ(utf8(get_NCS_dump_event_body(record, 5)), "<Text>up</Text> <Hex>0102</Hex>\n");
    EXPECT_EQ(utf8(get_NCS_dump_event_body(record, -1)), "<Text>up</Text> <Hex></Hex>\n");
    EXPECT_EQ(utf8(get_NCS_dump_event_body(record, 70000)), "<Text>up</Text> <Hex>010203</Hex>\n");
}

} // namespace
} // namespace Pegasus::test
