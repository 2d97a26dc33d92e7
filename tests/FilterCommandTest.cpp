// Which events the filters of the command let pass.
#include "tests/CommandFixture.h"

#include <nlohmann/json.hpp>

namespace Pegasus::test {

namespace {

// Sequence numbers of what passes, as "1 2 3".
class FilterCommandTest : public CommandTest {
protected:
    void SetUp() override {
        CommandTest::SetUp();
        const auto text = [](std::uint32_t n) {
            return RecordBuilder(77, 5).sequence(n).timestamp(1000 + n);
        };
        write("input",
              messageOf(text(1).severity(1).category(4)) +
                  messageOf(text(2).severity(102).category(6)) +
                  messageOf(RecordBuilder(23, 101).sequence(3).timestamp(1000).severity(3)) +
                  messageOf(RecordBuilder(28, 7)
                                .sequence(4)
                                .timestamp(2000)
                                .severity(103)
                                .category(200)
                                .u32(0, 0xC0FFEE00)) +
                  messageOf(text(5).severity(9).category(1)));
    }
    std::string passing(const std::string& filters) {
        const Result result = run("decode --format json " + filters);
        EXPECT_EQ(result.status, 0) << result.err;
        std::string numbers;
        std::stringstream lines(result.out);
        for (std::string line; std::getline(lines, line);)
            numbers.append(numbers.empty() ? "" : " ")
                .append(nlohmann::json::parse(line).at("sequenceID").dump());
        return numbers;
    }
};

} // namespace

TEST_F(FilterCommandTest, KeepAndLeaveOut) {
    const struct {
        const char* option; // without its dashes
        const char* kept;
        const char* left;
    } cases[] = {
        {"source SCC", "3", "1 2 4 5"},        {"source scc", "3", "1 2 4 5"},
        {"source 77", "1 2 5", "3 4"},         {"source 0", "", "1 2 3 4 5"},
        {"category Device", "1 2", "3 4 5"},   {"category 6", "2", "1 3 4 5"},
        {"category 200", "4", "1 2 3 5"},      {"severity informational", "1 2 3 4", "5"},
        {"severity Warning", "2 3 4", "1 5"},  {"severity error", "3 4", "1 2 5"},
        {"since 1002", "2 4 5", "1 3"},        {"since seq:4", "4 5", "1 2 3"},
        {"until 1001", "1 3", "2 4 5"},        {"until seq:0x2", "1 2", "3 4 5"},
        {"event-id 101", "3", "1 2 4 5"},      {"event-id 10", "", "1 2 3 4 5"},
        {"grep UNKNOWN", "3", "1 2 4 5"},      // summary
        {"grep '^(5|7)$'", "1 2 4 5", "3"},    // title
        {"grep 'C0[A-F]{3}'", "4", "1 2 3 5"}, // body
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.option);
        EXPECT_EQ(passing(std::string("--") + c.option), c.kept);
        EXPECT_EQ(passing(std::string("--not-") + c.option), c.left);
    }
}

TEST_F(FilterCommandTest, Together) {
    EXPECT_EQ(passing(""), "1 2 3 4 5");
    EXPECT_EQ(passing("--source SCC --source 28"), "3 4");
    EXPECT_EQ(passing("--not-source SCC --not-source 28"), "1 2 5");
    EXPECT_EQ(passing("--since seq:2 --until seq:4 --not-source SCC"), "2 4");
    EXPECT_EQ(passing("--severity warning --not-severity error"), "2");
    EXPECT_EQ(passing("--source 77 - --severity warning"), "2"); // one value an option
    EXPECT_EQ(passing("--limit 2"), "1 2");
    EXPECT_EQ(passing("--limit 2 --source 77 --grep '[1-9]'"), "1 2");
    EXPECT_EQ(passing("--limit 9"), "1 2 3 4 5");
}

// What is after the last wanted event is not looked at.
TEST_F(FilterCommandTest, LimitEndsTheReading) {
    write("input", read("input") + "damage");
    EXPECT_EQ(passing("--limit 5"), "1 2 3 4 5");
}

// Bytes of records match as they are printed, whatever they are.
TEST_F(FilterCommandTest, GrepHostileTexts) {
    write("input", messageOf(RecordBuilder(29, 1).sequence(1).text(0, "(((\xff\xc3\xa9")) +
                       messageOf(RecordBuilder(29, 1).sequence(2)));
    EXPECT_EQ(passing("--not-grep 'zz*y'"), "1 2");
}

TEST_F(FilterCommandTest, Errors) {
    const struct {
        const char* arguments;
        const char* error;
    } cases[] = {
        {"--source Disk",
         "--source: no source \"Disk\"; there are: iSCSI 1, iSCSI 2, SCSI, Cache 1, Cache 2, I/O "
         "Mgr, Dev Mgr, MIP, PieMan, AWR, VPI, MIP Local, iChar, OB0, OB1, HACC, MSM, RCP, "
         "Startup, DDLM, Vol Mgr, Drive Admin, ICS, SCC, NCS, AIM, ESM, EMP, SNMP, SMIS, SMIS IND, "
         "iSNS, ESA; or a number below 256"},
        {"--not-category 256",
         "--not-category: no category \"256\"; there are: System, Management, Environmental, "
         "Device, Volume, SCSI, iSCSI, Network, Hardware, I/O, Cache, iSNS, Task; or a number "
         "below 256"},
        {"--severity fatal", "--severity: \"fatal\" is none of informational, warning, error"},
        {"--since yesterday", "--since: \"yesterday\" is neither a time stamp (a number below "
                              "2^32) nor a sequence number (seq:N)"},
        {"--until seq:4294967296", "--until: \"seq:4294967296\" is neither a time stamp (a number "
                                   "below 2^32) nor a sequence number (seq:N)"},
        {"--not-grep '('", "--not-grep: \"(\": Unmatched ( or \\("},
        {"--limit 0", "--limit: Value 0 not in range 1 to 18446744073709551615"},
    };
    for (const auto& c : cases) {
        const Result result = run(std::string("decode ") + c.arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err,
                  std::string("mpuevent: ") + c.error + "; \"mpuevent --help\" tells more\n");
    }
}

} // namespace Pegasus::test
