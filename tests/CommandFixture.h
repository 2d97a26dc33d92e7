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

    // The contents of a report page's data blocks of a kind.
    std::vector<std::string> blocks(const std::string& page, const std::string& kind) {
        std::vector<std::string> all;
        const std::string start = " data-holds=\"" + kind + "\">";
        for (std::size_t at = page.find(start); at != page.npos; at = page.find(start, at + 1)) {
            const std::size_t begin = at + start.size();
            write("block", page.substr(begin, page.find('<', begin) - begin));
            const bool packed = page.substr(0, at).ends_with("<script type=\"application/gzip\"");
            EXPECT_EQ(
                shell(packed ? "base64 -d block | gzip -dc >plain" : "base64 -d block >plain"), 0);
            all.push_back(read("plain"));
        }
        return all;
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
