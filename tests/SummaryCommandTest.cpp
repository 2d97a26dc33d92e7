// What `mpuevent summary` counts, and what the command shows on a terminal.
#include "tests/CommandFixture.h"

#include "formats/Statistics.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace Pegasus::test {

namespace {

using testing::HasSubstr;
using testing::Not;

class SummaryCommandTest : public CommandTest {
protected:
    void SetUp() override {
        CommandTest::SetUp();
        const auto plain = [](unsigned id, std::uint32_t n, unsigned severity) {
            return messageOf(
                RecordBuilder(77, id).sequence(n).timestamp(1000 + n).severity(severity));
        };
        write("input", plain(5, 3, 1) + plain(6, 2, 1) + plain(6, 1, 103) +
                           messageOf(RecordBuilder(23, 101).sequence(4).timestamp(7).severity(9)));
    }
    // The output of a command whose standard output and error are a terminal.
    std::string onTerminal(const std::string& line) {
        EXPECT_EQ(shell("export TERM=xterm; unset NO_COLOR; script -E never -qefc \"" + line +
                        "\" /dev/null </dev/null >out 2>err"),
                  0);
        return read("out");
    }
};

} // namespace

TEST_F(SummaryCommandTest, Text) {
    EXPECT_EQ(run("summary").out, "Events: 4\n"
                                  "Time: 7 to 1003\n"
                                  "Sequence: 1 to 4\n"
                                  "Damage: none\n"
                                  "\n"
                                  "     Count  Severity\n"
                                  "         1  error\n"
                                  "         2  informational\n"
                                  "         1  unknown\n"
                                  "\n"
                                  "     Count    ~Assumed      !Short     +Unread  Source\n"
                                  "         3           0           0           0  77\n"
                                  "         1           0           0           0  SCC\n"
                                  "\n"
                                  "     Count  First time   Last time  Worst          Source       "
                                  "Title\n"
                                  "         2        1001        1002  error          77           "
                                  "6\n"
                                  "         1        1003        1003  informational  77           "
                                  "5\n"
                                  "         1           7           7  unknown        SCC          "
                                  "101\n");
    EXPECT_THAT(run("summary --source 77 --limit 2").out, HasSubstr("Events: 2\n"));
    write("input", std::string(1, '\0'));
    const Result damaged = run("summary");
    EXPECT_EQ(damaged.status, 1);
    EXPECT_EQ(damaged.out, "Events: 0\nDamage: 1 place\n");
}

TEST_F(SummaryCommandTest, Json) {
    const auto expected = nlohmann::ordered_json::parse(R"({"formatVersion": 1, "events": 4,
        "damagedPlaces": 25, "firstTimestamp": 7, "lastTimestamp": 1003, "firstSequenceID": 1,
        "lastSequenceID": 4,
        "severities": {"error": 1, "warning": 0, "informational": 2, "unknown": 1},
        "sources": [{"source": "77", "count": 3, "withAssumedLayout": 0, "withMissingBytes": 0,
           "withUnreadBytes": 0},
          {"source": "SCC", "count": 1, "withAssumedLayout": 0, "withMissingBytes": 0,
           "withUnreadBytes": 0}],
        "titles": [
          {"source": "77", "eventID": "6", "worstSeverity": "error", "count": 2,
           "firstTimestamp": 1001, "lastTimestamp": 1002},
          {"source": "77", "eventID": "5", "worstSeverity": "informational", "count": 1,
           "firstTimestamp": 1003, "lastTimestamp": 1003},
          {"source": "SCC", "eventID": "101", "worstSeverity": "unknown", "count": 1,
           "firstTimestamp": 7, "lastTimestamp": 7}],
        "otherTitles": 0})");
    std::string hex;
    for (const char c : read("input"))
        hex += fmt::format("{:02x}", static_cast<unsigned char>(c));
    write("input", hex + "\n");
    for (int i = 0; i < 25; ++i)
        std::ofstream(folder_ + "/input", std::ios::app) << "zz\n";
    EXPECT_EQ(nlohmann::ordered_json::parse(run("summary --input hex --format json").out).dump(),
              expected.dump());
    const auto none =
        nlohmann::json::parse(run("summary --format json --source 0 --input hex").out);
    EXPECT_TRUE(none.at("firstTimestamp").is_null());
}

TEST_F(SummaryCommandTest, ColourOnTerminalsOnly) {
    if (shell("script --version >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "no script(1) to make a terminal with";
    EXPECT_THAT(onTerminal("$mpuevent decode input"),
                HasSubstr("Event 1: \x1b[31mEng Error\x1b[0m, 77"));
    EXPECT_THAT(onTerminal("$mpuevent summary input"), HasSubstr("  \x1b[31merror\x1b[0m\r\n"));
    EXPECT_THAT(
        onTerminal("$mpuevent decode --format brief input"),
        HasSubstr("1001        1           CTL-1       \x1b[31mEng Error          \x1b[0m77"));
    for (const char* plain :
         {"NO_COLOR=1 $mpuevent decode input", "TERM=dumb $mpuevent summary input",
          "$mpuevent decode input | cat", "$mpuevent decode --format line input"}) {
        SCOPED_TRACE(plain);
        EXPECT_THAT(onTerminal(plain), Not(HasSubstr("\x1b")));
    }
}

TEST_F(SummaryCommandTest, ProgressWhereItIsSlow) {
    if (shell("script --version >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "no script(1) to make a terminal with";
    // It stays while output goes to a file.
    const std::string slow = onTerminal("{ cat input; sleep 1.3; cat input; sleep 0.3; cat input; "
                                        "} | $mpuevent decode --format line >result");
    EXPECT_EQ(slow, "\r\x1b[Kmpuevent: standard input: 0.0 MB"
                    "\r\x1b[Kmpuevent: standard input: 0.0 MB\r\x1b[K");
    EXPECT_EQ(onTerminal("$mpuevent decode input >result"), "");
    EXPECT_EQ(shell("{ cat input; sleep 1.3; } | $mpuevent decode >out 2>err"), 0);
    EXPECT_EQ(read("err"), "");
}

TEST_F(SummaryCommandTest, HelpFitsTheTerminal) {
    if (shell("script --version >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "no script(1) to make a terminal with";
    for (const std::size_t width : {60u, 100u}) {
        std::stringstream help(
            onTerminal("stty cols " + std::to_string(width) + "; $mpuevent decode --help"));
        std::size_t longest = 0;
        for (std::string line; std::getline(help, line) && line != "Examples:\r";)
            longest = std::max(longest, line.size() - 1);
        EXPECT_LE(longest, width);
        EXPECT_GE(longest, width - 10);
    }
}

TEST_F(SummaryCommandTest, NoBinaryDataOnTerminals) {
    if (shell("script --version >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "no script(1) to make a terminal with";
    EXPECT_EQ(onTerminal("$mpuevent sample; echo \\$?"),
              "mpuevent: sample writes binary data, which is not for a terminal; see --output\r\n"
              "2\r\n");
    EXPECT_EQ(onTerminal("$mpuevent sample --output samples && test -s samples && echo \\$?"),
              "0\r\n");
}

// However the times lie, no event is lost and none leaves its place.
TEST(TimeLine, Buckets) {
    const struct {
        std::uint32_t first, step, count;
    } cases[] = {{0, 1, 10}, {5, 0, 10}, {100, 1, 100000}, {0, 42949, 100000}, {4294967295, 0, 1}};
    for (const auto& c : cases) {
        formats::TimeLine line;
        formats::Range time;
        for (std::uint32_t i = 0; i < c.count; ++i) {
            line.add(c.first + i * c.step, i % 4);
            time.add(c.first + i * c.step);
        }
        const auto buckets = line.buckets(10, time);
        formats::SeverityCounts sum{};
        for (const auto& bucket : buckets)
            for (std::size_t i = 0; i < 4; ++i)
                sum[i] += bucket[i];
        EXPECT_EQ(sum[0] + sum[1] + sum[2] + sum[3], c.count);
        EXPECT_EQ(sum[3], c.count / 4);
        if (c.step != 0) {
            for (const auto& bucket : buckets)
                EXPECT_NEAR(static_cast<double>(bucket[0] + bucket[1] + bucket[2] + bucket[3]),
                            c.count / 10.0, c.count / 300.0);
        }
    }
}

} // namespace Pegasus::test
