// The provider without a server: settings, spool, ring of events, mapping.
#include "provider/EventLog.h"
#include "tests/RecordBuilder.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <set>
#include <sstream>
#include <thread>
#include <unistd.h>

namespace Pegasus::test {

namespace {

using namespace provider;
using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;

std::string bytesOf(const std::vector<unsigned char>& all) {
    return {all.begin(), all.end()};
}
// 216 bytes.
RecordBuilder event(std::uint32_t sequence, unsigned severity = 1) {
    return RecordBuilder(23, 101).severity(severity).sequence(sequence);
}
std::string message(std::uint32_t sequence, unsigned severity = 1) {
    return bytesOf(event(sequence, severity).message());
}
Entry entryOf(const RecordBuilder& builder) {
    return {0x1234, builder.record()};
}

// A directory of its own, gone at the end.
class Provider : public testing::Test {
protected:
    Provider() { fs::create_directory(spool_); }
    ~Provider() override { fs::remove_all(base_); }

    void write(const fs::path& path, const std::string& bytes,
               std::ios::openmode mode = std::ios::app) {
        std::ofstream(path, std::ios::binary | mode) << bytes;
    }
    // Sequence ids of what the spool has new.
    static std::vector<std::uint32_t> poll(Spool& spool) {
        std::vector<std::uint32_t> got;
        spool.poll([&](std::span<const std::uint8_t> record) {
            got.push_back(mpu::loadBig<std::uint32_t>(&record[136]));
        });
        return got;
    }
    capture::FaultHandler report() {
        return [this](const std::string& what) { reports_.push_back(what); };
    }
    Spool spoolAt(const fs::path& path) { return {path, capture::Framing::Message, report()}; }
    // Makes `path` look written `seconds` ago.
    static void age(const fs::path& path, int seconds) {
        fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::seconds(seconds));
    }

    fs::path base_ = fs::path(testing::TempDir()) / ("provider" + std::to_string(::getpid()));
    fs::path spool_ = (fs::create_directory(base_), base_ / "spool");
    std::vector<std::string> reports_;
    SuppressTrace quiet_;
};

} // namespace

TEST(ProviderSettings, AreReadLineByLine) {
    std::vector<std::string> reports;
    std::istringstream file("# a comment\n"
                            "spool = /data/captures # and another\n"
                            "\n"
                            "input=record\n"
                            "  interval =  250\r\n"
                            "max-events = 7\n"
                            "max-kilobytes = 64\n"
                            "alert-severity = warning\n"
                            "clock = unix\n"
                            "log-name = Log of the house\n"
                            "owning-entity = ACME\n");
    const Settings s =
        readSettings(file, [&](const std::string& what) { reports.push_back(what); });
    EXPECT_EQ(s.spool, "/data/captures");
    EXPECT_EQ(s.framing, capture::Framing::Record);
    EXPECT_EQ(s.interval.count(), 250);
    EXPECT_EQ(s.maxEvents, 7u);
    EXPECT_EQ(s.maxBytes, 65536u);
    EXPECT_EQ(s.alertSeverity, 2u);
    EXPECT_EQ(s.clock, Clock::Unix);
    EXPECT_EQ(s.logName, "Log of the house");
    EXPECT_EQ(s.owningEntity, "ACME");
    EXPECT_THAT(reports, IsEmpty());
}

TEST(ProviderSettings, WrongOnesKeepTheDefault) {
    std::vector<std::string> reports;
    std::istringstream file(
        "spool =\nmax-events = 0\ninterval = 5s\nclock = cet\nspol = /x\nspool");
    const Settings s =
        readSettings(file, [&](const std::string& what) { reports.push_back(what); });
    EXPECT_EQ(s.spool, "/var/spool/mpuevent");
    EXPECT_EQ(s.maxEvents, 10000u);
    EXPECT_EQ(s.interval.count(), 1000);
    EXPECT_EQ(s.clock, Clock::None);
    EXPECT_THAT(reports,
                ElementsAre("line 1: spool: \"\" (a text wanted)",
                            "line 2: max-events: \"0\" (a number from 1 to 1000000 wanted)",
                            "line 3: interval: \"5s\" (a number from 10 to 3600000 wanted)",
                            "line 4: clock: \"cet\" (one of none, unix, uptime wanted)",
                            "line 5: \"spol\" is not a setting",
                            "line 6: \"name = value\" wanted"));
}

// The shipped file shows each setting with its default: with the marks in front taken off it is
// accepted and changes nothing.
TEST(ProviderSettings, TheShippedFileShowsTheDefaults) {
    std::ifstream shipped(MPUEVENT_DOCS_DIR "../provider/mpuevent-provider.conf");
    ASSERT_TRUE(shipped);
    std::stringstream file;
    unsigned count = 0;
    for (std::string line; std::getline(shipped, line);)
        if (line.starts_with("# ") && line.find(" = ") != std::string::npos)
            file << line.substr(2) << '\n', ++count;
    EXPECT_EQ(count, 9u);
    const Settings s = readSettings(file, [](const std::string& what) { ADD_FAILURE() << what; });
    const Settings d;
    EXPECT_EQ(std::tie(s.spool, s.framing, s.interval, s.maxEvents, s.maxBytes, s.alertSeverity,
                       s.clock, s.logName, s.owningEntity),
              std::tie(d.spool, d.framing, d.interval, d.maxEvents, d.maxBytes, d.alertSeverity,
                       d.clock, d.logName, d.owningEntity));
}

TEST_F(Provider, FollowsAFileThroughRotation) {
    const fs::path log = base_ / "log";
    Spool spool = spoolAt(log);
    EXPECT_THAT(poll(spool), IsEmpty());
    EXPECT_THAT(reports_, ElementsAre(log.string() + ": No such file or directory"));
    EXPECT_THAT(poll(spool), IsEmpty());
    EXPECT_EQ(reports_.size(), 1u); // said once
    write(log, message(1) + message(2));
    EXPECT_THAT(poll(spool), ElementsAre(1, 2));
    // Renamed, written once more under its new name, and replaced.
    write(log, message(3));
    fs::rename(log, base_ / "log.1");
    EXPECT_THAT(poll(spool), ElementsAre(3));
    write(base_ / "log.1", message(4));
    write(log, message(5));
    EXPECT_THAT(poll(spool), ElementsAre(4, 5));
    // Copied and emptied.
    write(log, "", std::ios::trunc);
    EXPECT_THAT(poll(spool), IsEmpty());
    write(log, message(6));
    EXPECT_THAT(poll(spool), ElementsAre(6));
    EXPECT_EQ(reports_.size(), 2u); // the file was missing twice
}

TEST_F(Provider, ReadsADirectoryOldestFirst) {
    write(spool_ / "b", message(1));
    write(spool_ / "a", message(2));
    write(spool_ / "c", message(3));
    write(spool_ / ".hidden", message(91));
    write(spool_ / "old.gz", message(92));
    fs::create_directory(spool_ / "folder");
    age(spool_ / "b", 30);
    age(spool_ / "c", 20);
    age(spool_ / "a", 10);
    Spool spool = spoolAt(spool_);
    EXPECT_THAT(poll(spool), ElementsAre(1, 3, 2));
    write(spool_ / "b", message(4).substr(0, 100));
    fs::rename(spool_ / "b", spool_ / "b.1");
    write(spool_ / "b", message(5));
    EXPECT_THAT(poll(spool), ElementsAre(5));
    write(spool_ / "b.1", message(4).substr(100));
    fs::remove(spool_ / "c");
    EXPECT_THAT(poll(spool), ElementsAre(4));
    EXPECT_THAT(reports_, IsEmpty());
}

TEST_F(Provider, ReadsADeletedFileToItsEnd) {
    write(spool_ / "a", message(1));
    Spool spool = spoolAt(spool_);
    EXPECT_THAT(poll(spool), ElementsAre(1));
    write(spool_ / "a", message(2) + message(3).substr(0, 70));
    fs::remove(spool_ / "a");
    EXPECT_THAT(poll(spool), ElementsAre(2));
    EXPECT_THAT(reports_,
                ElementsAre((spool_ / "a").string() +
                            ": offset 432: the input ends after 6 bytes of a record header "
                            "(expected 152); 70 bytes passed over, no further message found"));
}

TEST_F(Provider, CountsMoreThanTwentyFaultsOfOnePoll) {
    std::string all;
    for (std::uint32_t i = 0; i < 25; ++i)
        all += message(i) + message(100 + i) + std::string(10, '\1');
    write(spool_ / "a", all + message(25));
    Spool spool = spoolAt(spool_);
    EXPECT_EQ(poll(spool).size(), 51u);
    ASSERT_EQ(reports_.size(), 21u);
    EXPECT_EQ(reports_.back(), spool_.string() + ": 5 more faults");
}

TEST(ProviderRing, KeepsTheNewestAndFindsThemByTheirId) {
    EventRing ring(3, 1 << 20);
    std::vector<std::uint64_t> ids;
    for (std::uint32_t i = 0; i < 5; ++i)
        ids.push_back(ring.add(event(i).record())->id);
    EXPECT_EQ(ring.size(), 3u);
    EXPECT_EQ(ring.find(ids[1]), nullptr);
    for (unsigned i = 2; i < 5; ++i) {
        EXPECT_EQ(ring.find(ids[i])->header().sequenceId, i);
        EXPECT_EQ(ring.all()[i - 2]->header().sequenceId, i);
    }
    // The same again is no new one, and moves nothing.
    EXPECT_EQ(ring.add(event(2).record()), nullptr);
    EXPECT_EQ(ring.all()[0]->header().sequenceId, 2u);
    // Ids come from the record alone.
    EventRing other(1, 1 << 20);
    EXPECT_EQ(other.add(event(4).record())->id, ids[4]);
}

TEST(ProviderRing, IsBoundedInBytesToo) {
    EventRing ring(1000, 1000); // a record has 152 bytes
    for (std::uint32_t i = 0; i < 10; ++i)
        ring.add(event(i).record());
    EXPECT_EQ(ring.size(), 6u);
    ring.add(event(10).u8(4000, 1).record()); // larger than all that is allowed: alone
    EXPECT_EQ(ring.size(), 1u);
    EXPECT_EQ(ring.all()[0]->header().sequenceId, 10u);
}

namespace {

// A property as text; "NULL" when it is not there.
std::string valueOf(const Properties& all, std::string_view name) {
    struct Show {
        std::string operator()(const String& v) const { return utf8(v); }
        std::string operator()(const DateTime& v) const { return v.text; }
        std::string operator()(std::uint64_t v) const { return std::to_string(v); }
    };
    for (const Property& property : all)
        if (property.name == name)
            return std::visit(Show(), property.value);
    return "NULL";
}

using Expected = std::vector<std::pair<const char*, const char*>>;
void check(const Properties& all, const Expected& expected) {
    for (const auto& [name, value] : expected)
        EXPECT_EQ(valueOf(all, name), value) << name;
    EXPECT_EQ(all.size(), expected.size());
    std::set<std::string_view> names;
    for (const Property& property : all)
        EXPECT_TRUE(names.insert(property.name).second) << property.name << " twice";
}

RecordBuilder deviceFault() {
    return RecordBuilder(23, 2020)
        .severity(103)
        .category(2)
        .enclosure("ENC-7")
        .controller("CTL-9")
        .slot(1)
        .instance(2)
        .sequence(42)
        .timestamp(1257896460);
}

} // namespace

TEST(ProviderMapping, LogEntry) {
    const SuppressTrace quiet;
    const Entry entry = entryOf(deviceFault());
    const auto decoded = entry.decode();
    const std::string title = utf8(decoded->getEventID()), body = utf8(decoded->getBody());
    ASSERT_FALSE(title.empty());
    check(logEntry(entry, {}), {{"InstanceID", "MPUEvent:0000000000001234"},
                                {"LogInstanceID", "MPUEvent:Log"},
                                {"LogName", "Controller Event Log"},
                                {"RecordID", "2.0000000042"},
                                {"ElementName", title.c_str()},
                                {"PerceivedSeverity", "5"},
                                {"OwningEntity", "MPUEvent"},
                                {"MessageID", "SCC.2020"},
                                {"Message", title.c_str()},
                                {"RecordFormat", ""},
                                {"RecordData", body.c_str()},
                                {"Locale", "en_US"},
                                {"EnclosureSerialNumber", "ENC-7"},
                                {"ControllerSerialNumber", "CTL-9"},
                                {"ControllerSlotID", "1"},
                                {"EventLogInstanceNumber", "2"},
                                {"SequenceID", "42"},
                                {"Timestamp", "1257896460"},
                                {"Source", "SCC"},
                                {"Category", utf8(decoded->getCategory()).c_str()},
                                {"EventType", "103"},
                                {"Title", title.c_str()},
                                {"Summary", ""}});
}

TEST(ProviderMapping, Alert) {
    const SuppressTrace quiet;
    Settings settings;
    settings.clock = Clock::Unix;
    settings.owningEntity = "ACME";
    const Entry entry = entryOf(deviceFault());
    const auto decoded = entry.decode();
    const std::string title = utf8(decoded->getEventID()), body = utf8(decoded->getBody());
    check(alert(entry, settings),
          {{"IndicationIdentifier", "MPUEvent:0000000000001234"},
           {"EventID", "MPUEvent:0000000000001234"},
           {"Description", body.c_str()},
           {"AlertingManagedElement", "CTL-9"},
           {"AlertingElementFormat", "1"},
           {"OtherAlertingElementFormat", "Serial number of the controller"},
           {"AlertType", "5"},
           {"PerceivedSeverity", "5"},
           {"ProbableCause", "0"},
           {"SystemName", "ENC-7"},
           {"ProviderName", "MPU_RecordLogProvider"},
           {"OwningEntity", "ACME"},
           {"MessageID", "SCC.2020"},
           {"Message", title.c_str()},
           {"EventTime", "20091110234100.000000+000"},
           {"EnclosureSerialNumber", "ENC-7"},
           {"ControllerSerialNumber", "CTL-9"},
           {"ControllerSlotID", "1"},
           {"EventLogInstanceNumber", "2"},
           {"SequenceID", "42"},
           {"Timestamp", "1257896460"},
           {"Source", "SCC"},
           {"Category", utf8(decoded->getCategory()).c_str()},
           {"EventType", "103"},
           {"Title", title.c_str()},
           {"Summary", ""}});
}

TEST(ProviderMapping, RecordLog) {
    Settings settings;
    settings.maxEvents = 500;
    settings.logName = "Log\x01";
    check(recordLog(17, {3, "a: offset 5: \x02"}, settings),
          {{"InstanceID", "MPUEvent:Log"},
           {"Name", "Log\uFFFD"},
           {"ElementName", "Log\uFFFD"},
           {"MaxNumberOfRecords", "500"},
           {"CurrentNumberOfRecords", "17"},
           {"OverwritePolicy", "2"},
           {"LogState", "2"},
           {"EnabledState", "2"},
           {"SpoolFaults", "3"},
           {"LastSpoolFault", "a: offset 5: \uFFFD"}});
}

TEST(ProviderMapping, SeveritiesAndTimes) {
    const struct {
        unsigned type;
        const char* severity;
    } severities[] = {{1, "2"},   {2, "3"}, {3, "5"}, {101, "2"}, {102, "3"},
                      {103, "5"}, {0, "0"}, {4, "0"}, {201, "0"}, {255, "0"}};
    const SuppressTrace quiet;
    for (const auto& c : severities)
        EXPECT_EQ(valueOf(logEntry(entryOf(event(1, c.type)), {}), "PerceivedSeverity"), c.severity)
            << c.type;
    const struct {
        std::uint32_t time;
        Clock clock;
        const char* text;
    } times[] = {{100, Clock::None, "NULL"},
                 {0, Clock::Unix, "19700101000000.000000+000"},
                 {0xFFFFFFFF, Clock::Unix, "21060207062815.000000+000"},
                 {0, Clock::Uptime, "00000000000000.000000:000"},
                 {90061, Clock::Uptime, "00000001010101.000000:000"},
                 {0xFFFFFFFF, Clock::Uptime, "00049710062815.000000:000"}};
    for (const auto& c : times) {
        Settings settings;
        settings.clock = c.clock;
        const Properties all = logEntry(entryOf(event(1).timestamp(c.time)), settings);
        EXPECT_EQ(valueOf(all, "CreationTimeStamp"), c.text);
    }
}

TEST(ProviderMapping, TextsCarryNothingThatXmlDoesNotHave) {
    const Char16 units[] = {
        Uint16(0),   Uint16(8),      Uint16('\t'),   Uint16('\n'),   Uint16('\r'),   Uint16(0x1F),
        Uint16(' '), Uint16(0x7F),   Uint16(0xD83D), Uint16(0xDE00), Uint16(0xDE00), Uint16(0xD83D),
        Uint16('a'), Uint16(0xFFFD), Uint16(0xFFFE), Uint16(0xFFFF), Uint16(0xD83D)};
    EXPECT_EQ(utf8(forXml(String(units, Uint32(std::size(units))))),
              "\uFFFD\uFFFD\t\n\r\uFFFD \x7F\U0001F600\uFFFD\uFFFDa\uFFFD\uFFFD\uFFFD\uFFFD");
    const SuppressTrace quiet;
    EXPECT_EQ(
        valueOf(logEntry(entryOf(event(1).enclosure("E\x1B[1m")), {}), "EnclosureSerialNumber"),
        "E\uFFFD[1m");
}

TEST(ProviderMapping, EntryKeys) {
    EXPECT_EQ(entryIDOf("MPUEvent:0123456789abcdef"), 0x0123456789abcdefu);
    for (const char* wrong : {"", "MPUEvent:", "MPUEvent:123", "MPUEvent:0123456789abcdeg",
                              "MPUEvent:0123456789abcdef0", "Other:0123456789abcdef",
                              "MPUEvent:Log", "MPUEvent:-123456789abcdef"})
        EXPECT_EQ(entryIDOf(wrong), std::nullopt) << wrong;
}

TEST_F(Provider, NewEventsOfTheSeverityAreHandedOn) {
    Settings settings;
    settings.spool = spool_;
    settings.alertSeverity = 2;
    write(spool_ / "a", message(1, 3));
    EventLog log(settings, report());
    std::vector<std::uint32_t> taken;
    const auto take = [&](const Entry& entry) { taken.push_back(entry.header().sequenceId); };
    log.setListener(take);
    log.poll();
    EXPECT_THAT(taken, IsEmpty()); // was there before
    EXPECT_EQ(log.ring().size(), 1u);
    write(spool_ / "a", message(2, 1) + message(3, 2) + message(4, 3) + message(5, 101) +
                            message(6, 102) + message(7, 103) + message(8, 203));
    fs::copy(spool_ / "a", spool_ / "b"); // brings nothing new
    log.poll();
    EXPECT_THAT(taken, ElementsAre(3, 4, 6, 7));
    EXPECT_EQ(log.ring().size(), 8u);
    log.setListener(nullptr);
    write(spool_ / "a", message(9, 3));
    log.poll();
    EXPECT_EQ(taken.size(), 4u);
    write(spool_ / "a", std::string(20, '\1') + message(10) + message(11) + message(12));
    log.poll();
    EXPECT_EQ(log.state().faults, 1u);
    EXPECT_EQ(log.state().lastFault, reports_.at(0));
}

TEST_F(Provider, ReadsOnInItsThread) {
    Settings settings;
    settings.spool = spool_;
    settings.interval = std::chrono::milliseconds(10);
    settings.maxEvents = 50;
    write(spool_ / "a", message(0));
    std::atomic<unsigned> taken = 0;
    EventLog log(settings, report());
    log.start();
    EXPECT_EQ(log.ring().size(), 1u);
    log.setListener([&](const Entry&) { ++taken; });
    for (std::uint32_t i = 1; i <= 200; ++i) {
        write(spool_ / "a", message(i, 3));
        for (const EntryPointer& entry : log.ring().all())
            EXPECT_EQ(log.ring().find(entry->id) == nullptr || entry->record.size() == 152, true);
    }
    for (unsigned waited = 0; taken < 200 && waited < 5000; waited += 5)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ(taken, 200u);
    EXPECT_EQ(log.ring().size(), 50u);
}

} // namespace Pegasus::test
