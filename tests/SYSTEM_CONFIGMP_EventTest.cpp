#include "tests/RecordBuilder.h"

#include "decoders/management/SYSTEM_CONFIGMP_Event.h"

#include <gtest/gtest.h>

namespace Pegasus::test {
namespace {

constexpr std::uint8_t kSource = 23;

// A record with a location block; its data begin at payload offset 32.
RecordBuilder located(std::uint16_t code, std::uint8_t severity = 1) {
    RecordBuilder record(kSource, code);
    record.severity(severity).u16(0, 77).text(2, "lock.c").text(9, "takeLock");
    record.bytes(31, std::string_view("", 1));
    return record;
}

constexpr const char* kTrailer = "<File>lock.c</File> <Func>takeLock</Func> <Line>77</Line> ";

TEST(SystemConfig, TitlesBySeverity) {
    const struct {
        std::uint16_t code;
        const char *error, *warning, *other;
    } cases[] = {
        {2000, "Error Text", "Warning Text", "Text Information"},
        {2005, "Error Dump Data", "Warning Dump Data", "Dump Information"},
        {2010, "Instantiation of SharedMemory Failed", "Instantiation of SharedMemory Failed",
         "Instantiation of SharedMemory Failed"},
        {2011, "Locking Error", "Locking Warning", "Locking Information"},
        {2012, "Instantiation of SharedMemory Failed", "Instantiation of SharedMemory Failed",
         "Instantiation of SharedMemory Failed"},
        {2013, "MMSG Error", "MMSG Warning", "MMSG Information"},
        {2015, "Error in Request Event processing", "Warning in Request Event processing",
         "Request Event Information"},
        {2016, "Error in CEE Response Event processing", "Warning in CEE Response Event processing",
         "CEE Response Event Information"},
        {2017, "Error in CEE Timer Event processing", "Warning in CEE Timer Event processing",
         "CEE Timer Event Information"},
        {2018, "Error in DDLM internal processing", "Warning in DDLM internal processing",
         "DDLM Information"},
        {2019, "Error in CPM internal processing", "Warning in CPM internal processing",
         "CPM Information"},
        {2020, "Error in MPU Global Status Event processing",
         "Warning in MPU Global Status Event processing", "MPU Global Status Information"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(utf8(located(c.code, 3).decode()->getEventID()), c.error);
        EXPECT_EQ(utf8(located(c.code, 2).decode()->getEventID()), c.warning);
        EXPECT_EQ(utf8(located(c.code, 103).decode()->getEventID()), c.other);
    }
}

TEST(SystemConfig, UnknownCodes) {
    for (unsigned code : {1999u, 2001u, 2004u, 2014u, 2021u}) {
        CaptureTrace trace;
        const auto event = RecordBuilder(kSource, code).bytes(0, "\x1F").decode();
        EXPECT_EQ(utf8(event->getEventID()), std::to_string(code));
        EXPECT_EQ(utf8(event->getSummary()), "***UNKNOWN EventID***");
        EXPECT_EQ(utf8(event->getBody()), "<Hex>1F</Hex>");
        EXPECT_EQ(trace.lines(), std::vector<std::string>{"SYSTEM_CONFIGMP_Event:115     :----: "
                                                          "Unknown EventID: 0x" +
                                                          std::to_string(code)});
    }
}

TEST(SystemConfig, TextAndTrailer) {
    const auto event = located(2000, 3).text(32, "Init(): failed to open a=b<c>").decode();
    EXPECT_EQ(utf8(event->getSummary()), "Init()");
    EXPECT_EQ(utf8(event->getBody()),
              std::string("<Text>Init(): failed to open a: b?c?</Text> ") + kTrailer);
    EXPECT_EQ(utf8(located(2000, 1).text(32, "t").decode()->getBody()), "<Text>t</Text> ");
    EXPECT_EQ(utf8(located(2000, 0x65).text(32, "t").decode()->getBody()),
              std::string("<Text>t</Text> ") + kTrailer);
}

TEST(SystemConfig, MarkupInATextIsJudgedWithTheWholeBody) {
    // The text closes its own element; what follows is outside until the "<" that never closes.
    EXPECT_EQ(utf8(located(2000, 3).text(32, "a&</Text>b=<z").decode()->getBody()),
              "<Text>a?</Text>b: ?z?/Text? ?File?lock.c?/File? ?Func?takeLock?/Func? "
              "?Line?77?/Line? ");
    EXPECT_EQ(utf8(located(2000, 1).text(32, "<b>x&y</b>").decode()->getBody()),
              "<Text><b>x?y</b></Text> ");
    // A tag passes as it is, unless that is not valid UTF-8.
    EXPECT_EQ(utf8(located(2000, 1).text(32, "<\xFF>x</\xFF>").decode()->getBody()),
              "<Text><?>x</?></Text> ");
}

TEST(SystemConfig, LocationBlockOnlyInLongerPayloads) {
    // 32 bytes: all of them are data.
    const auto event =
        RecordBuilder(kSource, 2000).severity(2).text(0, std::string(31, 't')).decode();
    EXPECT_EQ(utf8(event->getBody()), "<Text>" + std::string(31, 't') +
                                          "</Text> <File></File> <Func></Func> <Line>0</Line> ");
    // A file name that fills the block leaves no room for a function.
    const auto full = RecordBuilder(kSource, 2000)
                          .severity(2)
                          .bytes(2, std::string(30, 'f'))
                          .text(32, "t")
                          .decode();
    EXPECT_EQ(utf8(full->getBody()), "<Text>t</Text> <File>" + std::string(30, 'f') +
                                         "</File> <Func></Func> <Line>0</Line> ");
    // A function name that fills the rest of the block needs no NUL.
    const auto function = RecordBuilder(kSource, 2000)
                              .severity(2)
                              .text(2, "f.c")
                              .bytes(6, std::string(26, 'g'))
                              .text(32, "t")
                              .decode();
    EXPECT_EQ(utf8(function->getBody()), "<Text>t</Text> <File>f.c</File> <Func>" +
                                             std::string(26, 'g') + "</Func> <Line>0</Line> ");
}

TEST(SystemConfig, Bodies) {
    const auto words = [](RecordBuilder record, unsigned n) { return record.words(32, n, 10); };
    const struct {
        RecordBuilder record;
        const char *summary, *body;
    } cases[] = {
        {located(2010).u32(32, 0xFFFFFFFFu), "Shared Memory Event", "<ShMem_Key>-1</ShMem_Key> "},
        {words(located(2011), 7).u32(48, 3).u32(52, 8).text(60, "Lock held. Retry later"),
         "Lock held.",
         "<Lock_Classes><Read>0x0000000A</Read> <Write>0x0000000B</Write> </Lock_Classes>"
         "<Object><Class>12</Class> <Index>13</Index> </Object>"
         "<Request_Type>DDLM_get EX</Request_Type> "
         "<Transaction_Status>TransactionComplete</Transaction_Status> "
         "<Replication_Parameter>0x00000010</Replication_Parameter> "
         "<Text>Lock held. Retry later</Text> "},
        {words(located(2013), 9).u32(32, 0x05ABCDEF).text(68, "m"), "m",
         "<OpCode_Protocol>5</OpCode_Protocol> <OpCode_Type>11259375</OpCode_Type> "
         "<Requestor>11</Requestor> <Dest_EP>12</Dest_EP> <MMSG_Len>13</MMSG_Len> "
         "<Return_Code>14</Return_Code> <Handle>15</Handle> "
         "<General_Use1>0x00000010</General_Use1> <General_Use2>0x00000011</General_Use2> "
         "<General_Use3>0x00000012</General_Use3> <Text>m</Text> "},
        {words(located(2015), 8).text(64, "r"), "r",
         "<Thread_Index>10</Thread_Index> <Dest_Endpoint>11</Dest_Endpoint> "
         "<Request_Opcode>0x0000000C</Request_Opcode> <Timeout_seconds>13</Timeout_seconds> "
         "<Timeout_microseconds>14</Timeout_microseconds> <pSema>0x0000000F</pSema> "
         "<pMmsgLh>0x00000010</pMmsgLh> <pTimedout>0x00000011</pTimedout> <Text>r</Text> "},
        {words(located(2016), 8).text(64, "r"), "r",
         "<Thread_Index>10</Thread_Index> <Dest_Endpoint>11</Dest_Endpoint> "
         "<Request_Handle>12</Request_Handle> <Timeout_seconds>13</Timeout_seconds> "
         "<Timeout_microseconds>14</Timeout_microseconds> <pSema>0x0000000F</pSema> "
         "<pMmsgLh>0x00000010</pMmsgLh> <pTimedout>0x00000011</pTimedout> <Text>r</Text> "},
        {words(located(2017), 8).u32(48, 0).text(64, "t"), "t",
         "<Thread_Index>10</Thread_Index> <Delay_seconds>11</Delay_seconds> "
         "<Delay_microseconds>12</Delay_microseconds> <isRecurring>TRUE</isRecurring> "
         "<isRelativeToWallClock>FALSE</isRelativeToWallClock> <pSema>0x0000000F</pSema> "
         "<pMmsg>0x00000010</pMmsg> <pCounter>0x00000011</pCounter> <Text>t</Text> "},
        {words(located(2018), 10).u32(40, 0x01020304).u32(44, 0x05060700).text(72, "d"), "d",
         "<TSS_RdLocks>10</TSS_RdLocks> <TSS_WrLocks>11</TSS_WrLocks> "
         "<TSS_Priority>1</TSS_Priority> <TSS_TaskId>2</TSS_TaskId> "
         "<TSS_TaskStatus>3</TSS_TaskStatus> <CLS_ClassId>4</CLS_ClassId> "
         "<CLS_ClassStatus>5</CLS_ClassStatus> <CLS_TaskId>6</CLS_TaskId> "
         "<CLS_RequestCount>7</CLS_RequestCount> <CLS_HoldsLocks>TRUE</CLS_HoldsLocks> "
         "<OLS_ObjectIx>15</OLS_ObjectIx> <OLS_OwningTask>0</OLS_OwningTask> "
         "<OLS_ObjectStatus>0</OLS_ObjectStatus> <OLS_ReferenceCount>16</OLS_ReferenceCount> "
         "<TES_ClassId>0</TES_ClassId> <TES_TransactionStatus>0</TES_TransactionStatus> "
         "<TES_ReplicationParam>17</TES_ReplicationParam> <TES_ObjectIx>18</TES_ObjectIx> "
         "<TES_DataLength>19</TES_DataLength> <Text>d</Text> "},
        {located(2005).text(32, "Dump").bytes(37, "\xDE\xAD"), "Dump",
         "<Text>Dump</Text> <Hex>DEAD</Hex>\n"},
    };
    for (const auto& c : cases) {
        RecordBuilder record = c.record;
        EXPECT_EQ(utf8(record.decode()->getSummary()), c.summary);
        EXPECT_EQ(utf8(record.decode()->getBody()), c.body);
        EXPECT_EQ(utf8(record.severity(2).decode()->getBody()), std::string(c.body) + kTrailer);
    }
    const auto odd = located(2011).u32(48, 9).u32(52, 2).u32(56, 0).decode();
    EXPECT_NE(utf8(odd->getBody()).find("<Request_Type>9</Request_Type> <Transaction_Status>2<"),
              std::string::npos);
}

TEST(SystemConfig, PersistentMemoryHasFiveArrays) {
    RecordBuilder record = located(2019);
    record.u8(32 + 32, 200).u32(32 + 36 + 4 * 31, 7).u8(32 + 292 + 2, 255);
    record.u32(32 + 452 + 4 * 31, 0x80000000u);
    const std::string body = utf8(record.decode()->getBody());
    EXPECT_TRUE(body.starts_with("<cpmControlFileFd>0</cpmControlFileFd> <cpmDataFile0Fd>0<"));
    for (const char* part :
         {"<cpmDebug>200</cpmDebug> <cpmClassOffset>[0], value [0]</cpmClassOffset> ",
          "<cpmClassOffset>[31], value [7]</cpmClassOffset> <cpmClassSize>[0], value [0]<",
          "<cpmClassDirty>[2], value [255]</cpmClassDirty> ",
          "<cpmReleaseObjectAddr>[31], value [-2147483648]</cpmReleaseObjectAddr> "})
        EXPECT_NE(body.find(part), std::string::npos) << part;
    EXPECT_EQ(utf8(record.decode()->getSummary()), "Persistent Memory Event");
    EXPECT_EQ(std::count(body.begin(), body.end(), '\n'), 0);
    std::size_t elements = 0;
    for (std::size_t at = body.find("</"); at != std::string::npos; at = body.find("</", at + 1))
        ++elements;
    EXPECT_EQ(elements, 9u + 5 * 32);
}

TEST(SystemConfig, GlobalStatus) {
    RecordBuilder record = located(2020, 2);
    record.text(32, "Up").u32(35, 0x00000212).u8(39, 1).u8(45, 7);
    record.u16(51, 1).u16(53, 2).u16(55, 3).u16(57, 65535).u32(59, 9).u32(95, 0);
    const std::string status =
        "<Text>Up</Text> <Persistent_Data_Virginity>FALSE</Persistent_Data_Virginity> "
        "<Restore_Factory_Defaults>TRUE</Restore_Factory_Defaults> "
        "<Moved_is_Valid>TRUE</Moved_is_Valid> <THIS_Moved>FALSE</THIS_Moved> "
        "<OTHER_Moved>FALSE</OTHER_Moved> <OTHER_Unavailable>FALSE</OTHER_Unavailable> "
        "<Prevent_Restart_Recovery>FALSE</Prevent_Restart_Recovery> "
        "<FW_Upgrade_is_Pending>TRUE</FW_Upgrade_is_Pending> <CMAP_State>1</CMAP_State> "
        "<RCP_State>0</RCP_State> <Failover_Policy>0</Failover_Policy> "
        "<Battery_Policy>0</Battery_Policy> <Battery_State>0</Battery_State> "
        "<Bind_Fail_Reason>0</Bind_Fail_Reason> <HACC_State>7</HACC_State> "
        "<THIS_FW_version>1.2.3.65535</THIS_FW_version> "
        "<THIS_MMSG_version>9</THIS_MMSG_version> <THIS_CMAP_version>0</THIS_CMAP_version> "
        "<OTHER_FW_version>0.0.0.0</OTHER_FW_version> "
        "<OTHER_MMSG_version>0</OTHER_MMSG_version> <OTHER_CMAP_version>0</OTHER_CMAP_version> ";
    EXPECT_EQ(utf8(record.decode()->getBody()), status + kTrailer);
    EXPECT_EQ(utf8(record.severity(0x65).decode()->getBody()), status);
    // One byte less after the text, and a payload that can't even hold the block.
    const auto cut = record.payloadLength(32 + 3 + 63).decode();
    EXPECT_EQ(utf8(cut->getBody()),
              "<Text>Up</Text> <Incorrect_data_len>63</Incorrect_data_len> "
              "<Expected_data_len>64</Expected_data_len> "
              "<MPU_Global_Status_Event>No information available</MPU_Global_Status_Event> ");
    SuppressTrace quiet;
    const auto tiny = RecordBuilder(kSource, 2020).text(0, "Up").decode();
    EXPECT_NE(utf8(tiny->getBody()).find("<Incorrect_data_len>-29<"), std::string::npos);
}

TEST(SystemConfig, SummaryCutter) {
    const std::string plain(100, 'x');
    std::string blank = plain;
    blank[50] = ' ';
    std::string late = plain;
    late[63] = ' ';
    const struct {
        std::string text;
        int limit;
        std::string summary;
    } cases[] = {
        {"Init(): failed to open", 0, "Init()"},
        {"():", 0, "()"},
        {"a:b", 0, "a:b"},
        {"Lock held. Retry later", 0, "Lock held."},
        {"v1.2 is; old", 0, "v1.2 is"},
        {"end.\nnext", 0, "end."},
        {plain, 0, plain.substr(0, 63)},
        {blank, 0, plain.substr(0, 50)},
        {late, 0, plain.substr(0, 63)},
        {" " + plain, 0, ""},
        {"ab cdef", 4, "ab"},
        {"abcdef", 4, "abcd"},
        {"abcd", 4, "abcd"},
        {"", 0, ""},
    };
    for (const auto& c : cases) {
        char summary[64];
        SCC_copySummarized(summary, c.text.c_str(), c.limit);
        EXPECT_EQ(summary, c.summary) << c.text;
    }
}

TEST(SystemConfig, LocationBlock) {
    const auto bytes = located(2011).record();
    int line = 0;
    char function[32], file[32];
    SCC_fetch_event_location_information(
        reinterpret_cast<const SCC_EVENT_LOCINFO_t*>(bytes.data() + 152), &line, function, file);
    EXPECT_EQ(line, 77);
    EXPECT_STREQ(function, "takeLock");
    EXPECT_STREQ(file, "lock.c");
}

TEST(SystemConfig, DerivedModulesDifferOnlyInTheirSource) {
    for (unsigned source : {19u, 25u}) {
        const auto event = RecordBuilder(source, 2000).bytes(0, "text").decode();
        EXPECT_EQ(utf8(event->getSource()), source == 19 ? "DDLM" : "AIM");
        EXPECT_EQ(utf8(event->getEventID()), "Text Information");
        EXPECT_EQ(utf8(event->getBody()), "<Text>text</Text> ");
    }
}

} // namespace
} // namespace Pegasus::test
