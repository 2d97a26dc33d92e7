// What time stamps are shown as, and times as people type them.
#include "tests/CommandFixture.h"

#include <ctime>
#include <nlohmann/json.hpp>

namespace Pegasus::test {

namespace {

class TimeCommandTest : public CommandTest {
protected:
    void SetUp() override {
        CommandTest::SetUp();
        // 2009-11-10 12:00:00 UTC, a minute before, 2^32 - 1
        write("input", at(1, 1257854400) + at(2, 1257854340) + at(3, 4294967295));
    }
    static std::string at(std::uint32_t sequence, std::uint32_t time) {
        return messageOf(RecordBuilder(77, 5).sequence(sequence).timestamp(time));
    }
    // The times in the lines, with "|" between.
    std::string shown(const std::string& options) {
        const Result result = run("decode --format line " + options);
        EXPECT_EQ(result.status, 0) << result.err;
        std::string times;
        std::stringstream lines(result.out);
        for (std::string line; std::getline(lines, line);) {
            const std::size_t from = line.find("Timestamp=") + 10;
            times += line.substr(from, line.find(", Source") - from) + "|";
        }
        return times;
    }
};

} // namespace

TEST_F(TimeCommandTest, Styles) {
    const struct {
        const char* options;
        const char* times;
    } cases[] = {
        {"", "1257854400|1257854340|-1|"},
        {"--epoch unix", "2009-11-10T12:00:00Z|2009-11-10T11:59:00Z|2106-02-07T06:28:15Z|"},
        {"--epoch unix --time raw", "1257854400|1257854340|-1|"},
        {"--epoch 2000-02-29 --limit 1", "2040-01-08T12:00:00Z|"},
        {"--epoch 1970-01-01T02:00:00+02:00 --limit 1", "2009-11-10T12:00:00Z|"},
        {"--epoch '1969-12-31 23:00' --tz -01:00 --limit 1", "2009-11-10T11:00:00-01:00|"},
        {"--epoch unix --tz +05:30 --limit 1", "2009-11-10T17:30:00+05:30|"},
        {"--epoch unix --time local --tz +05:30 --limit 1", "2009-11-10 17:30:00|"},
        {"--epoch boot", "14558d 12:00:00|14558d 11:59:00|49710d 06:28:15|"},
        {"--time relative", "00:00:00|-00:01:00|35151d 18:28:15|"},
        {"--time delta --jobs 4", "00:00:00|-00:01:00|35151d 18:29:15|"},
        {"--time delta --not-where sequenceID=2", "00:00:00|35151d 18:28:15|"},
        {"--time relative --reverse", "00:00:00|-35151d 18:29:15|-35151d 18:28:15|"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(shown(c.options), c.times) << c.options;
    if (shell("test -e /usr/share/zoneinfo/America/St_Johns") == 0) {
        EXPECT_EQ(shown("--epoch unix --tz America/St_Johns --limit 1"),
                  "2009-11-10T08:30:00-03:30|");
        EXPECT_EQ(shell("TZ=Asia/Tokyo $mpuevent decode --format brief --limit 1 --epoch unix "
                        "--time local input >out"),
                  0);
        EXPECT_EQ(read("out").substr(0, 22), "2009-11-10 21:00:00  1");
    }
}

TEST_F(TimeCommandTest, ForPrograms) {
    const auto json = [this](const std::string& options) {
        return nlohmann::json::parse(run("decode --format json --limit 1 " + options).out);
    };
    EXPECT_FALSE(json("").contains("time"));
    EXPECT_FALSE(json("--epoch boot").contains("time"));
    for (const char* style : {"", "--time raw", "--time local", "--time delta"}) {
        const auto event = json(std::string("--epoch unix ") + style);
        EXPECT_EQ(event.at("time"), "2009-11-10T12:00:00Z");
        EXPECT_EQ(event.at("timestamp"), 1257854400);
    }
    const std::string csv = run("decode --format csv --limit 1 --epoch unix --tz +01:00").out;
    EXPECT_NE(csv.find(",unreadBytes,time\r\n"), csv.npos);
    EXPECT_NE(csv.find(",2009-11-10T13:00:00+01:00\r\n"), csv.npos);
    const auto summary =
        nlohmann::json::parse(run("summary --format json --epoch unix --limit 2").out);
    EXPECT_EQ(summary.at("firstTime"), "2009-11-10T11:59:00Z");
    EXPECT_EQ(summary.at("titles").at(0).at("lastTime"), "2009-11-10T12:00:00Z");
}

TEST_F(TimeCommandTest, Filters) {
    const auto now = static_cast<std::uint32_t>(std::time(nullptr));
    write("input", at(1, 1257811199) + at(2, 1257811200) + at(3, 1257854400) + at(4, now - 9000) +
                       at(5, now - 10));
    const struct {
        const char* options;
        const char* kept;
    } cases[] = {
        {"--since 2009-11-10", "2345"},
        {"--until 2009-11-10", "12"},
        {"--since '2009-11-10 00:00:01' --until 2009-11-10T12:00:00Z", "3"},
        {"--since 2009-11-10T13:00:01+01:00", "45"},
        {"--tz +01:00 --since '2009-11-10 13:00' --until '2009-11-10 13:00'", "3"},
        {"--since -2h", "5"},
        {"--not-since -1d", "123"},
        {"--since yesterday", "45"},
        {"--until yesterday", "123"},
        {"--since 1257811200 --until seq:3", "23"}, // as ever
        {"--since 9999-12-31", ""},
        {"--until 0001-01-01", ""},
    };
    for (const auto& c : cases) {
        std::string kept;
        std::stringstream lines(
            run(std::string("decode --epoch unix --format csv --columns sequenceID ") + c.options)
                .out);
        for (std::string line; std::getline(lines, line);)
            kept += line[0] == 's' ? "" : line.substr(0, 1);
        EXPECT_EQ(kept, c.kept) << c.options;
    }
}

TEST_F(TimeCommandTest, Errors) {
    const std::string unknown =
        " needs to know when the time stamps were 0: add --epoch unix, or --epoch and that date";
    const std::string noEpoch =
        "\" is none of unix, boot, and a date such as 2009-11-10 or 2009-11-10T12:00:00Z";
    const std::string noZone = "\" is neither a time zone that this system knows (such as "
                               "Europe/Berlin) nor an offset (such as +01:00)";
    const struct {
        const char* options;
        std::string error;
    } cases[] = {
        {"--time iso", "--time: iso" + unknown},
        {"--epoch boot --time local", "--time: local" + unknown},
        {"--since -2h", "--since: \"-2h\"" + unknown},
        {"--until yesterday", "--until: \"yesterday\"" + unknown},
        {"--since 2009-02-29 --epoch unix",
         "--since: \"2009-02-29\" is neither a time stamp (a number below 2^32), nor a sequence "
         "number (seq:N), nor a date"},
        {"--epoch 1257854400", "--epoch: \"1257854400" + noEpoch},
        {"--epoch '2009-11-10 24:00'", "--epoch: \"2009-11-10 24:00" + noEpoch},
        {"--epoch 2009-11-10x", "--epoch: \"2009-11-10x" + noEpoch},
        {"--epoch 9999-01-01", "--epoch: \"9999-01-01" + noEpoch},
        {"--tz Europe/Nowhere", "--tz: \"Europe/Nowhere" + noZone},
        {"--tz ../zoneinfo/UTC", "--tz: \"../zoneinfo/UTC" + noZone},
        {"--tz +1:00", "--tz: \"+1:00" + noZone},
    };
    for (const auto& c : cases) {
        const Result result = run(std::string("decode ") + c.options);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, "mpuevent: " + c.error + "; \"mpuevent --help\" tells more\n");
    }
    EXPECT_EQ(run("summary --time delta").status, 2);
}

// Few strange times are told beside the others; what looks like a date is offered as one.
TEST_F(TimeCommandTest, Summary) {
    std::string many;
    for (std::uint32_t i = 0; i < 12; ++i)
        many += at(i, 1257854400 + 60 * i);
    const struct {
        std::string events;
        const char* options;
        const char* lines;
    } cases[] = {
        {many, "",
         "Time: 1257854400 to 1257855060\n"
         "Guess: the times look like Unix time: 2009-11-10T12:00:00Z to 2009-11-10T12:11:00Z; "
         "--epoch unix shows them so\n"},
        {at(1, 0) + many, "--epoch unix",
         "Time: 2009-11-10T12:00:00Z to 2009-11-10T12:11:00Z; 1 event before: "
         "1970-01-01T00:00:00Z\n"},
        {many + at(1, 3000000000) + many, "--time raw --epoch unix",
         "Time: 1257854400 to 1257855060; 1 event after: 3000000000\n"},
        {at(1, 0) + at(2, 7) + many, "", "Time: 0 to 1257855060\n"}, // two of fourteen are many
        {many + at(1, 1257855060 + 86400), "--epoch boot",
         "Time: 14558d 12:00:00 to 14559d 12:11:00\n"},
    };
    for (const auto& c : cases) {
        write("input", c.events);
        const std::string out = run(std::string("summary ") + c.options).out;
        const std::size_t from = out.find("Time: ");
        EXPECT_EQ(out.substr(from, out.find("Sequence: ") - from), c.lines);
    }
    write("input", many);
    EXPECT_NE(
        run("summary --epoch unix")
            .out.find(
                "\n     Count            First time             Last time  Worst          Source "
                "      Title\n"
                "        12  2009-11-10T12:00:00Z  2009-11-10T12:11:00Z  informational  77"),
        std::string::npos);
}

} // namespace Pegasus::test
