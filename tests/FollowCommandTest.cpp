// `mpuevent follow` on files that grow, shrink and are replaced while it runs.
#include "tests/CommandFixture.h"

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <thread>

namespace Pegasus::test {

namespace {

// A TCP socket on a port of its own.
class Listener {
public:
    Listener() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* const at = reinterpret_cast<sockaddr*>(&address);
        EXPECT_EQ(::bind(socket_, at, size) | ::listen(socket_, 5) |
                      ::getsockname(socket_, at, &size),
                  0);
        port_ = ntohs(address.sin_port);
    }
    ~Listener() { ::close(socket_); }
    std::string port() const { return std::to_string(port_); }
    // What comes through one connection, which is closed once the text has come.
    std::string receive(const std::string& last) const {
        const int connection = ::accept(socket_, nullptr, nullptr);
        std::string all;
        char buffer[4096];
        while (all.find(last) == all.npos || !all.ends_with("***")) {
            const ssize_t got = ::read(connection, buffer, sizeof buffer);
            if (got <= 0)
                break;
            all.append(buffer, static_cast<std::size_t>(got));
        }
        ::close(connection);
        return all;
    }

private:
    int socket_ = ::socket(AF_INET, SOCK_STREAM, 0);
    unsigned port_;
};

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

// A receiver that goes and comes back gets every event.
TEST_F(FollowCommandTest, SendsToSyslog) {
    Listener listener;
    std::string received;
    std::thread receiver([&] {
        received = listener.receive(" sequenceID=\"1\" ");
        received += listener.receive(" sequenceID=\"3\" ");
    });
    const Result result = follow(
        "--metrics m.prom --to syslog=127.0.0.1:" + listener.port(),
        "n=0; until grep -qs '^[^#]* 1$' m.prom || [ $((n+=1)) = 400 ]; do sleep 0.05; done; cat 2 "
        "3 "
        ">>log; until grep -q '^[^#]* 3$' m.prom && grep -q again err || [ $((n+=1)) = 400 ]; do "
        "sleep 0.05; done");
    receiver.join();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "");
    // Octet counting: the number, a blank, so many bytes.
    std::string sequences;
    for (std::string_view rest = received; !rest.empty();) {
        const std::size_t blank = rest.find(' ');
        const std::size_t size = std::stoul(std::string(rest.substr(0, blank)));
        const std::string_view one = rest.substr(blank + 1, size);
        ASSERT_EQ(one.size(), size);
        EXPECT_TRUE(one.starts_with("<134>1 - "));
        sequences += one[one.find(" sequenceID=\"") + 13];
        rest.remove_prefix(blank + 1 + size);
    }
    // What may not have arrived comes once more.
    EXPECT_THAT(sequences, testing::AnyOf("123", "1123"));
}

TEST_F(FollowCommandTest, SaysWhatCouldNotBeSent) {
    const std::string port = Listener().port(); // nobody has it any more
    EXPECT_EQ(run("follow --to syslog=127.0.0.1:" + port + " log").err,
              "mpuevent: syslog=127.0.0.1:" + port + ": Connection refused\n");
    const std::string name = "syslog=udp:127.0.0.1:" + port;
    const Result result = follow(
        "--to " + name, "until grep -q trying err; do sleep 0.05; done; cat 2 >>log", "TERM");
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.err, "mpuevent: " + name +
                              ": Connection refused; trying again every second\n" +
                              "mpuevent: " + name + ": 1 event could not be sent\n");
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
        {"follow --to syslog= log", 2,
         "mpuevent: --to: \"syslog=\" is none of journald, syslog, syslog=[tcp:|udp:]HOST:PORT and "
         "syslog=/PATH; \"mpuevent --help\" tells more\n"},
        {"follow --to syslog=/nobody log", 3,
         "mpuevent: syslog=/nobody: No such file or directory\n"},
        {"follow --metrics damaged log", 3, "mpuevent: damaged: not a metrics file of mpuevent\n"},
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
