#include "tests/RecordBuilder.h"

#include "decoders/management/STARTUPMP_Event.h"

#include <gtest/gtest.h>

namespace Pegasus::test {
namespace {

using namespace std::string_view_literals;

RecordBuilder startup(std::uint16_t code) {
    return RecordBuilder(18, code);
}

constexpr const char* kWhere = "STARTUPMP_Event:0             :----: ";

TEST(Startup, TitlesAndSummaries) {
    const struct {
        std::uint16_t code;
        const char *title, *summary;
    } cases[] = {
        {1, "General message", "a<b>"},
        {2, "Unrecognized message received",
         "Startup received a message that it doesn't know how to handle"},
        {3, "Partial message in Alternate Event Log",
         "An incomplete message was in an Alternate Event Log"},
        {4, "MPU App fatal signal", "MPU application caught and exception"},
        {100, "Ravel is in invalid state", "Ravel is in invalid state"},
        {101, "stack dump", "dump of the stack"},
    };
    for (const auto& c : cases) {
        const auto event = startup(c.code).text(0, "a<b>\nc").bytes(7, "\0"sv).decode();
        EXPECT_EQ(utf8(event->getEventID()), c.title);
        EXPECT_EQ(utf8(event->getSummary()), c.summary);
    }
}

TEST(Startup, UnknownCodes) {
    for (unsigned code : {0u, 5u, 99u, 102u, 257u}) {
        CaptureTrace trace;
        const auto event = RecordBuilder(18, code).bytes(0, "\x1F").decode();
        EXPECT_EQ(utf8(event->getEventID()), std::to_string(code));
        EXPECT_EQ(utf8(event->getSummary()), "Unhandled Event by STARTUPMP");
        EXPECT_EQ(utf8(event->getBody()), "<Hex>1F</Hex>");
        EXPECT_EQ(trace.lines(), std::vector<std::string>{"STARTUPMP_Event:262           :----: "
                                                          "Unknown EventID: " +
                                                          std::to_string(code)});
    }
}

TEST(Startup, GeneralMessageLines) {
    const struct {
        std::string_view text, summary, body;
    } cases[] = {
        {"A\nB\n", "A", "<Text1>A</Text1> <Text2>B</Text2> "},
        {"A\n\nB", "A", "<Text1>A</Text1> <Text2>B</Text2> "},
        {"\n \t\nA=1", "", "<Text1>A: 1</Text1> "},
        {" \v A  \r\nB", " \v A  \r", "<Text1>A  </Text1> <Text2>B</Text2> "},
        {"x<y\nz&", "x<y", "<Text1>x?y</Text1> <Text2>z?</Text2> "},
        {"", "", ""},
    };
    for (const auto& c : cases) {
        const auto event = startup(1).text(0, c.text).decode();
        EXPECT_EQ(utf8(event->getSummary()), c.summary);
        EXPECT_EQ(utf8(event->getBody()), c.body);
    }
    std::string ten;
    for (int i = 0; i < 10; ++i)
        ten += "x\n";
    EXPECT_TRUE(utf8(startup(1).text(0, ten).decode()->getBody())
                    .ends_with("<Text9>x</Text9> <Text10>x</Text10> "));
    // The summary ends with the payload, though the record has more.
    SuppressTrace quiet;
    EXPECT_EQ(utf8(startup(1).text(0, "abcdef").payloadLength(3).decode()->getSummary()), "abc");
}

// A message header at `at`.
RecordBuilder channel(RecordBuilder record, std::size_t at) {
    record.u8(at + 8, 200).u8(at + 9, 2).u16(at + 10, 0xFFFF).u32(at + 12, 0x05ABCDEF);
    record.u8(at + 16, 6).u8(at + 17, 0x0A).u32(at + 36, 0xFFFFFFFFu);
    return record.u32(at + 44, 0xAB).u32(at + 48, 0xCD).u32(at + 52, 0xEF);
}

TEST(Startup, ChannelHeaderBehindTheText) {
    const struct {
        std::string_view text, shown;
        std::size_t at;
    } cases[] = {
        {"abc", "abc", 4},
        {"abcd", "abcd", 8},
        {"ab\ncd=e", "ab", 8},
        {"", "", 4},
    };
    for (const auto& c : cases)
        EXPECT_EQ(utf8(channel(startup(2).text(0, c.text), c.at).decode()->getBody()),
                  "<Text>" + std::string(c.shown) +
                      "</Text> <MMCH_contents><Message_type>200</Message_type> "
                      "<MMCH_version>2</MMCH_version> <Message_length>65535</Message_length> "
                      "<protocol>5</protocol> <type>11259375</type> <requestor>6</requestor> "
                      "<mmsg_cont>0x0a</mmsg_cont> <return_code>-1</return_code> "
                      "<general_use1>0x000000ab</general_use1> "
                      "<general_use2>0x000000cd</general_use2> "
                      "<general_use3>0x000000ef</general_use3> </MMCH_contents>");
}

TEST(Startup, PartialMessageGoesByThePayloadLength) {
    SuppressTrace quiet;
    const std::pair<unsigned, std::size_t> thresholds[] = {{16, 3}, {17, 5}, {18, 6},  {40, 7},
                                                           {48, 8}, {52, 9}, {56, 10}, {57, 11}};
    const std::string names[] = {"Message_type", "MMCH_version", "Message_length", "protocol",
                                 "type",         "requestor",    "mmsg_cont",      "return_code",
                                 "general_use1", "general_use2", "general_use3"};
    for (const auto& [length, count] : thresholds) {
        const auto event = channel(startup(3).text(0, "t"), 4).payloadLength(length).decode();
        const std::string body = utf8(event->getBody());
        EXPECT_TRUE(body.starts_with("<Text>t</Text> <MMCH_contents><Message_type>200<"));
        for (std::size_t i = 0; i < std::size(names); ++i)
            EXPECT_EQ(body.find("<" + names[i] + ">") != std::string::npos, i < count)
                << length << " " << names[i];
        EXPECT_TRUE(body.ends_with("> </MMCH_contents>")) << body;
    }
}

TEST(Startup, SignalCauses) {
    const struct {
        std::uint32_t signal, code;
        const char* cause;
    } cases[] = {
        {9, 0x00000005,
         "<__Cause>Killed by another process</__Cause> <__Signal_sent_by>-1</__Signal_sent_by> "
         "<__Sending_user>16</__Sending_user> "},
        {14, 0x00010001, "<__Cause>Timer event</__Cause> "},
        {29, 0x00020001,
         "<__Cause>Polled event:</__Cause> <__Event>Input data available</__Event> "
         "<__Band>-1</__Band> <__File_descriptor>16</__File_descriptor> "},
        {29, 0x00020000,
         "<__Cause>Polled event:</__Cause> <__Event>Unknown poll event</__Event> "
         "<__Band>-1</__Band> <__File_descriptor>16</__File_descriptor> "},
        {4, 0x00030001,
         "<__Cause>Illegal instruction (code: 1)</__Cause> <__Event>Illegal opcode</__Event> "
         "<__Address>0x0xffffffff</__Address> "},
        {5, 0x00030001,
         "<__Cause>Trace/breakpoint trap (code: 1)</__Cause> "
         "<__Event>Process breakpoint</__Event> <__Address>0x0xffffffff</__Address> "},
        {7, 0x00030001,
         "<__Cause>Bus error (code: 1)</__Cause> <__Event>Invalid address alignment</__Event> "
         "<__Address>0x0xffffffff</__Address> "},
        {8, 0x00030001,
         "<__Cause>Floating point exception (code: 1)</__Cause> "
         "<__Event>Integer divide by zero</__Event> <__Address>0x0xffffffff</__Address> "},
        {11, 0x00030001,
         "<__Cause>Segmentation violation (code: 1)</__Cause> "
         "<__Event>Address not mapped to object</__Event> <__Address>0x0xffffffff</__Address> "},
        {11, 0x0003FFFF,
         "<__Cause>Segmentation violation (code: 65535)</__Cause> "
         "<__Event>Unrecognized error</__Event> <__Address>0x0xffffffff</__Address> "},
        {6, 0x00030001,
         "<__Cause>Unrecognized processor fault</__Cause> <__Address>0x0xffffffff</__Address> "},
        {17, 0x00040001,
         "<__Cause>Child process signalled an event</__Cause> <__Event>Child exited</__Event> "
         "<__Exit_value>20</__Exit_value> <__User_time>24 seconds</__User_time> "
         "<__System_time>-2 seconds</__System_time> "},
        {17, 0x00040002,
         "<__Cause>Child process signalled an event</__Cause> "
         "<__Event>Unknown child event</__Event> <__Exit_value>20</__Exit_value> "
         "<__User_time>24 seconds</__User_time> <__System_time>-2 seconds</__System_time> "},
        {34, 0x00050000,
         "<__Cause>Real time event</__Cause> <__Signal_value_int>-1</__Signal_value_int> "
         "<__Signal_value_ptr>0x10</__Signal_value_ptr> "},
        {1, 0x00060000, "<__Cause>Unrecognized event</__Cause> "},
        {1, 0xFFFFFFFF, "<__Cause>Unrecognized event</__Cause> "},
    };
    for (const auto& c : cases) {
        const auto event = startup(4)
                               .u32(0, c.signal)
                               .u32(8, c.code)
                               .u32(12, 0xFFFFFFFFu)
                               .u32(16, 16)
                               .u32(20, 20)
                               .u32(24, 24)
                               .u32(28, 0xFFFFFFFEu)
                               .decode();
        const std::string body = utf8(event->getBody());
        const std::size_t at = body.find("<__Cause>");
        EXPECT_EQ(body.substr(at, body.find("</Signal_info>") - at), c.cause);
    }
}

TEST(Startup, SignalReport) {
    RecordBuilder record = startup(4).u32(0, 11).u32(4, 2).u32(8, 0x00030002);
    std::string registers;
    for (unsigned i = 0; i < 32; ++i) {
        record.u32(128 + 4 * i, 0xA0 + i);
        const char digits[] = {"ab"[i / 16], "0123456789abcdef"[i % 16], '\0'};
        registers += "<GPR>" + std::to_string(i) + ": 0x000000" + digits + "</GPR> ";
    }
    const char* names[] = {"NIP", "MSR", "Orig_GPR3", "CTR", "LINK",  "XER",
                           "CCR", "MQ",  "TRAP",      "DAR", "DSISR", "RESULT"};
    for (unsigned i = 0; i < 12; ++i) {
        record.u32(256 + 4 * i, 0xCAFE0000u + i);
        const std::string name(names[i]);
        registers += "<" + name + ">0xcafe000" + "0123456789ab"[i] + "</" + name + "> ";
    }
    record.u32(304, 0x10000000).u32(308, 0).u32(312, 0x1F).u32(316, 0xFFFFFFFFu);
    record.u32(320, 4711).text(324, "mpu=app<");
    EXPECT_EQ(utf8(record.decode()->getBody()),
              "<Exception>Caught</Exception> <Signal_info><Signal_number>11</Signal_number> "
              "<Errno>2</Errno> <Signal_code>0x00030002</Signal_code> "
              "<__Cause>Segmentation violation (code: 2)</__Cause> "
              "<__Event>Unrecognized error</__Event> <__Address>0x(nil)</__Address> "
              "</Signal_info><Registers>" +
                  registers +
                  "</Registers><Process_Info><PID>4711</PID> <Name>mpu: app?</Name> "
                  "<_start>0x10000000</_start> <_end>(nil)</_end> "
                  "<__bss_start>0x1f</__bss_start> <__data_start>0xffffffff</__data_start> "
                  "</Process_Info>");
}

TEST(Startup, StackDump) {
    CaptureTrace trace;
    RecordBuilder record = startup(101).u32(0, 0x1F).u32(4, 0x7FFFE210);
    record.u32(8, 0xABC).u32(12, 0).u32(16 + 4 * 14, 0xFFFFFFFFu).bytes(76, "\1\2\3"sv);
    const std::string body = utf8(record.decode()->getBody());
    EXPECT_TRUE(body.starts_with("<arc_index>1f</arc_index> <SP>7fffe210</SP> "
                                 "<S0>abc</S0> <S1>0</S1> <S2>0</S2> "));
    EXPECT_TRUE(body.ends_with("<Sf>0</Sf> <S10>ffffffff</S10> ")); // no element for three bytes
    EXPECT_EQ(utf8(startup(101).bytes(0, "\0\0\0\1\0\0\0\2"sv).decode()->getBody()),
              "<arc_index>1</arc_index> <SP>2</SP> ");
    EXPECT_EQ(utf8(startup(101).decode()->getBody()), "<arc_index>0</arc_index> <SP>0</SP> ");
    EXPECT_TRUE(trace.lines().empty());
}

TEST(Startup, StackDumpStopsAtItsLimit) {
    // The head takes 42 characters and the digits of SP; elements of eight digits take 18, 20 from
    // S10 and 22 from S100 on: 42 + 6 + 16 * 18 + 240 * 20 + 1256 * 22 is the limit.
    constexpr unsigned kWords = 256 + 1256;
    RecordBuilder record = startup(101).u32(0, 0xFFFFFFFFu).u32(4, 0x100000);
    for (unsigned i = 0; i < kWords; ++i)
        record.u32(8 + 4 * i, 0x80000000u);
    CaptureTrace trace;
    const std::string whole = utf8(record.decode()->getBody());
    EXPECT_EQ(whole.size(), 32768u);
    EXPECT_TRUE(whole.ends_with("<S5e7>80000000</S5e7> "));
    EXPECT_TRUE(trace.lines().empty());
    // One digit more, or one word more.
    EXPECT_EQ(utf8(record.u32(4, 0x1000000).decode()->getBody()).size(), 32769u - 22);
    EXPECT_EQ(utf8(record.u32(4, 0x100000).u32(8 + 4 * kWords, 0).decode()->getBody()), whole);
    const std::string line =
        std::string(kWhere) + "There is not enough space to dump the stack data";
    // The message ends with a line feed of its own.
    EXPECT_EQ(trace.lines(), (std::vector<std::string>{line, "", line, ""}));
}

TEST(Startup, InvalidState) {
    const char* const small = "There is not enough space to process the data(invalid state)";
    const char* const outside = "out of boundary data";
    const struct {
        std::string_view payload;
        std::string body;
        std::vector<std::string> lines;
    } cases[] = {
        {"\xF0\0\x10\0\xDE\xAD\xBE\xEF\0\0\0\x07"sv,
         "<BASE_ADDRESS>F0001000 base address</BASE_ADDRESS> <REG0>DEADBEEF at F0001000</REG0> "
         "<REG1>00000007 at F0001004</REG1> ",
         {}},
        {"\xFF\xFF\xFF\xFE\0\0\0\1\0\0\0\2\xAB\xCD\xEF"sv,
         "<BASE_ADDRESS>FFFFFFFE base address</BASE_ADDRESS> <REG0>00000001 at FFFFFFFE</REG0> "
         "<REG1>00000002 at 00000002</REG1> <rsvd0>ABCD reserved</rsvd0> "
         "<rsvd1>EF reserved</rsvd1> ",
         {outside}},
        {"\0\0\0\1\xAB\xCD"sv,
         "<BASE_ADDRESS>00000001 base address</BASE_ADDRESS> <rsvd0>ABCD reserved</rsvd0> ",
         {small, outside}},
        {"\xAB"sv, "<rsvd0>AB reserved</rsvd0> ", {small, outside}},
        {""sv, "", {small}},
    };
    for (const auto& c : cases) {
        CaptureTrace trace;
        EXPECT_EQ(utf8(startup(100).bytes(0, c.payload).decode()->getBody()), c.body);
        std::vector<std::string> lines;
        for (const std::string& line : c.lines) {
            lines.push_back(kWhere + line);
            lines.emplace_back(); // the messages end with a line feed of their own
        }
        EXPECT_EQ(trace.lines(), lines);
    }
}

} // namespace
} // namespace Pegasus::test
