// The fuzz targets without a fuzzer: all committed inputs, and a stream of hostile records.
#include "fuzz/Invariants.h"
#include "fuzz/RecordMutator.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

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

} // namespace
} // namespace Pegasus::fuzz
