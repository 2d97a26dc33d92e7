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
        write("input", messageOf(text(1).severity(1).category(4)) +
                           messageOf(text(2).severity(102).category(6)) +
                           messageOf(RecordBuilder(23, 101)
                                         .enclosure("ENC-2")
                                         .controller("C\xffé")
                                         .slot(0xFFFFFFFF)
                                         .sequence(3)
                                         .timestamp(1000)
                                         .severity(3)) +
                           messageOf(RecordBuilder(28, 7)
                                         .sequence(4)
                                         .timestamp(2000)
                                         .severity(103)
                                         .category(200)
                                         .instance(7)
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
        {"source SCC", "3", "1 2 4 5"},       {"source scc", "3", "1 2 4 5"},
        {"source 77", "1 2 5", "3 4"},        {"source 0", "", "1 2 3 4 5"},
        {"category Device", "1 2", "3 4 5"},  {"category 6", "2", "1 3 4 5"},
        {"category 200", "4", "1 2 3 5"},     {"severity informational", "1 2 3 4", "5"},
        {"severity Warning", "2 3 4", "1 5"}, {"severity error", "3 4", "1 2 5"},
        {"since 1002", "2 4 5", "1 3"},       {"since seq:4", "4 5", "1 2 3"},
        {"until 1001", "1 3", "2 4 5"},       {"until seq:0x2", "1 2", "3 4 5"},
        {"event-id 101", "3", "1 2 4 5"},     {"event-id 10", "", "1 2 3 4 5"},
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
    EXPECT_EQ(passing("--customer"), "1 3");
    EXPECT_EQ(passing("--engineering --severity error"), "4");
    EXPECT_EQ(passing("--limit 2"), "1 2");
    EXPECT_EQ(passing("--limit 2 --source 77 --event-id 5"), "1 2");
    EXPECT_EQ(passing("--limit 9"), "1 2 3 4 5");
}

TEST_F(FilterCommandTest, Where) {
    const auto lines = [](std::uint32_t n, std::string_view text) { // elements Text1, Text2
        return messageOf(RecordBuilder(18, 1).sequence(n).text(0, text));
    };
    write("input", lines(1, "-5\n0x10") + lines(2, "7\nabc") +
                       messageOf(RecordBuilder(18, 2).sequence(3).text(0, "t").u8(12, 200)) +
                       lines(4, "18446744073709551615\n16"));
    const struct {
        const char* conditions;
        const char* kept;
    } cases[] = {
        {"--where Text1=7", "2"},
        {"--where Text1=0x7", "2"},
        {"--where 'Text1<0'", "1"},
        {"--where 'Text1 >= 7'", "2 4"},
        {"--where 'Text1!=7'", "1 4"}, // not those without
        {"--where Text2=16", "1 4"},
        {"--where 'Text2>16'", "2"}, // one is no number
        {"--where 'Text1>18446744073709551614'", "4"},
        {"--where Message_type=200", "3"}, // inside a group
        {"--where MMCH_contents=", ""},    // the group
        {"--where text1=7", ""},
        {"--where 'Text1>-6' --where 'Text2<=0x10'", "1 4"},
        {"--not-where Text1=7 --not-where Text=t", "1 4"},
        {"--where 'sequenceID<=2' --where source=Startup", "1 2"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(passing(c.conditions), c.kept) << c.conditions;
}

// What is after the last wanted event is not looked at.
TEST_F(FilterCommandTest, LimitEndsTheReading) {
    write("input", read("input") + "damage");
    EXPECT_EQ(passing("--limit 5"), "1 2 3 4 5");
}

// A pattern is looked for in the lines of the text format, one by one.
TEST_F(FilterCommandTest, Grep) {
    if (!kGrep)
        GTEST_SKIP() << "built without regular expressions";
    const struct {
        const char* options;
        const char* kept;
    } cases[] = {
        {"--grep UNKNOWN", "3"},
        {"--grep 'Title: (5|7)$'", "1 2 4 5"},
        {R"(--grep '^Event \d: Eng')", "2 4"},
        {R"(--grep '^    \w+: C0FFE{2}00$')", "4"},
        {"--grep device", ""},
        {"-i --grep device", "1 2"},
        {"--not-grep device --ignore-case", "3 4 5"},
        {R"(--grep 'Device\s+Title')", ""},
        {"--grep 'Device[^x]*Title'", ""},
        {"--grep '(?s)Device.*Title'", ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(passing(c.options), c.kept) << c.options;
    // Bytes of records match as they are printed, whatever they are.
    write("input", messageOf(RecordBuilder(18, 1).sequence(1).text(0, "(((\xff\xc3\xa9")) +
                       messageOf(RecordBuilder(18, 1).sequence(2)));
    EXPECT_EQ(passing("--grep '[(]{3}.é'"), "1");
}

// One that looks at every start of a match anew takes minutes.
TEST_F(FilterCommandTest, GrepIsLinear) {
    if (!kGrep)
        GTEST_SKIP() << "built without regular expressions";
    std::string many;
    for (int i = 0; i < 20; ++i)
        many += messageOf(RecordBuilder(18, 1).sequence(1).text(0, std::string(60000, 'z')));
    write("input", many);
    EXPECT_EQ(shell("ulimit -t 10; $mpuevent decode --not-grep 'z+(z|zz)+y' <input >out"), 0);
    EXPECT_EQ(shell("grep -c 'Text1: zzz' out >count"), 0);
    EXPECT_EQ(read("count"), "20\n");
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
        {"--since tomorrow", "--since: \"tomorrow\" is neither a time stamp (a number below "
                             "2^32), nor a sequence number (seq:N), nor a date"},
        {"--until seq:4294967296", "--until: \"seq:4294967296\" is neither a time stamp (a number "
                                   "below 2^32), nor a sequence number (seq:N), nor a date"},
        {"--slot -1", "--slot: \"-1\" is not a number below 2^32"},
        {"--not-where Drive",
         "--not-where: \"Drive\" is not NAME=VALUE, nor with one of != < <= > >="},
        {"--where =7", "--where: \"=7\" is not NAME=VALUE, nor with one of != < <= > >="},
        {"--customer --engineering", "--customer excludes --engineering"},
        {"--around 5x", "--around: \"5x\" is not a time such as 90, 90s, 5m, 2h, 1d"},
        {"--last 1 --limit 1", "--limit excludes --last"},
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

TEST_F(FilterCommandTest, WrongPatternsNameThePlace) {
    if (!kGrep)
        GTEST_SKIP() << "built without regular expressions";
    const struct {
        const char* pattern;
        const char* error;
    } cases[] = {
        {"(", "character 1: missing )"},      {"(a)(b", "character 4: missing )"},
        {"a)b", "character 2: unexpected )"}, {"é*é**", "character 4: bad repetition operator"},
        {"a[b", "character 2: missing ]"},
    };
    for (const auto& c : cases) {
        const Result result = run("decode --not-grep '" + std::string(c.pattern) + "'");
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, "mpuevent: --not-grep: \"" + std::string(c.pattern) + "\", " +
                                  c.error + "; \"mpuevent --help\" tells more\n");
    }
}

} // namespace Pegasus::test
