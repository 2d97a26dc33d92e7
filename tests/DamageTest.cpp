// A small capture with every one of its bytes damaged, one at a time.
#include "capture/Capture.h"
#include "tests/RecordBuilder.h"

#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <set>

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
    capture::Capture reader(
        framing, [&](const capture::Damage& damage) { found.reports.push_back(damage.str()); });
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

// ---- captures of megabytes ----------------------------------------------------------------------

using Random = std::mt19937;

std::uint32_t upTo(Random& random, std::size_t most) {
    return static_cast<std::uint32_t>(random() % (most + 1));
}

std::string noise(Random& random, std::size_t size) {
    std::string bytes(size, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random());
    return bytes;
}

// Of two controllers; a few carry tens of thousands of bytes.
std::vector<std::string> manyMessages(Framing framing) {
    Random random(7);
    std::vector<std::string> all;
    for (std::uint32_t i = 0; i < 4000; ++i) {
        RecordBuilder record(upTo(random, 33), 2000 + i % 100);
        record.sequence(i).timestamp(0x4AF00000u + i).slot(1).instance(1);
        record.severity(1 + i % 3)
            .category(1 + i % 14)
            .controller("CTL-" + std::to_string(i / 100 % 2));
        const std::uint32_t size = i % 500 == 250 ? 60000 : upTo(random, 600);
        if (size != 0)
            record.bytes(0, i % 3 ? noise(random, size) : std::string(size, '\0'));
        const auto bytes = framing == Framing::Message ? record.message() : record.record();
        all.emplace_back(bytes.begin(), bytes.end());
    }
    return all;
}

// `removed` bytes at an offset give way to others.
struct Edit {
    std::size_t at;
    std::size_t removed;
    std::string inserted;
};

struct Ruin {
    struct Place { // in the capture, of a message or a part of it
        std::size_t begin, end;
        bool intact;
    };
    std::string capture;
    std::vector<Place> places;
};

Ruin apply(const std::vector<std::string>& messages, std::vector<Edit> edits) {
    std::sort(edits.begin(), edits.end(), [](const Edit& a, const Edit& b) { return a.at < b.at; });
    Ruin ruin;
    auto edit = edits.begin();
    std::size_t begin = 0;   // of the message, before the edits
    std::size_t removed = 0; // up to this offset
    for (const std::string& message : messages) {
        const std::size_t end = begin + message.size();
        Ruin::Place place{ruin.capture.size(), 0, removed <= begin};
        std::size_t at = std::max(begin, std::min(removed, end));
        for (; edit != edits.end() && edit->at < end; ++edit) {
            if (edit->at > at)
                ruin.capture.append(message, at - begin, edit->at - at);
            ruin.capture += edit->inserted;
            removed = std::max(removed, edit->at + edit->removed);
            at = std::max(at, std::min(removed, end));
            if (edit->at == begin && edit->removed == 0)
                place.begin = ruin.capture.size();
            else
                place.intact = false;
        }
        ruin.capture.append(message, at - begin);
        place.end = ruin.capture.size();
        ruin.places.push_back(place);
        begin = end;
    }
    return ruin;
}

using Begins = std::vector<std::size_t>; // of the messages, and the end of the last

// One edit every few messages, somewhere.
std::vector<Edit> scattered(const Begins& begins, Random& random,
                            const std::function<Edit(std::size_t at)>& edit) {
    std::vector<Edit> edits;
    for (std::size_t i = 5; i + 5 < begins.size(); i += 2 + upTo(random, 8))
        edits.push_back(edit(begins[i] + upTo(random, begins[i + 1] - begins[i] - 1)));
    return edits;
}
std::vector<Edit> beforeEach(const Begins& begins,
                             const std::function<std::string(std::size_t index)>& bytes) {
    std::vector<Edit> edits;
    for (std::size_t i = 0; i + 1 < begins.size(); ++i)
        edits.push_back({begins[i], 0, bytes(i)});
    return edits;
}

const struct {
    const char* name;
    std::vector<Edit> (*edits)(const Begins& begins, Random& random);
} kRuinings[] = {
    {"insertions",
     [](const Begins& begins, Random& random) {
         return scattered(begins, random, [&](std::size_t at) {
             return Edit{at, 0, noise(random, 1 + upTo(random, 300))};
         });
     }},
    {"cuts",
     [](const Begins& begins, Random& random) {
         return scattered(begins, random, [&](std::size_t at) {
             return Edit{at, 1 + upTo(random, 900), ""};
         });
     }},
    {"zero runs",
     [](const Begins& begins, Random& random) {
         return scattered(begins, random, [&](std::size_t at) {
             const std::size_t size = 1 + upTo(random, 900);
             return Edit{at, size, std::string(size, '\0')};
         });
     }},
    {"flips",
     [](const Begins& begins, Random& random) {
         return scattered(begins, random, [&](std::size_t at) {
             return Edit{at, 1, noise(random, 1)};
         });
     }},
    {"swallowed starts", // of the next message, by one whose end is missing
     [](const Begins& begins, Random& random) {
         std::vector<Edit> edits;
         for (std::size_t i = 3; i < begins.size(); i += 4) {
             const std::size_t size = 1 + upTo(random, 100);
             edits.push_back({begins[i] - size, size, ""});
         }
         return edits;
     }},
    {"junk that leads on",
     [](const Begins& begins, Random& random) {
         std::vector<Edit> edits;
         for (std::size_t i = 3; i + 60 < begins.size(); i += 7) {
             std::string junk = noise(random, 12);
             const std::size_t later = begins[i + 1 + upTo(random, 50)];
             mpu::storeBig(&junk[10], static_cast<std::uint16_t>(later - begins[i] + junk.size()));
             edits.push_back({begins[i], 0, junk});
         }
         return edits;
     }},
    {"every second one zeroed",
     [](const Begins& begins, Random&) {
         std::vector<Edit> edits;
         for (std::size_t i = 1; i + 1 < begins.size(); i += 2) {
             const std::size_t size = begins[i + 1] - begins[i];
             edits.push_back({begins[i], size, std::string(size, '\0')});
         }
         return edits;
     }},
    {"16 foreign bytes before each",
     [](const Begins& begins, Random& random) {
         return beforeEach(begins, [&](std::size_t) { return noise(random, 16); });
     }},
    {"a line of text before each",
     [](const Begins& begins, Random&) {
         return beforeEach(begins, [](std::size_t i) {
             return "event " + std::to_string(i) + " of the log, as received\r\n";
         });
     }},
};

// In blocks of thousands of bytes that change places.
Ruin shuffle(const std::vector<std::string>& messages, Random& random) {
    std::string whole;
    for (const std::string& message : messages)
        whole += message;
    struct Block {
        std::size_t begin, end;
    };
    std::vector<Block> blocks;
    for (std::size_t at = 0; at < whole.size(); at = blocks.back().end)
        blocks.push_back({at, std::min(at + 500 + upTo(random, 5000), whole.size())});
    std::shuffle(blocks.begin(), blocks.end(), random);
    Ruin ruin;
    for (const Block& block : blocks) {
        std::size_t begin = 0;
        for (const std::string& message : messages) {
            const std::size_t end = begin + message.size();
            if (end > block.begin && begin < block.end)
                ruin.places.push_back(
                    {ruin.capture.size() + std::max(begin, block.begin) - block.begin,
                     ruin.capture.size() + std::min(end, block.end) - block.begin,
                     begin >= block.begin && end <= block.end});
            begin = end;
        }
        ruin.capture.append(whole, block.begin, block.end - block.begin);
    }
    return ruin;
}

// Every intact message is found, none that never was, and every byte is accounted for.
void check(const Ruin& ruin, Framing framing) {
    std::set<std::size_t> missing;
    for (const Ruin::Place& place : ruin.places)
        if (place.intact)
            missing.insert(place.begin);
    std::uint64_t covered = 0;
    std::uint64_t passedOver = 0;
    unsigned madeUp = 0;
    capture::MemorySource source(ruin.capture.data(), ruin.capture.size());
    capture::Capture reader(
        framing, [&](const capture::Damage& damage) { passedOver += damage.passedOver; });
    reader.open(source);
    std::uint64_t last = 0;
    for (capture::Message message; reader.next(message);) {
        const std::uint64_t end = message.offset + message.header.size() + message.record.size();
        covered += end - std::max(message.offset, last);
        last = end;
        if (missing.erase(static_cast<std::size_t>(message.offset)) != 0)
            continue;
        // Of a damaged one, whose message header may be missing.
        madeUp +=
            std::none_of(ruin.places.begin(), ruin.places.end(), [&](const Ruin::Place& place) {
                return !place.intact && message.offset + message.header.size() >= place.begin &&
                       message.offset < place.end;
            });
    }
    EXPECT_EQ(missing.size(), 0u) << "lost, the first one at " << *missing.begin();
    EXPECT_EQ(madeUp, 0u);
    EXPECT_EQ(covered + passedOver, ruin.capture.size());
}

TEST_P(CaptureDamage, NoneOfThousandsIsLost) {
    const std::vector<std::string> messages = manyMessages(GetParam());
    Begins begins{0};
    for (const std::string& message : messages)
        begins.push_back(begins.back() + message.size());
    for (unsigned seed = 1; seed <= 2; ++seed) {
        for (const auto& ruining : kRuinings) {
            SCOPED_TRACE(std::string(ruining.name) + ", seed " + std::to_string(seed));
            Random random(seed);
            check(apply(messages, ruining.edits(begins, random)), GetParam());
        }
        SCOPED_TRACE("blocks that change places");
        Random random(seed);
        check(shuffle(messages, random), GetParam());
    }
}

// Less than a second for what would take hours if bytes were looked at over and over.
TEST_P(CaptureDamage, TakesLinearTime) {
    Random random(3);
    std::string headers;
    for (std::string header = messages(GetParam()).front(); headers.size() < 4u << 20;
         headers += header) { // all of them claim what they can
        if (GetParam() == Framing::Message)
            mpu::storeBig(&header[10], std::uint16_t(0xFFFF));
        mpu::storeBig(&header[header.size() - 12], std::uint16_t(0xFFFF - 216));
    }
    for (const std::string& bytes : {std::string(4u << 20, '\0'), noise(random, 4u << 20)})
        check({bytes, {}}, GetParam());
    EXPECT_LT(read(headers, GetParam()).messages.size(), 100u);
}

INSTANTIATE_TEST_SUITE_P(All, CaptureDamage, testing::Values(Framing::Message, Framing::Record),
                         [](const auto& of) {
                             return of.param == Framing::Message ? "Messages" : "Records";
                         });

} // namespace
} // namespace Pegasus::test
