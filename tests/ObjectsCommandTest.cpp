// Failures with everyday events around them, and what is told of them.
#include "tests/CommandFixture.h"

namespace Pegasus::test {

namespace {

// An event of the I/O manager: two codes and the data.
RecordBuilder ioManager(std::uint32_t task, std::uint32_t code,
                        std::initializer_list<std::uint32_t> data) {
    return RecordBuilder(5, 1)
        .u32s(0, {task, code, 1, 0, static_cast<std::uint32_t>(4 * data.size())})
        .u32s(20, data);
}

class ObjectsCommandTest : public CommandTest {
protected:
    void SetUp() override {
        CommandTest::SetUp();
        for (std::uint32_t i = 0; i < 49; ++i)
            add(1000 + 100 * i, 2, ioManager(33, 520, {7}));
        add(6000, 3, ioManager(33, 501, {7}));
        add(6010, 2, RecordBuilder(33, 5).u32s(0, {5u << 16, 1u << 7, 0}));
        add(6100, 1, ioManager(2, 1001, {3}));
        add(7000, 2, RecordBuilder(33, 7).u32(0, 1u << 2));
        add(7100, 2, socket(5, 5));
        add(7200, 3, socket(3, 35));
        add(9000, 1, RecordBuilder(6, 1).version(1).u32(4, 121).u32(36, 7));
        add(9500, 1, ioManager(2, 1002, {3}));
        write("input", capture_);
    }
    // An event after thirty others that name no part.
    void add(std::uint32_t time, unsigned severity, RecordBuilder record) {
        for (int i = 0; i < 30; ++i)
            capture_ += messageOf(RecordBuilder(23, 2000).sequence(++sequence_).timestamp(time));
        capture_ += messageOf(record.sequence(++sequence_)
                                  .timestamp(time)
                                  .severity(severity)
                                  .enclosure("ENC0004711")
                                  .controller("CTL0000815"));
    }
    static RecordBuilder socket(unsigned event, std::uint32_t reason) {
        return RecordBuilder(22, event).u32s(
            0, {2u << 16 | reason, 12, 3260u << 16 | 50123, 0x0A000001, 0x0A000005, 20});
    }

    std::string capture_;
    std::uint32_t sequence_ = 0;
};

} // namespace

TEST_F(ObjectsCommandTest, TellsWhatHappened) {
    const struct {
        const char* arguments;
        const char* lines;
    } cases[] = {
        {"drives",
         "Drive 7, ENC0004711: 50 warnings since 1000, Drive Error 6000, informational Drive "
         "Removed 9000, last 9000  ~ in 2 of 52\n"
         "\n~ named by a layout that is assumed\n"},
        {"drives --drive 7 --story --since 5700",
         "Drive 7, ENC0004711: 3 warnings since 5700, Drive Error 6000, informational Drive "
         "Removed "
         "9000, last 9000  ~ in 2 of 5\n"
         "    5700 to 5800  warning  I/O Mgr  Drive Error: Drive 7, Drive Exception, 2 times  (seq "
         "1488 to 1519)\n"
         "    6000  error  I/O Mgr  Drive Error: Drive 7, Fatal Error  (seq 1550)\n"
         "    6010  warning  ESA  ES Adapter Drive Fault LED Event: Drive Fault LEDs ON: 7  "
         "(seq 1581)\n"
         "    9000  informational  Dev Mgr  Drive Removed: Drive 7, Offline device  (seq 1736)\n"
         "\n~ named by a layout that is assumed\n"},
        {"drives --drive 8", "No event names one.\n"},
        {"objects volumes", "Volume 3, ENC0004711: 2 informational since 6100, last 9500\n"},
        {"objects volumes --epoch 2009-11-10T12:00:00Z",
         "Volume 3, ENC0004711: 2 informational since 2009-11-10T13:41:40Z, last "
         "2009-11-10T14:38:20Z\n"},
        {"objects fans", "Fan 2, ENC0004711: warning ES Adapter Fan Fault Status Event 7000  ~\n"
                         "\n~ named by a layout that is assumed\n"},
        {"objects connections",
         "Connection 12, ENC0004711, CTL0000815: warning Close Socket Failure 7100, "
         "Login 7200, last 7200\n"},
        {"objects initiators input --not-severity err",
         "Initiator 10.0.0.5, ENC0004711: warning Close Socket Failure 7100\n"},
        {"objects enclosures --since 9500",
         "Enclosure ENC-1: 30 informational since 9500, last "
         "9500\n"
         "Enclosure ENC0004711: informational Rebuild Task Event 9500\n"},
        {"objects --severity err --format json",
         R"({"kind":"drive","id":"7","enclosureSerialNumber":"ENC0004711","events":1,)"
         R"("withAssumedLayout":0,"severities":{"error":1,"warning":0,"informational":0,)"
         R"("unknown":0},"firstTimestamp":6000,"lastTimestamp":6000})"
         "\n"
         R"({"kind":"connection","id":"12","enclosureSerialNumber":"ENC0004711",)"
         R"("controllerSerialNumber":"CTL0000815","events":1,"withAssumedLayout":0,)"
         R"("severities":{"error":1,"warning":0,"informational":0,"unknown":0},)"
         R"("firstTimestamp":7200,"lastTimestamp":7200})"
         "\n"
         R"({"kind":"initiator","id":"10.0.0.5","enclosureSerialNumber":"ENC0004711","events":1,)"
         R"("withAssumedLayout":0,"severities":{"error":1,"warning":0,"informational":0,)"
         R"("unknown":0},"firstTimestamp":7200,"lastTimestamp":7200})"
         "\n"},
    };
    for (const auto& c : cases) {
        const Result result = run(c.arguments);
        EXPECT_EQ(result.out, c.lines) << c.arguments;
        EXPECT_EQ(result.err, "") << c.arguments;
        EXPECT_EQ(result.status, 0) << c.arguments;
    }
}

// A number whose bytes are not in the record names nothing.
TEST_F(ObjectsCommandTest, NamesNothingThatIsNotInTheRecord) {
    write("input", messageOf(ioManager(33, 501, {})) +
                       messageOf(RecordBuilder(6, 1).version(1).u32(4, 121).u32(32, 0)));
    EXPECT_EQ(run("drives").out, "No event names one.\n");
    EXPECT_EQ(run("decode --drive 0").out, "");
    EXPECT_EQ(run("decode --format csv --columns summary").out,
              "summary\r\n\"Drive 0, Fatal Error\"\r\n\"Drive 0, Offline device\"\r\n");
}

TEST_F(ObjectsCommandTest, FiltersByObject) {
    const struct {
        const char* options;
        int events;
    } cases[] = {
        {"--drive 7", 52},
        {"--drive 7 --severity err", 1},
        {"--not-drive 7 --since 9500", 31},
        {"--drive 7 --drive 8 --not-where 'State=Exception'", 3},
        {"--volume 3 --fan 2", 0},
        {"--fan 2", 1},
        {"--connection 12", 2},
        {"--initiator 10.0.0.5 --severity warn", 2},
        {"--lun 7", 0},
    };
    for (const auto& c : cases) {
        const std::string out = run(std::string("decode --format line --jobs 2 ") + c.options).out;
        EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), c.events) << c.options;
    }
}

} // namespace Pegasus::test
