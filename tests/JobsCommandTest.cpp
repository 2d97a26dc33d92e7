// Several threads write what one does.
#include "tests/Build.h"
#include "tests/CommandFixture.h"

namespace Pegasus::test {

namespace {

class JobsCommandTest : public CommandTest {
protected:
    void SetUp() override {
        CommandTest::SetUp();
        ASSERT_EQ(run("sample --count 3000 --output samples").status, 0);
        const std::string samples = read("samples");
        write("input", samples + std::string(10, '\0') + samples.substr(0, samples.size() / 2) +
                           samples + std::string(5, '\0'));
    }
    void expectSame(const std::string& arguments) {
        SCOPED_TRACE(arguments);
        const Result one = run("decode " + arguments);
        for (const char* jobs : {" --jobs 2", " --jobs 5"}) {
            const Result more = run("decode " + arguments + jobs);
            EXPECT_EQ(more.status, one.status);
            EXPECT_EQ(more.err, one.err);
            EXPECT_TRUE(more.out == one.out);
        }
    }
};

} // namespace

TEST_F(JobsCommandTest, SameBytes) {
    for (const char* format : {"text", "brief", "line", "json --fields", "xml", "csv"})
        expectSame(std::string("--format ") + format);
    expectSame("input missing samples");
    expectSame("/dev/null");
    expectSame("--source SCC --not-event-id 'Locking Warning' samples");
    expectSame("--limit 1 input missing");
    expectSame("--limit 1700 --not-source 5 input missing");
    expectSame("--where 'Drive>=0x10' --limit 100 input samples");
    expectSame("--limit 6000");
    expectSame("--limit 100000");
    if (kGrep)
        expectSame("-i --grep 'error: ' --not-grep '4$' samples");
}

// Errors stand where they belong among the events.
TEST_F(JobsCommandTest, ComplaintsKeepTheirPlace) {
    write("input", message(1) + std::string(10, '\0') + message(2));
    for (const char* jobs : {"1", "2"}) {
        EXPECT_EQ(shell(std::string("$mpuevent decode --format json --jobs ") + jobs +
                        " input >both 2>&1"),
                  1);
        const std::string both = read("both");
        EXPECT_LT(both.find("\"sequenceID\":1"), both.find("offset 216"));
        EXPECT_LT(both.find("offset 216"), both.find("\"sequenceID\":2"));
    }
}

TEST_F(JobsCommandTest, OutputEnds) {
    const Result full = run("decode --jobs 2 --output /dev/full");
    EXPECT_EQ(full.status, 3);
    EXPECT_EQ(full.err, "mpuevent: /dev/full: No space left on device\n");
    EXPECT_EQ(shell("{ $mpuevent decode --jobs 2 samples samples samples 2>err; echo $? >status; } "
                    "| head -n 1 >first"),
              0);
    EXPECT_EQ(read("status"), "0\n");
    EXPECT_EQ(read("err"), "");
    const Result many = run("decode --jobs 257");
    EXPECT_EQ(many.status, 2);
    EXPECT_EQ(many.err, "mpuevent: --jobs: Value 257 not in range 0 to 256; \"mpuevent --help\" "
                        "tells more\n");
}

// A capture much larger than what is under way fits in little memory.
TEST_F(JobsCommandTest, MemoryIsFlat) {
    if (kEmulated || kSanitized)
        GTEST_SKIP() << "needs more memory for itself";
    std::string much;
    while (much.size() < 48u << 20)
        much += read("samples");
    write("much", much);
    for (const char* options : {"", " --last 10", " --severity error --context 3"})
        EXPECT_EQ(
            shell("ulimit -v 220000; $mpuevent decode --format json --jobs 2 much >/dev/null" +
                  std::string(options)),
            0);
}

} // namespace Pegasus::test
