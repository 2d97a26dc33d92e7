// What the receivers of logs get: syslog, the journal, OpenTelemetry, Prometheus.
#include "formats/Logs.h"
#include "formats/Metrics.h"

#include <fstream>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace Pegasus::test {

namespace {

using namespace formats;
using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr char kMark[] = "\xEF\xBB\xBF"; // before a text that is not ASCII

// With the columns that an event from a capture has.
DecodedEvent event(unsigned type = 103) {
    DecodedEvent made;
    made.controllerSerialNumber = "CTL-1";
    made.controllerSlotID = 2;
    made.eventLogInstanceNumber = 3;
    made.sequenceID = 4000000000;
    made.timestamp = 60;
    made.source = "Dev Mgr";
    made.eventType = type;
    made.eventTypeText = "Eng Error";
    made.eventID = "Drive Event";
    made.summary = "Drive 7 failed";
    made.body = "<Drive>7</Drive>";
    return made;
}

std::string syslog(const DecodedEvent& of, const PrintOptions& options = {},
                   const SyslogSender& sender = {"host", "17"}) {
    mpu::BodyWriter out;
    makeSyslogPrinter(options, sender)->print(of, out);
    return std::string(out.view());
}

json record(const DecodedEvent& of, const PrintOptions& options = {}) {
    mpu::BodyWriter out;
    makeOtlpPrinter(options)->print(of, out);
    return json::parse(out.view())
        .at("resourceLogs")
        .at(0)
        .at("scopeLogs")
        .at(0)
        .at("logRecords")
        .at(0);
}

} // namespace

TEST(Syslog, Message) {
    EXPECT_EQ(syslog(event()),
              "<131>1 - host mpuevent 17 Dev_Mgr [mpuevent@32473 controllerSerialNumber=\"CTL-1\" "
              "controllerSlotID=\"2\" eventLogInstanceNumber=\"3\" sequenceID=\"4000000000\" "
              "timestamp=\"60\" source=\"Dev Mgr\" eventType=\"103\" eventTypeText=\"Eng Error\" "
              "eventID=\"Drive Event\" summary=\"Drive 7 failed\" layout=\"documented\" "
              "missingBytes=\"0\" unreadBytes=\"0\" body=\"<Drive>7</Drive>\"] "
              "Drive Event: Drive 7 failed");
    DecodedEvent dated = event(2);
    dated.time = "1970-01-01T00:01:00Z";
    dated.source = "";
    PrintOptions options;
    options.epoch = 0;
    EXPECT_THAT(syslog(dated, options, {"a\xC3\xA9 b", ""}),
                testing::StartsWith("<132>1 1970-01-01T00:01:00Z a___b mpuevent - - ["));
    const struct {
        unsigned type;
        const char* start;
    } severities[] = {{0, "<133>"}, {1, "<134>"}, {102, "<132>"}, {3, "<131>"}, {4, "<133>"}};
    for (const auto& c : severities)
        EXPECT_THAT(syslog(event(c.type)), testing::StartsWith(c.start)) << c.type;
}

TEST(Syslog, TextsStayInTheirPlaces) {
    const struct {
        const char* text;
        const char* value;
        const char* message;
    } cases[] = {
        {"a]b\"c\\d", "a\\]b\\\"c\\\\d", "a]b\"c\\d"},
        {"\"] [x@1 y=\"\n<0>1 - - -", "\\\"\\] [x@1 y=\\\"\\\\n<0>1 - - -",
         "\"] [x@1 y=\"\\n<0>1 - - -"},
        {"\x1B[31m\x7F\xC2\x9B\r", "\\\\x1B[31m\\\\x7F\\\\u009B\\\\r", "\\x1B[31m\\x7F\\u009B\\r"},
    };
    for (const auto& c : cases) {
        DecodedEvent hostile = event();
        hostile.eventID = hostile.body = c.text;
        hostile.summary = "";
        const std::string all = syslog(hostile);
        EXPECT_THAT(all, HasSubstr(std::string(" eventID=\"") + c.value + "\" "));
        EXPECT_THAT(all, testing::EndsWith(std::string(" body=\"") + c.value + "\"] " + c.message));
    }
    DecodedEvent foreign = event();
    foreign.summary = "\xC3\xA9";
    EXPECT_THAT(syslog(foreign),
                testing::EndsWith(std::string("] ") + kMark + "Drive Event: \xC3\xA9"));
}

TEST(Syslog, LongTexts) {
    DecodedEvent longer = event();
    const std::string body(8000, 'x');
    const std::string title = std::string(1023, 'y') + "\xC3\xA9";
    longer.body = body;
    longer.eventID = title;
    const std::string all = syslog(longer);
    EXPECT_THAT(all, HasSubstr(" bodyBytes=\"8000\"] yyy"));
    EXPECT_THAT(all, HasSubstr(" eventID=\"" + title.substr(0, 1023) + "\" "));
    EXPECT_THAT(all, Not(HasSubstr("xx")));
    longer.body = std::string_view(body).substr(0, 5000);
    EXPECT_THAT(syslog(longer), HasSubstr(" body=\"xxx"));
}

TEST(Journal, Fields) {
    DecodedEvent hostile = event();
    hostile.summary = "one\nPRIORITY=0";
    hostile.file = "a.cap";
    hostile.offset = 5000000000;
    PrintOptions options;
    options.origin = true;
    EXPECT_THAT(JournalFields(options).of(hostile),
                ElementsAre("MESSAGE=Drive Event: one\\nPRIORITY=0", "PRIORITY=3",
                            "SYSLOG_IDENTIFIER=mpuevent", "MPUEVENT_CONTROLLER_SERIAL_NUMBER=CTL-1",
                            "MPUEVENT_CONTROLLER_SLOT_ID=2", "MPUEVENT_EVENT_LOG_INSTANCE_NUMBER=3",
                            "MPUEVENT_SEQUENCE_ID=4000000000", "MPUEVENT_TIMESTAMP=60",
                            "MPUEVENT_SOURCE=Dev Mgr", "MPUEVENT_EVENT_TYPE=103",
                            "MPUEVENT_EVENT_TYPE_TEXT=Eng Error", "MPUEVENT_EVENT_ID=Drive Event",
                            "MPUEVENT_SUMMARY=one\nPRIORITY=0", "MPUEVENT_BODY=<Drive>7</Drive>",
                            "MPUEVENT_LAYOUT=documented", "MPUEVENT_MISSING_BYTES=0",
                            "MPUEVENT_UNREAD_BYTES=0", "MPUEVENT_FILE=a.cap",
                            "MPUEVENT_OFFSET=5000000000"));
}

TEST(Otlp, Record) {
    PrintOptions options;
    options.epoch = 1000000000;
    const json found = record(event(), options);
    EXPECT_EQ(found.at("timeUnixNano"), "1000000060000000000");
    EXPECT_EQ(found.at("severityNumber"), 17);
    EXPECT_EQ(found.at("severityText"), "Eng Error");
    EXPECT_EQ(found.at("body"), json::parse(R"({"stringValue": "Drive Event: Drive 7 failed"})"));
    const json& attributes = found.at("attributes");
    EXPECT_THAT(attributes,
                Contains(json::parse(
                    R"({"key": "mpuevent.sequenceID", "value": {"intValue": "4000000000"}})")));
    EXPECT_THAT(attributes,
                Contains(json::parse(
                    R"({"key": "mpuevent.source", "value": {"stringValue": "Dev Mgr"}})")));
    EXPECT_EQ(attributes.dump().find("mpuevent.category"), std::string::npos); // it says nothing

    // Times that the format can't tell, or that nobody knows.
    for (const std::optional<std::int64_t> epoch :
         {std::optional<std::int64_t>(), std::optional<std::int64_t>(-61),
          std::optional<std::int64_t>(18446744014)}) {
        options.epoch = epoch;
        EXPECT_FALSE(record(event(), options).contains("timeUnixNano"));
    }
    options.epoch = 18446744013;
    EXPECT_EQ(record(event(), options).at("timeUnixNano"), "18446744073000000000");
}

TEST(Otlp, FieldsAndHostileTexts) {
    PrintOptions options;
    options.fields = options.raw = true;
    DecodedEvent nested = event();
    nested.summary = "\"}]\n\x01";
    nested.body = "<G><A>1</A><A>2\"</A></G><B>3</B>";
    const std::uint8_t payload[] = {0, 0xAB};
    nested.payload = payload;
    const FieldBasis basis[] = {{}, {}, {Provenance::Assumed, 2}, {}, {}};
    nested.fields = basis;
    const json found = record(nested, options);
    EXPECT_EQ(found.at("body").at("stringValue"), "Drive Event: \"}]\\n\\x01");
    const json& all = found.at("attributes");
    EXPECT_EQ(all.at(all.size() - 2).at("value").at("stringValue"), "00AB");
    const auto text = [](const char* key, const char* value) {
        return json{{"key", key}, {"value", {{"stringValue", value}}}};
    };
    const auto map = [](json values) {
        return json{{"kvlistValue", {{"values", std::move(values)}}}};
    };
    const json second = {text("name", "A"), text("value", "2\""), text("layout", "assumed"),
                         json::parse(R"({"key": "missingBytes", "value": {"intValue": "2"}})")};
    const json inner = {map({text("name", "A"), text("value", "1")}), map(second)};
    const json group = {text("name", "G"),
                        json{{"key", "fields"}, {"value", {{"arrayValue", {{"values", inner}}}}}}};
    EXPECT_EQ(
        all.back(),
        (json{{"key", "mpuevent.fields"},
              {"value",
               {{"arrayValue",
                 {{"values",
                   json::array({map(group), map({text("name", "B"), text("value", "3")})})}}}}}}));
}

// lnav's format has the columns.
TEST(Lnav, Format) {
    std::ifstream file(MPUEVENT_DOCS_DIR "lnav-format.json");
    const auto values = nlohmann::ordered_json::parse(file).at("mpuevent_log").at("value");
    std::string expected;
    for (const Column& column : kColumns)
        if (column.name != std::string_view("timestamp")) // lnav has it as log_time
            expected += column.name + std::string(column.text ? " string\n" : " integer\n");
    std::string found;
    for (const auto& [name, value] : values.items())
        found += name + " " + std::string(value.at("kind")) + "\n";
    EXPECT_EQ(found, expected);
}

TEST(Metrics, Counts) {
    Metrics metrics;
    metrics.add(event(3));
    DecodedEvent other = event(1);
    other.source = "a\"b\\c\nd";
    other.body = "<Drive>1</Drive><Drive>2</Drive><LUN>3</LUN>";
    metrics.add(other);
    metrics.addFaults(2);
    mpu::BodyWriter out;
    metrics.write(out);
    const std::string all(out.view());
    for (const char* line :
         {"# HELP mpuevent_events_total ", "# TYPE mpuevent_events_total counter\n",
          "mpuevent_events_total{module=\"Dev Mgr\",severity=\"error\"} 1\n",
          "mpuevent_events_total{module=\"I/O Mgr\",severity=\"error\"} 0\n",
          "mpuevent_events_total{module=\"a\\\"b\\\\c\\nd\",severity=\"informational\"} 1\n",
          "mpuevent_object_events_total{kind=\"drive\",severity=\"informational\"} 1\n",
          "mpuevent_object_events_total{kind=\"drive\",severity=\"error\"} 1\n",
          "mpuevent_object_events_total{kind=\"lun\",severity=\"informational\"} 1\n",
          "mpuevent_faults_total 2\n"})
        EXPECT_THAT(all, HasSubstr(line));
    EXPECT_THAT(all, Not(HasSubstr("enclosure")));
}

} // namespace Pegasus::test
