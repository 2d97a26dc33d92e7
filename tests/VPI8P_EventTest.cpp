#include "tests/RecordBuilder.h"

#include "decoders/datapath/VPI8P_Event.h"

#include <gtest/gtest.h>

namespace Pegasus::test {
namespace {

using namespace std::string_literals;

constexpr std::uint8_t kSource = 10;

std::unique_ptr<Avrel_Event> decode(const std::string& payload) {
    SuppressTrace quiet;
    return RecordBuilder(kSource, 1).bytes(0, payload).decode();
}

TEST(Vpi, TitleAndSummary) {
    const struct {
        std::string payload, summary;
    } cases[] = {{"", ""},      {"one\ntwo", "one"},     {"one", "one"},
                 {"\ntwo", ""}, {"a=<&>\xFF", "a=<&>?"}, {"one\0two"s, "one"}};
    for (const auto& c : cases) {
        EXPECT_EQ(utf8(decode(c.payload)->getEventID()), "General message");
        EXPECT_EQ(utf8(decode(c.payload)->getSummary()), c.summary);
    }
}

TEST(Vpi, Bodies) {
    const struct {
        std::string payload, body;
    } cases[] = {
        {"", ""},
        {"a b=1, c=2", "<Values><a_b>1</a_b> <c>2</c> </Values>"},
        {"one\ntwo\nthree", "<Text1>one</Text1> <Text2>two</Text2> <Text3>three</Text3> "},
        {"one\nk=v\ntwo\n", "<Text1>one</Text1> <Values><k>v</k> </Values><Text2>two</Text2> "},
        {"\n\n", "<Text1></Text1> <Text2></Text2> "},
        {"one\0two\n"s, "<Text1>one</Text1> "},
        {" \tport id \t=  3 words behind", "<Values><port_id>3</port_id> </Values>"},
        {"1st.key=a\tb = c,,d=e", "<Values>"
                                  "<_st_key>a</_st_key> <b>c</b> <d>e</d> </Values>"},
        {"a  b=1", "<Values><a__b>1</a__b> </Values>"},
        {"a=b=c", "<Values><a>b: c</a> </Values>"},
        {"a=,b=", "<Values><a></a> <b></b> </Values>"},
        {"a= 1&2 tail", "<Values><a>1?2</a> </Values>"},
        {"x & y\r\n", "<Text1>x ? y?</Text1> "},
        {"a=<b>c&</b>", "<Values><a><b>c?</b></a> </Values>"},
        // The closing tag of such a key passes for that of the group.
        {"Values=1", "<Values>?Values?1</Values> ?/Values?"},
        {"ValuesX=1\nt", "<Values>?ValuesX?1</ValuesX? ?/Values??Text1?t?/Text1? "},
    };
    for (const auto& c : cases)
        EXPECT_EQ(utf8(decode(c.payload)->getBody()), c.body) << c.payload;
}

TEST(Vpi, TheRecordStaysAsItIs) {
    SuppressTrace quiet;
    // The text ends with the payload, though more bytes follow.
    std::vector<unsigned char> bytes =
        RecordBuilder(kSource, 1).bytes(0, "a=1\nbc").payloadLength(5).record();
    const std::vector<unsigned char> before = bytes;
    const auto* record = reinterpret_cast<const EmpEvLogMsg_s*>(bytes.data());
    const VPI8P_Event event(record, static_cast<int>(bytes.size()));
    EXPECT_EQ(utf8(event.getBody()), "<Values><a>1</a> </Values><Text1>b</Text1> ");
    EXPECT_EQ(utf8(get_VPI8P_MSG_STRING(record)), utf8(event.getBody()));
    EXPECT_EQ(bytes, before);
}

TEST(Vpi, OtherEventIdentifiers) {
    CaptureTrace trace;
    const auto event = RecordBuilder(kSource, 2).bytes(0, "a=").decode();
    EXPECT_EQ(utf8(event->getEventID()), "2");
    EXPECT_EQ(utf8(event->getSummary()), "Unhandled Event by VPI8P");
    EXPECT_EQ(utf8(event->getBody()), "<Hex>613D</Hex>");
    ASSERT_EQ(trace.lines().size(), 1u);
    EXPECT_TRUE(trace.lines()[0].ends_with(":----: Unknown EventID: 0x2"));
}

// Long lines and keys, and as many pairs as fit, take time in proportion.
TEST(Vpi, LongTexts) {
    const std::string key(30000, 'k');
    EXPECT_EQ(utf8(decode(key)->getBody()), "<Text1>" + key + "</Text1> ");
    EXPECT_EQ(utf8(decode(key + "=1&")->getBody()),
              "<Values><" + key + ">1?</" + key + "> </Values>");
    std::string pairs;
    std::string expected = "<Values>";
    for (int i = 0; i < 15000; ++i) {
        pairs += "a=1,";
        expected += "<a>1</a> ";
    }
    EXPECT_EQ(utf8(decode(pairs)->getBody()), expected + "</Values>");
}

} // namespace
} // namespace Pegasus::test
