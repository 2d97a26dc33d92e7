// Several captures as one, and captures made of others.
#include "tests/Build.h"
#include "tests/CommandFixture.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace Pegasus::test {

namespace {

class ManyCapturesCommandTest : public CommandTest {
protected:
    static std::string at(std::uint32_t time, std::uint32_t sequence) {
        return messageOf(RecordBuilder(77, 5).sequence(sequence).timestamp(time));
    }
    // Sequence numbers.
    std::string shown(const std::string& arguments) {
        const Result result = run("decode --format csv --columns sequenceID " + arguments);
        EXPECT_EQ(result.status, 0) << result.err;
        std::string numbers;
        std::stringstream lines(result.out);
        std::string line;
        for (std::getline(lines, line); std::getline(lines, line);)
            numbers += line.substr(0, line.find('\r')) + " ";
        return numbers;
    }
};

const std::string kLonger(64, 'x');

} // namespace

TEST_F(ManyCapturesCommandTest, Merge) {
    write("a", at(1, 11) + at(5, 12) + at(3, 13) + at(9, 14)); // its clock goes back
    write("b", at(2, 21) + at(4, 22) + at(4, 23) + at(10, 24));
    write("input", at(4, 31));
    const struct {
        const char* arguments;
        const char* numbers;
    } cases[] = {
        {"--merge a b -", "11 21 22 23 31 12 13 14 24 "},
        {"--merge - b a", "11 21 31 22 23 12 13 14 24 "},
        {"--merge b", "21 22 23 24 "},
        {"--merge a b --limit 3", "11 21 22 "},
        {"--merge a b --last 2 --jobs 3", "14 24 "},
        {"--merge a b --where sequenceID=12 --context 1", "23 12 13 "},
        {"--merge a /dev/null b --reverse --limit 2", "24 14 "},
    };
    for (const auto& c : cases)
        EXPECT_EQ(shown(c.arguments), c.numbers) << c.arguments;

    write("b", read("b") + std::string(7, '\0'));
    const Result damaged = run("summary --merge a missing b");
    EXPECT_EQ(damaged.status, 3);
    EXPECT_EQ(damaged.out.substr(0, 30), "Events: 8\nTime: 1 to 10\nSequen");
    EXPECT_EQ(damaged.err, "mpuevent: missing: No such file or directory\n"
                           "mpuevent: b: offset 864: the input ends after 7 bytes of a message "
                           "header (expected 64); 7 bytes passed over, no further message found\n");
    const Result twice = run("decode --merge - a -");
    EXPECT_EQ(twice.status, 2);
    EXPECT_EQ(twice.err, "mpuevent: --merge: standard input is named more than once\n");
}

// More than are open at once, and more than are merged in one pass.
TEST_F(ManyCapturesCommandTest, MergeVeryMany) {
    constexpr std::uint32_t kFiles = 1100;
    std::string expected;
    for (std::uint32_t i = 0; i < kFiles; ++i) {
        write(fmt::format("f{:04}", i), at(i, i) + at(9000 - i, 10000 + i) + at(0, 20000 + i));
        expected += fmt::format("{} ", i);
    }
    for (std::uint32_t i = kFiles; i-- > 0;)
        expected += fmt::format("{} {} ", 10000 + i, 20000 + i);
    EXPECT_TRUE(shown("--merge f*") == expected);
    if (!kEmulated && !kSanitized) {
        EXPECT_EQ(shell("ulimit -v 100000; ulimit -n 50; $mpuevent decode --merge f* >out"), 0);
    }
    EXPECT_EQ(shell("TMPDIR=/missing $mpuevent summary --merge f* 2>err"), 3);
}

TEST_F(ManyCapturesCommandTest, Unique) {
    const auto other = [](std::uint8_t byte, const char* controller) {
        return messageOf(RecordBuilder(77, 5).sequence(1).controller(controller).u8(0, byte));
    };
    write("a", at(1, 1) + at(2, 2) + at(3, 3) + at(2, 2));
    write("input", at(2, 2) + at(3, 3) + at(4, 4) + at(5, 2));
    EXPECT_EQ(shown("--unique a -"), "1 2 3 4 2 ");
    EXPECT_EQ(shown("--unique --merge - a"), "1 2 3 4 2 ");
    EXPECT_EQ(shown("--unique a - --last 3 --jobs 2"), "3 4 2 ");
    write("a", other(1, "A") + other(1, "B") + other(2, "A") + other(1, "A"));
    EXPECT_EQ(run("summary --unique a a").out.substr(0, 10), "Events: 3\n");
    std::string many;
    for (std::uint32_t i = 0; i < 5000; ++i) // the table of what is known grows
        many += at(i, i);
    write("a", many);
    EXPECT_EQ(run("summary --unique a a").out.substr(0, 13), "Events: 5000\n");
}

TEST_F(ManyCapturesCommandTest, Origin) {
    write("a,b", at(1, 1) + at(2, 2));
    const auto last = [this](const std::string& options) {
        const std::string out = run("decode --where sequenceID=2 --origin " + options).out;
        return out;
    };
    EXPECT_NE(last("a,b").find("\n  Time: 2\n  Origin: a,b, offset 216\n"), std::string::npos);
    EXPECT_EQ(last("--format brief a,b").substr(0, 16), "a,b:216  2      ");
    const std::string line = last("--format line a,b");
    EXPECT_EQ(line.substr(line.find("', File")), "', File: 'a,b', Offset=216\n");
    const std::string xml = last("--format xml a,b");
    EXPECT_NE(xml.find("  <file>a,b</file>\n  <offset>216</offset>\n</event>"), xml.npos);
    const std::string csv = last("--format csv a,b");
    EXPECT_NE(csv.find(",file,offset\r\n"), csv.npos);
    EXPECT_NE(csv.find(",\"a,b\",216\r\n"), csv.npos);
    // Of hexadecimal text the bytes count; of many captures each its own.
    EXPECT_EQ(shell("xxd -p a,b >input"), 0);
    for (const char* options : {"a,b -", "--merge a,b - --jobs 2", "--last 2 a,b -"}) {
        std::stringstream lines(last(std::string("--format json ") + options));
        for (const char* file : {"a,b", "standard input"}) {
            std::string object;
            std::getline(lines, object);
            const auto event = nlohmann::json::parse(object);
            EXPECT_EQ(event.at("file"), file);
            EXPECT_EQ(event.at("offset"), 216);
        }
    }
    EXPECT_EQ(run("decode --format csv --columns offset,file --limit 1 a,b").out,
              "offset,file\r\n0,\"a,b\"\r\n");
}

TEST_F(ManyCapturesCommandTest, Cut) {
    const std::string claims = // more than it carries
        messageOf(RecordBuilder(23, 5).sequence(3).severity(3).payloadLength(100).u32(0, 7));
    std::string records;
    for (const std::uint32_t n : {1u, 2u}) {
        const auto record = RecordBuilder(23, 5).sequence(n).text(0, "t").record();
        records.append(record.begin(), record.end());
    }
    write("input", at(1, 1) + at(2, 2) + claims + at(4, 4) + std::string(9, '\0'));
    write("records", records);
    write("later", at(9, 1));
    const struct {
        const char* options;
        std::string bytes;
    } cases[] = {
        {"", at(1, 1) + at(2, 2) + claims + at(4, 4)},
        {"--severity error", claims},
        {"--where sequenceID=3", claims},
        {"--severity error --context 1", at(2, 2) + claims + at(4, 4)},
        {"--reverse --limit 2", at(4, 4) + claims},
        {"--merge - later - --limit 1", ""},
        {"--merge later - --not-severity error", at(1, 1) + at(2, 2) + at(4, 4) + at(9, 1)},
        {"--unique - - later later --since seq:2", at(2, 2) + claims + at(4, 4)},
        {"records --last 1", records.substr(records.size() / 2)},
    };
    for (const auto& c : cases) {
        ASSERT_EQ(shell("rm -f cut"), 0);
        run("cut --output cut " + std::string(c.options));
        EXPECT_TRUE(read("cut") == c.bytes) << c.options;
    }
    EXPECT_EQ(run("cut later --output later").status, 2);
    ASSERT_EQ(shell("rm cut"), 0);
    const Result mixed = run("cut later records --output cut");
    EXPECT_EQ(mixed.status, 3);
    EXPECT_EQ(mixed.err, "mpuevent: records: recognised as bare records\n"
                         "mpuevent: records: messages and bare records don't go into one file\n");
    EXPECT_TRUE(read("cut") == at(9, 1));
}

// A serial number goes wherever it is, also before its first header.
TEST_F(ManyCapturesCommandTest, Anonymise) {
    using namespace std::string_view_literals;
    const auto event = [](std::string_view enclosure, std::string_view controller,
                          std::string_view text) {
        return messageOf(
            RecordBuilder(18, 1).enclosure(enclosure).controller(controller).text(0, text));
    };
    write("input", event("ABCD", "K1\0left"sv, "by SN-1234567ABCDE K1 SN-123") +
                       event("SN-1234567", "ABCD", "SN-12345678") +
                       event(kLonger, "SN-12345678", "SN-123456789") + event("", "", "ABC"));
    EXPECT_EQ(run("cut --anonymise --output cut").status, 0);
    EXPECT_TRUE(read("cut") ==
                event("0001", "0002", "by ENC00000030001E K1 SN-123") +
                    event("ENC0000003", "0001", "CTL00000005") +
                    event("ENC" + std::string(57, '0') + "0004", "CTL00000005", "CTL000000059") +
                    event("", "", "ABC"));
}

} // namespace Pegasus::test
