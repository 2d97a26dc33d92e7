// Parts of a capture are together the whole.
#include "tests/Build.h"
#include "tests/CommandFixture.h"

#include <random>

namespace Pegasus::test {

namespace {

class PartCommandTest : public CommandTest {
protected:
    // What all parts of "capture" give, one after the other, and the worst of their statuses.
    Result parts(unsigned count, const std::string& arguments) {
        const int status =
            shell("worst=0; rm -f out err; k=1; while [ $k -le " + std::to_string(count) +
                  " ]; do $mpuevent decode --part $k/" + std::to_string(count) + " " + arguments +
                  " capture >>out 2>>err; s=$?; [ $s -le $worst ] || worst=$s; k=$((k + 1)); done; "
                  "exit $worst");
        return {status, read("out"), read("err")};
    }
    // Returns what the whole gives.
    Result expectWhole(unsigned count, const std::string& arguments) {
        SCOPED_TRACE(std::to_string(count) + " parts, " + arguments);
        const Result whole = run("decode " + arguments + " capture");
        const Result all = parts(count, arguments);
        EXPECT_EQ(all.status, whole.status);
        EXPECT_EQ(all.err, whole.err);
        EXPECT_TRUE(all.out == whole.out);
        return whole;
    }
};

using Random = std::mt19937;

std::string noise(Random& random, std::size_t size) {
    std::string bytes(size, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random());
    return bytes;
}

// Messages with damage of every kind between and in them: foreign bytes, beginnings of messages
// that never end, whole messages inside others with and without a sound end, wrong lengths,
// messages whose last bytes are the first of the next.
std::string ruin(unsigned seed, bool bare) {
    Random random(seed);
    const auto upTo = [&](std::size_t most) {
        return static_cast<unsigned>(random() % (most + 1));
    };
    std::string all;
    for (std::uint32_t i = 1; i <= 60; ++i) {
        RecordBuilder record(upTo(33), 2000 + i);
        record.sequence(i).timestamp(i).instance(1).controller("CTL-" + std::to_string(i % 3));
        const auto bytesOf = [&](const RecordBuilder& from) {
            const auto bytes = bare ? from.record() : from.message();
            return std::string(bytes.begin(), bytes.end());
        };
        const std::string inner = bytesOf(record.sequence(1000 + i));
        record.sequence(i);
        if (upTo(3) == 0)
            record.bytes(0, noise(random, upTo(200)) + inner + noise(random, upTo(200)));
        else
            record.bytes(0, noise(random, upTo(400)));
        std::string bytes = bytesOf(record);
        switch (upTo(11)) {
        case 0:
            bytes.resize(bytes.size() - upTo(bytes.size() - 1));
            break;
        case 1:
            bytes = bytes.substr(0, 20 + upTo(180)) + bytes;
            break;
        case 2:
            bytes[upTo(bytes.size() - 1)] ^= static_cast<char>(1 << upTo(7));
            break;
        case 3:
            bytes[10 + upTo(1)] = static_cast<char>(random());
            break;
        case 4:
            bytes += noise(random, upTo(300));
            break;
        case 5:
            bytes.resize(bytes.size() - upTo(10));
            break;
        default:
            break;
        }
        all += bytes;
    }
    return all;
}

} // namespace

TEST_F(PartCommandTest, MessagesBelongToThePartInWhichTheyBegin) {
    write("capture", message(1) + message(2) + message(3) + message(4)); // of 216 bytes each
    const struct {
        const char* part;
        const char* out; // the header line is the first part's
    } cases[] = {
        {"1/1", "sequenceID\r\n1\r\n2\r\n3\r\n4\r\n"},
        {"1/2", "sequenceID\r\n1\r\n2\r\n"}, // cut at 432, where one begins
        {"2/2", "3\r\n4\r\n"},
        {"1/3", "sequenceID\r\n1\r\n2\r\n"}, // at 288 and 576
        {"2/3", "3\r\n"},
        {"3/3", "4\r\n"},
        {"1/8", "sequenceID\r\n1\r\n"},
        {"2/8", ""},
        {"3/8", "2\r\n"},
        {"8/8", ""},
    };
    for (const auto& [part, out] : cases)
        EXPECT_EQ(
            run(std::string("decode --format csv --columns sequenceID capture --part ") + part).out,
            out)
            << part;
}

TEST_F(PartCommandTest, TogetherTheWhole) {
    const unsigned seeds = kEmulated || kSlow ? 1 : 3;
    for (unsigned seed = 1; seed <= seeds; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const bool bare = seed % 2 == 0;
        write("capture", ruin(seed, bare));
        const std::string input = bare ? "--input record" : "--input cmap";
        for (const unsigned count : {3u, 61u, 64u}) {
            const Result whole =
                expectWhole(count, input + " --max-reports 0 --format json --origin");
            EXPECT_EQ(whole.status, 1); // there is something that could be lost
        }
    }
}

TEST_F(PartCommandTest, OptionsAndFormats) {
    write("capture", ruin(5, false));
    for (const char* arguments :
         {"", "--jobs 2 --format xml --fields", "--format csv --columns sequenceID,source",
          "--format csv --jobs 3 --severity err", "--format brief --epoch unix --where source=SCC"})
        expectWhole(5, std::string(arguments) + " --max-reports 0");
    write("capture", "");
    expectWhole(3, "--format xml");
}

TEST_F(PartCommandTest, Refusals) {
    write("capture", message(1));
    write("text", "00 01");
    ASSERT_EQ(shell("gzip -k capture"), 0);
    const std::string plain =
        ": --part takes a plain capture: no pipe, no compressed data, no text\n";
    const struct {
        const char* arguments;
        std::string said;
    } cases[] = {
        {"3/2 capture", "--part: \"3/2\" is not a part such as 3/8, of 1000000 at most; \"mpuevent "
                        "--help\" tells more\n"},
        {"0/2 capture", "--part: \"0/2\" is not a part such as 3/8, of 1000000 at most; \"mpuevent "
                        "--help\" tells more\n"},
        {"1/2 capture capture", "--part takes one capture\n"},
        {"1/2 --limit 1 capture", "--limit excludes --part; \"mpuevent --help\" tells more\n"},
        {"1/2 --time delta capture", "--part: not with --time relative or delta\n"},
        {"1/2 --input hex text", "text" + plain},
        {"1/2 /dev/null", "/dev/null" + plain},
#ifdef MPUEVENT_GZIP
        {"1/2 --max-reports 0 capture.gz",
         "capture.gz: recognised as gzip data\nmpuevent: capture.gz" + plain},
#endif
    };
    for (const auto& [arguments, said] : cases) {
        const Result result = run(std::string("decode --part ") + arguments);
        EXPECT_EQ(result.status, 2) << arguments;
        EXPECT_EQ(result.err, "mpuevent: " + said);
        EXPECT_EQ(result.out, "") << arguments;
    }
}

} // namespace Pegasus::test
