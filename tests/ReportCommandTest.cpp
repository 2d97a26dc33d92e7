// The page that `mpuevent report` makes.
#include "tests/CommandFixture.h"

#include <gmock/gmock.h>

namespace Pegasus::test {

namespace {

using testing::HasSubstr;
using testing::Not;

class ReportCommandTest : public CommandTest {};

} // namespace

TEST_F(ReportCommandTest, Page) {
    write("input",
          messageOf(RecordBuilder(23, 101).sequence(7).timestamp(100).severity(103)) +
              messageOf(RecordBuilder(77, 5).sequence(8).timestamp(291).severity(1).u32(0, 0)));
    const Result result = run("report -o page.html");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out + result.err, "");
    const std::string page = read("page.html");
    EXPECT_THAT(page, testing::StartsWith("<!DOCTYPE html>\n"));
    EXPECT_THAT(page, testing::EndsWith("</html>\n"));
    EXPECT_THAT(page, HasSubstr("<p>2 events, time 100 to 291, sequence 7 to 8, no damage</p>\n"));
    EXPECT_THAT(page,
                HasSubstr("<tr class=\"s3\" data-signs=\"\"><td>7<td>100<td>Eng "
                          "Error<td>SCC<td><details><summary>"
                          "<b>101</b> ***UNKNOWN EventID***</summary><pre>Event 7: Eng Error, SCC, "
                          "System\n  Title: 101\n"));
    EXPECT_THAT(
        page,
        HasSubstr("\n    Hex:</pre></details>\n<tr class=\"s1\" data-signs=\"+\"><td>8<td>291"));
    // The picture: a bar at each end, 192 units of time in 96 pieces.
    EXPECT_THAT(page, HasSubstr("<g><title>from 100, 1 error</title><rect class=\"s3\" x=\"0\" "
                                "y=\"10.00\" width=\"9\" height=\"120.00\"/></g>\n"
                                "<g><title>from 290, 1 informational</title><rect class=\"s1\" "
                                "x=\"950\" y=\"10.00\" width=\"9\" height=\"120.00\"/></g>\n"));
    EXPECT_THAT(page,
                HasSubstr("<tr><td>77<td>1<td>0<td>0<td>1\n<tr><td>SCC<td>1<td>0<td>0<td>0\n"));
    EXPECT_THAT(page, HasSubstr("<option>77<option>SCC"));

    EXPECT_THAT(run("report --not-source SCC").out, HasSubstr("<p>1 events, time 291 to 291"));
    EXPECT_THAT(run("report /dev/null").out, HasSubstr("<p>0 events, no damage</p>"));
}

// Nothing is fetched, and no text of a record becomes markup.
TEST_F(ReportCommandTest, HostileTexts) {
    const auto tags = [](const std::string& page) {
        return std::count(page.begin(), page.end(), '<');
    };
    const auto make = [](std::string_view text) {
        return messageOf(RecordBuilder(23, 101).enclosure(text).controller(text)) +
               messageOf(RecordBuilder(29, 8).text(0, text)) +
               messageOf(RecordBuilder(5, 1).text(0, text));
    };
    write("input", make("plain"));
    const auto expected = tags(run("report").out);
    for (const char* text :
         {"</pre><script>alert(1)</script>", "<img src=x onerror=alert(1)>", "\" onclick=\"a()",
          "<!--", "]]><a>", "&lt;script&gt;", "</pre\x01>", "\xef\xbc\x9cscript\xff<b"}) {
        write("input", make(text));
        const Result result = run("report");
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(tags(result.out), expected) << text;
        EXPECT_THAT(result.out, Not(HasSubstr(text)));
    }
    write("input", make("plain"));
    for (const char* reference : {"://", "src=", "href=", "url(", "@import", "fetch("})
        EXPECT_THAT(run("report").out, Not(HasSubstr(reference)));
}

} // namespace Pegasus::test
