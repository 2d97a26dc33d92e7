// `mpuevent follow` on files that grow, shrink and are replaced while it runs.
#include "tests/CommandFixture.h"

#include <gmock/gmock.h>

namespace Pegasus::test {

namespace {

class FollowCommandTest : public CommandTest {
protected:
    // Starts following "log", runs the script with what `wait_for N` needs (N lines of output),
    // ends the command with a signal. Returns its status.
    Result follow(const std::string& options, const std::string& script, const char* signal = "INT",
                  const std::string& before = "") {
        const std::string all =
            before +
            // A shell's background jobs ignore SIGINT, which would be inherited.
            "touch out; wait_for() { n=0; until [ $(wc -l <out) -ge $1 ]; do sleep 0.05; "
            "n=$((n+1)); [ $n -lt 400 ] || exit 99; done; }; "
            "env --default-signal=INT $mpuevent follow " +
            options + " log >out 2>err & pid=$!; " + script + "; kill -" + signal +
            " $pid; wait $pid";
        const int status = shell(all);
        return {status, read("out"), read("err")};
    }
    void SetUp() override {
        CommandTest::SetUp();
        for (std::uint32_t i = 1; i < 6; ++i)
            write(std::to_string(i), message(i));
        write("log", message(1));
    }
    // Sequence numbers in the lines.
    static std::string numbers(const std::string& out) {
        std::string found;
        for (std::size_t at = out.find("Sequence ID="); at != out.npos;
             at = out.find("Sequence ID=", at + 1))
            found += out[at + 12];
        return found;
    }
};

} // namespace

TEST_F(FollowCommandTest, Grows) {
    for (const char* signal : {"INT", "TERM"}) {
        write("log", message(1));
        const Result result =
            follow("--format line",
                   "wait_for 1; cat 2 >>log; wait_for 2; head -c 100 3 >>log; sleep 0.3; "
                   "tail -c +101 3 >>log; wait_for 3",
                   signal);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(numbers(result.out), "123");
        EXPECT_EQ(result.err, "");
    }
}

// A message that is half there when the following ends is no damage, and formats end well.
TEST_F(FollowCommandTest, EndsCleanly) {
    const Result result = follow("--format xml", "wait_for 3; head -c 100 2 >>log; sleep 0.3");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(result.out, testing::EndsWith("</event>\n</events>\n"));
}

TEST_F(FollowCommandTest, RotationAndTruncation) {
    const Result result = follow(
        "--format line", "wait_for 1; cat 2 >>log; mv log old; cat 3 >>old; sleep 0.3; cat 4 "
                         ">new; mv new log; wait_for 4; cat 5 5 >>log; wait_for 6; cat 1 "
                         ">log; wait_for 7");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(numbers(result.out), "1234551");
    EXPECT_EQ(result.err, "");
}

TEST_F(FollowCommandTest, SeveralFilesAndAFifo) {
    write("other", message(4));
    const Result result = follow("--format line --last 1 other fifo",
                                 "wait_for 2; cat 2 >>log; wait_for 3; cat 5 >fifo; wait_for 4; "
                                 "cat 3 >fifo; wait_for 5",
                                 "INT", "mkfifo fifo; cat 5 >>log; ");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(numbers(result.out), "45253");
    EXPECT_EQ(result.err, "");
}

// Through a rotation while nobody follows, too.
TEST_F(FollowCommandTest, CursorGoesOnAfterARestart) {
    const auto numbersOf = [this](const std::string& before, const char* script) {
        const Result result = follow("--format line --cursor place", script, "INT", before);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.err, "");
        return numbers(result.out);
    };
    EXPECT_EQ(numbersOf("rm -f out; ", "wait_for 1; head -c 100 2 >>log; sleep 0.4"), "1");
    EXPECT_EQ(numbersOf("tail -c +101 2 >>log; cat 3 >>log; mv log log.1; cat 4 >log; rm -f out; ",
                        "wait_for 3; cat 5 >>log; wait_for 4"),
              "2345");
    EXPECT_EQ(run("follow --format line --cursor place --limit 1 log 1").out.size(),
              run("decode --format line 1").out.size());
    write("place", "something else");
    EXPECT_EQ(run("follow --cursor place log").err, "mpuevent: place: not a cursor of mpuevent\n");
}

// One false length must not hide what follows until as many bytes have come.
TEST_F(FollowCommandTest, ShowsTheNextMessageAfterAFalseLength) {
    std::string wrong = message(2);
    wrong.replace(10, 2, "\xff\xff");
    wrong.replace(208, 2, "\xfe\xfe"); // of the record, too
    write("wrong", wrong);
    const Result result = follow(
        "--format line", "wait_for 1; cat wrong 3 >>log; wait_for 2; cat 4 >>log; wait_for 3");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(numbers(result.out), "134");
}

TEST_F(FollowCommandTest, FiltersAndLimit) {
    write("log", message(1) + message(2) + message(3) + message(4));
    const Result result = run("follow --format line --since seq:2 --limit 2 log");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(numbers(result.out), "23");
}

TEST_F(FollowCommandTest, ReaderGoes) {
    EXPECT_EQ(shell("{ $mpuevent follow --format line log 2>err; echo $? >status; } | head -n 1 "
                    ">first"),
              0);
    EXPECT_EQ(read("status"), "0\n");
    EXPECT_EQ(read("err"), "");
}

TEST_F(FollowCommandTest, Errors) {
    write("damaged", std::string(3, '\0') + message(1) + message(2) + message(3));
    const struct {
        const char* arguments;
        int status;
        const char* error;
    } cases[] = {
        {"follow missing", 3, "mpuevent: missing: No such file or directory\n"},
        {"follow .", 3, "mpuevent: .: Is a directory\n"},
        {"follow /dev/null", 3, "mpuevent: /dev/null: neither a file nor a FIFO\n"},
        {"follow --limit 2 damaged", 1,
         "mpuevent: damaged: offset 0: message length 0 (expected 216 or more); 3 bytes "
         "passed over, resuming at offset 3\n"},
    };
    for (const auto& c : cases) {
        const Result result = run(c.arguments);
        EXPECT_EQ(result.status, c.status);
        EXPECT_EQ(result.err, c.error);
    }
}

} // namespace Pegasus::test
