// The page that `mpuevent report` makes: scripts/test-page shows it to a browser.
#include "tests/CommandFixture.h"

#include <cstring>
#include <fmt/format.h>
#include <gmock/gmock.h>

namespace Pegasus::test {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class ReportCommandTest : public CommandTest {};

} // namespace

// The page is what its script makes of this.
TEST_F(ReportCommandTest, Data) {
    write("input",
          messageOf(RecordBuilder(5, 1).sequence(7).timestamp(100).severity(103).category(4).u32s(
              0, {33, 520, 0, 18, 4, 7, 0xAB})) +
              "foreign" +
              messageOf(RecordBuilder(77, 5).slot(1).instance(2).sequence(5).timestamp(291).u32(
                  0, 0x1A)) +
              messageOf(RecordBuilder(23, 101).category(2)));
    const Result result = run("report --not-category 2 --limit 5 -o page.html");
    EXPECT_EQ(result.status, 1);
    const std::string page = read("page.html");
    EXPECT_THAT(
        blocks(page, "rows"),
        ElementsAre(R"({"sequence":[7,-2],"time":[100,191],"signs":[4,4],)"
                    R"("type":{"texts":[["Eng Error",3],["Informational",1]],"of":[0,1]},)"
                    R"("source":{"texts":["I/O Mgr","77"],"of":[0,1]},)"
                    R"("title":{"texts":["Drive Error","5"],"of":[0,1]},)"
                    R"("controller":{"texts":[["ENC-1","CTL-1",0,0],["ENC-1","CTL-1",1,2]],)"
                    R"("of":[0,1]},"summary":[0,1],"objects":[0,1]})"
                    "\n\n\"Drive 7, Drive Exception\"\n\"\"\n\n[[0,\"7\",0]]\n[]"));
    // Numbers are told by the payload, the other values by themselves.
    EXPECT_THAT(
        blocks(page, "bodies"),
        ElementsAre(
            R"({"forms":[[[1,"Event_Type",0,"%u",0,4,0],[1,"Event_Number",0,"%u",4,4,0],)"
            R"([1,"Event_Line_Number",0,"%u",12,4,0],)"
            R"([1,"Request_Type",0,"",0,4,0,4,4,0],[1,"Drive",0,"%u",20,4,0],)"
            R"([1,"State",0,""]],[]],"events":[)"
            R"([0,"Device",0,12,"000000210000020800000000000000120000000400000007000000AB",)"
            R"("Drive Exception","Exception"],)"
            "\n"
            R"([1,"System",0,4,"0000001A"]]})"));
    EXPECT_THAT(
        blocks(page, "facts"),
        ElementsAre(testing::AllOf(
            HasSubstr(R"("files":[["standard input",687]],"moreFiles":0,"remarks":["standard )"
                      R"(input: offset 244: )"),
            HasSubstr(R"("faults":1,"filters":"--not-category 2 --limit 5","leftOut":1,)"
                      R"("events":2,)"),
            HasSubstr(R"("objects":[{"kind":0,"id":"7","enclosure":"ENC-1","controller":"",)"
                      R"("model":"","serialNumber":"","events":1,"assumed":0,)"
                      R"("severities":[0,0,0,1],"time":[100,100],"untold":0,)"
                      R"("story":[[3,"I/O Mgr","Drive Error","Drive 7, Drive Exception",)"
                      R"(1,100,100,7,7]]}])"))));
    EXPECT_THAT(blocks(run("report --last 1 input").out, "facts"),
                ElementsAre(testing::AllOf(HasSubstr(R"("leftOut":2,"events":1)"),
                                           Not(HasSubstr("epoch")))));
    EXPECT_THAT(blocks(run("report --merge --limit 1 input input").out, "facts"),
                ElementsAre(HasSubstr(R"("files":[["input",244],["input",244]])")));
    // All but the first time are after the end of daylight saving.
    EXPECT_THAT(
        blocks(run("report --epoch 2009-10-25T00:58:20Z --tz Europe/Vienna input").out, "facts"),
        ElementsAre(
            HasSubstr(R"("epoch":1256432300,"zone":[[1256432300,7200],[1256432400,3600]])")));
    // Two runs give the same bytes where the time does.
    const std::string again = "SOURCE_DATE_EPOCH=1257897600 $mpuevent report - <input 2>err >";
    EXPECT_EQ(shell(again + "one; " + again + "other; cmp one other"), 0);
    EXPECT_THAT(blocks(read("one"), "facts"),
                ElementsAre(HasSubstr("\"made\":\"2009-11-11 00:00 UTC\"")));
}

// Many events come in several chunks; nothing is lost between them.
TEST_F(ReportCommandTest, Chunks) {
    std::string input;
    for (std::uint32_t i = 0; i < 5000; ++i)
        input += message(i);
    write("input", input);
    const Result result = run("report");
    const std::vector<std::string> rows = blocks(result.out, "rows");
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_THAT(rows[0], testing::StartsWith("{\"sequence\":[0,1,1,"));
    EXPECT_THAT(rows[1], testing::StartsWith("{\"sequence\":[4096,1,1,"));
    EXPECT_EQ(
        std::count(rows[1].begin(), rows[1].begin() + static_cast<long>(rows[1].find(']')), ','),
        5000 - 4096 - 1);
    EXPECT_EQ(blocks(result.out, "bodies").size(), 2u);
    EXPECT_THAT(blocks(run("report /dev/null").out, "rows"), ElementsAre());
}

// No text of a record becomes markup, nothing is fetched, and no other script runs.
TEST_F(ReportCommandTest, HostileTexts) {
    const std::string text = "</script><script>alert(1)</script>\n\"\\";
    write("input", messageOf(RecordBuilder(23, 101).enclosure(text).controller(text)) +
                       messageOf(RecordBuilder(29, 8).text(0, text)));
    const std::string page = run("report").out;
    EXPECT_THAT(page, testing::StartsWith("<!DOCTYPE html>\n"));
    EXPECT_THAT(page, testing::EndsWith("</script>\n</html>\n"));
    EXPECT_THAT(page, Not(HasSubstr("alert")));
    EXPECT_THAT(blocks(page, "rows"),
                ElementsAre(HasSubstr(R"(["</script><script>alert(1)</script>\n\"\\",)")));
    for (const char* reference : {"src=", "url(", "@import", "fetch(", "innerHTML", "unsafe"})
        EXPECT_THAT(page, Not(HasSubstr(reference)));
    // The policy names the scripts and styles by what they are.
    for (const auto& [element, policy] :
         {std::pair("script", "script-src"), {"style", "style-src"}}) {
        const std::size_t begin = page.rfind(fmt::format("<{}>", element)) + strlen(element) + 2;
        write("code", page.substr(begin, page.find(fmt::format("</{}>", element), begin) - begin));
        ASSERT_EQ(
            shell("sha256sum code | cut -c-64 | tr a-f A-F | basenc --base16 -d | base64 >hash"),
            0);
        const std::string hash = read("hash");
        EXPECT_THAT(page, HasSubstr(fmt::format("{} 'sha256-{}'", policy,
                                                hash.substr(0, hash.find('\n')))));
    }
}

} // namespace Pegasus::test
