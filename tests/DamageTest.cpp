// A small capture with every one of its bytes damaged, one at a time.
#include "capture/Capture.h"
#include "tests/RecordBuilder.h"

#include <functional>
#include <gtest/gtest.h>

namespace Pegasus::test {
namespace {

using capture::Framing;

struct Found {
    std::vector<std::string> messages;
    std::vector<std::string> reports;
};

Found read(const std::string& capture, Framing framing) {
    Found found;
    capture::MemorySource source(capture.data(), capture.size());
    capture::Capture reader(framing,
                            [&](const std::string& what) { found.reports.push_back(what); });
    reader.open(source);
    for (capture::Message message; reader.next(message);) {
        EXPECT_NE(message.decode(), nullptr);
        std::string bytes(message.header.begin(), message.header.end());
        bytes.append(message.record.begin(), message.record.end());
        found.messages.push_back(bytes);
    }
    return found;
}

std::vector<std::string> messages(Framing framing) {
    std::vector<std::string> all;
    for (unsigned i = 0; i < 6; ++i) {
        RecordBuilder record(i % 2 ? 23 : 29, 2000 + i);
        record.sequence(i + 1).timestamp(0x4AF00000u + i).slot(1).instance(1).severity(1 + i % 3);
        record.text(0, std::string(3 + 11 * i, static_cast<char>('a' + i)));
        const auto bytes = framing == Framing::Message ? record.message() : record.record();
        all.emplace_back(bytes.begin(), bytes.end());
    }
    return all;
}

struct Damage {
    const char* name;
    bool keepsLength;
    std::function<std::string(std::string, std::size_t)> make;
};
const Damage kDamages[] = {
    {"bits flipped", true,
     [](std::string s, std::size_t at) {
         s[at] = static_cast<char>(~s[at]);
         return s;
     }},
    {"one bit flipped", true,
     [](std::string s, std::size_t at) {
         s[at] = static_cast<char>(s[at] ^ 1 << at % 8);
         return s;
     }},
    {"zeroed", true,
     [](std::string s, std::size_t at) {
         s[at] = '\0';
         return s;
     }},
    {"removed", false, [](std::string s, std::size_t at) { return s.erase(at, 1); }},
    {"ten removed", false, [](std::string s, std::size_t at) { return s.erase(at, 10); }},
    {"inserted", false, [](std::string s, std::size_t at) { return s.insert(at, 1, '\x17'); }},
    {"many inserted", false, [](std::string s, std::size_t at) { return s.insert(at, 300, '\0'); }},
};

bool startsWith(const std::vector<std::string>& all, const std::vector<std::string>& wanted,
                std::size_t count) {
    return all.size() >= count &&
           std::equal(wanted.begin(), wanted.begin() + static_cast<std::ptrdiff_t>(count),
                      all.begin());
}
bool endsWith(const std::vector<std::string>& all, const std::vector<std::string>& wanted,
              std::size_t count) {
    return all.size() >= count &&
           std::equal(wanted.end() - static_cast<std::ptrdiff_t>(count), wanted.end(),
                      all.end() - static_cast<std::ptrdiff_t>(count));
}

class CaptureDamage : public testing::TestWithParam<Framing> {};

TEST_P(CaptureDamage, CostsNoOtherMessage) {
    const SuppressTrace quiet;
    const std::vector<std::string> whole = messages(GetParam());
    std::string capture;
    std::vector<std::size_t> ends;
    for (const std::string& message : whole) {
        capture += message;
        ends.push_back(capture.size());
    }
    ASSERT_EQ(read(capture, GetParam()).messages, whole);
    ASSERT_TRUE(read(capture, GetParam()).reports.empty());

    for (const Damage& damage : kDamages)
        for (std::size_t at = 0; at + 10 < capture.size(); ++at) {
            SCOPED_TRACE(std::string(damage.name) + " at " + std::to_string(at));
            const std::string damaged = damage.make(capture, at);
            if (damaged == capture)
                continue;
            const std::size_t hit = static_cast<std::size_t>(
                std::upper_bound(ends.begin(), ends.end(), at) - ends.begin());
            // Ten bytes may be of two messages.
            const std::size_t last = static_cast<std::size_t>(
                std::upper_bound(ends.begin(), ends.end(),
                                 at + (damaged.size() + 10 == capture.size() ? 9 : 0)) -
                ends.begin());
            const Found found = read(damaged, GetParam());
            ASSERT_TRUE(startsWith(found.messages, whole, hit)) << "one before is lost";
            ASSERT_TRUE(endsWith(found.messages, whole, whole.size() - last - 1))
                << "one behind is lost; " << (found.reports.empty() ? "" : found.reports[0]);
            if (!damage.keepsLength || found.messages.size() != whole.size()) {
                ASSERT_FALSE(found.reports.empty());
            }
            for (const std::string& report : found.reports)
                ASSERT_TRUE(report.starts_with("offset ")) << report;
        }
}

TEST_P(CaptureDamage, TruncationCostsTheLastMessageAlone) {
    const SuppressTrace quiet;
    const std::vector<std::string> whole = messages(GetParam());
    std::string capture;
    std::vector<std::size_t> ends{0};
    for (const std::string& message : whole) {
        capture += message;
        ends.push_back(capture.size());
    }
    for (std::size_t size = 0; size <= capture.size(); ++size) {
        const std::size_t full = static_cast<std::size_t>(
            std::upper_bound(ends.begin(), ends.end(), size) - ends.begin() - 1);
        const Found found = read(capture.substr(0, size), GetParam());
        ASSERT_EQ(found.messages.size(), full) << size;
        ASSERT_TRUE(startsWith(found.messages, whole, full)) << size;
        ASSERT_EQ(found.reports.size(), ends[full] == size ? 0u : 1u) << size;
    }
}

INSTANTIATE_TEST_SUITE_P(All, CaptureDamage, testing::Values(Framing::Message, Framing::Record),
                         [](const auto& of) {
                             return of.param == Framing::Message ? "Messages" : "Records";
                         });

} // namespace
} // namespace Pegasus::test
