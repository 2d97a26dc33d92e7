// The fuzz targets without a fuzzer: all committed inputs, and a stream of hostile records.
#include "fuzz/Invariants.h"
#include "fuzz/RecordMutator.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

namespace Pegasus::fuzz {
namespace {

TEST(Fuzz, CommittedInputs) {
    ASSERT_GE(targets().size(), 3u);
    for (const auto& [name, target] : targets()) {
        std::size_t files = 0;
        for (const char* folder : {"corpus", "regressions"}) {
            const std::filesystem::path path = std::string(MPUEVENT_FUZZ_DIR) + folder + "/" + name;
            if (!std::filesystem::exists(path))
                continue;
            for (const auto& entry : std::filesystem::directory_iterator(path)) {
                std::ifstream file(entry.path(), std::ios::binary);
                const std::string bytes{std::istreambuf_iterator<char>(file), {}};
                EXPECT_NO_THROW(run(target, bytesOf(bytes))) << entry.path();
                ++files;
            }
        }
        EXPECT_GT(files, 0u) << name;
    }
}

TEST(Fuzz, ATargetThatBreaksIsSeen) {
    EXPECT_THROW(require(false, "claim"), Broken);
    EXPECT_THROW(requireSame("ab", "ac", "claim"), Broken);
    for (const char* bad :
         {"\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\x80", "a\xC3", "\xFF"})
        EXPECT_FALSE(isUtf8(bad)) << bad;
    EXPECT_TRUE(isUtf8("a\xC3\xA9\xEF\xBF\xBF\xF4\x8F\xBF\xBF"));
}

TEST(Fuzz, HostileRecords) {
    const test::SuppressTrace quiet;
    RecordMutator mutator(20);
    for (int i = 0; i < 20000; ++i) {
        const std::string record = mutator.record();
        ASSERT_NO_THROW(requireDecodes(bytesOf(record))) << i;
    }
}

// Small alphabets make elements of all sorts, within each other and across: each text routine is as
// its plain version.
TEST(Fuzz, TextsOfMarkup) {
    using namespace std::string_view_literals;
    const test::SuppressTrace quiet;
    std::mt19937 random(14);
    const auto below = [&](std::size_t n) { return random() % n; };
    constexpr std::string_view alphabets[] = {"<>/a", "<>/ab=;&\"\0"sv, "<>/", "</a>b<</"};
    constexpr std::string_view pieces[] = {
        "<a>",    "</a>", "<b>", "</b>",    "<ab>", "</ab>", "<a</a>", "</a</a", "<a</a</b",
        "</a</b", "</a",  "<",   "<b</a</", "</>",  ">",     "a",      "b",      "&"};
    for (int i = 0; i < 30000; ++i) {
        const std::string_view alphabet = alphabets[below(std::size(alphabets))];
        const std::size_t length = 1 + below(i % 50 ? 40 : 400);
        std::string text;
        while (text.size() < length)
            text += i % 2 ? pieces[below(std::size(pieces))]
                          : alphabet.substr(below(alphabet.size()), 1);
        ASSERT_NO_THROW(run(targets().at("text"), bytesOf(text))) << text;
    }
}

} // namespace
} // namespace Pegasus::fuzz
