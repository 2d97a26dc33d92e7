// What is shown beside the wanted events, and in which order.
#include "tests/CommandFixture.h"

namespace Pegasus::test {

namespace {

class SelectionCommandTest : public CommandTest {
protected:
    void SetUp() override {
        CommandTest::SetUp();
        const std::uint32_t times[] = {100, 100, 110, 200, 201, 210, 300, 50, 49};
        std::string all;
        for (std::uint32_t n = 0; n < std::size(times); ++n)
            all += messageOf(RecordBuilder(77, 5).sequence(n + 1).timestamp(times[n]).severity(
                n + 1 == 3 || n + 1 == 8 ? 3 : 1));
        write("input", all);
    }
    // Sequence numbers, and "-" for lines between groups.
    std::string shown(const std::string& options) {
        const Result result = run("decode --format line " + options);
        EXPECT_EQ(result.status, 0) << result.err;
        std::string numbers;
        std::stringstream lines(result.out);
        for (std::string line; std::getline(lines, line);)
            numbers += line == "--" ? '-' : line.at(line.find("Sequence ID=") + 12);
        return numbers;
    }
};

} // namespace

TEST_F(SelectionCommandTest, Order) {
    const struct {
        const char* options; // errors are 3 and 8
        const char* numbers;
    } cases[] = {
        {"--severity error --context 1", "234-789"},
        {"--severity error --context 2", "123456789"},

        {"--severity error --context 1 --limit 1", "234"},
        {"--severity error --around 10", "123-89"},
        {"--severity error --around 0x5Bs", "12345-89"}, // 91
        {"--severity error --around 9s --context 1", "234-789"},
        {"--severity error --around 2m --limit 1", "123456"},
        {"--around 10 --where sequenceID=4 --where timestamp=200", "456"},
        {"--last 3", "789"},
        {"--last 99", "123456789"},
        {"--not-severity error --last 3", "679"},
        {"--severity error --last 1 --context 1", "789"},
        {"--severity error --last 1 --around 1", "89"},
        {"--reverse", "987654321"},
        {"--reverse --limit 2", "98"},
        {"--reverse --last 2 --since 200", "76"},
        {"--severity error --reverse --context 1", "987-432"},
        {"--severity error --reverse --limit 1 --context 1", "987"},
    };
    for (const auto& c : cases)
        for (const char* jobs : {"", " --jobs 3"})
            EXPECT_EQ(shown(c.options + std::string(jobs)), c.numbers) << c.options;
}

TEST_F(SelectionCommandTest, OtherCommands) {
    const auto counts = [this](const std::string& arguments) {
        const Result result = run(arguments);
        return result.out.substr(0, result.out.find('\n'));
    };
    EXPECT_EQ(counts("summary --last 4"), "Events: 4");
    EXPECT_EQ(counts("summary --severity error --around 10 --limit 1"), "Events: 3");
    ASSERT_EQ(run("report --reverse --limit 2 --output page").status, 0);
    const std::vector<std::string> rows = blocks(read("page"), "rows");
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].find("{\"sequence\":[9,-1],"), 0u);
    EXPECT_EQ(run("decode --format csv --severity error --context 1").out.find("--"),
              std::string::npos);
    EXPECT_EQ(run("follow --format line --severity error --context 1 --limit 1 input").out,
              run("decode --format line --since seq:2 --limit 3").out);
}

} // namespace Pegasus::test
