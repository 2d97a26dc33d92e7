#include "decoders/protocol/ISCSIMP_Event.h"
#include "tests/RecordBuilder.h"

#include <gmock/gmock.h>

namespace Pegasus::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class ISCSIMP : public testing::Test {
    SuppressTrace quiet_;
};

// The head of the event data: kind, reason, socket 7.
RecordBuilder event(unsigned id, std::uint32_t kind, std::uint32_t reason) {
    return RecordBuilder(22, id).u32s(0, {kind << 16 | reason, 7});
}

TEST_F(ISCSIMP, NamesEventsAndReasons) {
    const struct {
        unsigned id;
        std::uint16_t reason;
        const char* title;
        std::string text;
    } cases[] = {{0, 0, "Radiation leak detected", "Radiation leak detected"},
                 {1, 35, "Open Socket Request", "Portal used not part of target's portal group"},
                 {2, 1, "Close Socket", "Socket for close request not found"},
                 {3, 9, "Login", "Login"},
                 {4, 7, "Open Socket Failure", "Portal to open not found"},
                 {5, 42, "Close Socket Failure", "Close listener request not found"},
                 {6, 31, "Login Failure", "Incorrect CHAP response"},
                 {7, 26, "Text Request Failure", "Continue and Transit bits both set in BHS"},
                 {8, 36, "Internal Error", "Out of resource"},
                 {9, 54, "Login Error", "Fatal Allocation Failure"},
                 {10, 55, "Unknown (10)", "Unknown (55)"},
                 {65535, 65535, "Unknown (65535)", "Unknown (65535)"}};
    for (const auto& c : cases) {
        const RecordBuilder basic = event(c.id, 1, c.reason).u32(4, 0xFFFFFFFF);
        EXPECT_EQ(basic.title(), c.title);
        EXPECT_EQ(basic.summary(), c.text);
        EXPECT_EQ(basic.body(), "<Reason>" + c.text + "</Reason><Socket>4294967295</Socket>");
    }
}

TEST_F(ISCSIMP, ShowsBothEndsOfASocketAndWhyItWasClosed) {
    const auto socket = [](std::uint32_t reason, std::uint32_t closeReason) {
        return event(2, 2, reason)
            .u32s(8, {3260u << 16 | 50123, 0xC0A80001, 0x0A00FF02, closeReason});
    };
    EXPECT_EQ(socket(6, 11).body(), "<Reason>Socket Opened</Reason><Socket>7</Socket>"
                                    "<Target_TCP_Port>3260</Target_TCP_Port>"
                                    "<Target_IP_Address>192.168.0.1</Target_IP_Address>"
                                    "<Initiator_TCP_Port>50123</Initiator_TCP_Port>"
                                    "<Initiator_IP_Address>10.0.255.2</Initiator_IP_Address>");
    EXPECT_EQ(socket(6, 11).summary(),
              "Socket Opened, Target 192.168.0.1:3260, Initiator 10.0.255.2:50123, Socket 7");
    const struct {
        std::uint32_t code;
        std::string text;
    } closed[] = {{0, "Unknown"},
                  {12, "Connection reinstatment"},
                  {21, "Login completion time-out"},
                  {22, "Unknown (22)"},
                  {0x80000000, "Unknown (2147483648)"}};
    for (const auto& c : closed) {
        EXPECT_THAT(socket(5, c.code).body(),
                    EndsWith("</Initiator_IP_Address><Close_Reason>" + c.text + "</Close_Reason>"));
        EXPECT_THAT(socket(5, c.code).summary(),
                    StartsWith("Socket Closed, " + c.text + ", Target 192.168.0.1:3260, Init"));
    }
}

RecordBuilder login(std::uint32_t flags, std::uint8_t method) {
    return event(3, 4, 9)
        .u32s(8, {0x12345, 0x00023D00, 0x00010002, 262144, 65536, 2u << 16 | 20, 1, 0x000403FF})
        .u32s(40, {flags, 0xABu << 16 | method, 8192, 4294967295, 10u << 16 | 12})
        .u32s(60, {2048u << 16 | 1024, 11u << 16 | 12})
        .bytes(68, "iqn.a:hostiqn.b:disk=1, not shown");
}

TEST_F(ISCSIMP, ShowsALoginWhole) {
    EXPECT_EQ(login(0xAA000000, 3).body(),
              "<Socket>7</Socket><InitiatorName>iqn.a:host</InitiatorName>"
              "<Initiator_ID>11</Initiator_ID><TargetName>iqn.b:disk: 1</TargetName>"
              "<Target_ID>12</Target_ID><SessionType>Normal</SessionType><TSIH>74565</TSIH>"
              "<ISID>0x23d000001</ISID><ErrorRecoveryLevel>255</ErrorRecoveryLevel>"
              "<DefaultTime2Wait>2</DefaultTime2Wait><DefaultTime2Retain>20</DefaultTime2Retain>"
              "<FirstBurstLength >65536</FirstBurstLength ><MaxBurstLength>262144</MaxBurstLength>"
              "<MaxConnections>4</MaxConnections><ConnectionCount>3</ConnectionCount>"
              "<MaxOutstandingR2T>1</MaxOutstandingR2T><InitialR2T>Yes</InitialR2T>"
              "<ImmediateData>No</ImmediateData><DataPDUInOrder>Yes</DataPDUInOrder>"
              "<DataSequenceInOrder>No</DataSequenceInOrder><CID>0x00ab</CID>"
              "<ActiveiScsiVersion>0</ActiveiScsiVersion>"
              "<AuthenticationMethod>CHAP</AuthenticationMethod>"
              "<Target_MaxRecvDataSegmentLength>8192</Target_MaxRecvDataSegmentLength>"
              "<Initiator_MaxRecvDataSegmentLength>4294967295</Initiator_MaxRecvDataSegmentLength>"
              "<HeaderDigest>CRC32C</HeaderDigest><DataDigest>None</DataDigest>"
              "<OfMarker>Yes</OfMarker><IfMarker>No</IfMarker>"
              "<MutualAuthentication>Yes</MutualAuthentication><OfMarkInt>2048</OfMarkInt>");
    EXPECT_EQ(login(0, 0).summary(), "Login, TSIH 74565, Target ID 12, Initiator ID 11, Socket 7");
}

TEST_F(ISCSIMP, ShowsMutualAuthenticationForChapAndIntervalsForMarkers) {
    const struct {
        std::uint32_t flags;
        std::uint8_t method;
        std::string authentication;
        std::string end; // after IfMarker
    } cases[] = {
        {0x55000000, 2, "CHAP",
         "Yes</IfMarker><MutualAuthentication>No</MutualAuthentication><IfMarkInt>1024</"
         "IfMarkInt>"},
        {0x03000000, 1, "None",
         "Yes</IfMarker><OfMarkInt>2048</OfMarkInt><IfMarkInt>1024</IfMarkInt>"},
        {0, 4, "Unknown (4)", "No</IfMarker>"},
    };
    for (const auto& c : cases)
        EXPECT_THAT(login(c.flags, c.method).body(),
                    AllOf(HasSubstr("<AuthenticationMethod>" + c.authentication + "</"),
                          EndsWith("<IfMarker>" + c.end)));
    EXPECT_THAT(login(0x55000000, 2).u16(18, 3).body(),
                AllOf(HasSubstr("<SessionType>Unknown (3)<"), HasSubstr("<InitialR2T>No<"),
                      HasSubstr("<ImmediateData>Yes<"), HasSubstr("<DataPDUInOrder>No<"),
                      HasSubstr("<DataSequenceInOrder>Yes<"), HasSubstr("<HeaderDigest>None<"),
                      HasSubstr("<DataDigest>CRC32C<")));
}

// A header with these first two bytes and distinct values in every field.
RecordBuilder header(RecordBuilder builder, std::size_t at, std::uint32_t opcode,
                     std::uint32_t flags) {
    return builder
        .u32s(at, {opcode << 24 | flags << 16 | 0x0301, 0x05010203, 0x40000000, 0x00370BEE})
        .u32s(at + 16, {0xCAFE, 0x00C10D1E, 3000000000, 77, 0, 0, 0, 0});
}

TEST_F(ISCSIMP, ShowsTheHeaderOfARequest) {
    const RecordBuilder request = event(6, 5, 27);
    const std::string start =
        "<Reason>Illegal starting current stage in BHS</Reason><Socket>7</Socket>";
    EXPECT_EQ(header(request, 60, 0x43, 0x87).body(),
              start +
                  "<Opcode>Login Request</Opcode><Immediate>Yes</Immediate><Transit>Yes</Transit>"
                  "<Continue>No</Continue><CSG>LoginOperationalNegotiation</CSG>"
                  "<NSG>FullFeaturePhase</NSG><Version-max>3</Version-max>"
                  "<Version-min>1</Version-min><TotalAHSLength>5</TotalAHSLength>"
                  "<DataSegmentLength>66051</DataSegmentLength><ISID>0x400000000037</ISID>"
                  "<TSIH>0x0bee</TSIH><ITT>0x0000cafe</ITT><CID>0x00c1</CID>"
                  "<CmdSN>3000000000</CmdSN><ExpStatSN>77</ExpStatSN>");
    EXPECT_THAT(header(request, 60, 0x83, 0x48).body(),
                HasSubstr("<Immediate>No</Immediate><Transit>No</Transit><Continue>Yes</Continue>"
                          "<CSG>Invalid (2)</CSG><NSG>SecurityNegotiation</NSG>"));
    EXPECT_EQ(header(request, 60, 0x04, 0x80).body(),
              start + "<Opcode>Text Request</Opcode><Immediate>No</Immediate><Final>Yes</Final>"
                      "<Continue>No</Continue><TotalAHSLength>5</TotalAHSLength>"
                      "<DataSegmentLength>66051</DataSegmentLength><ITT>0x0000cafe</ITT>"
                      "<TTT>0x00c10d1e</TTT><CmdSN>3000000000</CmdSN><ExpStatSN>77</ExpStatSN>");
    for (unsigned opcode : {0x00u, 0x01u, 0x05u, 0x23u})
        EXPECT_EQ(header(request, 60, opcode, 0x80).body(), start);
    EXPECT_EQ(RecordBuilder(request).u16(58, 5).bytes(108, "iqn.b").body(),
              start + "<TargetName>iqn.b</TargetName><InitiatorName></InitiatorName>");
    EXPECT_EQ(request.summary(), "Illegal starting current stage in BHS");
}

TEST_F(ISCSIMP, ShowsParametersAsFarAsTheyGo) {
    const struct {
        std::uint16_t key, offer, answer;
        const char* texts;
        std::string end; // after the header
    } cases[] = {
        {0, 0, 0, "", ""},
        {4, 0, 0, "KeyA", "<Parameter>KeyA</Parameter>"},
        {4, 2, 0, "KeyANo", "<Parameter>KeyA</Parameter><Value>No</Value>"},
        {4, 2, 3, "KeyANoYes",
         "<Parameter>KeyA</Parameter><Value_Offered>No</Value_Offered>"
         "<Value_Answered>Yes</Value_Answered>"},
        {0, 0, 3, "Yes", "<Value_Offered></Value_Offered><Value_Answered>Yes</Value_Answered>"},
        {4, 60000, 0, "KeyARest", "<Parameter>KeyA</Parameter><Value>Rest</Value>"},
        {60000, 2, 0, "Key", "<Parameter>Key</Parameter><Value></Value>"},
    };
    for (const auto& c : cases)
        EXPECT_THAT(header(event(7, 3, 16), 66, 0x04, 0)
                        .u32s(56, {0x00020003, static_cast<std::uint32_t>(c.key) << 16 | c.offer})
                        .u16(64, c.answer)
                        .bytes(114, "iitgt" + std::string(c.texts))
                        .body(),
                    AllOf(StartsWith("<Reason>Parameter greater than maximum value</Reason>"
                                     "<Socket>7</Socket><TargetName>tgt</TargetName>"
                                     "<InitiatorName>ii</InitiatorName><Opcode>Text Request<"),
                          EndsWith("<ExpStatSN>77</ExpStatSN>" + c.end)));
    EXPECT_THAT(event(7, 3, 16).u32(110, 0).body(), Not(HasSubstr("Name>")));
}

TEST_F(ISCSIMP, ShowsTheHeaderOfAMessage) {
    const RecordBuilder message =
        event(8, 6, 44).u32s(16, {0x00001234, 0x05ABCDEF, 0x61626300}).u32s(44, {0xFFFFFFFE, 0x89});
    EXPECT_EQ(message.body(),
              "<Reason>Received unexpected message</Reason><Protocol>0x0005</Protocol>"
              "<Type>0xabcdef</Type><Requestor>0x61</Requestor><Destination>0x63</Destination>"
              "<Length>0x1234</Length><Control>0x62</Control><Handle>0x00000089</Handle>"
              "<Return_code>0xfffffffe</Return_code>");
    EXPECT_EQ(message.summary(), "Received unexpected message");
}

TEST_F(ISCSIMP, LeavesDataOfUnknownKindsOut) {
    for (std::uint32_t kind : {0u, 7u, 65535u}) {
        EXPECT_EQ(event(3, kind, 9).body(), "");
        EXPECT_EQ(event(3, kind, 9).summary(), "Unknown (" + std::to_string(kind) + ")");
    }
    const ISCSIMP_Event none(nullptr, 0);
    EXPECT_EQ(none.getEventID().size() + none.getBody().size(), 0u);
}

TEST_F(ISCSIMP, OffersItsPartsToCallers) {
    EXPECT_EQ(ISCSIMP_Event::get_ip_address({{10, 0, 255, 7}}), "10.0.255.7");
    const unsigned char isid[6] = {0, 0, 0, 0, 0x1F, 0xA0};
    EXPECT_EQ(ISCSIMP_Event::get_isid(isid), "0x001fa0");
    EXPECT_EQ(ISCSIMP_Event::build_unknown_string(4294967295u), "Unknown (4294967295)");

    const std::vector<unsigned char> record = login(0, 0).record();
    XmlString xml;
    std::string line = "At ";
    ISCSIMP_Event::build_login_event(xml, line, reinterpret_cast<const LOGIN_DATA*>(&record[152]));
    EXPECT_THAT(xml, HasSubstr("<TargetName>iqn.b:disk=1</TargetName>")); // not made safe
    EXPECT_EQ(line, "At Login, TSIH 74565, Target ID 12, Initiator ID 11, Socket 7");
}

} // namespace
} // namespace Pegasus::test
