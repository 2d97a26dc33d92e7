// The C interface, through its shared library.
#include "c/mpuevent.h"

#include "tests/CommandFixture.h"

#include <cerrno>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>

namespace Pegasus::test {

namespace {

using nlohmann::json;
using testing::StartsWith;

std::string text(const mpuevent_text& of) {
    EXPECT_EQ(of.data[of.size], '\0');
    return {of.data, of.size};
}

struct Free {
    void operator()(mpuevent_batch* batch) const { mpuevent_batch_free(batch); }
};
using Batch = std::unique_ptr<mpuevent_batch, Free>;

// Fields nest as in the command's JSON.
json nested(const mpuevent_field*& next, const mpuevent_field* end) {
    json all = json::array();
    for (; next != end && next->kind != MPUEVENT_FIELD_END; ++next) {
        json field = {{"name", text(next->name)}};
        if (next->kind == MPUEVENT_FIELD_GROUP) {
            field["fields"] = nested(++next, end);
        } else {
            field["value"] = text(next->value);
            if (text(next->layout) != "documented")
                field["layout"] = text(next->layout);
            if (next->missing_bytes != 0)
                field["missingBytes"] = next->missing_bytes;
        }
        all.push_back(field);
    }
    return all;
}

class CInterface : public CommandTest {
protected:
    std::vector<Batch> batches(const std::string& name, const mpuevent_options& options) {
        std::vector<Batch> all;
        mpuevent_reader* reader = nullptr;
        EXPECT_EQ(mpuevent_open((folder_ + "/" + name).c_str(), &options, &reader), MPUEVENT_OK)
            << mpuevent_last_error();
        if (!reader)
            return all;
        mpuevent_batch* batch = nullptr;
        while (mpuevent_next(reader, &batch) == MPUEVENT_OK)
            all.emplace_back(batch);
        EXPECT_EQ(mpuevent_next(reader, &batch), MPUEVENT_END);
        mpuevent_close(reader);
        return all;
    }
    json event(mpuevent_batch* batch, std::size_t index) {
        json all;
        for (std::size_t i = 0; i < mpuevent_column_count(); ++i) {
            const mpuevent_column* const column = mpuevent_column_at(i);
            if (column->type == MPUEVENT_TEXT)
                all[column->name] = text(mpuevent_batch_text(batch, i)[index]);
            else if (column->type == MPUEVENT_UINT32)
                all[column->name] = mpuevent_batch_uint32(batch, i)[index];
            else
                all[column->name] = mpuevent_batch_uint64(batch, i)[index];
        }
        const mpuevent_field* fields = nullptr;
        std::size_t count = 0;
        EXPECT_EQ(mpuevent_batch_fields(batch, index, &fields, &count), MPUEVENT_OK);
        const mpuevent_field* const end = fields + count;
        all["fields"] = nested(fields, end);
        EXPECT_EQ(fields, end);
        return all;
    }
    // What is in the range: offsets and damage.
    std::string found(const std::string& name, std::uint64_t begin, std::uint64_t end) {
        mpuevent_options options = MPUEVENT_OPTIONS_INIT;
        options.begin = begin;
        options.end = end;
        options.batch_events = 3;
        std::ostringstream events, damage;
        for (const Batch& batch : batches(name, options)) {
            for (std::size_t i = 0; i < mpuevent_batch_size(batch.get()); ++i)
                events << mpuevent_batch_uint64(batch.get(), mpuevent_column_find("offset"))[i]
                       << '\n';
            std::size_t count = 0;
            const mpuevent_damage* const all = mpuevent_batch_damage(batch.get(), &count);
            for (std::size_t i = 0; i < count; ++i)
                damage << text(all[i].message) << '\n';
        }
        events_ += events.str();
        damage_ += damage.str();
        return events.str() + damage.str();
    }

    std::string events_; // that found() found since they were cleared
    std::string damage_;
};

} // namespace

TEST_F(CInterface, SaysWhatTheCommandSays) {
#ifdef MPUEVENT_GZIP
    const std::string packed = "plain.gz";
#else
    const std::string packed = "plain";
#endif
    ASSERT_EQ(shell("$mpuevent sample --count 300 -o plain && gzip -k plain"), 0);
    mpuevent_options options = MPUEVENT_OPTIONS_INIT;
    options.has_epoch = 1;
    for (const int knownOnly : {0, 1}) {
        options.known_only = knownOnly;
        const std::string file = folder_ + "/" + (knownOnly ? packed : "plain");
        std::istringstream lines(run("decode --format json --fields --origin --epoch unix " +
                                     std::string(knownOnly ? "--known-only " : "") + "'" + file +
                                     "'")
                                     .out);
        std::size_t events = 0;
        for (const Batch& batch : batches(knownOnly ? packed : "plain", options))
            for (std::size_t i = 0; i < mpuevent_batch_size(batch.get()); ++i, ++events) {
                std::string line;
                std::getline(lines, line);
                json expected = json::parse(line);
                expected.erase("formatVersion");
                ASSERT_EQ(event(batch.get(), i), expected);
            }
        EXPECT_EQ(events, 300u);
        EXPECT_EQ(lines.peek(), EOF);
    }
}

TEST_F(CInterface, NamesObjects) {
    write("input", messageOf(RecordBuilder(6, 1).version(1).u32(4, 121).u32(36, 7)));
    const std::vector<Batch> all = batches("input", MPUEVENT_OPTIONS_INIT);
    ASSERT_EQ(all.size(), 1u);
    // From many threads, first of all.
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            const mpuevent_object* objects = nullptr;
            std::size_t count = 0;
            ASSERT_EQ(mpuevent_batch_objects(all[0].get(), 0, &objects, &count), MPUEVENT_OK);
            std::string named;
            for (std::size_t k = 0; k < count; ++k)
                named += text(objects[k].kind) + " " + text(objects[k].id) + "; ";
            EXPECT_EQ(named, "controller CTL-1; enclosure ENC-1; drive 7; adapter 0; ");
        });
    for (std::thread& thread : threads)
        thread.join();
    const mpuevent_object* objects = nullptr;
    std::size_t count = 0;
    EXPECT_EQ(mpuevent_batch_objects(all[0].get(), 1, &objects, &count), MPUEVENT_INVALID);
    EXPECT_EQ(objects, nullptr);
}

TEST_F(CInterface, RangesAreTogetherTheWhole) {
    // Foreign bytes, a message with another inside it, one that is cut short, a false length.
    std::string damaged = std::string(100, 'x');
    for (std::uint32_t i = 1; i < 30; ++i) {
        std::string one = messageOf(RecordBuilder(23, 101).sequence(i).bytes(0, message(900 + i)));
        if (i % 3 == 0)
            one.resize(one.size() - 150);
        if (i % 5 == 0)
            one[11] = 0;
        damaged += one + std::string(i % 4 * 17, static_cast<char>(i));
    }
    std::string hex;
    for (std::size_t i = 0; i < damaged.size(); ++i) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02X ", static_cast<unsigned char>(damaged[i]));
        hex += digits;
        hex += i % 16 == 15 ? (i % 560 == 15 ? "??\n" : "\n") : "";
    }
    write("damaged", damaged);
    write("hex", hex);
    for (const std::string name : {"damaged", "hex"}) {
        events_ = damage_ = "";
        found(name, 0, UINT64_MAX);
        const std::string wholeEvents = events_;
        const std::string wholeDamage = damage_;
        ASSERT_GT(std::count(wholeEvents.begin(), wholeEvents.end(), '\n'), 20);
        ASSERT_GT(std::count(wholeDamage.begin(), wholeDamage.end(), '\n'), 20);
        for (std::size_t parts = 2; parts <= 64; ++parts) {
            events_ = damage_ = "";
            for (std::size_t part = 0; part < parts; ++part)
                found(name, damaged.size() * part / parts,
                      part + 1 == parts ? UINT64_MAX : damaged.size() * (part + 1) / parts);
            ASSERT_EQ(events_, wholeEvents) << parts;
            ASSERT_EQ(damage_, wholeDamage) << parts;
        }
    }
}

TEST_F(CInterface, TellsWhatIsWrong) {
    write("text", "Dear support, nothing is attached.\n");
    write("empty", "");
    write("cut.gz", "\x1F\x8B\x08" + std::string(7, '\0') + std::string(40, 'x'));
    const struct {
        const char* name;
        const char* input;
        std::uint64_t begin;
        mpuevent_status status;
        int number; // of errno
        const char* why;
    } cases[] = {
        {"missing", nullptr, 0, MPUEVENT_IO, ENOENT, "/missing: No such file or directory"},
        {".", nullptr, 0, MPUEVENT_IO, EISDIR, "/.: Is a directory"},
        {"text", nullptr, 0, MPUEVENT_NO_CAPTURE, 0, "/text: not a capture: "},
        {"text", "pcap", 0, MPUEVENT_INVALID, 0, "mpuevent_open: \"pcap\" is no kind of input"},
        {"text", nullptr, 2, MPUEVENT_INVALID, 0, "mpuevent_open: the range ends before it begins"},
        {"empty", nullptr, 0, MPUEVENT_OK, 0, ""},
    };
    for (const auto& c : cases) {
        mpuevent_options options = MPUEVENT_OPTIONS_INIT;
        options.input = c.input;
        options.begin = c.begin;
        options.end = c.begin == 0 ? UINT64_MAX : 1;
        mpuevent_reader* reader = nullptr;
        errno = 0;
        ASSERT_EQ(mpuevent_open((folder_ + "/" + c.name).c_str(), &options, &reader), c.status)
            << c.name;
        EXPECT_EQ(reader != nullptr, c.status == MPUEVENT_OK);
        if (c.number != 0) {
            EXPECT_EQ(errno, c.number);
        }
        if (c.status != MPUEVENT_OK) {
            const std::string place = c.why[0] == '/' ? folder_ : "";
            EXPECT_THAT(mpuevent_last_error(), StartsWith(place + c.why));
        }
        mpuevent_batch* batch = nullptr;
        if (reader) {
            EXPECT_EQ(mpuevent_next(reader, &batch), MPUEVENT_END);
        }
        mpuevent_close(reader);
    }
    mpuevent_options options = MPUEVENT_OPTIONS_INIT;
    options.size -= 8;
    mpuevent_reader* reader = nullptr;
    EXPECT_EQ(mpuevent_open("x", &options, &reader), MPUEVENT_INVALID);
    EXPECT_EQ(mpuevent_open(nullptr, nullptr, &reader), MPUEVENT_INVALID);
    options = MPUEVENT_OPTIONS_INIT;
    options.has_epoch = 1;
    options.epoch = INT64_MAX;
    EXPECT_EQ(mpuevent_open("x", &options, &reader), MPUEVENT_INVALID);
    EXPECT_EQ(mpuevent_column_at(mpuevent_column_find("?")), nullptr);
#ifdef MPUEVENT_GZIP
    EXPECT_NE(found("cut.gz", 0, UINT64_MAX), "");
#endif
}

} // namespace Pegasus::test
