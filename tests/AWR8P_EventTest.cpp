#include "tests/RecordBuilder.h"

#include "decoders/datapath/AWR8P_Event.h"

#include <gtest/gtest.h>

namespace Pegasus::test {
namespace {

using namespace std::string_literals;

constexpr std::uint8_t kSource = 9;

std::string big(std::uint32_t value) {
    char bytes[4];
    mpu::storeBig(bytes, value);
    return {bytes, 4};
}
std::string item(std::uint32_t type, std::uint32_t length, const std::string& content) {
    return big(type) + big(length) + content;
}
std::string item(std::uint32_t type, const std::string& content) {
    return item(type, static_cast<std::uint32_t>(content.size()), content);
}
std::string text(const std::string& content) {
    return item(0, content + '\0');
}
std::string container(const std::string& items) {
    return item(2, items);
}

std::unique_ptr<Avrel_Event> decode(const std::string& payload) {
    SuppressTrace quiet;
    return RecordBuilder(kSource, 4).bytes(0, payload).decode();
}
std::string body(const std::string& payload) {
    return utf8(decode(payload)->getBody());
}

TEST(Awr, Tree) {
    const auto event =
        decode(container(item(3, "Fan \xFF"s + '\0') + text("first") + container(text("a<b>&c")) +
                         item(7, "skipped") + text("last")));
    EXPECT_EQ(utf8(event->getEventID()), "Fan ?");
    EXPECT_EQ(utf8(event->getSummary()), "first");
    EXPECT_EQ(utf8(event->getBody()), "<_>first</_><_>a<b>&c</_><_>last</_>");

    // Another identifier is no obstacle, and without a name it is the title.
    const auto bare = decode(text(""));
    EXPECT_EQ(utf8(bare->getEventID()), "4");
    EXPECT_EQ(utf8(bare->getSummary()), "");
    EXPECT_EQ(utf8(bare->getBody()), "<_></_>");
    EXPECT_EQ(utf8(decode(container(text("") + text("later")))->getSummary()), "");
    EXPECT_EQ(body(item(0, "C:\\")), "<_>C:.</_>");
    EXPECT_EQ(body(item(0, "C:\\\\")), "<_>C:\\\\</_>");
    EXPECT_EQ(utf8(decode(item(0, "C:\\"))->getSummary()), "C:\\");
    EXPECT_EQ(body(item(5, "x")), "");
}

TEST(Awr, ItemsEndWithTheirContainer) {
    const struct {
        std::string payload, body;
    } cases[] = {
        {"", ""},
        {big(0) + "\0\0\0"s, ""},
        {item(0, 3, "abcdef"), "<_>abc</_>"},                           // its own length
        {item(0, 900, "abc"), "<_>abc</_>"},                            // the record's end
        {item(0, 0xFFFFFFFFu, "abc"), "<_></_>"},                       // no content
        {container(item(0, 900, "ab")) + "cd", "<_>ab</_>"},            // the container's end
        {container(item(0, 900, "ab") + text("c")), "<_>ab</_>"},       // ends the walk
        {container(item(0, 0x80000000u, "ab") + text("c")), "<_></_>"}, // ends the walk
        {container(container(item(7, 0xFFFFFFF8u, "")) + text("c")), "<_>c</_>"},
        {item(2, 0, text("c")), ""},
        {item(2, 0xFFFFFFFFu, text("c")), ""},
        {item(2, 0x7FFFFFFFu, text("c")), "<_>c</_>"},
        {container(text("c") + "1234567"), "<_>c</_>"},
        {container(item(7, "") + text("c")), "<_>c</_>"},
        {text("outermost") + text("not part of it"), "<_>outermost</_>"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(body(c.payload), c.body);
}

TEST(Awr, Depth) {
    const auto nested = [](int depth) {
        std::string tree = text("deep");
        for (int i = 0; i < depth; ++i)
            tree = container(tree + text("x"));
        return body(tree);
    };
    EXPECT_EQ(nested(2), "<_>deep</_><_>x</_><_>x</_>");
    EXPECT_TRUE(nested(32).starts_with("<_>deep</_>"));
    // The innermost of 33 is passed over, its neighbours are not.
    std::string expected;
    for (int i = 0; i < 32; ++i)
        expected += "<_>x</_>";
    EXPECT_EQ(nested(33), expected);

    // As many containers as a record can hold, each of them open to its end.
    std::string hostile;
    for (int i = 0; i < 8000; ++i)
        hostile += item(2, 0x7FFFFFFFu, "");
    EXPECT_EQ(body(hostile), "");
}

TEST(Awr, Dumps) {
    const std::string twenty = "0123456789ABCDEFGHIJ";
    const std::string first = "<_0000>30 31 32 33 34 35 36 37  38 39 41 42 43 44 45 46 "
                              "01234567|89ABCDEF</_0000>";
    const auto blanks = [](int n) { return std::string(static_cast<std::size_t>(n), ' '); };
    const struct {
        std::string bytes, body;
    } cases[] = {
        {"", ""},
        {twenty.substr(0, 16), first},
        {twenty, first + "<_0010>47 48 49 4a " + blanks(12 * 4 + 1) + "GHIJ</_0010>"},
        {"0", "<_0000>30 " + blanks(15 * 4 + 1) + "0</_0000>"},
        {"0123456", "<_0000>30 31 32 33 34 35 36 " + blanks(9 * 4 + 1) + "0123456</_0000>"},
        {"01234567", "<_0000>30 31 32 33 34 35 36 37  " + blanks(8 * 4) + "01234567|</_0000>"},
        {"012345678", "<_0000>30 31 32 33 34 35 36 37  38 " + blanks(7 * 4) + "01234567|8</_0000>"},
        {"<>;=&\x7F\x80~\0 \\"s, "<_0000>3c 3e 3b 3d 26 7f 80 7e  00 20 5c " + blanks(5 * 4) +
                                     "&lt;&gt;..&..~|. .</_0000>"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(body(item(1, c.bytes)), c.body);
    const std::string many = body(item(1, std::string(60000, '\xEE')));
    EXPECT_NE(many.find("<_ea50>ee ee"), std::string::npos);
    EXPECT_EQ(body(item(1, 60000, "0123456")), cases[4].body);
}

// Puts a mark on each entry that passes.
class Marking : public AWR8P_Event {
public:
    Marking() : AWR8P_Event(nullptr, 0) {}
    void addEntry(char* tag, char* format, ...) override {
        ++entries;
        char kept[] = "kept";
        AWR8P_Event::addEntry(tag, strcmp(tag, "_") == 0 ? kept : format, "dump");
    }
    int entries = 0;
};

TEST(Awr, OperationsOnAFinishedEvent) {
    const std::string tree =
        container(item(3, "Name"s + '\0') + text("one") + text("two") + item(1, "1"));
    Marking made;
    made.awr8p_parse_evt(reinterpret_cast<const awrEvtHdr_s*>(tree.data()));
    EXPECT_EQ(utf8(made.getBody()), "<_>kept</_><_>kept</_><_0000>dump</_0000>");
    EXPECT_EQ(utf8(made.getEventID()), "Name");
    EXPECT_EQ(utf8(made.getSummary()), "one");
    const std::string bytes = item(1, std::string(33, 'x'));
    made.awr8p_dump_bin(reinterpret_cast<const awrEvtHdr_s*>(bytes.data()));
    EXPECT_EQ(made.entries, 6);
    // The summary stays that of the first text.
    made.awr8p_parse_evt(reinterpret_cast<const awrEvtHdr_s*>(text("three").data()));
    EXPECT_EQ(utf8(made.getSummary()), "one");
}

} // namespace
} // namespace Pegasus::test
