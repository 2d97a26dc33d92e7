#include "tests/RecordBuilder.h"

#include "decoders/management/SMIS_Event.h"
#include "platform/cmap/ManagedObject.h"

#include <gtest/gtest.h>

namespace Pegasus::test {
namespace {

using namespace std::string_view_literals;

// A record with a location block; its data begin at payload offset 32.
RecordBuilder smis(std::uint16_t code, std::uint8_t severity = 1) {
    RecordBuilder record(29, code);
    record.severity(severity).u16(0, 302).text(2, "provider.cpp").text(15, "deliver");
    record.bytes(31, "\0"sv);
    return record;
}

constexpr const char* kTrailer = "<File>provider.cpp</File> <Func>deliver</Func> <Line>302</Line> ";

TEST(Smis, TitlesBySeverity) {
    const struct {
        std::uint16_t code;
        const char *error, *warning, *other;
    } cases[] = {
        {2000, "Error Text", "Warning Text", "Text Information"},
        {2005, "Error Dump Data", "Warning Dump Data", "Dump Information"},
        {2013, "MMSG Error", "MMSG Warning", "MMSG Information"},
        {2018, "Error in CMAP ManagedObject internal processing",
         "Warning in CMAP ManagedObject internal processing", "ManagedObject Information"},
        {2020, "Error Data", "Warning Data", "Informational Data"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(utf8(smis(c.code, 3).decode()->getEventID()), c.error);
        EXPECT_EQ(utf8(smis(c.code, 2).decode()->getEventID()), c.warning);
        EXPECT_EQ(utf8(smis(c.code, 101).decode()->getEventID()), c.other);
    }
}

TEST(Smis, UnknownCodes) {
    for (unsigned code : {1999u, 2001u, 2010u, 2019u, 2021u}) {
        CaptureTrace trace;
        const auto event = RecordBuilder(29, code).bytes(0, "\x1F").decode();
        EXPECT_EQ(utf8(event->getEventID()), std::to_string(code));
        EXPECT_EQ(utf8(event->getSummary()), "***UNKNOWN SMIS EventID***");
        EXPECT_EQ(utf8(event->getBody()), "<Hex>1F</Hex>");
        EXPECT_EQ(trace.lines(), std::vector<std::string>{"SMIS_Event:161                :----: "
                                                          "Unknown SMIS EventID: " +
                                                          std::to_string(code)});
    }
}

TEST(Smis, Bodies) {
    RecordBuilder message = smis(2013).words(32, 9, 10);
    const struct {
        RecordBuilder record;
        const char *summary, *body;
    } cases[] = {
        {smis(2000).text(32, "Ready=1. Go"), "Ready: 1", "<Text>Ready: 1. Go</Text> "},
        {smis(2005).text(32, "Dump").bytes(37, "\xDE\xAD"), "Dump",
         "<Text>Dump</Text> <Hex>DEAD</Hex>\n"},
        {message.text(68, "Init(): m"), "Init(",
         "<OpCode_Protocol>0</OpCode_Protocol> <OpCode_Type>10</OpCode_Type> "
         "<Requestor>11</Requestor> <Dest_EP>12</Dest_EP> <MMSG_Len>13</MMSG_Len> "
         "<Return_Code>14</Return_Code> <Handle>15</Handle> "
         "<General_Use1>0x00000010</General_Use1> <General_Use2>0x00000011</General_Use2> "
         "<General_Use3>0x00000012</General_Use3> <Text>Init(): m</Text> "},
    };
    for (const auto& c : cases) {
        RecordBuilder record = c.record;
        EXPECT_EQ(utf8(record.decode()->getSummary()), c.summary);
        EXPECT_EQ(utf8(record.decode()->getBody()), c.body);
        EXPECT_EQ(utf8(record.severity(2).decode()->getBody()), std::string(c.body) + kTrailer);
    }
}

TEST(Smis, OnlyManagementMessagesCanDoWithoutALocationBlock) {
    // 20 bytes: taken for the block, so that no text is left.
    RecordBuilder record(29, 2000);
    record.severity(2).u16(0, 7).text(2, "f.c").text(6, "called").bytes(19, "\0"sv);
    EXPECT_EQ(utf8(record.decode()->getBody()),
              "<Text></Text> <File>f.c</File> <Func>called</Func> <Line>7</Line> ");
    RecordBuilder message(29, 2013);
    message.severity(2).u32(0, 0x05000001).u32(28, 0xFF);
    const std::string body = utf8(message.decode()->getBody());
    EXPECT_TRUE(body.starts_with("<OpCode_Protocol>5</OpCode_Protocol> <OpCode_Type>1<")) << body;
    EXPECT_TRUE(body.ends_with("<General_Use2>0x000000FF</General_Use2> "
                               "<General_Use3>0x00000000</General_Use3> <Text></Text> "
                               "<File></File> <Func></Func> <Line>0</Line> "))
        << body;
}

TEST(Smis, SummaryCutter) {
    const std::string plain(70, 'x');
    std::string blank = plain, bracket = plain, late = plain;
    blank[50] = '\t';
    bracket.replace(40, 2, "( ");
    late[62] = ' ';
    const struct {
        std::string text;
        int limit;
        std::string summary;
    } cases[] = {
        {"Init(): failed", 0, "Init("},
        {"():", 0, "("},
        {"a:b", 0, "a:b"},
        {"Ready. Go", 0, "Ready"},
        {"v1;2", 0, "v1"},
        {"a( b", 0, "a( b"},
        {plain, 0, ""},
        {plain.substr(0, 63), 0, ""},
        {plain.substr(0, 62), 0, plain.substr(0, 62)},
        {blank, 0, plain.substr(0, 50)},
        {bracket, 0, plain.substr(0, 40)},
        {late, 0, plain.substr(0, 62)},
        {"\\" + plain, 0, ""},
        {"ab cdef", 4, "ab"},
        {"abcdef", 4, ""},
        {"abcd", 4, "abcd"},
        {"", 0, ""},
    };
    for (const auto& c : cases) {
        char summary[64];
        SMIS_copySummarized(summary, c.text.c_str(), c.limit);
        EXPECT_EQ(summary, c.summary) << c.text;
    }
}

TEST(Smis, KeyValuePairs) {
    const struct {
        std::string_view area;
        std::string_view elements;
    } cases[] = {
        {"a=1, b=2 c=3", "<a>1</a> <b>2</b> <c>3</c>\n"},
        {"a=b=c", "<a>b: c</a>\n"},
        {"a==b c=d", "<a>: b</a> <c>d</c>\n"},
        {"a= =b", "<a> : b</a>\n"},
        {"a= =b =c", "<a></a> <=b>c</=b>\n"},
        {"a =1 b\t= 2", "<a>1</a> <b> 2</b>\n"},
        {"a= b=c", "<a></a> <b>c</b>\n"},
        {"a=1,  b=2, ", "<a>1, </a> <b>2, </b>\n"},
        {"a=1,b=2", "<a>1,b: 2</a>\n"},
        {"a=,\nb=2", "<a></a> <b>2</b>\n"},
        {"noise key=v w x=y", "<key>v w</key> <x>y</x>\n"},
        {"2nd-key=1 2nd-key=2", "<_nd_key>1</_nd_key> <2nd-key>2</2nd-key>\n"},
        {"\xFFk=1", "<?k>1</?k>\n"},
        {"a=x&y b=x&y", "<a>x?y</a> <b>x?y</b>\n"},
        {"no pair at all", ""},
        // Empty and blank keys: written, but at the end.
        {"=1", ""},
        {"  =1", ""},
        {"a=", "<a></a>\n"},
        {" =1 b=2", "<_>1</_> <b>2</b>\n"},
        // "<>1</>" opens an element named ">1</", which nothing closes; "<>>x</>" one named ">".
        {"=1 b=2", "??1?/? ?b?2?/b?\n"},
        {"=>x b=2", "<>>x</> <b>2</b>\n"},
        // NULs: a value ends at its first one, the last value keeps those inside.
        {"a=1\0z b=2\0z\0\0"sv, "<a>1</a> <b>2?z</b>\n"},
        {"a=\0\0"sv, "<a></a>\n"},
        {"k\0z=1"sv, "<k>1</k>\n"},
        {"\0k=1"sv, ""},
        // Markup in the last key and in values.
        {"a=1 <b>=2", "<a>1</a> <<b>?2</<b>?\n"}, // an element named "<b"
        {"a=1 b>=2", "<a>1</a> <b>?2</b>?\n"},
        {"a=<i>&</i> b=2", "<a><i>?</i></a> <b>2</b>\n"},
    };
    for (const auto& c : cases) {
        const auto event = smis(2020).text(32, "Lost. x").bytes(40, c.area).decode();
        EXPECT_EQ(utf8(event->getSummary()), "Lost");
        EXPECT_EQ(utf8(event->getBody()), "<Text>Lost. x</Text> " + std::string(c.elements))
            << c.area;
    }
}

TEST(Smis, KeyValueAreaEndsWithThePayload) {
    RecordBuilder record = smis(2020, 2).text(32, "t").bytes(34, "a=1 b=2");
    EXPECT_EQ(utf8(record.payloadLength(37).decode()->getBody()),
              "<Text>t</Text> <a>1</a>\n" + std::string(kTrailer));
    SuppressTrace quiet;
    for (unsigned length : {34u, 33u, 0u}) // nothing left; the text's NUL is outside; no payload
        EXPECT_EQ(utf8(record.payloadLength(length).decode()->getBody()),
                  "<Text>t</Text> " + std::string(kTrailer));
    // 60000 candidates in one value.
    const auto event = smis(2020).text(32, "t").bytes(34, "a" + std::string(60000, '=')).decode();
    EXPECT_EQ(utf8(event->getBody()).size(), "<Text>t</Text> <a></a>\n"sv.size() + 2 * 59999);
}

TEST(Smis, TheRecordIsNotModified) {
    const auto bytes = smis(2020, 2).text(32, "t").bytes(34, "a =1, b=2").record();
    auto copy = bytes;
    const EmpEvLogMsg_s* record = reinterpret_cast<const EmpEvLogMsg_s*>(copy.data());
    const SMIS_Event event(record, static_cast<int>(copy.size()));
    char summary[64];
    EXPECT_EQ(utf8(get_SMIS_keyvalue_event_body(record, summary)), utf8(event.getBody()));
    EXPECT_STREQ(summary, "t");
    EXPECT_EQ(copy, bytes);
}

TEST(Smis, ManagedObjects) {
    const auto object = [](std::uint8_t classId, std::string_view data) {
        RecordBuilder record = smis(2018);
        record.u8(32, classId).u16(34, static_cast<std::uint16_t>(data.size()));
        return record.bytes(36, data).text(36 + data.size(), "changed; a=b");
    };
    const struct {
        std::uint8_t classId;
        std::string_view data;
        std::string body;
    } cases[] = {
        {56, "\x38\0\0\x07\xFF"sv,
         "<ClassName>CMAPDrive</ClassName> <ObjID>0x38000007</ObjID> <Hex>38000007FF</Hex> "
         "<ClassId>56</ClassId> "},
        {6, "\x01\x02"sv,
         "<ClassName>ManagedObject</ClassName> <Hex>0102</Hex> "
         "<ClassId>6</ClassId> "},
        {200, ""sv, "<ClassName>ManagedObject</ClassName> <Hex></Hex> <ClassId>200</ClassId> "},
        {43, "\0\0\0\x01\0\0\0\x02\0\0\0\0\0\0\0\x03"sv,
         "<ClassName>CMAPNetworkRvlStats</ClassName> <ObjID>0x00000001</ObjID> "
         "<Controller>2</Controller> <PrxIpDiscards>3</PrxIpDiscards> <IpChksumErr>0</IpChksumErr> "
         "<IpInAddrErr>0</IpInAddrErr> <IpHeaderErrDiscards>0</IpHeaderErrDiscards> "
         "<PrxTcpDiscards>0</PrxTcpDiscards> <TcpChksumErr>0</TcpChksumErr> <IscsiRx>0</IscsiRx> "
         "<IscsiTx>0</IscsiTx> <PrxVlanTagErr>0</PrxVlanTagErr> "
         "<Hex>00000001000000020000000000000003</Hex> <ClassId>43</ClassId> "},
    };
    for (const auto& c : cases) {
        const auto event = object(c.classId, c.data).decode();
        EXPECT_EQ(utf8(event->getSummary()), "changed");
        EXPECT_EQ(utf8(event->getBody()), c.body + "<Text>changed? a: b</Text> ");
    }
    for (const auto& [classId, element] :
         {std::pair(41, "<Tx_oversizeok>0<"), std::pair(42, "<Tx_oversizeok>0<"),
          std::pair(44, "<TcpOutRsts>0<"), std::pair(45, "<IfPhyAddress><")}) {
        const auto event = object(static_cast<std::uint8_t>(classId), "").decode();
        EXPECT_NE(utf8(event->getBody()).find(element), std::string::npos) << classId;
    }
    // A size beyond the record: what is there, and no text.
    RecordBuilder cut = smis(2018).u8(32, 58).u16(34, 0xFFFF).bytes(36, "\x3A\0\0\x01"sv);
    EXPECT_EQ(utf8(cut.decode()->getBody()),
              "<ClassName>CMAPVolume</ClassName> <ObjID>0x3A000001</ObjID> <Hex>3A000001</Hex> "
              "<ClassId>58</ClassId> <Text></Text> ");
}

TEST(ManagedObject, EveryClassRendersByItsName) {
    const struct {
        unsigned id;
        const char* name;
        std::unique_ptr<ManagedObject> object;
    } cases[] = {
#define MPUEVENT_MANAGED_OBJECT(ID, CLASS) {ID, #CLASS, std::make_unique<CLASS>()},
        MPUEVENT_MANAGED_OBJECTS(MPUEVENT_MANAGED_OBJECT)
#undef MPUEVENT_MANAGED_OBJECT
    };
    EXPECT_EQ(std::size(cases), 33u);
    for (const auto& c : cases)
        EXPECT_TRUE(utf8(c.object->render("\0\0\0\x09", 4))
                        .starts_with("<ClassName>" + std::string(c.name) +
                                     "</ClassName> <ObjID>0x00000009</ObjID> "))
            << c.id;
    EXPECT_EQ(utf8(ManagedObject().render("&", 1)),
              "<ClassName>ManagedObject</ClassName> <Hex>26</Hex> ");
    EXPECT_EQ(utf8(ManagedObject().render(nullptr, 0)),
              "<ClassName>ManagedObject</ClassName> <Hex></Hex> ");
}

class Fan : public ManagedObject {
public:
    String render(const void* data, unsigned int length) const override {
        const std::string speed(static_cast<const char*>(data), length);
        return String(("<Fan><Speed>" + speed + "</Speed></Fan> a=b <open> ").c_str());
    }
};

TEST(ManagedObject, RegisteredClassesRenderInEvents) {
    const auto body = [](std::uint8_t classId) {
        return utf8(smis(2018)
                        .u8(32, classId)
                        .u16(34, 2)
                        .bytes(36, "9&")
                        .text(38, "t")
                        .decode()
                        ->getBody());
    };
    const std::string tail = "<ClassId>6</ClassId> <Text>t</Text> ";
    const std::string unnamed = "<ClassName>ManagedObject</ClassName> <Hex>3926</Hex> " + tail;
    EXPECT_FALSE(ManagedObject::registerClass(58, []() -> ManagedObject* { return new Fan; }));
    EXPECT_TRUE(body(58).starts_with("<ClassName>CMAPVolume<"));
    ASSERT_TRUE(ManagedObject::registerClass(6, []() -> ManagedObject* { return new Fan; }));
    // "<open>" never closes: it and all after it is text.
    EXPECT_EQ(body(6),
              "<Fan><Speed>9?</Speed></Fan> a: b ?open? ?ClassId?6?/ClassId? ?Text?t?/Text? ");
    ASSERT_TRUE(ManagedObject::registerClass(6, []() -> ManagedObject* { return nullptr; }));
    EXPECT_EQ(body(6), tail);
    ASSERT_TRUE(ManagedObject::registerClass(6, nullptr));
    EXPECT_EQ(body(6), unnamed);
}

TEST(Smis, IndicationsAreDecodedAlike) {
    const auto event = RecordBuilder(30, 2000).text(32, "text").decode();
    EXPECT_EQ(utf8(event->getSource()), "SMIS IND");
    EXPECT_EQ(utf8(event->getEventID()), "Text Information");
    EXPECT_EQ(utf8(event->getBody()), "<Text>text</Text> ");
}

} // namespace
} // namespace Pegasus::test
