// `mpuevent verify`: what is amiss, and totals that add up.
#include "tests/CommandFixture.h"

#include <gmock/gmock.h>

namespace Pegasus::test {

namespace {

using VerifyCommandTest = CommandTest;

std::string at(std::uint32_t sequence, std::uint32_t time) {
    return messageOf(RecordBuilder(23, 101).sequence(sequence).timestamp(time).slot(2).instance(5));
}

} // namespace

TEST_F(VerifyCommandTest, AWholeCapture) {
    // Another log between has numbers of its own.
    write("whole", at(0xFFFFFFFF, 7) + message(50) + at(0, 7) + at(1, 9));
    const Result result = run("verify whole");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "whole: 864 bytes: 4 events in 864 bytes, 0 bytes passed over; nothing amiss\n");
}

TEST_F(VerifyCommandTest, TellsWhatIsAmiss) {
    write("bad", std::string(3, '\0') + at(1, 5) + at(4, 6) + at(4, 6) + at(5, 2) + "xx" +
                     at(2, 2) + "end");
    const Result text = run("verify bad");
    EXPECT_EQ(text.status, 1);
    const std::string log = " (enclosure \"ENC-1\", controller \"CTL-1\", slot 2, log 5)\n";
    EXPECT_EQ(
        text.out,
        "bad: offset 0: message length 0 (expected 216 or more); 3 bytes passed over, resuming "
        "at offset 3 (event before: none, after: sequence 1)\n"
        "bad: offset 219: sequence 4 after 1: 2 missing" +
            log + "bad: offset 435: sequence 4 is repeated" + log +
            "bad: offset 651: time 2 after 6" + log +
            "bad: offset 867: message length 0 (expected 216 or more); 2 bytes passed over, "
            "resuming at offset 869 (event before: sequence 5, after: sequence 2)\n"
            "bad: offset 869: sequence 2 after 5" +
            log +
            "bad: offset 1085: the input ends after 3 bytes of a message header (expected 64); 3 "
            "bytes passed over, no further message found (event before: sequence 2, after: none)\n"
            "bad: 1088 bytes: 5 events in 1080 bytes, 8 bytes passed over; 7 findings\n");

    const Result json = run("verify --format json bad");
    EXPECT_EQ(json.status, 1);
    EXPECT_THAT(json.out,
                testing::StartsWith(
                    R"~({"kind":"damage","file":"bad","offset":0,"length":3,)~"
                    R"~("reason":"message length 0 (expected 216 or more)",)~"
                    R"~("sequenceBefore":null,"sequenceAfter":1})~"
                    "\n"
                    R"~({"kind":"gap","file":"bad","offset":219,"enclosureSerialNumber":"ENC-1",)~"
                    R"~("controllerSerialNumber":"CTL-1","controllerSlotID":2,)~"
                    R"~("eventLogInstanceNumber":5,"before":1,"after":4})~"
                    "\n"));
    EXPECT_THAT(json.out,
                testing::EndsWith(R"({"kind":"total","file":"bad","bytes":1088,"events":5,)"
                                  R"("eventBytes":1080,"passedOver":8,"findings":7})"
                                  "\n"));
}

} // namespace Pegasus::test
