// Reading captures: framing and damage.
#include "capture/Capture.h"
#include "tests/Dribble.h"
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

struct Reading {
    std::vector<std::uint32_t> sequences;
    std::vector<std::uint64_t> offsets;
    std::vector<std::string> reports;
};

Reading readFrom(ByteSource& source, Framing framing) {
    Reading reading;
    Capture capture(framing,
                    [&](const Damage& damage) { reading.reports.push_back(damage.str()); });
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
         {"offset 216: message length 0 (expected 216, as its record says)"}},
        {"zero length",
         one + std::string(100, '\0') + two + three,
         {1, 2, 3},
         {"offset 216: message length 0 (expected 216 or more); 100 bytes passed over, resuming at "
          "offset 316"}},
        {"length below that of the message header",
         one + withLength(two.substr(0, 64), 63) + three + four,
         {1, 3, 4},
         {"offset 216: message length 63 (expected 216 or more); 64 bytes passed over, resuming at "
          "offset 280"}},
        {"no room for a record header",
         one + withLength(two.substr(0, 215), 215) + three + four,
         {1, 3, 4},
         {"offset 216: message length 215 (expected 216 or more); 215 bytes passed over, resuming "
          "at offset 431"}},
        {"length too long",
         one + withLength(two, 300) + three + four,
         {1, 2, 3, 4},
         {"offset 216: message length 300 (expected 216, as its record says)"}},
        {"length beyond the end",
         one + withLength(two, 60000) + three,
         {1, 2, 3},
         {"offset 216: message length 60000 (expected 216, as its record says)"}},
        {"foreign bytes that pass for a length",
         one + ones + two + three,
         {1, 2, 3},
         {"offset 216: no record header (a serial number does not end); 300 bytes passed over, "
          "resuming at offset 516"}},
        {"cut off in the message header",
         one + two.substr(0, 5),
         {1},
         {"offset 216: the input ends after 5 bytes of a message header (expected 64); 5 bytes "
          "passed over, no further message found"}},
        {"cut off in the record header",
         one + two.substr(0, 215),
         {1},
         {"offset 216: the input ends after 151 bytes of a record header (expected 152); 215 bytes "
          "passed over, no further message found"}},
        {"cut off in the payload",
         one + longMessage(2).substr(0, 230),
         {1},
         {"offset 216: the input ends after 230 bytes of a message (expected 256); 230 bytes "
          "passed over, no further message found"}},
        {"begins the next one too early",
         one + longMessage(2).substr(0, 230) + three + four,
         {1, 3, 4},
         {"offset 216: another message begins after 230 of its 256 bytes; 230 bytes passed over, "
          "resuming at offset 446"}},
        {"two damaged places",
         ones + one + std::string(1, 'x') + two + ones,
         {1, 2},
         {"offset 0: no record header (a serial number does not end); 300 bytes passed over, "
          "resuming at offset 300",
          "offset 516: message length 0 (expected 216 or more); 1 byte passed over, resuming at "
          "offset 517",
          "offset 733: no record header (a serial number does not end); 300 bytes passed over, no "
          "further message found"}},
    };
    for (const DamageCase& c : cases)
        check(c);
}

std::string odd(std::uint32_t sequence, unsigned claimed, unsigned source = 23) {
    const auto all =
        RecordBuilder(source, 101).sequence(sequence).u32(4, 1).payloadLength(claimed).message();
    return {all.begin(), all.end()};
}

// Intact but for what their records claim, one after the other too.
TEST(Capture, OddMessages) {
    const DamageCase cases[] = {
        {"claims less",
         message(1) + odd(2, 3) + message(3),
         {1, 2, 3},
         {"offset 216: 3 bytes of payload claimed, 8 carried"}},
        {"claims more",
         message(1) + odd(2, 500) + message(3),
         {1, 2, 3},
         {"offset 216: 500 bytes of payload claimed, 8 carried"}},
        {"claims more than any message holds",
         odd(2, 65535) + message(3),
         {2, 3},
         {"offset 0: 65535 bytes of payload claimed, 8 carried"}},
        {"unknown source", message(1) + odd(2, 8, 200) + message(3), {1, 2, 3}, {}},
        {"both, last",
         message(1) + odd(2, 3, 200),
         {1, 2},
         {"offset 216: 3 bytes of payload claimed, 8 carried"}},
        {"two in a row",
         odd(1, 3) + odd(2, 500),
         {1, 2},
         {"offset 0: 3 bytes of payload claimed, 8 carried",
          "offset 224: 500 bytes of payload claimed, 8 carried"}},
    };
    for (const DamageCase& c : cases)
        check(c);
}

// Decoders are not told of bytes that are not there, but of those that are more than claimed.
TEST(Capture, ARecordClaimsNoMoreThanItsMessageCarries) {
    for (const unsigned claimed : {65535u, 9u, 8u, 3u}) {
        const std::string all = odd(1, claimed);
        MemorySource memory(all.data(), all.size());
        Capture capture(Framing::Message, [](const Damage&) {});
        capture.open(memory);
        Message message;
        ASSERT_TRUE(capture.next(message));
        EXPECT_EQ(mpu::loadBig<std::uint16_t>(&message.record[144]), std::min(claimed, 8u));
        EXPECT_EQ(message.record.size(), 160u);
    }
}

// Where nothing but its own evidence speaks for a message.
TEST(Capture, EvidenceOfAMessageAlone) {
    const auto plain = [] { return RecordBuilder(33, 1).sequence(7).u64(0, 1); };
    const auto unprintable = [](RecordBuilder record) {
        return record.enclosure("\x80").controller("");
    };
    const auto endless = [](RecordBuilder record) {
        return record.controller(std::string(64, 'c'));
    };
    const struct {
        const char* name;
        RecordBuilder record;
        bool found;
    } cases[] = {
        {"plain", plain(), true},
        {"highest codes", plain().severity(103).category(14), true},
        {"unprintable serial numbers", unprintable(plain()), true},
        {"source 34", unprintable(RecordBuilder(34, 1)), false},
        {"event type 4", unprintable(plain().severity(4)), false},
        {"event type 104", unprintable(plain().severity(104)), false},
        {"category 0", unprintable(plain().category(0)), false},
        {"category 15", unprintable(plain().category(15)), false},
        {"serial number without end", endless(unprintable(plain())), false},
        {"made up for by printable serial numbers", RecordBuilder(34, 1).sequence(7), true},
        {"two faults", plain().severity(4).category(0), false},
        {"claims less than it carries", plain().payloadLength(7), false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto all = c.record.message();
        const std::string zeros(300, '\0');
        EXPECT_EQ(read(zeros + std::string(all.begin(), all.end()) + zeros).sequences.size(),
                  c.found ? 1u : 0u);
    }
}

TEST(Capture, BareRecords) {
    const auto wide = RecordBuilder(23, 101).sequence(5).u8(65399, 1).record();
    const DamageCase cases[] = {
        {"well", record(1) + longMessage(2).substr(64) + record(3), {1, 2, 3}, {}},
        {"cut off in the header",
         record(1) + record(2).substr(0, 151),
         {1},
         {"offset 152: the input ends after 151 bytes of a record header (expected 152); 151 bytes "
          "passed over, no further message found"}},
        {"cut off in the payload",
         record(1) + longMessage(2).substr(64, 153),
         {1},
         {"offset 152: the input ends after 153 bytes of a record (expected 192); 153 bytes passed "
          "over, no further message found"}},
        {"foreign bytes",
         record(1) + std::string(300, '\1') + record(2) + record(3),
         {1, 2, 3},
         {"offset 152: no record header (a serial number does not end); 300 bytes passed over, "
          "resuming at offset 452"}},
        {"more than a message can carry",
         std::string(wide.begin(), wide.end()) + record(2),
         {2},
         {"offset 0: payload length 65400 (expected 65319 or less); 65552 bytes passed over, "
          "resuming at offset 65552"}},
    };
    for (const DamageCase& c : cases)
        check(c, Framing::Record);
}

TEST(Capture, DecodesWithAndWithoutMessageHeader) {
    const auto all = RecordBuilder(23, 101).sequence(7).message();
    for (const Framing framing : {Framing::Message, Framing::Record}) {
        const std::size_t from = framing == Framing::Message ? 0 : 64;
        MemorySource memory(all.data() + from, all.size() - from);
        Capture capture(framing, [](const Damage& damage) { ADD_FAILURE() << damage.str(); });
        capture.open(memory);
        Message message;
        ASSERT_TRUE(capture.next(message));
        EXPECT_EQ(message.header.size(), 64 - from);
        const SuppressTrace quiet;
        EXPECT_EQ(message.decode()->getSequenceID(), 7u);
    }
}

} // namespace Pegasus::test
