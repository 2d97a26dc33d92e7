// The committed samples decode to the JSON lines beside them, which were typed by hand.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <vector>

namespace {

std::vector<std::string> lines(std::istream& in) {
    std::vector<std::string> all;
    for (std::string line; std::getline(in, line);)
        all.push_back(line);
    return all;
}

// The output of the command; its exit status must be 0.
std::vector<std::string> decode(const std::string& file) {
    const std::string command =
        MPUEVENT_EMULATOR " " MPUEVENT_COMMAND " decode --input hex --format json " + file;
    FILE* pipe = popen(command.c_str(), "r");
    std::stringstream text;
    char block[4096];
    for (std::size_t n; (n = fread(block, 1, sizeof block, pipe)) > 0;)
        text.write(block, static_cast<std::streamsize>(n));
    EXPECT_EQ(pclose(pipe), 0) << command;
    return lines(text);
}

TEST(Samples, DecodeAsTyped) {
    unsigned files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(MPUEVENT_SAMPLES_DIR)) {
        std::filesystem::path path = entry.path();
        if (path.extension() != ".hex")
            continue;
        ++files;
        const std::vector<std::string> decoded = decode(path.string());
        std::ifstream typed(path.replace_extension(".jsonl"));
        const std::vector<std::string> expected = lines(typed);
        ASSERT_EQ(decoded.size(), expected.size()) << path;
        for (std::size_t i = 0; i < expected.size(); ++i)
            EXPECT_EQ(decoded[i], expected[i]) << path;
    }
    EXPECT_GT(files, 0u);
}

} // namespace
