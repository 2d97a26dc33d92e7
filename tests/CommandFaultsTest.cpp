// The command when the system fails it: reads that break off, signals, input without end.
#include "tests/Build.h"
#include "tests/RecordBuilder.h"

#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>
#include <sys/wait.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace Pegasus::test {
namespace {

std::string message(std::uint32_t sequence, std::size_t size = 0) {
    RecordBuilder record(0, 7); // a module without a decoder
    record.sequence(sequence).bytes(0, std::string(size, '\0'));
    const auto all = record.message();
    return {all.begin(), all.end()};
}

// A running command. Its outputs go to files.
class Process {
public:
    Process(const std::string& arguments, int input)
        : folder_(testing::TempDir() + "mpueventXXXXXX") {
        EXPECT_NE(mkdtemp(folder_.data()), nullptr);
        const std::string script = "exec " MPUEVENT_EMULATOR " " MPUEVENT_COMMAND " " + arguments +
                                   " >" + folder_ + "/out 2>" + folder_ + "/err";
        pid_ = fork();
        if (pid_ == 0) {
            dup2(input, STDIN_FILENO);
            for (int i = 3; i < 64; ++i)
                ::close(i);
            std::signal(SIGINT, SIG_DFL); // a shell's background job ignores it
            execl("/bin/sh", "sh", "-c", script.c_str(), nullptr);
            _exit(127);
        }
        ::close(input);
    }
    ~Process() { EXPECT_EQ(std::system(("rm -r " + folder_).c_str()), 0); }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    void send(int signal) const { kill(pid_, signal); }
    int wait() const {
        int status = 0;
        EXPECT_EQ(waitpid(pid_, &status, 0), pid_);
        return status;
    }
    std::string read(const char* name) const {
        std::ifstream in(folder_ + "/" + name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    // Largest resident size so far, in KiB.
    long peak() const {
        std::ifstream status("/proc/" + std::to_string(pid_) + "/status");
        for (std::string line; std::getline(status, line);)
            if (line.starts_with("VmHWM:"))
                return std::atol(line.c_str() + 6);
        return -1;
    }

private:
    std::string folder_;
    pid_t pid_;
};

class CommandFaults : public testing::Test {
protected:
    void SetUp() override {
        if (std::string_view(MPUEVENT_COMMAND).empty())
            GTEST_SKIP() << "built without the command";
        std::signal(SIGPIPE, SIG_IGN);
    }
};

bool writeAll(int to, const std::string& bytes) {
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t n = ::write(to, bytes.data() + done, bytes.size() - done);
        if (n <= 0)
            return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

std::size_t lines(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

// A terminal whose other end was closed delivers what was written, then fails.
TEST_F(CommandFaults, AReadThatFailsInTheMiddle) {
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(master, 0);
    ASSERT_EQ(grantpt(master) + unlockpt(master), 0);
    const int slave = ::open(ptsname(master), O_RDWR | O_NOCTTY);
    termios raw;
    ASSERT_EQ(tcgetattr(slave, &raw), 0);
    cfmakeraw(&raw);
    ASSERT_EQ(tcsetattr(slave, TCSANOW, &raw), 0);
    ASSERT_TRUE(writeAll(slave, message(1) + message(2) + message(3).substr(0, 100)));
    ::close(slave);
    const Process process("decode --format line", master);
    const int status = process.wait();
    EXPECT_EQ(WEXITSTATUS(status), 3);
    EXPECT_EQ(lines(process.read("out")), 2u);
    EXPECT_EQ(process.read("err"), "mpuevent: standard input: Input/output error\n");
}

TEST_F(CommandFaults, Signals) {
    for (int signal : {SIGINT, SIGTERM}) {
        int pipe[2];
        ASSERT_EQ(::pipe(pipe), 0);
        const Process process("decode", pipe[0]);
        ASSERT_TRUE(writeAll(pipe[1], message(1)));
        process.send(signal);
        const int status = process.wait(); // although its input has not ended
        ::close(pipe[1]);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << status;
    }
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    const Process process("decode --format line", pipe[0]);
    for (std::uint32_t i = 0; i < 20; ++i) {
        ASSERT_TRUE(writeAll(pipe[1], message(i)));
        process.send(i % 2 ? SIGCONT : SIGSTOP);
    }
    ::close(pipe[1]);
    EXPECT_EQ(process.wait(), 0);
    EXPECT_EQ(lines(process.read("out")), 20u);
}

// More than 32 bits can count, or less where that would take too long; memory stays what it is.
TEST_F(CommandFaults, InputWithoutEnd) {
    const std::uint64_t wanted = kEmulated || kSlow ? 64ull << 20 : (4ull << 30) + (64 << 20);
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    (void)fcntl(pipe[1], F_SETPIPE_SZ, 1 << 20);
    const Process process("decode --format line --output /dev/null", pipe[0]);
    const std::string one = message(1, 65000);
    std::string block;
    for (int i = 0; i < 16; ++i)
        block += one;
    std::uint64_t written = 0;
    for (; written < wanted; written += block.size())
        ASSERT_TRUE(writeAll(pipe[1], block));
    const long peak = process.peak();
    ASSERT_TRUE(writeAll(pipe[1], one.substr(0, 100)));
    ::close(pipe[1]);
    EXPECT_EQ(WEXITSTATUS(process.wait()), 1);
    EXPECT_EQ(process.read("err"), "mpuevent: standard input: offset " + std::to_string(written) +
                                       ": the input ends after 36 bytes of a record header "
                                       "(expected 152); 100 bytes passed over, no further message "
                                       "found\n");
    RecordProperty("peak",
                   std::to_string(peak) + " KiB after " + std::to_string(written) + " bytes");
    EXPECT_GT(peak, 0);
    if (!kSanitized) {
        EXPECT_LT(peak, kEmulated ? 256 * 1024 : 32 * 1024);
    }
}

} // namespace
} // namespace Pegasus::test
