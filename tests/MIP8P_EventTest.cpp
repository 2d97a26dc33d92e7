#include "tests/RecordBuilder.h"

#include "decoders/datapath/MIP8P_Event.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Pegasus::test {
namespace {

constexpr std::uint8_t kSource = 7;
constexpr std::size_t kData = 20; // of the payload

// A record with a data area of `length` bytes, each of which is the low byte of its offset.
RecordBuilder event(std::uint32_t eventClass, std::uint32_t code, std::uint32_t length = 0) {
    RecordBuilder record(kSource, 1);
    record.u32(0, eventClass).u32(4, code).u32(12, 77).u32(16, length);
    return record.counted(kData, length);
}

// What follows the frame's elements.
std::string rest(const RecordBuilder& record) {
    const std::string body = utf8(record.decode()->getBody());
    const std::string last = "<MIP_Event_Line_Num>77</MIP_Event_Line_Num> ";
    const std::size_t at = body.find(last);
    return at == body.npos ? "no frame" : body.substr(at + last.size());
}

constexpr const char* kLwsem =
    "<lwsem_valid_bit>0x00010203</lwsem_valid_bit> <lwsem_value>0x04050607</lwsem_value> ";
constexpr const char* kMmsg =
    "<mmsg_length>0x00000001</mmsg_length> <mmsg_requestor>0x00000002</mmsg_requestor> "
    "<mmsg_dest_ep>0x00000003</mmsg_dest_ep> <mmsg_return_code>0x08090A0B</mmsg_return_code> "
    "<mmsg_general_use1>0x0C0D0E0F</mmsg_general_use1> "
    "<mmsg_general_use2>0x10111213</mmsg_general_use2> <mmsg_opcode>0x04050607</mmsg_opcode> ";
constexpr const char* kMsa =
    "<msa_full_hi_level>0x00000001</msa_full_hi_level> "
    "<msa_full_lo_level>0x00000203</msa_full_lo_level> "
    "<msa_read_pointer>0x00000405</msa_read_pointer> "
    "<msa_write_pointer>0x00000607</msa_write_pointer> <msa_count>0x00000809</msa_count> "
    "<msa_not_mt_signal>0x00000A0B</msa_not_mt_signal> "
    "<msa_base_address_of_data>0x0C0D0E0F</msa_base_address_of_data> "
    "<msa_hysteresis>0x00000010</msa_hysteresis> <msa_mode>0x00000011</msa_mode> "
    "<msa_size>0x00001213</msa_size> <msa_hi_mark_signal>0x00001415</msa_hi_mark_signal> "
    "<msa_lo_mark_signal>0x00001617</msa_lo_mark_signal> "
    "<msa_over_flow_signal>0x00001819</msa_over_flow_signal> "
    "<msa_under_flow_signal>0x00001A1B</msa_under_flow_signal> "
    "<msa_write_check_point>0x1C1D1E1F</msa_write_check_point> ";

TEST(Mip, Structures) {
    const struct {
        std::uint32_t eventClass, code;
        const char *text, *dump;
    } cases[] = {
        {1, 1, "MIP8P MQX Event", kLwsem},
        {1, 3, "MIP8P Unexpected Interrupt", "<Interrupt>0x00010203</Interrupt> "},
        {1, 4, "MIP8P QMIR Event", "<QMIR>0x00010203</QMIR> "},
        {1, 5, "MIP8P Unexpected Message Type", "<Message>0x00010203</Message> "},
        {1, 14, "MIP8P MSA Event", kMsa},
        {6, 11, "MMSG Invalid MMSG", kMmsg},
        {12, 502, "MIP8P p32 Xcore Interrupt", "<INT_STAT__>0x00010203</INT_STAT__> "},
        {4, 0xFFFFFFFFu, "Unknown Message ID", "<ID>4294967295</ID> <Line>526</Line> "},
        {0x80000000u, 1, "Unknown Event Type", "<ID>2147483648</ID> <Line>262</Line> "},
    };
    SuppressTrace quiet;
    for (const auto& c : cases) {
        const RecordBuilder record = event(c.eventClass, c.code, 32);
        EXPECT_EQ(utf8(record.decode()->getSummary()), c.text);
        EXPECT_EQ(rest(record),
                  "<Request_Type>" + std::string(c.text) + "</Request_Type> " + c.dump);
    }
    EXPECT_THAT(utf8(event(0x80000000u, 0xFFFFFFFFu).decode()->getBody()),
                testing::StartsWith("<MIP_Event_Type>-2147483648</MIP_Event_Type> "
                                    "<MIP_Event_Id>-1</MIP_Event_Id> "
                                    "<MIP_Event_Line_Num>77</MIP_Event_Line_Num> "));
}

TEST(Mip, TraceAndOtherEventIdentifiers) {
    CaptureTrace trace;
    event(8, 1).u32(16, 0xAB).decode();
    const auto other = RecordBuilder(kSource, 17).bytes(0, "\x01\xAB").decode();
    EXPECT_EQ(utf8(other->getEventID()), "17");
    EXPECT_EQ(utf8(other->getSummary()), "Unhandled Event by MIP");
    EXPECT_EQ(utf8(other->getBody()), "<Hex>01AB</Hex>");
    EXPECT_THAT(trace.lines(),
                testing::ElementsAre(testing::EndsWith(":----: MIP_Event: Length=0xab"),
                                     testing::EndsWith(":----: Unknown EventID: 0x17")));
}

TEST(Mip, Asserts) {
    SuppressTrace quiet;
    const std::string z(200, 'z');
    const struct {
        std::string data, file, summary;
        std::uint32_t length;
    } cases[] = {
        {std::string("mip.c\0", 6), "mip.c", "mip.c", 6},
        {"mip.c", "mip", "mip", 3},
        {"mip.c", "", "", 0},
        {z, z.substr(0, 127), z.substr(0, 127), 200},
        {"a=&", "a: ?", "a=&", 0xFFFFFFFFu},
        {"a<b>&</b>", "a<b>?</b>", "a<b>&</b>", 9},
    };
    for (const auto& c : cases) {
        RecordBuilder record = event(9, 1);
        record.u32(16, c.length).bytes(kData, c.data);
        EXPECT_EQ(utf8(record.decode()->getSummary()), c.summary);
        EXPECT_EQ(rest(record),
                  "<Request_Type>ASSERT Error</Request_Type> <File>" + c.file + "</File> ");
    }
}

constexpr const char* kFatalQueue =
    "<Section_1>----- QMIF Register -----</Section_1> <ID>4294967295</ID> "
    "<FIFO_Overflow>Yes</FIFO_Overflow> <IRQ_Mode>Global</IRQ_Mode> <IRQ_Level>6</IRQ_Level> "
    "<Reason>Overflow</Reason> <Queue_Number>12</Queue_Number> "
    "<Section_2>------- MSA Queue -------</Section_2> <ID>13</ID> <Mode>Stack</Mode> "
    "<Size>8739</Size> <High_Level>0x1011</High_Level> <Low_Level>0x1213</Low_Level> "
    "<Read_Pointer>0x1415</Read_Pointer> <Writer_Pointer>0x1617</Writer_Pointer> "
    "<Checkpoint>0x2c2d2e2f</Checkpoint> <Count>6169</Count> "
    "<Base_Address>0x1c1d1e1f</Base_Address> <Hysteresis>32</Hysteresis> "
    "<Hi_Signal>0x2425</Hi_Signal> <Low_Signal>0x2627</Low_Signal> "
    "<Overflow_Signal>0x2829</Overflow_Signal> <Underflow_Signal>0x2a2b</Underflow_Signal> "
    "<Not_Empty_Signal>0x1a1b</Not_Empty_Signal> ";

RecordBuilder fatalQueue() {
    RecordBuilder record = event(13, 22, 48);
    return record.u32(kData, 0xFFFFFFFFu).u8(kData + 7, 8).u32(kData + 8, 12).u32(kData + 12, 13);
}

TEST(Mip, FatalQueueEvent) {
    SuppressTrace quiet;
    RecordBuilder record = fatalQueue();
    EXPECT_EQ(utf8(record.decode()->getSummary()), "Error: Fatal MSA queue event");
    EXPECT_EQ(rest(record), std::string("<Request_Type>Error: Fatal MSA queue event"
                                        "</Request_Type> ") +
                                kFatalQueue);
    record.u32(kData + 4, 0).u8(kData + 16 + 17, 0).u32(kData + 16 + 28, 5);
    for (const char* part : {"<FIFO_Overflow>No<", "<IRQ_Mode>Processor Select<", "<IRQ_Level>5<",
                             "<Reason>Unknown<", "<Mode>Queue<", "<Checkpoint>0x0005<"})
        EXPECT_THAT(rest(record), testing::HasSubstr(part));
    const char* reasons[] = {"Unknown", "Not Empty",      "High Water Mark",
                             "Unknown", "Low Water Mark", "Unknown"};
    for (std::uint8_t i = 0; i < std::size(reasons); ++i)
        EXPECT_THAT(rest(record.u8(kData + 7, i)),
                    testing::HasSubstr("<Reason>" + std::string(reasons[i]) + "<"));
    EXPECT_THAT(rest(record.u8(kData + 7, 16)), testing::HasSubstr("<Reason>Underflow<"));
    EXPECT_THAT(rest(record.u8(kData + 7, 17)), testing::HasSubstr("<Reason>Unknown<"));
}

// Register `i` of the dump counts its own place.
std::string word(unsigned at) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%02X%02X%02X%02X", at & 0xFF, (at + 1) & 0xFF,
                  (at + 2) & 0xFF, (at + 3) & 0xFF);
    return text;
}
std::string registers(unsigned at, std::initializer_list<const char*> names) {
    std::string out;
    for (const char* name : names) {
        out.append("<").append(name).append(">").append(word(at)).append("</").append(name);
        out.append("> ");
        at += 4;
    }
    return out;
}
std::string memoryController(unsigned at) {
    return registers(at, {"DDR_Enable", "DDR_Timing", "DDR_Bank_Size", "DDR_Refresh", "ECC_Enable",
                          "ECC_Scrub_Rate", "ECC_Error_Addr_0_0", "ECC_Error_Addr_1_0",
                          "ECC_Error_Syndrome_0_0", "ECC_Error_Syndrome_1_0", "Error_Control",
                          "Error_Total_0", "Error_Total_1"});
}

TEST(Mip, FatalInterrupt) {
    SuppressTrace quiet;
    const std::string expected =
        "<ARC_ID>66051</ARC_ID> <IRQ>3221225472</IRQ> "
        "<Section_1>----- GIO :: INT -----</Section_1> " +
        registers(8, {"PIR_00", "PIR_01", "PIR_02",     "PIR_03", "PIR_04", "PIR_05", "PIR_06",
                      "PIR_07", "PIR_08", "PIR_09",     "PIR_10", "PIR_11", "PIR_12", "PIR_13",
                      "PIR_14", "PIR_15", "PIC_Global", "PIC_00", "PIC_01", "PIC_02", "PIC_03",
                      "PIC_04", "PIC_05", "PIC_06",     "PIC_07", "PIC_08", "PIC_09", "PIC_10",
                      "PIC_11", "PIC_12", "PIC_13",     "PIC_14", "PIC_15"}) +
        "<Section_2>----- BMI -----</Section_2> " +
        registers(140, {"Int_Status", "Int_Mask", "A2B_Reflect_Cfg", "A2B_Reflect_0_Base",
                        "A2B_Reflect_0_Last", "A2B_Reflect_1_Base", "A2B_Reflect_1_Last",
                        "PRX_Reflect_Cfg", "PRX_Reflect_0_Base", "PRX_Reflect_0_Last",
                        "PRX_Reflect_1_Base", "PRX_Reflect_1_Last"}) +
        "<Section_3>----- BMI :: XMC -----</Section_3> " + memoryController(188) +
        "<Section_4>----- L2C -----</Section_4> " + registers(240, {"Int_Status", "Int_Mask"}) +
        "<Section_5>----- L2C :: XMC -----</Section_5> " + memoryController(248) +
        "<Section_6>----- MSA -----</Section_6> " + registers(300, {"Int_Status", "Int_Mask"}) +
        "<Section_7>----- PIE RX -----</Section_7> " +
        registers(308, {"Int_Status", "Int_Mask", "Error_Gross_0", "Error_Gross_1"});
    RecordBuilder record = event(13, 23, 324);
    const std::string type = "<Request_Type>Error: Fatal IRQ event</Request_Type> ";
    EXPECT_EQ(rest(record.u32(kData + 4, 0xC0000000u)), type + expected);
    EXPECT_THAT(rest(record.u32(kData + 4, 0)),
                testing::StartsWith(type + "<ARC_ID>66051</ARC_ID> <IRQ>Disabled</IRQ> "
                                           "<Section_1>"));
}

constexpr const char* kInvalidParameter =
    "<ARC_Number>66051</ARC_Number> <Call_Trace>0x04050607</Call_Trace> "
    "<Parameter___Pointer>0x08090a0b</Parameter___Pointer> "
    "<Parameter___Word_Count>202182159</Parameter___Word_Count> "
    "<Section_1>------ Bad Header ------</Section_1> "
    "<Bad_Header___Source>18</Bad_Header___Source> <Bad_Header___Type>19</Bad_Header___Type> "
    "<Bad_Header___Category>20</Bad_Header___Category> "
    "<Bad_Header___ID_Version>21</Bad_Header___ID_Version> "
    "<Bad_Header___ID>5655</Bad_Header___ID> "
    "<Bad_Header___Struct_Length>4113</Bad_Header___Struct_Length> "
    "<Section_2>------- Bad Data -------</Section_2> ";

TEST(Mip, InvalidParameter) {
    SuppressTrace quiet;
    const struct {
        std::uint32_t dump, area;
        const char* bad;
    } cases[] = {
        {3, 32, "1C1D1E"},   {4, 32, "1C1D1E1F"},
        {9, 32, "1C1D1E1F"}, {9, 30, "1C1D"},
        {9, 28, ""},         {9, 5, ""},
        {0, 32, ""},         {0xFFFFFFFFu, 0xFFFFFFFFu, "1C1D1E1F"},
    };
    for (const auto& c : cases) {
        RecordBuilder record = event(13, 21, 32);
        record.u32(16, c.area).u32(kData + 24, c.dump);
        const std::string length = std::to_string(c.dump);
        EXPECT_EQ(rest(record),
                  "<Request_Type>Error: Invalid BUG-CHECK Parameters</Request_Type> " +
                      std::string(kInvalidParameter) + "<Bad_Data___Dump_Length>" + length +
                      "</Bad_Data___Dump_Length> <Hex>" + c.bad + "</Hex>");
    }
}

TEST(Mip, OperationsThatNoClassLeadsTo) {
    SuppressTrace quiet;
    MIP8P_Event made(nullptr, 0);
    std::string out(MIP8P_Event::kOutputRoom, '#');
    const auto text = [&](const char* end) {
        EXPECT_EQ(*end, '\0');
        return std::string(std::as_const(out).data(), end);
    };
    const auto math = event(10, 1).record();
    EXPECT_EQ(text(made.get_MIP8P_math_class_event_body(
                  reinterpret_cast<const MIP_EVL*>(math.data() + 152), out.data())),
              "<Request_Type>MATH Error</Request_Type> ");
    EXPECT_EQ(utf8(made.getSummary()), "MATH Error");
    const struct {
        std::uint32_t code;
        const char *text, *more;
    } cases[] = {{8, "Database Overflow", ""},
                 {2, "Database ENOMEM", ""},
                 {10, "Database Invalid Param", ""},
                 {9, "Unknown Message ID", "<ID>9</ID> <Line>408</Line> "}};
    for (const auto& c : cases) {
        const auto one = event(12, c.code).record();
        const auto* evl = reinterpret_cast<const MIP_EVL*>(one.data() + 152);
        EXPECT_EQ(text(made.get_MIP8P_database_class_event_body(evl, out.data())),
                  "<Request_Type>" + std::string(c.text) + "</Request_Type> " + c.more);
        EXPECT_EQ(utf8(made.getSummary()), c.text);
    }
}

// Bad data without end stay inside the buffer that was asked for.
TEST(Mip, BadDataIsBounded) {
    SuppressTrace quiet;
    MIP8P_Event made(nullptr, 0);
    std::vector<char> out(MIP8P_Event::kOutputRoom);
    RecordBuilder record = event(13, 21, 60000);
    record.u32(kData + 24, 50000);
    EXPECT_EQ(rest(record).size(), rest(event(13, 21, 28).u32(kData + 24, 50000)).size() + 100000);
    const auto bytes = record.record();
    const auto* evl = reinterpret_cast<const MIP_EVL*>(bytes.data() + 152);
    const char* data = reinterpret_cast<const char*>(evl + 1);
    for (const char* end :
         {made.get_MIP8P_bugcheck_class_event_body(evl, out.data()),
          MIP8P_Event::get_MIP8P_bugcheck_invalid_param_event_body(data, out.data())})
        EXPECT_LT(end, out.data() + out.size());
    EXPECT_TRUE(std::string(out.data()).ends_with("</Hex>"));
}

} // namespace
} // namespace Pegasus::test
