// The record header, the decoded event, the text routines, the message and its dispatch.
#include "tests/RecordBuilder.h"

#include "event/AvrelEvent.h"
#include "event/MPUEvent.h"
#include "event/StringFormat.h"
#include "event/XmlString.h"
#include "platform/cmap/CMAPErrorCodes.h"
#include "platform/cmap/CMAPOperationFailedException.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <pthread.h>
#include <set>
#include <type_traits>
#include <utility>

namespace Pegasus::test {
namespace {

std::string safe(std::string_view text) {
    return utf8(Avrel_Event::makeSafeString(text.data(), static_cast<int>(text.size())));
}

TEST(Header, FieldsOfTheRecord) {
    RecordBuilder record(11, 65535);
    record.severity(101).category(6).slot(2).instance(3).sequence(0x80000000u).timestamp(5);
    record.enclosure(std::string(63, 'E')).controller("");
    CaptureTrace trace;
    const auto event = record.decode();
    EXPECT_TRUE(trace.lines().empty());
    EXPECT_EQ(utf8(event->getEnclosureSerialNumber()), std::string(63, 'E'));
    EXPECT_EQ(utf8(event->getControllerSerialNumber()), "");
    EXPECT_EQ(event->getSequenceID(), 0x80000000u);
    EXPECT_EQ(utf8(event->getEventType()), "Eng Informational");
    EXPECT_EQ(static_cast<const Avrel_Event&>(*event).getEventType(), 101u);
    EXPECT_EQ(utf8(event->str()),
              "Enclosure Ser#: '" + std::string(63, 'E') +
                  "', Card Ser#: '', Slot: 2, Log Instance # 3, Sequence ID=-2147483648, "
                  "Timestamp=5, Source: 'MIP Local', Category: 'Device', EventType=101, "
                  "EventID: '65535', Summary: '', Body: ''");
}

TEST(Header, SerialsWithoutNulAndBytesThatAreNotText) {
    RecordBuilder record(11, 1);
    record.enclosure(std::string(64, 'E')).controller("A\xC3\xA9\xFF\xED\xA0\x80Z");
    SuppressTrace quiet;
    const auto event = record.decode();
    EXPECT_EQ(utf8(event->getEnclosureSerialNumber()), std::string(64, 'E'));
    EXPECT_EQ(utf8(event->getControllerSerialNumber()), "A\xC3\xA9????Z");
}

TEST(Header, CodesWithoutNamesAreTracedAndShownAsNumbers) {
    RecordBuilder record(32, 7);
    record.severity(4).category(15);
    CaptureTrace trace;
    const auto event = record.decode();
    EXPECT_EQ(utf8(event->getSource()), "32");
    EXPECT_EQ(utf8(event->getCategory()), "15");
    EXPECT_EQ(utf8(event->getEventType()), "Unknown");
    EXPECT_EQ(
        trace.lines(),
        (std::vector<std::string>{
            "Avrel_Event:176               :----: Avrel_Event::sourceFromEmpValue() has no case "
            "for source # 32",
            "Avrel_Event:303               :----: Avrel_Event::categoryFromEmpValue() has no case "
            "for category # 15",
            "Avrel_Event:367               :----: Avrel_Event::eventTypeFromEmpValue() has no case "
            "for Event Type # 4",
        }));
}

TEST(Header, LengthMismatchIsTracedAndDecoded) {
    RecordBuilder record(11, 7);
    record.payloadLength(65535);
    CaptureTrace trace;
    const auto event = record.decode();
    EXPECT_EQ(utf8(event->getSource()), "MIP Local");
    ASSERT_EQ(trace.lines().size(), 3u);
    EXPECT_EQ(trace.lines()[0], "Avrel_Event:155               :----: Avrel_Event constructed with "
                                "len=152, but evStructLength=65535");
    EXPECT_EQ(trace.lines()[1], "Avrel_Event:156               :----: Contents of Event data is:");
    EXPECT_EQ(trace.lines()[2], "Avrel_Event:157               :----: " + utf8(event->str()));
}

TEST(Header, NullRecordGivesAnEmptyEvent) {
    const Avrel_Event event(nullptr, 5);
    EXPECT_EQ(utf8(event.str()),
              "Enclosure Ser#: '', Card Ser#: '', Slot: 0, Log Instance # 0, Sequence ID=0, "
              "Timestamp=0, Source: '', Category: '', EventType=0, EventID: '', Summary: '', "
              "Body: ''");
}

TEST(Header, EveryNameOnce) {
    SuppressTrace quiet;
    const Avrel_Event event(nullptr, 0);
    const auto name = [&](unsigned i) { return utf8(event.sourceFromEmpValue(i)); };
    EXPECT_EQ(name(0), "iSCSI 1");
    EXPECT_EQ(name(10), "VPI");
    EXPECT_EQ(name(22), "ICS");
    EXPECT_EQ(name(33), "ESA");
    EXPECT_EQ(name(255), "255");
    EXPECT_EQ(utf8(event.categoryFromEmpValue(4)), "Device");
    EXPECT_EQ(utf8(event.categoryFromEmpValue(14)), "Task");
    EXPECT_EQ(utf8(event.categoryFromEmpValue(0)), "0");
    std::set<std::string> names;
    for (unsigned i = 0; i < 34; ++i)
        names.insert(name(i));
    EXPECT_EQ(names.size(), 34u);
}

// ---- entries
// -------------------------------------------------------------------------------------

TEST(Entries, TagsValuesAndTrailingBackslashes) {
    AvrelEvent event(nullptr, 0);
    char plain[] = "Tag", one[] = "Tag\\", two[] = "Tag\\\\";
    char number[] = "%d-%s", text[] = "%s";
    event.addEntry(plain, number, -5, "x\\");
    event.addEntry(one, text, "v");
    event.addEntry(two, text, "v\\\\");
    EXPECT_STREQ(one, "Tag.");
    char raw[] = "raw\xFF";
    event.appendBody(raw);
    EXPECT_EQ(utf8(event.getBody()), "<Tag>-5-x.</Tag><Tag.>v</Tag.><Tag\\\\>v\\\\</Tag\\\\>raw?");
}

TEST(Entries, LongOnesStayWhole) {
    AvrelEvent event(nullptr, 0);
    char tag[] = "T", text[] = "%s";
    std::string body;
    for (std::size_t n : {2038u, 2039u, 2040u, 2047u, 2048u, 70000u}) {
        const std::string value = std::string(n - 1, 'x') + '\\';
        event.addEntry(tag, text, value.c_str());
        body += "<T>" + std::string(n - 1, 'x') + ".</T>";
    }
    EXPECT_EQ(utf8(event.getBody()), body);
}

// ---- numbers, dumps, elements
// ----------------------------------------------------------------------

TEST(Formats, Numbers) {
    EXPECT_EQ(StringFormat::hex(255, 2), "0xff");
    EXPECT_EQ(StringFormat::hex(4660, 2), "0x1234");
    EXPECT_EQ(StringFormat::hex(0, 0, 8), "0x00000000");
    EXPECT_EQ(StringFormat::hex(1, 0, 20), "0x00000000000100000000");
    EXPECT_EQ(StringFormat::hex(0, 0), "0x0");
    EXPECT_EQ(StringFormat::decimal(0xFFFFFFFFu, 0xFFFFFFFFu), "18446744073709551615");
    EXPECT_EQ(StringFormat::decimal(1, 0), "4294967296");
    for (const char* number :
         {"0", "9", "10", "99", "100", "9999", "10000", "99999999", "100000000", "999999999",
          "1000000000", "4294967295", "4294967296", "9999999999999999", "10000000000000000",
          "12345678900000000", "18446744073709551615"})
        EXPECT_EQ(StringFormat::decimal(std::stoull(number)), number);
}

TEST(Formats, Elements) {
    XmlString xml;
    xml.addHexElement("a", static_cast<unsigned char>(10));
    xml.addHexElement("b", static_cast<unsigned short>(10));
    xml.addHexElement("c", 10u);
    xml.addHexElement("d", 1ull);
    xml.addHexElement("e", 1ull << 32);
    xml.addHexElement("f", 1u, 2u);
    xml.addDecimalElement("g", 4000000000u);
    xml.addStringElement("h", "a<b");
    EXPECT_EQ(xml, "<a>0x0a</a><b>0x000a</b><c>0x0000000a</c><d>0x00000001</d>"
                   "<e>0x100000000</e><f>0x100000002</f><g>4000000000</g><h>a<b</h>");
}

TEST(Formats, Dumps) {
    std::string bytes;
    for (char c = 0; c < 20; ++c)
        bytes += c;
    EXPECT_EQ(utf8(Avrel_Event::hexifiedStringForBody(bytes.data(), 20)),
              "0x0000=0001020304050607 | 08090A0B0C0D0E0F;0x0010=10111213 | ;");
    EXPECT_EQ(utf8(Avrel_Event::hexifiedStringForBody(bytes.data(), 8)),
              "0x0000=0001020304050607 | ;");
    EXPECT_EQ(utf8(Avrel_Event::hexifiedStringForBody(bytes.data(), 0)), "");
    const std::string large(65536 + 1, '\xAB');
    const std::string dump = utf8(Avrel_Event::hexifiedStringForBody(large.data(), 65537));
    EXPECT_TRUE(dump.ends_with(";0x10000=AB | ;"));
    char out[8] = "xxxxxxx";
    Avrel_Event::hexified(out, "\xAB\x01", 2);
    EXPECT_STREQ(out, "AB01");
    Avrel_Event::hexified(out, "\xAB", -1);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(utf8(Avrel_Event::xmlize("t", "a&b")), "<t>a&b</t>");
    EXPECT_EQ(utf8(Avrel_Event::xmlizeString("t", "")), "<t></t>");
    EXPECT_EQ(utf8(Avrel_Event::xmlizeString("\xFFt\xC3\xA9", "v")), "<?t\xC3\xA9>v</?t\xC3\xA9>");
}

TEST(Formats, TagNames) {
    EXPECT_EQ(CMAPMessageHeader::cmapXmlTagNameFix("1 Fan_r-\xE9"), "__Fan_r__");
    EXPECT_EQ(CMAPMessageHeader::cmapXmlTagNameFix(""), "");
    EXPECT_EQ(CMAPMessageHeader::cmapXmlTagNameFix(nullptr), "");
    char key[] = "Fan 1 (rear)";
    Avrel_Event::makeSafeKeyname(key, 12);
    EXPECT_STREQ(key, "Fan_1_rear");
    char unmarked[] = "a-b";
    Avrel_Event::makeSafeKeyname(unmarked, 0);
    EXPECT_STREQ(unmarked, "abb");
    char nuls[] = "a\0b\tc";
    Avrel_Event::makeSafeKeyname(nuls, 5);
    EXPECT_STREQ(nuls, "ab_c");
}

TEST(Safe, Texts) {
    const struct {
        std::string_view in, out;
    } cases[] = {
        {"", ""},
        {"a=b&c", "a: b?c"},
        {"aZ09 \n\t:.,-/#_()[]\"'", "aZ09 \n\t:.,-/#_()[]\"'"},
        {"~!@$%^*+;{}|\\`\x7F\x80\xFF\r", "??????????????????"},
        {std::string_view("a\0b", 3), "a?b"},
        {"<T>a&b</T>", "<T>a?b</T>"},
        {"<T a=1>x=y</T a=1>", "<T a=1>x: y</T a=1>"},
        {"x<T>never closed=", "x?T?never closed: "},
        {"<T></T>", "<T></T>"},
        {"<T>a</>b&", "<T>a</>b?"},
        {"<A><B>&</B></A>", "<A><B>?</B></A>"},
        {"<A><B>&</A>", "<A>?B?\?</A>"},
        {"<A>x</AB>", "<A>x</AB?"}, // what follows the name passes for the bracket
        {"<A>x</A", "?A?x?/A"},
        {"<>x>&</>x>", "<>x>?</>x?"},
        {"<>", "??"},
        {"<", "?"},
        {"a>b", "a?b"},
        {"<A>1</A><A>2</A>", "<A>1</A><A>2</A>"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(safe(c.in), c.out) << c.in;
    EXPECT_EQ(utf8(Avrel_Event::makeSafeString("a=\0b", 0)), "a: ");
    EXPECT_EQ(utf8(Avrel_Event::makeSafeString("a=b", -1)), "");
}

// Megabytes of what would show a stack or a square: tags that never close, of one name and of many,
// and elements within elements, each with its own name.
TEST(Safe, HostileNesting) {
    std::string open, expected, opened, closed, text;
    for (int i = 0; i < 1 << 18; ++i) {
        open += "<a>";
        expected += "?a?";
        const std::string name = std::to_string(i) + "-";
        opened += "<" + name + ">";
        text += "?" + name + "?";
        closed += ">" + std::string(name.rbegin(), name.rend()) + "/<";
    }
    std::reverse(closed.begin(), closed.end());
    EXPECT_TRUE(safe(open) == expected);
    EXPECT_TRUE(safe(open + "</a>") == "<a>" + expected.substr(3) + "</a>");
    EXPECT_TRUE(safe(opened + "&" + closed) == opened + "?" + closed);
    EXPECT_TRUE(safe(opened) == text);
    EXPECT_TRUE(safe(opened + "</0->") == "<0->" + text.substr(4) + "</0->");
    const std::string tag = std::string(5000, 'a');
    EXPECT_EQ(safe("<" + tag + ">&</" + tag + ">"), "<" + tag + ">?</" + tag + ">");
}

// ---- the message
// -----------------------------------------------------------------------------------

TEST(Message, HeadersDrawHandlesAndCopiesDoNot) {
    const std::uint32_t first = CMAPMessageHeader::nextHandleValue;
    CMAPMessageHeader header;
    EXPECT_EQ(header.getHandle(), first);
    EXPECT_EQ(header.getMessageLength(), 64);
    const MPUEvent message(header); // default-initialises its own header first
    EXPECT_EQ(CMAPMessageHeader::nextHandleValue, first + 2);
    EXPECT_EQ(message.getCMAPMessageHeader().getHandle(), first);
    EXPECT_EQ(CMAPMessageHeader(header.wireBytes()).getHandle(), first);
}

TEST(Message, StrShowsHeaderAndRecord) {
    RecordBuilder record(23, 2000);
    record.severity(3).category(2).version(9).sequence(0xFFFFFFFFu).timestamp(8);
    const auto bytes = record.u32(0, 1).record();
    CMAPMessageHeader header;
    EXPECT_EQ(utf8(MPUEvent(header).str()), utf8(header.str()) + ", <No MMSG Data!>");
    header.setMessageLength(static_cast<Uint16>(64 + bytes.size()));
    Avrel_memory_istream in(bytes.data(), bytes.size());
    EXPECT_EQ(utf8(MPUEvent(header, in).str()),
              utf8(header.str()) + ", SequenceId: -1, time: 8, len: 4, source: 23, type: 3, "
                                   "category: 2, eventId (9): 2000");
}

TEST(Message, CopiesAndMoves) {
    static_assert(std::is_nothrow_move_constructible_v<MPUEvent>);
    static_assert(std::is_nothrow_move_assignable_v<MPUEvent>);
    SuppressTrace quiet;
    const auto bytes = RecordBuilder(11, 5).sequence(77).record();
    CMAPMessageHeader header;
    const MPUEvent empty(header);
    header.setMessageLength(static_cast<Uint16>(64 + bytes.size()));
    Avrel_memory_istream in(bytes.data(), bytes.size());
    const MPUEvent message(header, in);
    // The sequence number that the message decodes to, none for no event.
    const auto sequence = [](const MPUEvent& m) -> std::optional<unsigned> {
        const std::unique_ptr<Avrel_Event> event(m.create_Avrel_Event());
        return event ? std::optional(event->getSequenceID()) : std::nullopt;
    };
    EXPECT_EQ(sequence(empty), std::nullopt);

    MPUEvent copy(message);
    EXPECT_EQ(sequence(copy), 77u);
    copy = *&copy;
    EXPECT_EQ(sequence(copy), 77u);
    MPUEvent moved(std::move(copy));
    EXPECT_EQ(sequence(moved), 77u);
    EXPECT_EQ(sequence(copy), std::nullopt);
    EXPECT_EQ(copy.getCMAPMessageHeader().getMessageLength(), 64 + bytes.size());
    copy = message;
    EXPECT_EQ(sequence(copy), 77u);
    EXPECT_EQ(sequence(message), 77u);

    // Of a message without a record a copy has an empty one.
    EXPECT_EQ(sequence(MPUEvent(empty)), 0u);
    copy = empty;
    EXPECT_EQ(sequence(copy), 0u);
    EXPECT_EQ(copy.getCMAPMessageHeader().getMessageLength(), 64);
    MPUEvent none(header);
    MPUEvent stillNone(std::move(none));
    EXPECT_EQ(sequence(stillNone), std::nullopt);
    moved = std::move(stillNone);
    EXPECT_EQ(sequence(moved), std::nullopt);
}

// A stream that says something else than it does, or throws in the middle.
class FailingStream : public Avrel_istream {
public:
    static constexpr int kThrows = -2;

    explicit FailingStream(int delivered) : delivered_(delivered) {}
    void read(char* buffer, unsigned int count) override {
        std::fill_n(buffer, count / 2, '\1');
        if (delivered_ == kThrows)
            throw 1;
        std::fill_n(buffer, count, '\1');
    }
    int gcount() const override { return delivered_; }

private:
    int delivered_;
};

TEST(Message, ShortAndFailedReadsThrow) {
    SuppressTrace quiet;
    CMAPMessageHeader header;
    header.setMessageLength(64 + 160);
    const struct {
        int delivered;
        unsigned int entry;
    } cases[] = {{-1, 28}, {159, 30}, {0, 30}, {161, 30}};
    for (const auto& c : cases) {
        FailingStream in(c.delivered);
        MPUEvent message(header);
        try {
            message.deserialize(in);
            ADD_FAILURE() << c.delivered;
        } catch (const CMAPOperationFailedException& e) {
            EXPECT_EQ(e.getErrorCode(), CMAPErrorCodes::getCode(c.entry));
            EXPECT_EQ(utf8(e.getMessage()), utf8(CMAPErrorCodes::getTextForIndex(c.entry)));
            EXPECT_EQ(e.getCode(), CIM_ERR_FAILED);
        }
        const std::unique_ptr<Avrel_Event> event(message.create_Avrel_Event());
        EXPECT_NE(event, nullptr);
        EXPECT_THROW(MPUEvent(header, in), CIMOperationFailedException);
    }
}

TEST(Message, AStreamThatThrowsChangesNothing) {
    const auto bytes = RecordBuilder(11, 5).sequence(77).record();
    CMAPMessageHeader header;
    header.setMessageLength(static_cast<Uint16>(64 + bytes.size()));
    Avrel_memory_istream in(bytes.data(), bytes.size());
    MPUEvent read(header, in);
    MPUEvent unread(header);
    header.setMessageLength(0xFFFF);
    FailingStream failing(FailingStream::kThrows);
    for (MPUEvent* message : {&read, &unread}) {
        message->setCMAPMessageHeader(header);
        EXPECT_THROW(message->deserialize(failing), int);
    }
    EXPECT_EQ(unread.create_Avrel_Event(), nullptr);
    EXPECT_EQ(std::unique_ptr<Avrel_Event>(read.create_Avrel_Event())->getSequenceID(), 77u);
}

TEST(Message, EveryLengthDecodesWithoutReadingOutside) {
    SuppressTrace quiet;
    const auto bytes = RecordBuilder(23, 2020).severity(3).text(0, std::string(300, 'x')).record();
    for (std::size_t n = 0; n <= bytes.size(); ++n) {
        CMAPMessageHeader header;
        header.setMessageLength(static_cast<Uint16>(64 + n));
        Avrel_memory_istream in(bytes.data(), n);
        const MPUEvent message(header, in);
        const std::unique_ptr<Avrel_Event> event(message.create_Avrel_Event());
        ASSERT_NE(event, nullptr) << n;
        ASSERT_EQ(utf8(event->getSource()), n > 146 ? "SCC" : "iSCSI 1") << n;
    }
    CMAPMessageHeader header;
    header.setMessageLength(63); // a length below the header's own counts modulo 65536
    Avrel_memory_istream in(bytes.data(), bytes.size());
    EXPECT_THROW(MPUEvent(header, in), CMAPOperationFailedException);
}

// ---- dispatch
// ----------------------------------------------------------------------------------------

Avrel_Event* throwing(const EmpEvLogMsg_s*, int) {
    throw 42;
}
Avrel_Event* custom(const EmpEvLogMsg_s* record, int length) {
    std::unique_ptr<Avrel_Event> event(new Avrel_Event(record, static_cast<unsigned int>(length)));
    event->setSummary("custom");
    return event.release();
}

TEST(Dispatch, EverySourceByteGivesAnEvent) {
    SuppressTrace quiet;
    for (int source = 0; source < 256; ++source) {
        const auto event =
            RecordBuilder(static_cast<std::uint8_t>(source), 9).bytes(0, "abc").decode();
        ASSERT_NE(event, nullptr);
        EXPECT_EQ(utf8(event->getSource()),
                  utf8(event->sourceFromEmpValue(static_cast<unsigned>(source))));
        for (int plain : {1, 4, 11, 32, 34, 255})
            if (source == plain) {
                EXPECT_EQ(utf8(event->getSummary()), "") << source;
                EXPECT_EQ(utf8(event->getBody()), "") << source;
                EXPECT_EQ(utf8(event->getEventID()), "9") << source;
            }
    }
}

TEST(Dispatch, ADecoderThatThrowsCostsOnlyItsText) {
    ASSERT_TRUE(MPUEvent::registerDecoder(26, throwing));
    RecordBuilder record(26, 4);
    record.sequence(12).bytes(0, "\xAB\xCD");
    const auto event = record.decode();
    ASSERT_TRUE(MPUEvent::registerDecoder(26, nullptr));
    EXPECT_EQ(event->getSequenceID(), 12u);
    EXPECT_EQ(utf8(event->getSource()), "ESM");
    EXPECT_EQ(utf8(event->getSummary()), "XMLizer Failure");
    const std::string body = utf8(event->getBody());
    EXPECT_TRUE(body.starts_with(
        "Exception in XMLizer for EventLog entry?EventLog entry could not be parsed?Source: 0x1a?"
        "EventLog entry (message payload) binary buffer dump?0x0000: 454E432D31000000 ? "))
        << body;
    EXPECT_TRUE(body.ends_with("?0x0090: 00021A0101000004 ? ABCD?")) << body;
}

// A cancelled thread unwinds through the dispatcher, which must not take that for a failed decoder.
TEST(Dispatch, ADecodingThreadCanBeCancelled) {
    ASSERT_TRUE(MPUEvent::registerDecoder(26, [](const EmpEvLogMsg_s*, int) -> Avrel_Event* {
        pthread_cancel(pthread_self());
        pthread_testcancel();
        return nullptr;
    }));
    pthread_t thread;
    ASSERT_EQ(pthread_create(
                  &thread, nullptr,
                  [](void*) -> void* {
                      RecordBuilder(26, 4).decode();
                      return nullptr;
                  },
                  nullptr),
              0);
    void* result = nullptr;
    pthread_join(thread, &result);
    EXPECT_EQ(result, PTHREAD_CANCELED);
    ASSERT_TRUE(MPUEvent::registerDecoder(26, nullptr));
}

TEST(Dispatch, DecodersForModulesWithoutOne) {
    SuppressTrace quiet;
    const auto summary = [](unsigned source) {
        return utf8(RecordBuilder(source, 1).decode()->getSummary());
    };
    for (const std::uint8_t source :
         std::initializer_list<std::uint8_t>{23, 19, 13}) { // of its own, like another one, dumped
        const std::string before = summary(source);
        EXPECT_FALSE(MPUEvent::registerDecoder(source, custom));
        EXPECT_EQ(summary(source), before);
    }
    ASSERT_TRUE(MPUEvent::registerDecoder(200, custom));
    EXPECT_EQ(summary(200), "custom");
    ASSERT_TRUE(MPUEvent::registerDecoder(200, nullptr));
    EXPECT_EQ(summary(200), "");
}

TEST(Dispatch, ModulesDecodedLikeOthers) {
    SuppressTrace quiet;
    const auto summary = [](unsigned source) {
        return utf8(RecordBuilder(source, 1).decode()->getSummary());
    };
    const auto other = [](const EmpEvLogMsg_s* record, int length) -> Avrel_Event* {
        std::unique_ptr<Avrel_Event> event(custom(record, length));
        event->setSummary("other");
        return event.release();
    };
    for (const auto& [source, like] : {std::pair(1u, 0u), std::pair(4u, 3u)}) {
        const auto set = [](unsigned module, DecoderFactory factory) {
            ASSERT_TRUE(MPUEvent::registerDecoder(static_cast<unsigned char>(module), factory));
        };
        set(like, custom);
        EXPECT_EQ(summary(source), "custom");
        set(source, other);
        EXPECT_EQ(summary(source), "other");
        EXPECT_EQ(summary(like), "custom");
        set(like, nullptr);
        EXPECT_EQ(summary(like), "");
        EXPECT_EQ(summary(source), "other");
        set(source, nullptr);
        EXPECT_EQ(summary(source), "");
    }
}

TEST(Unhandled, NamedAndDumped) {
    const struct {
        std::uint8_t source;
        const char* module;
        const char* line;
    } cases[] = {{12, "ICHAR", "98"},   {13, "OB0", "102"},   {14, "OB1", "102"},
                 {15, "HACCMP", "102"}, {16, "MSMMP", "102"}, {21, "DRIVEADMP", "98"},
                 {28, "SNMPMP", "102"}};
    for (const auto& c : cases) {
        CaptureTrace trace;
        const auto event = RecordBuilder(c.source, 26).bytes(0, "\x01\x02\xFF").decode();
        EXPECT_EQ(utf8(event->getSummary()), std::string("Unhandled Event by ") + c.module);
        EXPECT_EQ(utf8(event->getBody()), "<Hex>0102FF</Hex>");
        EXPECT_EQ(utf8(event->getEventID()), "26");
        std::string where = std::string(c.module) + "_Event:" + c.line;
        where.resize(30, ' ');
        EXPECT_EQ(trace.lines(), std::vector<std::string>{where + ":----: Unknown EventID: 0x26"});
    }
    EXPECT_EQ(utf8(RecordBuilder(13, 0).decode()->getBody()), "<Hex></Hex>");
    SuppressTrace quiet;
    EXPECT_EQ(utf8(RecordBuilder(13, 0).bytes(0, "\x7F").payloadLength(3).decode()->getBody()),
              "<Hex>7F0000</Hex>");
}

} // namespace
} // namespace Pegasus::test
