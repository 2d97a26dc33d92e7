// The formats of `mpuevent decode`, on events as a decoder might leave them.
#include "formats/Printer.h"

#include <gtest/gtest.h>
#include <iterator>
#include <nlohmann/json.hpp>

namespace Pegasus::test {

namespace {

using namespace formats;

String units(std::initializer_list<Uint16> all) {
    String text;
    for (const Uint16 unit : all)
        text.append(Char16(unit));
    return text;
}

std::string print(std::unique_ptr<Printer> printer, Avrel_Event& event) {
    mpu::BodyWriter out;
    printer->print(EventDecoder().take(event), out);
    return std::string(out.view());
}

// The lines below "Body:".
std::string body(const std::string& text) {
    Avrel_Event event(nullptr, 0);
    event.setBody(String(text.c_str()));
    const std::string all = print(makeTextPrinter({}), event);
    const std::size_t at = all.find("  Body:\n");
    return at == std::string::npos ? "" : all.substr(at + 8);
}

} // namespace

TEST(TextPrinter, Event) {
    Avrel_Event event(nullptr, 0);
    event.setSequenceID(4000000000);
    event.setEventType(102);
    event.setSource("I/O Mgr");
    event.setCategory("Hardware");
    event.setEventID("Lock Event");
    event.setSummary("one\ntwo");
    event.setControllerSerialNumber("\x1b[31mred\x7f\xc2\x9b\xc3\xa9\t.");
    event.setControllerSlotID(4294967295);
    event.setEventLogInstanceNumber(5);
    event.setTimestamp(6);
    event.setBody("<A>1</A> ");
    EXPECT_EQ(print(makeTextPrinter({}), event),
              "Event 4000000000: Eng Warning, I/O Mgr, Hardware\n"
              "  Title: Lock Event\n"
              "  Summary: one\\ntwo\n"
              "  Controller: \\x1B[31mred\\x7F\\u009B\xc3\xa9\t.\n"
              "  Slot: 4294967295\n"
              "  Log: 5\n"
              "  Time: 6\n"
              "  Body:\n"
              "    A: 1\n"
              "\n");
}

TEST(TextPrinter, Body) {
    const struct {
        const char* body;
        const char* text;
    } cases[] = {
        {"", ""},
        {" \n ", ""},
        {"<A>1</A> <B></B><A>x y </A>", "    A: 1\n    B:\n    A: x y \n\n"},
        {"<G><A>1</A> <H><B>2</B></H></G> <C>3</C>",
         "    G:\n      A: 1\n      H:\n        B: 2\n    C: 3\n\n"},
        {"before <G> in <A>1</A></G> after\nlast ",
         "    before\n    G:\n      in\n      A: 1\n    after\n    last\n\n"},
        {"<T>one\ntwo\n</T>", "    T:\n      one\n      two\n\n"},
        {"<T>one\n</T>", "    T: one\n\n"},
        // What is no element is text.
        {"<A>1", "    <A>1\n\n"},
        {"1</A>", "    1</A>\n\n"},
        {"a < b <c <A>1</A>", "    a < b <c\n    A: 1\n\n"},
        {"<G><A>1</A><B></G>", "    G:\n      A: 1\n      <B>\n\n"},
        {"<A><B>1</A></B>", "    A: <B>1\n    </B>\n\n"},
        {"<></>< A>1</ A>", "    <></>< A>1</ A>\n\n"},
        {"<A\x01>1</A\x01>", "    <A\\x01>1</A\\x01>\n\n"},
        // Dumps.
        {"<Hex>00112233445566778899AABBCCDDEEFF</Hex>",
         "    Hex: 00112233445566778899AABBCCDDEEFF\n\n"},
        {"<Hex>204041427E7F8000112233445566778899AABBCCDD</Hex>",
         "    Hex:\n"
         "      0000  20404142 7E7F8000 11223344 55667788   @AB~....\"3DUfw.\n"
         "      0010  99AABBCC DD                          .....\n\n"},
        {"0x0000=0011 | 22;0x0010=33 | ;", "    0x0000=0011 | 22;\n    0x0010=33 | ;\n\n"},
        {"<D>0x0000: 0011 ? 22?0x0010: 33 ? ?</D>",
         "    D:\n      0x0000: 0011 ? 22?\n      0x0010: 33 ? ?\n\n"},
        {"<R>1;0x22</R>", "    R: 1;0x22\n\n"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(body(c.body), c.text) << c.body;
}

// Neither depth nor unclosed elements cost more than their length.
TEST(TextPrinter, HostileNesting) {
    std::string open, closed;
    for (int i = 0; i < 100000; ++i)
        open += "<a>";
    for (int i = 0; i < 100000; ++i)
        closed += "</b>";
    EXPECT_EQ(body(open + closed), "    " + open + closed + "\n\n");
    std::string nested, expected;
    for (int i = 0; i < 33; ++i)
        nested += "<a>";
    nested += "1";
    for (int i = 0; i < 33; ++i)
        nested += "</a>";
    const std::string text = body(nested);
    EXPECT_EQ(text.substr(0, text.find("a:")), "    <a>\n    ");
    EXPECT_EQ(text.substr(text.find("a: 1")), "a: 1\n    </a>\n\n");
}

TEST(LinePrinter, EscapesLineBreaks) {
    Avrel_Event event(nullptr, 0);
    event.setSummary("a\r\nb\\n");
    event.setBody("\x01");
    EXPECT_EQ(print(makeLinePrinter({}), event),
              "Enclosure Ser#: '', Card Ser#: '', Slot: 0, Log Instance # 0, Sequence ID=0, "
              "Timestamp=0, Source: '', Category: '', EventType=0, EventID: '', Summary: "
              "'a\\r\\nb\\n', Body: '\\x01'\n");
}

TEST(JsonPrinter, Event) {
    Avrel_Event event(nullptr, 0);
    event.setEnclosureSerialNumber("E\"\\/");
    event.setControllerSerialNumber("C\n\x7f");
    event.setControllerSlotID(4294967295);
    event.setEventLogInstanceNumber(2);
    event.setSequenceID(3);
    event.setTimestamp(4);
    event.setSource("SCC");
    event.setCategory("System");
    event.setEventType(103);
    event.setEventID("Title");
    event.setSummary("<&>");
    event.setBody("<A>1</A>");
    EXPECT_EQ(print(makeJsonPrinter({}), event),
              "{\"enclosureSerialNumber\":\"E\\\"\\\\/\",\"controllerSerialNumber\":\"C\\n\x7f\","
              "\"controllerSlotID\":4294967295,\"eventLogInstanceNumber\":2,\"sequenceID\":3,"
              "\"timestamp\":4,\"source\":\"SCC\",\"category\":\"System\",\"eventType\":103,"
              "\"eventTypeText\":\"Eng Error\",\"eventID\":\"Title\",\"summary\":\"<&>\","
              "\"body\":\"<A>1</A>\",\"layout\":\"documented\","
              "\"missingBytes\":0,\"unreadBytes\":0}\n");
}

// Every character at every place of the blocks in which text is converted.
TEST(JsonPrinter, Characters) {
    const struct {
        String text;
        const char* utf8;
    } characters[] = {
        {units({0x41}), "A"},
        {units({0x7F}), "\x7f"},
        {units({0x80}), "\xc2\x80"},
        {units({0x7FF}), "\xdf\xbf"},
        {units({0x800}), "\xe0\xa0\x80"},
        {units({0xFFFF}), "\xef\xbf\xbf"},
        {units({0xD800, 0xDC00}), "\xf0\x90\x80\x80"},
        {units({0xDBFF, 0xDFFF}), "\xf4\x8f\xbf\xbf"},
        {units({0xD800}), "\xef\xbf\xbd"},
        {units({0xDC00}), "\xef\xbf\xbd"},
        {units({0xD800, 0xD800, 0xDC00}), "\xef\xbf\xbd\xf0\x90\x80\x80"},
        {units({0x22}), "\""},
        {units({0x1F}), "\x1f"},
    };
    Avrel_Event event(nullptr, 0);
    const auto printer = makeJsonPrinter({});
    for (const auto& c : characters)
        for (std::size_t before = 0; before < 40; ++before)
            for (const std::size_t after : {0u, 1u, 20u}) {
                const std::string left(before, 'l'), right(after, 'r');
                String text(left.c_str());
                text.append(c.text).append(String(right.c_str()));
                event.setBody(text);
                mpu::BodyWriter out;
                printer->print(EventDecoder().take(event), out);
                ASSERT_EQ(nlohmann::json::parse(out.view()).at("body"), left + c.utf8 + right);
            }
    event.setBody(units({'a', 0, 'b'}));
    EXPECT_EQ(nlohmann::json::parse(print(makeJsonPrinter({}), event)).at("body"),
              std::string("a\0b", 3));
}

} // namespace Pegasus::test
