// What the README shows, and what is generated from the command, is what the command does.
#include "event/Avrel_Event.h"
#include "tests/RecordBuilder.h"
#include "tools/catalogue/Modules.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace Pegasus::test {
namespace {

std::vector<std::string> readme() {
    std::vector<std::string> lines;
    std::ifstream in(MPUEVENT_SAMPLES_DIR "../README.md");
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

// Output of a shell command at the root of the sources, where `mpuevent` is the one just built.
std::string run(const std::string& command) {
    std::ofstream script(testing::TempDir() + "readme.sh");
    script << "cd '" MPUEVENT_SAMPLES_DIR "..'\n"
              "mpuevent() { " MPUEVENT_EMULATOR " '" MPUEVENT_COMMAND "' \"$@\"; }\n"
           << command << '\n';
    script.close();
    FILE* pipe = popen(("sh '" + testing::TempDir() + "readme.sh'").c_str(), "r");
    std::string out;
    for (int c; (c = std::fgetc(pipe)) != EOF;)
        out.push_back(static_cast<char>(c));
    EXPECT_EQ(pclose(pipe), 0) << command;
    return out.substr(0, out.find_last_not_of('\n') + 1);
}

TEST(Readme, ExamplesAreCurrent) {
    if (std::string_view(MPUEVENT_COMMAND).empty())
        GTEST_SKIP() << "built without the command";
    int examples = 0;
    const std::vector<std::string> lines = readme();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (!lines[i].starts_with("$ "))
            continue;
        const std::string command = lines[i].substr(2);
        std::string shown;
        while (++i < lines.size() && lines[i] != "```")
            shown += (shown.empty() ? "" : "\n") + lines[i];
        EXPECT_EQ(run(command), shown) << command;
        ++examples;
    }
    EXPECT_GE(examples, 2);
}

TEST(Generated, ManPageAndCompletionsAreCurrent) {
    if (std::string_view(MPUEVENT_COMMAND).empty())
        GTEST_SKIP() << "built without the command";
    const struct {
        const char* kind;
        const char* file;
    } cases[] = {{"man", "docs/mpuevent.1"},
                 {"bash", "tools/mpuevent/completions/mpuevent.bash"},
                 {"zsh", "tools/mpuevent/completions/_mpuevent"}};
    for (const auto& c : cases)
        EXPECT_EQ(run(std::string("mpuevent --describe ") + c.kind),
                  run(std::string("cat ") + c.file))
            << c.file << ": run scripts/renew";
}

TEST(Readme, LinksEveryPage) {
    std::string all;
    for (const std::string& line : readme())
        all += line;
    for (const auto& page : std::filesystem::directory_iterator(MPUEVENT_DOCS_DIR))
        EXPECT_NE(all.find("(docs/" + page.path().filename().string()), all.npos) << page.path();
}

TEST(Readme, TableHasEveryDecoder) {
    std::vector<std::string> expected;
    const Avrel_Event names(nullptr, 0);
    for (const mpu::Module& module : mpu::modules())
        expected.push_back("| " + std::to_string(module.source) + " | " +
                           utf8(names.sourceFromEmpValue(module.source)) + " | `" +
                           std::string(module.decoder) + "` |");
    std::vector<std::string> shown;
    for (const std::string& line : readme())
        if (line.starts_with("| ") && line[2] >= '0' && line[2] <= '9')
            shown.push_back(line);
    EXPECT_EQ(shown, expected);
}

} // namespace
} // namespace Pegasus::test
