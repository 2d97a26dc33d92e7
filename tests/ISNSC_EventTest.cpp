#include "decoders/protocol/ISNSC_Event.h"
#include "tests/RecordBuilder.h"

#include <gmock/gmock.h>

namespace Pegasus::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

RecordBuilder event(std::uint32_t kind, std::uint32_t reason) {
    return RecordBuilder(31, 0).u32s(0, {0x11111111, kind, reason}).text(12, "isns").u32(20, 345);
}

TEST(ISNSC_Event, MakesTitlesOfKindAndReason) {
    const SuppressTrace quiet;
    const struct {
        std::uint32_t kind, reason;
        const char* title;
    } cases[] = {
        {1, 1, "ICS REQ Information"},
        {2, 2, "ICS RSP Rcvd"},
        {3, 3, "ICS MSG Sent"},
        {4, 3, "ISNS REQ Sent"},
        {5, 2, "ISNS RSP Rcvd"},
        {6, 1, "ISNS MSG Information"},
        {7, 1, "TEXT Information"},
        {9, 2, "Unknown event: 9Rcvd"},
        {0, 0, "Unknown event: 0Unknown reason: 0"},
        {1, 4, "ICS REQ Unknown reason: 4"},
        {0x80000000, 0xFFFFFFFF, "Unknown event: -2147483648Unknown reason: -1"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(event(c.kind, c.reason).title(), c.title);
}

RecordBuilder message(std::uint32_t kind, std::uint32_t type) {
    return event(kind, 2)
        .u32s(24, {0xDEAD, 0xBEEF0001, type << 24 | 200u << 16 | 40000, 0x0CABCDEF, 0x150A0B00})
        .u32s(44, {0x01234567, 0x89ABCDEF, 0, 3, 0xFFFFFFFB, 0x1001, 0xA1, 0xA2, 0xA3});
}

constexpr std::string_view kHeader = // for %TYPE% the message type
    "<ICS_MESSAGE><Module>isns</Module> <Line>345</Line> "
    "<mmch_LH>(0000DEAD, BEEF0001) (hex)</mmch_LH> <Message_Type>%TYPE%</Message_Type> "
    "<Message_Version>200</Message_Version> <Message_Length>40000</Message_Length> "
    "<OpCode_Protocol>12</OpCode_Protocol> <OpCode_Type>00ABCDEF (hex)</OpCode_Type> "
    "<Requestor>21</Requestor> <mmsg_cont>0A (hex)</mmsg_cont> <Dest_EP>0B (hex)</Dest_EP> "
    "<Recipient_Loc_BM>0123456789ABCDEF (hex)</Recipient_Loc_BM> "
    "<Recipient_OB_BM>0000000000000003 (hex)</Recipient_OB_BM> <Return_Code>-5</Return_Code> "
    "<Handle>00001001 (hex)</Handle> <General_Use_1>000000A1 (hex)</General_Use_1> "
    "<General_Use_2>000000A2 (hex)</General_Use_2> <General_Use_3>000000A3 (hex)</General_Use_3> ";
std::string header(const char* type) {
    return std::string(kHeader).replace(kHeader.find("%TYPE%"), 6, type);
}

TEST(ISNSC_Event, ShowsTheMessageAndItsPart) {
    const SuppressTrace quiet;
    const RecordBuilder status = message(3, 2).u32(88, 0xFACE);
    EXPECT_EQ(status.body(),
              header("2") + "<isns_status>0000FACE (hex)</isns_status> </ICS_MESSAGE>");
    EXPECT_EQ(status.summary(), "ICS MSG Rcvd");

    const RecordBuilder configuration = message(1, 1)
                                            .u32s(88, {0xC0, 0xC1, 0xC2, 0xC3, 0xC4, 0xC5})
                                            .text(112, "iqn.a=1")
                                            .text(120, "Array 4");
    EXPECT_EQ(configuration.body(),
              header("1") +
                  "<isns_control>000000C0 (hex)</isns_control> "
                  "<isns_server_ip>000000C1 (hex)</isns_server_ip> "
                  "<isns_server_subnet_mask>000000C2 (hex)</isns_server_subnet_mask> "
                  "<isns_server_port>000000C3 (hex)</isns_server_port> "
                  "<isns_heartbeat_ip>000000C4 (hex)</isns_heartbeat_ip> "
                  "<isns_heartbeat_subnet_mask>000000C5 (hex)</isns_heartbeat_subnet_mask> "
                  "<src_node_id>iqn.a: 1</src_node_id> <src_node_alias>Array 4</src_node_alias> "
                  "</ICS_MESSAGE>");
    EXPECT_EQ(configuration.summary(), "Client_Config Request Message");
    EXPECT_EQ(message(2, 1).summary(), "Client_Config Response Message");
    EXPECT_EQ(message(3, 1).summary(), "Client_Config Response Message");

    EXPECT_EQ(message(2, 77).body(), header("77") + "Unknown ics_type</ICS_MESSAGE>");
    EXPECT_EQ(message(2, 77).summary(), "Unknown ICS message");
}

TEST(ISNSC_Event, ShowsEveryFieldOfAShortMessage) {
    const SuppressTrace quiet;
    const std::string text =
        RecordBuilder(31, 0).u32(4, 1).u32(30, 0xFFFF0141).payloadLength(34).body();
    EXPECT_THAT(text, HasSubstr("<Module></Module> <Line>0</Line> <mmch_LH>(00000000, 0000FFFF) "
                                "(hex)</mmch_LH> <Message_Type>1</Message_Type> "
                                "<Message_Version>65</Message_Version> "
                                "<Message_Length>0</Message_Length> "));
    EXPECT_THAT(text, EndsWith("<src_node_id></src_node_id> <src_node_alias></src_node_alias> "
                               "</ICS_MESSAGE>"));
}

RecordBuilder textMessage(std::uint32_t identifier, std::uint32_t count) {
    return event(7, 1).u32(24, identifier).u32(28, count);
}

TEST(ISNSC_Event, ShowsArgumentsOfATextMessage) {
    const SuppressTrace quiet;
    constexpr const char* kTwo = "<Arg01>0x00000ABC</Arg01> <Arg02>0xFFFFFFFF</Arg02> ";
    const struct {
        std::uint32_t identifier, count;
        const char* shownCount;
        const char* arguments;
        const char* summary;
    } cases[] = {
        {1, 0, "0", "", "Display Arguments, detail in Message Body"},
        {1, 1, "1", "<Arg01>0x00000ABC</Arg01> ", "Display Arguments, detail in Message Body"},
        {1, 2, "2", kTwo, "Display Arguments, detail in Message Body"},
        {1, 3, "3", kTwo, "Invalid Arguments, detail in Message Body"},
        {1, 0x7FFFFFFF, "2147483647", kTwo, "Invalid Arguments, detail in Message Body"},
        {1, 0xFFFFFFFF, "-1", "", "Invalid Arguments, detail in Message Body"},
        {2, 2, "2", kTwo, "Unknown text_id for TEXT_MSG Event"},
        {0, 9, "9", kTwo, "Unknown text_id for TEXT_MSG Event"},
    };
    for (const auto& c : cases) {
        const RecordBuilder builder =
            textMessage(c.identifier, c.count).u32s(32, {0xABC, 0xFFFFFFFF}).u16(40, 7);
        EXPECT_EQ(builder.body(), "<Arguments><Module>isns</Module> <Line>345</Line> <Arg_Count>" +
                                      std::string(c.shownCount) + "</Arg_Count> " + c.arguments +
                                      "</Arguments>");
        EXPECT_EQ(builder.summary(), c.summary);
    }
    EXPECT_THAT(textMessage(1, 100).u32(32 + 4 * 99, 0x64).body(),
                EndsWith("<Arg99>0x00000000</Arg99> <Arg100>0x00000064</Arg100> "
                         "</Arguments>"));
}

TEST(ISNSC_Event, DumpsOtherKinds) {
    const SuppressTrace quiet;
    for (std::uint32_t kind : {0u, 4u, 5u, 6u, 8u}) {
        const RecordBuilder builder = event(kind, 3).u8(24, 0xAB);
        EXPECT_THAT(builder.body(), StartsWith("<Hex>11111111000000"));
        EXPECT_THAT(builder.body(), EndsWith("00000159AB</Hex>"));
        EXPECT_EQ(builder.summary(), "Unhandled Event by ISNS Client");
    }
}

// The cut leaves the outermost element open, so all markup in it is made safe like any text.
TEST(ISNSC_Event, CutsLongBodiesBeforeTheyAreMadeSafe) {
    const SuppressTrace quiet;
    // "<Hex>", 2 * payload, "</Hex>": 16383 characters are a payload of 8186.
    const std::string whole = event(4, 3).u8(8185, 0xAB).body();
    EXPECT_EQ(whole.size(), 16383u);
    EXPECT_EQ(whole.substr(16383 - 8), "AB</Hex>");
    const std::string cut = event(4, 3).u8(8186, 0xAB).body();
    EXPECT_EQ(cut.size(), 16383u);
    EXPECT_EQ(cut.substr(0, 9), "?Hex?1111");
    EXPECT_EQ(cut.substr(16383 - 6), "AB?/He");

    // A "=" takes one character of the buffer and is two when made safe.
    const std::string texts = message(3, 1).text(112, std::string(60000, '=')).body();
    EXPECT_EQ(texts.substr(0, 41), "?ICS_MESSAGE??Module?isns?/Module? ?Line?");
    const std::size_t lead = texts.find("?src_node_id?: : ") + 13;
    EXPECT_EQ(lead + (texts.size() - lead) / 2, 16383u);

    const std::string arguments = textMessage(1, 16000).u32(32 + 4 * 15999, 1).body();
    EXPECT_EQ(arguments.size(), 16383u);
    EXPECT_EQ(arguments.substr(0, 19), "?Arguments??Module?");
    EXPECT_NE(arguments.find("?Arg563?0x00000000?/Arg563? "), std::string::npos);
}

TEST(ISNSC_Event, TracesWithoutChangingTheResult) {
    const RecordBuilder builder = message(3, 2);
    const CaptureTrace trace;
    EXPECT_EQ(builder.title(), "ICS MSG Rcvd");
    const std::vector<std::string> lines = trace.lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_THAT(lines[0], AllOf(StartsWith("ISNSC_Event:"),
                                EndsWith("setEventID, setBody, setSummary: begin")));
    EXPECT_THAT(lines[1],
                AllOf(StartsWith("ISNSC_Event:"), HasSubstr("128"), HasSubstr("16384"),
                      HasSubstr("256"), EndsWith(", setEventID, setBody, setSummary: end")));
    const ISNSC_Event none(nullptr, 0);
    EXPECT_EQ(none.getEventID().size() + none.getBody().size() + none.getSummary().size(), 0u);
}

} // namespace
} // namespace Pegasus::test
