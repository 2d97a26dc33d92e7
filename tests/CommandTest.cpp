// The command as its users see it: arguments and bytes in, texts and exit status out.
#include "tests/CommandFixture.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace Pegasus::test {

namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::string line(std::uint32_t sequence) {
    return "Enclosure Ser#: 'ENC-1', Card Ser#: 'CTL-1', Slot: 0, Log Instance # 0, Sequence ID=" +
           std::to_string(sequence) +
           ", Timestamp=0, Source: 'SCC', Category: 'System', EventType=1, EventID: '101', "
           "Summary: '***UNKNOWN EventID***', Body: '<Hex></Hex>'\n";
}

std::string hexOf(const std::string& bytes) {
    std::string text;
    for (const char c : bytes) {
        char two[4];
        std::snprintf(two, sizeof two, "%02x ", static_cast<unsigned>(c) & 0xFF);
        text += two;
    }
    return text;
}

} // namespace

TEST_F(CommandTest, Usage) {
    const struct {
        const char* arguments;
        const char* error;
    } cases[] = {
        {"", "mpuevent: no command given; see mpuevent --help\n"},
        {"encode", "mpuevent: The following argument was not expected: encode (did you mean "
                   "\"decode\"?); \"mpuevent --help\" tells more\n"},
        {"decode --format yaml",
         "mpuevent: --format: yaml not in {text,brief,line,json,xml,csv,otlp}; \"mpuevent "
         "--help\" tells more\n"},
        {"decode --input pcap", "mpuevent: --input: pcap not in {auto,cmap,record,hex,hex-record}; "
                                "\"mpuevent --help\" tells more\n"},
        {"decode --formt json",
         "mpuevent: The following argument was not expected: --formt (did you mean \"--format\"?); "
         "\"mpuevent --help\" tells more\n"},
        {"archive",
         "mpuevent: The following argument was not expected: archive; \"mpuevent --help\" "
         "tells more\n"},
        {"decode --limit -3", "mpuevent: --limit: Value -3 not in range 1 to 18446744073709551615; "
                              "\"mpuevent --help\" tells more\n"},
        {"sample --count -1", "mpuevent: --count: Value -1 not in range 0 to 18446744073709551615; "
                              "\"mpuevent --help\" tells more\n"},
        {"sample --seed 4294967296",
         "mpuevent: --seed: Value 4294967296 not in range 0 to 4294967295; \"mpuevent --help\" "
         "tells more\n"},
        {"follow -n 1x", "mpuevent: --last: Value 1x not in range 0 to 18446744073709551615; "
                         "\"mpuevent --help\" tells more\n"},
        {"decode input --output ./input", "mpuevent: --output: ./input is an input too (input)\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments);
        const Result result = run(c.arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, c.error);
    }
    EXPECT_THAT(run("--help").out, HasSubstr("Exit status: 0 all well"));
    EXPECT_THAT(run("decode --help").out, HasSubstr("--output"));
    EXPECT_THAT(run("--version").out, testing::MatchesRegex("mpuevent [0-9]+\\.[0-9]+\\.[0-9]+\n"));
    EXPECT_EQ(run("--help").status, 0);
}

// The examples that the help shows do work.
TEST_F(CommandTest, Examples) {
    ASSERT_EQ(run("sample --output events.cap").status, 0);
    write("mail.txt", hexOf(message(1)));
    write("left.cap", message(1));
    write("right.cap", message(1));
    for (const char* command :
         {"", "decode", "summary", "verify", "report", "cut", "follow", "formats", "sample"}) {
        int examples = 0;
        std::stringstream lines(run(std::string(command) + " --help").out);
        for (std::string line; std::getline(lines, line);)
            if (line.starts_with("    mpuevent " + std::string(command))) {
                ++examples;
                line.resize(std::min(line.find(" |"), line.size()));
                const bool endless = line.find(" follow ") != line.npos;
                if (kGrep || line.find(" --grep ") == line.npos) {
                    EXPECT_EQ(run(line.substr(13) + (endless ? " --limit 1" : "")).status, 0)
                        << line << read("err");
                }
            }
        EXPECT_GE(examples, 1) << command;
    }
    // The first one finds the drives of the samples.
    std::string first = run("--help").out;
    first = first.substr(first.find("    mpuevent ") + 13);
    first.replace(first.find("events.cap"), first.npos, MPUEVENT_SAMPLES_DIR "*.hex");
    EXPECT_EQ(run(first).out,
              "Drive 5, ENC0004711: DRP Process Event 1257896460\n"
              "Drive 7, ENC0004711: warning Drive Error 1257896460  ~\n"
              "Drive 12, ENC0004711: warning SCSI Error 1257896460; model MODEL 1TB; serial number "
              "SN001234\n"
              "\n~ named by a layout that is assumed\n");
}

TEST_F(CommandTest, ReadsStandardInputAndFiles) {
    write("input", message(1));
    write("two", message(2) + message(3));
    EXPECT_EQ(run("decode --format line").out, line(1));
    EXPECT_EQ(run("decode --format line two - two").out,
              line(2) + line(3) + line(1) + line(2) + line(3));
    const Result empty = run("decode --format json /dev/null");
    EXPECT_EQ(empty.status, 0);
    EXPECT_EQ(empty.out + empty.err, "");
}

TEST_F(CommandTest, WritesToFile) {
    write("input", message(1));
    write("result", "longer than what replaces it" + std::string(10000, '.'));
    const Result result = run("decode --format line --output result");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out + result.err, "");
    EXPECT_EQ(read("result"), line(1));
}

TEST_F(CommandTest, DamageIsReportedAndPassed) {
    write("damaged", message(1) + std::string(100, '\0') + message(2) + message(3) +
                         message(4).substr(0, 100));
    const Result result = run("decode --format line damaged");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, line(1) + line(2) + line(3));
    EXPECT_EQ(
        result.err,
        "mpuevent: damaged: offset 216: message length 0 (expected 216 or more); "
        "100 bytes passed over, resuming at offset 316\n"
        "mpuevent: damaged: offset 748: the input ends after 36 bytes of a record header (expected "
        "152); 100 bytes passed over, no further message found\n");
}

TEST_F(CommandTest, ManyFaultsAreCounted) {
    std::string all;
    for (int i = 0; i < 23; ++i)
        all += message(1) + message(1) + std::string(10, '\0');
    write("input", all);
    const Result result = run("decode --format line");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 21);
    EXPECT_THAT(result.err, HasSubstr("mpuevent: standard input: 3 more faults\n"));
}

TEST_F(CommandTest, UnreadableInputsDoNotHideTheOthers) {
    write("good", message(1));
    write("bad", std::string(3, '\0'));
    const Result result = run("decode --format line missing . good bad");
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.out, line(1));
    EXPECT_EQ(result.err,
              "mpuevent: missing: No such file or directory\n"
              "mpuevent: .: Is a directory\n"
              "mpuevent: bad: offset 0: the input ends after 3 bytes of a message header "
              "(expected 64); 3 bytes passed over, no further message found\n");
}

TEST_F(CommandTest, WriteFailures) {
    std::string many;
    while (many.size() < 1u << 20)
        many += message(1);
    write("input", many);
    const struct {
        const char* arguments;
        const char* error;
    } cases[] = {
        {"decode >/dev/full", "mpuevent: standard output: No space left on device\n"},
        {"decode /dev/null --output no/where", "mpuevent: no/where: No such file or directory\n"},
        {"decode --output /dev/full", "mpuevent: /dev/full: No space left on device\n"},
        {"decode >&-", "mpuevent: standard output: Bad file descriptor\n"},
        {"--help >/dev/full", "mpuevent: standard output: No space left on device\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments);
        const Result result = run(c.arguments);
        EXPECT_EQ(result.status, 3);
        EXPECT_EQ(result.err, c.error);
    }
    // Too little to be written before the end.
    write("input", message(1));
    EXPECT_EQ(run("decode >/dev/full").status, 3);
}

TEST_F(CommandTest, ClosedPipeIsNoFailure) {
    std::string many;
    while (many.size() < 1u << 20)
        many += message(1);
    write("input", many);
    EXPECT_EQ(shell("{ $mpuevent decode --format line <input 2>err; echo $? >status; } | "
                    "head -n 1 >first"),
              0);
    EXPECT_EQ(read("first"), line(1));
    EXPECT_EQ(read("status"), "0\n");
    EXPECT_EQ(read("err"), "");
}

// What came through a pipe is shown while that is quiet.
TEST_F(CommandTest, AQuietPipe) {
    write("message", message(1));
    for (const std::string jobs : {"1", "3"})
        EXPECT_EQ(
            shell("rm -f out; { cat message; n=0; until [ -s out ]; do sleep 0.05; n=$((n+1)); "
                  "[ $n -lt 100 ] || { touch late; break; }; done; } | { $mpuevent decode --format "
                  "line --jobs " +
                  jobs + " >out; }; test ! -e late && test $(wc -l <out) = 1"),
            0);
}

TEST_F(CommandTest, TraceGoesToStandardError) {
    const auto all = RecordBuilder(77, 1).message();
    write("input", {all.begin(), all.end()});
    EXPECT_EQ(run("decode").err, "");
    const Result traced = run("decode --format line --trace --source 77");
    EXPECT_THAT(traced.err, HasSubstr(" Avrel_Event:176               :----: "
                                      "Avrel_Event::sourceFromEmpValue() has no case for source # "
                                      "77\n"));
    EXPECT_THAT(traced.out, StartsWith("Enclosure"));
    EXPECT_EQ(traced.status, 0);
}

TEST_F(CommandTest, HexText) {
    const std::string bytes = message(1) + message(2);
    std::string xxd;
    for (std::size_t at = 0; at < bytes.size(); at += 16) {
        char offset[24];
        std::snprintf(offset, sizeof offset, "%08zx: ", at);
        xxd += offset + hexOf(bytes.substr(at, 16)) + " #41 zz\n";
    }
    write("mail",
          "# two events\n\n" + hexOf(bytes.substr(0, 100)) + "# and\n" + hexOf(bytes.substr(100)));
    write("xxd", xxd);
    write("records", hexOf(bytes.substr(64, 152)) + "\n" + hexOf(bytes.substr(280)));
    EXPECT_EQ(run("decode --input hex --format line mail xxd").out,
              line(1) + line(2) + line(1) + line(2));
    EXPECT_EQ(run("decode --input hex-record --format line records").out, line(1) + line(2));
    write("records", hexOf(bytes.substr(64, 152)) + "\n" + hexOf(bytes.substr(280)) + "zz");
    const Result result = run("decode --input hex-record --format line records");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, line(1) + line(2));
    EXPECT_EQ(result.err, "mpuevent: records: line 2, column 457: \"z\" is not a hexadecimal "
                          "digit; the rest of the line is ignored\n");
}

TEST_F(CommandTest, Json) {
    const auto all = RecordBuilder(23, 101)
                         .enclosure("E\xff\xc3\xa9\x1b\"")
                         .controller("C\xed\xa0\x80")
                         .slot(0xFFFFFFFF)
                         .sequence(0x80000000)
                         .severity(9)
                         .message();
    write("input", {all.begin(), all.end()});
    const Result result = run("decode --format json");
    EXPECT_EQ(result.status, 0);
    ASSERT_EQ(result.out.find('\n'), result.out.size() - 1);
    const auto event = nlohmann::ordered_json::parse(result.out);
    EXPECT_EQ(event, (nlohmann::ordered_json{{"enclosureSerialNumber", "E?\xc3\xa9\x1b\""},
                                             {"controllerSerialNumber", "C???"},
                                             {"controllerSlotID", 0xFFFFFFFFu},
                                             {"eventLogInstanceNumber", 0},
                                             {"sequenceID", 0x80000000u},
                                             {"timestamp", 0},
                                             {"source", "SCC"},
                                             {"category", "System"},
                                             {"eventType", 0},
                                             {"eventTypeText", "Unknown"},
                                             {"eventID", "101"},
                                             {"summary", "***UNKNOWN EventID***"},
                                             {"body", "<Hex></Hex>"},
                                             {"layout", "documented"},
                                             {"missingBytes", 0},
                                             {"unreadBytes", 0}}));
}

TEST_F(CommandTest, Text) {
    const auto all = RecordBuilder(23, 101).severity(3).category(9).u32(0, 0x41424344).message();
    write("input", {all.begin(), all.end()});
    EXPECT_EQ(run("decode").out, "Event 0: Error, SCC, Network\n"
                                 "  Title: 101\n"
                                 "  Summary: ***UNKNOWN EventID***\n"
                                 "  Enclosure: ENC-1\n"
                                 "  Controller: CTL-1\n"
                                 "  Slot: 0\n"
                                 "  Log: 0\n"
                                 "  Time: 0\n"
                                 "  Body:\n"
                                 "    Hex: 41424344\n"
                                 "\n");
}

// What was there before goes when its successor is whole, and no sooner.
TEST_F(CommandTest, OutputFilesAreReplacedAsAWhole) {
    write("capture", message(1) + message(2));
    const std::string decode = "$mpuevent decode --format line -o out ";
    const struct {
        std::string script;
        int status;
        bool stays;
    } cases[] = {
        {decode + "capture", 0, false},
        {decode + "missing", 3, true},
        {decode + "capture missing 2>err", 3, true},
        {"trap '' XFSZ; ulimit -f 0; " + decode + "capture", 3, true}, // as if the disk were full
        {"(cat capture; sleep 9) | timeout 1 " + decode + "-", 124, true},
    };
    for (const auto& [script, status, stays] : cases) {
        ASSERT_EQ(shell("rm -f out*; echo old >out; chmod 604 out; ln -sf out link"), 0);
        EXPECT_EQ(shell(script), status) << script;
        EXPECT_EQ(read("out") == "old\n", stays) << script;
        EXPECT_EQ(shell("[ $(stat -c %a out) = 604 ]"), 0) << script;
    }
    // Nothing is lost: what could be read is beside the old file, or is the new one.
    EXPECT_EQ(shell("rm -f out*; echo old >out; " + decode + "capture missing 2>err"), 3);
    EXPECT_EQ(
        shell("[ $(cat out.new-* | wc -l) = 2 ] && grep -q 'out stays as it was; what could be "
              "written is .*/out.new-' err"),
        0);
    EXPECT_EQ(shell("rm -f out*; " + decode + "capture missing; [ $(cat out | wc -l) = 2 ]"), 0);
    // A link stays one; a pipe is no file to be replaced.
    EXPECT_EQ(shell("$mpuevent decode -o link capture; [ -L link ] && [ -s out ]"), 0);
    EXPECT_EQ(shell("mkfifo pipe; cat pipe >got & $mpuevent decode -o pipe capture; wait; "
                    "[ -p pipe ] && [ -s got ]"),
              0);
}

} // namespace Pegasus::test
