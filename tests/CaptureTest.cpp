// Reading captures: framing and damage.
#include "capture/Capture.h"
#include "tests/RecordBuilder.h"

#include <gmock/gmock.h>

namespace Pegasus::test {

namespace {

using namespace capture;
using testing::ElementsAre;

// An ordinary message of 216 bytes, and of 256.
std::string message(std::uint32_t sequence) {
    const auto all = RecordBuilder(23, 101).sequence(sequence).message();
    return {all.begin(), all.end()};
}
std::string longMessage(std::uint32_t sequence) {
    const auto all = RecordBuilder(23, 101).sequence(sequence).u32(36, 1).message();
    return {all.begin(), all.end()};
}
std::string record(std::uint32_t sequence) {
    return message(sequence).substr(64);
}
std::string withLength(std::string message, unsigned length) {
    mpu::storeBig(&message[10], static_cast<std::uint16_t>(length));
    return message;
}

// Delivers a few bytes at a time.
class Dribble : public ByteSource {
public:
    Dribble(const std::string& all, std::size_t step)
        : memory_(all.data(), all.size()), step_(step) {}
    std::size_t read(std::uint8_t* to, std::size_t room) override {
        return memory_.read(to, std::min(room, step_));
    }

private:
    MemorySource memory_;
    std::size_t step_;
};

struct Reading {
    std::vector<std::uint32_t> sequences;
    std::vector<std::uint64_t> offsets;
    std::vector<std::string> reports;
};

Reading readFrom(ByteSource& source, Framing framing) {
    Reading reading;
    Capture capture(framing, [&](const std::string& what) { reading.reports.push_back(what); });
    capture.open(source);
    for (Message message; capture.next(message);) {
        reading.sequences.push_back(mpu::loadBig<std::uint32_t>(&message.record[136]));
        reading.offsets.push_back(message.offset);
    }
    return reading;
}

// The size of the pieces in which the input comes must not matter.
Reading read(const std::string& all, Framing framing = Framing::Message) {
    MemorySource memory(all.data(), all.size());
    const Reading reading = readFrom(memory, framing);
    Dribble dribble(all, 7);
    const Reading again = readFrom(dribble, framing);
    EXPECT_EQ(again.sequences, reading.sequences);
    EXPECT_EQ(again.offsets, reading.offsets);
    EXPECT_EQ(again.reports, reading.reports);
    return reading;
}

using Sequences = std::vector<std::uint32_t>;

struct DamageCase {
    const char* name;
    std::string capture;
    Sequences sequences;
    std::vector<std::string> reports;
};

void check(const DamageCase& c, Framing framing = Framing::Message) {
    SCOPED_TRACE(c.name);
    const Reading reading = read(c.capture, framing);
    EXPECT_EQ(reading.sequences, c.sequences);
    EXPECT_EQ(reading.reports, c.reports);
}

} // namespace

TEST(Capture, HandsOutMessagesWithTheirOffsets) {
    const Reading reading = read(message(1) + longMessage(2) + message(3));
    EXPECT_EQ(reading.sequences, (Sequences{1, 2, 3}));
    EXPECT_THAT(reading.offsets, ElementsAre(0, 216, 472));
    EXPECT_TRUE(reading.reports.empty());
    EXPECT_TRUE(read("").sequences.empty());
    EXPECT_TRUE(read("").reports.empty());
}

TEST(Capture, DamagedMessages) {
    const std::string one = message(1), two = message(2), three = message(3), four = message(4);
    const std::string ones(300, '\1');
    const DamageCase cases[] = {
        {"zero length before an intact record",
         one + withLength(two, 0) + three,
         {1, 2, 3},
         {"offset 216: message length 0 (216 or more wanted); taken as 216 bytes, as its record "
          "says"}},
        {"zero length",
         one + std::string(100, '\0') + two + three,
         {1, 2, 3},
         {"offset 216: message length 0 (216 or more wanted); going on at offset 316"}},
        {"length below that of the message header",
         one + withLength(two.substr(0, 64), 63) + three + four,
         {1, 3, 4},
         {"offset 216: message length 63 (216 or more wanted); going on at offset 280"}},
        {"no room for a record header",
         one + withLength(two.substr(0, 215), 215) + three + four,
         {1, 3, 4},
         {"offset 216: message length 215 (216 or more wanted); going on at offset 431"}},
        {"length too long",
         one + withLength(two, 300) + three + four,
         {1, 2, 3, 4},
         {"offset 216: message length 300 (216 wanted: there the next message begins); taken as "
          "216 bytes, as its record says"}},
        {"length beyond the end",
         one + withLength(two, 60000) + three,
         {1, 2, 3},
         {"offset 216: the input ends after 432 bytes of a message (60000 wanted); taken as 216 "
          "bytes, as its record says"}},
        {"foreign bytes that pass for a length",
         one + ones + two + three,
         {1, 2, 3},
         {"offset 216: no record header (source 1, event type 1, category 1 found); going on at "
          "offset 516"}},
        {"cut off in the message header",
         one + two.substr(0, 5),
         {1},
         {"offset 216: the input ends after 5 bytes of a message header (64 wanted); nothing found "
          "behind it"}},
        {"cut off in the record header",
         one + two.substr(0, 215),
         {1},
         {"offset 216: the input ends after 151 bytes of a record header (152 wanted); nothing "
          "found behind it"}},
        {"cut off in the payload",
         one + longMessage(2).substr(0, 230),
         {1},
         {"offset 216: the input ends after 230 bytes of a message (256 wanted); nothing found "
          "behind it"}},
        {"two damaged places",
         ones + one + two + ones + three + four,
         {1, 2, 3, 4},
         {"offset 0: no record header (source 1, event type 1, category 1 found); going on at "
          "offset 300",
          "offset 732: no record header (source 1, event type 1, category 1 found); going on at "
          "offset 1032"}},
    };
    for (const DamageCase& c : cases)
        check(c);
}

TEST(Capture, OddMessagesAreNoDamage) {
    const auto odd = [](std::uint32_t sequence, unsigned claimed, unsigned source) {
        const auto all = RecordBuilder(source, 101)
                             .sequence(sequence)
                             .u32(4, 1)
                             .payloadLength(claimed)
                             .message();
        return std::string(all.begin(), all.end());
    };
    const DamageCase cases[] = {
        {"claims less", message(1) + odd(2, 3, 23) + message(3), {1, 2, 3}, {}},
        {"claims more", message(1) + odd(2, 500, 23) + message(3), {1, 2, 3}, {}},
        {"claims more than any message holds", odd(2, 65535, 23) + message(3), {2, 3}, {}},
        {"unknown source", message(1) + odd(2, 8, 200) + message(3), {1, 2, 3}, {}},
        {"both, last", message(1) + odd(2, 3, 200), {1, 2}, {}},
        {"two in a row", odd(1, 3, 23) + odd(2, 500, 23), {1, 2}, {}},
    };
    for (const DamageCase& c : cases)
        check(c);
}

// What search takes for a message differs from foreign bytes in each of these.
TEST(Capture, SearchPassesImplausibleMessages) {
    const std::string junk(100, '\0');
    const std::string rest = message(8) + message(9);
    const auto seen = [&](const RecordBuilder& builder) {
        const auto all = builder.message();
        return read(junk + std::string(all.begin(), all.end()) + rest).sequences;
    };
    const auto plain = [] { return RecordBuilder(33, 101).sequence(7).u64(0, 1); };
    EXPECT_EQ(seen(plain()), (Sequences{7, 8, 9}));
    EXPECT_EQ(seen(plain().severity(103).category(14)), (Sequences{7, 8, 9}));
    EXPECT_EQ(seen(RecordBuilder(34, 101).sequence(7)), (Sequences{8, 9}));
    EXPECT_EQ(seen(plain().severity(4)), (Sequences{8, 9}));
    EXPECT_EQ(seen(plain().severity(104)), (Sequences{8, 9}));
    EXPECT_EQ(seen(plain().category(0)), (Sequences{8, 9}));
    EXPECT_EQ(seen(plain().category(15)), (Sequences{8, 9}));
    EXPECT_EQ(seen(plain().payloadLength(7)), (Sequences{8, 9}));
    EXPECT_EQ(seen(plain().enclosure(std::string(64, 'e'))), (Sequences{8, 9}));
    EXPECT_EQ(seen(plain().controller(std::string(64, 'c'))), (Sequences{8, 9}));
    // Foreign bytes behind it.
    EXPECT_EQ(read(junk + message(7) + std::string(216, '\0')).sequences, Sequences{});
    EXPECT_EQ(read(junk + message(7)).sequences, Sequences{7});
}

// Longer than the reader's buffer, damaged every so often.
TEST(Capture, LongCapture) {
    std::string all;
    Sequences expected;
    std::vector<std::string> reports;
    std::uint32_t sequence = 0;
    for (unsigned i = 0; i < 40; ++i) {
        for (int k = 0; k < 3; ++k) {
            const auto big =
                RecordBuilder(23, 1).sequence(++sequence).u8(65000 - 997 * i, 1).message();
            all.append(big.begin(), big.end());
            expected.push_back(sequence);
        }
        const std::string at = std::to_string(all.size());
        all.append(100, '\0');
        reports.push_back("offset " + at + ": message length 0 (216 or more wanted); " +
                          (i < 39 ? "going on at offset " + std::to_string(all.size())
                                  : "nothing found behind it"));
    }
    ASSERT_GT(all.size(), 4u << 20);
    const Reading reading = read(all);
    EXPECT_EQ(reading.sequences, expected);
    EXPECT_EQ(reading.reports, reports);
}

TEST(Capture, BareRecords) {
    const auto wide = RecordBuilder(23, 101).sequence(5).u8(65399, 1).record();
    const DamageCase cases[] = {
        {"well", record(1) + longMessage(2).substr(64) + record(3), {1, 2, 3}, {}},
        {"cut off in the header",
         record(1) + record(2).substr(0, 151),
         {1},
         {"offset 152: the input ends after 151 bytes of a record header (152 wanted); nothing "
          "found behind it"}},
        {"cut off in the payload",
         record(1) + longMessage(2).substr(64, 153),
         {1},
         {"offset 152: the input ends after 153 bytes of a record (192 wanted); nothing found "
          "behind it"}},
        {"foreign bytes",
         record(1) + std::string(300, '\1') + record(2) + record(3),
         {1, 2, 3},
         {"offset 152: no record header (source 1, event type 1, category 1 found); going on at "
          "offset 452"}},
        {"more than a message can carry",
         std::string(wide.begin(), wide.end()) + record(2),
         {2},
         {"offset 0: payload length 65400 (65319 or less wanted); going on at offset 65552"}},
    };
    for (const DamageCase& c : cases)
        check(c, Framing::Record);
}

TEST(Capture, DecodesWithAndWithoutMessageHeader) {
    const auto all = RecordBuilder(23, 101).sequence(7).message();
    for (const Framing framing : {Framing::Message, Framing::Record}) {
        const std::size_t from = framing == Framing::Message ? 0 : 64;
        MemorySource memory(all.data() + from, all.size() - from);
        Capture capture(framing, [](const std::string& what) { ADD_FAILURE() << what; });
        capture.open(memory);
        Message message;
        ASSERT_TRUE(capture.next(message));
        EXPECT_EQ(message.header.size(), 64 - from);
        const SuppressTrace quiet;
        EXPECT_EQ(message.decode()->getSequenceID(), 7u);
    }
}

} // namespace Pegasus::test
