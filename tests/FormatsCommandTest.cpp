// The formats that programs read, and their schemas.
#include "tests/CommandFixture.h"

#include "formats/Printer.h"
#include "formats/Schema.h"
#include "tools/catalogue/Modules.h"

#include <nlohmann/json.hpp>
#include <sstream>
#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validator.hpp>

namespace Pegasus::test {

namespace {

using nlohmann::ordered_json;

class FormatsCommandTest : public CommandTest {
protected:
    // Whether xmllint accepts the file; "" or what it says.
    std::string xmllint(const std::string& file) {
        return shell("xmllint --noout --schema '" MPUEVENT_DOCS_DIR "events.xsd' " + file +
                     " 2>said") == 0
                   ? ""
                   : read("said");
    }
};

std::string printed(const char* format, bool fields, const std::string& body) {
    Avrel_Event event(nullptr, 0);
    event.setBody(mpu::toString(body));
    mpu::BodyWriter out;
    formats::PrintOptions options;
    options.fields = fields;
    for (const formats::Format& row : formats::kFormats)
        if (row.name == std::string_view(format))
            row.make(options)->print(formats::EventDecoder().take(event), out);
    return std::string(out.view());
}

ordered_json fieldsOf(const std::string& body) {
    return ordered_json::parse(printed("json", true, body)).at("fields");
}

std::string committedSchema() {
    std::ifstream file(MPUEVENT_DOCS_DIR "events.schema.json");
    return {std::istreambuf_iterator<char>(file), {}};
}

// Judges by the committed schema.
class Judge {
public:
    Judge() {
        const nlohmann::json text = nlohmann::json::parse(committedSchema());
        valijson::SchemaParser().populateSchema(valijson::adapters::NlohmannJsonAdapter(text),
                                                schema_);
    }
    bool accepts(const nlohmann::json& event) {
        return valijson::Validator().validate(
            schema_, valijson::adapters::NlohmannJsonAdapter(event), nullptr);
    }

private:
    valijson::Schema schema_;
};

} // namespace

TEST_F(FormatsCommandTest, Fields) {
    EXPECT_EQ(fieldsOf(""), ordered_json::array());
    EXPECT_EQ(fieldsOf("<A>1</A> <A>x &\"</A>"),
              (ordered_json{{{"name", "A"}, {"value", "1"}}, {{"name", "A"}, {"value", "x &\""}}}));
    EXPECT_EQ(fieldsOf("a <G><B></B><H><C>2</C></H></G>"),
              ordered_json::parse(R"([{"name":"","value":"a"},
                  {"name":"G","fields":[{"name":"B","value":""},
                      {"name":"H","fields":[{"name":"C","value":"2"}]}]}])"));
    EXPECT_EQ(fieldsOf("<A>1").dump(), R"([{"name":"","value":"<A>1"}])");
    const Result wrong = run("decode --fields --format line");
    EXPECT_EQ(wrong.status, 2);
    EXPECT_EQ(wrong.err,
              "mpuevent: --fields: not with --format line; use one of json, xml, csv, otlp\n");
}

TEST_F(FormatsCommandTest, Xml) {
    write("input", messageOf(RecordBuilder(23, 101)
                                 .enclosure("<&>\"'\x1b\r\t\xef\xbf\xbf")
                                 .sequence(7)
                                 .u32(0, 0x41424344)));
    const Result result = run("decode --format xml --fields --output out.xml");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(read("out.xml"),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<events formatVersion=\"1\">\n"
              "<event>\n"
              "  <enclosureSerialNumber>&lt;&amp;&gt;&quot;&#39;\xef\xbf\xbd&#13;\t\xef\xbf\xbd"
              "</enclosureSerialNumber>\n"
              "  <controllerSerialNumber>CTL-1</controllerSerialNumber>\n"
              "  <controllerSlotID>0</controllerSlotID>\n"
              "  <eventLogInstanceNumber>0</eventLogInstanceNumber>\n"
              "  <sequenceID>7</sequenceID>\n"
              "  <timestamp>0</timestamp>\n"
              "  <source>SCC</source>\n"
              "  <category>System</category>\n"
              "  <eventType>1</eventType>\n"
              "  <eventTypeText>Informational</eventTypeText>\n"
              "  <eventID>101</eventID>\n"
              "  <summary>***UNKNOWN EventID***</summary>\n"
              "  <body>&lt;Hex&gt;41424344&lt;/Hex&gt;</body>\n"
              "  <layout>documented</layout>\n"
              "  <missingBytes>0</missingBytes>\n"
              "  <unreadBytes>0</unreadBytes>\n"
              "  <fields>\n"
              "    <field name=\"Hex\">41424344</field>\n"
              "  </fields>\n"
              "</event>\n"
              "</events>\n");
    EXPECT_EQ(xmllint("out.xml"), "");

    write("input", "");
    write("empty.xml", run("decode --format xml").out);
    EXPECT_EQ(xmllint("empty.xml"), "");
}

TEST_F(FormatsCommandTest, XmlIsValid) {
    ASSERT_EQ(run("sample --count 300 --output samples").status, 0);
    ASSERT_EQ(run("decode --format xml samples --output plain.xml").status, 0);
    ASSERT_EQ(run("decode --format xml --fields --raw --epoch unix --tz +01:00 --origin samples "
                  "--output fields.xml")
                  .status,
              0);
    EXPECT_EQ(xmllint("plain.xml"), "");
    EXPECT_EQ(xmllint("fields.xml"), "");
    // The check does refuse.
    std::string wrong = read("plain.xml");
    const std::size_t slot = wrong.find("<controllerSlotID>");
    write("wrong.xml", wrong.insert(slot + 18, "-"));
    EXPECT_NE(xmllint("wrong.xml"), "");

    // All bytes, in a text that passes as it is.
    std::string text;
    for (int c = 1; c < 256; ++c)
        text.push_back(static_cast<char>(c));
    write("input", messageOf(RecordBuilder(23, 101)
                                 .enclosure(text.substr(0, 60))
                                 .controller("]]>" + text.substr(60, 60))) +
                       messageOf(RecordBuilder(28, 7)
                                     .enclosure("\xef\xbf\xbe\xf0\x9f\x98\x80")
                                     .controller("<!--<![CDATA[<?a?>&lt;")));
    ASSERT_EQ(run("decode --format xml --fields --output hostile.xml").status, 0);
    EXPECT_EQ(xmllint("hostile.xml"), "");
    EXPECT_EQ(printed("xml", true, "<G><A>1</A> \x01</G>")
                  .substr(printed("xml", true, "<G><A>1</A> \x01</G>").find("  <fields>")),
              "  <fields>\n"
              "    <group name=\"G\">\n"
              "      <field name=\"A\">1</field>\n"
              "      <field name=\"\">\xef\xbf\xbd</field>\n"
              "    </group>\n"
              "  </fields>\n"
              "</event>\n");
}

TEST_F(FormatsCommandTest, Csv) {
    write("input", messageOf(RecordBuilder(23, 101)
                                 .enclosure("a,b\"c")
                                 .controller("x\r\ny")
                                 .slot(0xFFFFFFFF)
                                 .u32(0, 0x41424344)));
    const std::string header =
        "enclosureSerialNumber,controllerSerialNumber,controllerSlotID,eventLogInstanceNumber,"
        "sequenceID,timestamp,source,category,eventType,eventTypeText,eventID,summary,body,"
        "layout,missingBytes,unreadBytes";
    const std::string line = "\"a,b\"\"c\",\"x\r\ny\",4294967295,0,0,0,SCC,System,1,Informational,"
                             "101,***UNKNOWN EventID***,<Hex>41424344</Hex>,documented,0,0";
    EXPECT_EQ(run("decode --format csv").out, header + "\r\n" + line + "\r\n");
    EXPECT_EQ(run("decode --format csv --fields").out,
              header + ",fields\r\n" + line +
                  ",\"[{\"\"name\"\":\"\"Hex\"\",\"\"value\"\":\"\"41424344\"\"}]\"\r\n");
    EXPECT_EQ(printed("csv", false, std::string("a\0b", 3)),
              ",,0,0,0,0,,,0,Unknown,,,\"a\xef\xbf\xbd"
              "b\",documented,0,0\r\n");
}

TEST_F(FormatsCommandTest, Brief) {
    write(
        "input",
        messageOf(RecordBuilder(23, 101).sequence(4294967295).timestamp(1257177600).severity(103)) +
            messageOf(RecordBuilder(77, 5).controller("").timestamp(9)));
    EXPECT_EQ(run("decode --format brief").out,
              "1257177600  4294967295  CTL-1       Eng Error          SCC          101: ***UNKNOWN "
              "EventID***\n"
              "9           0           -           Informational      77           5\n");
}

TEST_F(FormatsCommandTest, Columns) {
    const auto lines = [](std::uint32_t n, std::string_view text) { // elements Text1, Text2
        return messageOf(RecordBuilder(18, 1).sequence(n).text(0, text));
    };
    write("input", lines(1, "abc\ndef") + lines(2, "longer than ten, \"quoted\"") +
                       messageOf(RecordBuilder(18, 2).sequence(3).text(0, "t").u8(12, 200)));
    EXPECT_EQ(run("decode --format csv --columns sequenceID,Text1,Message_type").out,
              "sequenceID,Text1,Message_type\r\n"
              "1,abc,\r\n"
              "2,\"longer than ten, \"\"quoted\"\"\",\r\n"
              "3,,200\r\n");
    EXPECT_EQ(run("decode --format brief --columns Text1 --columns eventTypeText,sequenceID").out,
              "abc         Informational      1\n"
              "longer than ten, \"quoted\"  Informational      2\n"
              "-           Informational      3\n");
    // Two elements of one name.
    EXPECT_EQ(run("decode --format csv --columns Drive,Sense_Key --where "
                  "sequenceID=46 " MPUEVENT_SAMPLES_DIR "device-manager.hex")
                  .out,
              "Drive,Sense_Key\r\n12,Medium Error; 0x03\r\n");
    const Result wrong = run("decode --columns Drive --format json");
    EXPECT_EQ(wrong.status, 2);
    EXPECT_EQ(wrong.err, "mpuevent: --columns: not with --format json; use one of brief, csv\n");
}

TEST_F(FormatsCommandTest, JsonSchema) {
    SuppressTrace quiet;
    EXPECT_TRUE(committedSchema() == formats::jsonSchema(mpu::modules()))
        << "docs/events.schema.json: run scripts/renew";
    EXPECT_EQ(run("formats --format json-schema").out, committedSchema());

    Judge judge;
    const auto good = nlohmann::json::parse(printed("json", true, "<G><A>1</A></G> x"));
    const auto without = [](nlohmann::json event, const char* path) {
        const nlohmann::json::json_pointer pointer(path);
        event.at(pointer.parent_pointer()).erase(pointer.back());
        return event;
    };
    const auto with = [](nlohmann::json event, const char* path, const nlohmann::json& value) {
        event[nlohmann::json::json_pointer(path)] = value;
        return event;
    };
    nlohmann::json named = with(with(good, "/source", "SCC"), "/category", "System");
    EXPECT_TRUE(judge.accepts(named));
    EXPECT_TRUE(judge.accepts(with(named, "/source", "77")));
    EXPECT_TRUE(judge.accepts(with(named, "/later", 1)));
    const nlohmann::json wrong[] = {
        with(named, "/offset", -1),
        without(named, "/summary"),
        with(named, "/formatVersion", 2),
        with(named, "/controllerSlotID", -1),
        with(named, "/timestamp", 4294967296),
        with(named, "/sequenceID", "1"),
        with(named, "/source", "SCCP"),
        with(named, "/category", ""),
        with(named, "/eventType", 4),
        with(named, "/eventTypeText", "Fatal"),
        with(named, "/body", nullptr),
        with(named, "/fields", "A"),
        without(named, "/fields/0/name"),
        without(named, "/fields/1/value"),
        with(named, "/fields/0/fields/0/value", 1),
        with(named, "/fields/0/value", ""),
        nlohmann::json::array(),
    };
    for (const nlohmann::json& event : wrong)
        EXPECT_FALSE(judge.accepts(event)) << event;

    ASSERT_EQ(run("sample --count 300 --output samples").status, 0);
    std::stringstream lines(run("decode --format json --fields --epoch unix --origin samples").out);
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count)
        EXPECT_TRUE(judge.accepts(nlohmann::json::parse(line))) << line;
    EXPECT_EQ(count, 300);
}

// scripts/test-cluster asks a server.
TEST_F(FormatsCommandTest, ClickHouseTables) {
    const std::string sql = run("formats --format clickhouse-sql").out;
    write("input", message(1));
    const auto event = ordered_json::parse(run("decode --format json --epoch unix --origin").out);
    for (const auto& [key, value] : event.items()) {
        const std::string column = "\n    " + key + (value.is_string() ? " String," : " UInt");
        EXPECT_NE(sql.find(column), sql.rfind(column)) << column; // of one server, and of all
    }
    for (const char* part :
         {"    sequenceID UInt32, -- Running number within the log\n", "    offset UInt64,\n",
          "ORDER BY (controllerSerialNumber, eventLogInstanceNumber, sequenceID, contentHash);",
          "sipHash64(enclosureSerialNumber, controllerSerialNumber, controllerSlotID, "
          "eventLogInstanceNumber, sequenceID, timestamp, source, category, eventType, "
          "eventTypeText, eventID, summary, body, layout, missingBytes, unreadBytes)\n",
          "multiIf(eventType IN (1, 101), 1, eventType IN (2, 102), 2, eventType IN (3, 103), 3, "
          "0)"})
        EXPECT_NE(sql.find(part), sql.npos) << part;
}

} // namespace Pegasus::test
