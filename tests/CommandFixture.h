// What tests need to run the command.
#pragma once

#include "tests/RecordBuilder.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/wait.h>
#include <unistd.h>

namespace Pegasus::test {

// Whether the command has regular expressions.
#ifdef MPUEVENT_RE2
inline constexpr bool kGrep = true;
#else
inline constexpr bool kGrep = false;
#endif

struct Result {
    int status;
    std::string out;
    std::string err;
};

// Runs the command in a folder of its own.
class CommandTest : public testing::Test {
protected:
    void SetUp() override {
        if (std::string_view(MPUEVENT_COMMAND).empty())
            GTEST_SKIP() << "built without the command";
        folder_ = testing::TempDir() + "mpueventXXXXXX";
        ASSERT_NE(mkdtemp(folder_.data()), nullptr);
        write("input", "");
    }
    void TearDown() override {
        if (!folder_.empty()) {
            EXPECT_EQ(std::system(("rm -r '" + folder_ + "'").c_str()), 0);
        }
    }

    void write(const std::string& name, const std::string& bytes) {
        std::ofstream(folder_ + "/" + name, std::ios::binary) << bytes;
    }
    std::string read(const std::string& name) const {
        std::ifstream in(folder_ + "/" + name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    // The exit status of a shell script, -1 when it did not end by itself. $mpuevent is the
    // command.
    int shell(const std::string& script) {
        const int status =
            std::system(("cd '" + folder_ +
                         "' && mpuevent='" MPUEVENT_EMULATOR " " MPUEVENT_COMMAND "' && " + script)
                            .c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    // `arguments` are the shell's; the file "input" is the standard input.
    Result run(const std::string& arguments) {
        const int status = shell("$mpuevent <input >out 2>err " + arguments);
        return {status, read("out"), read("err")};
    }

    std::string folder_;
};

inline std::string messageOf(const RecordBuilder& record) {
    const auto all = record.message();
    return {all.begin(), all.end()};
}

inline std::string message(std::uint32_t sequence) {
    return messageOf(RecordBuilder(23, 101).sequence(sequence));
}

} // namespace Pegasus::test
