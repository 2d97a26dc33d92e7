// The compiler of tables refuses each kind of mistake and names the row. The same tables, used,
// don't compile: tests/refused/ holds that.
#include "event/TableCompiler.h"

#include <gtest/gtest.h>

namespace Pegasus::test {
namespace {

using namespace mpu;

constexpr std::string_view kThreeTexts[] = {"a", "b", "c"};
constexpr NameTable kThree = names<kThreeTexts>();
constexpr std::string_view kUnsafeTexts[] = {"a=b"};
constexpr NameTable kUnsafe = names<kUnsafeTexts>();

// One mistake each, in the row "Bad".
constexpr Row kGood{"Good", "%d", u32(0)};
constexpr Row kOverlap[] = {{"Bad", "%d", u32(2)}, kGood};
constexpr Row kOverlapOfRepeats[] = {
    kGood, Row("Bad", "%d", u16(8)).repeat(4, 2), {"X", "%d", u8(15)}};
constexpr Row kEmptyTag[] = {kGood, {"", "%d", u32(4)}};
constexpr Row kMarkupInTag[] = {kGood, {"Bad<", "%d", u32(4)}};
constexpr Row kGroupsTag[] = {open("Ba"), {"Bad", "%d", u32(4)}, close("Ba")};
constexpr Row kPercentAlone[] = {{"Bad", "%", u32(0)}};
constexpr Row kUnknownLetter[] = {{"Bad", "%q", u32(0)}};
constexpr Row kBlankPadded[] = {{"Bad", "%8x", u32(0)}};
constexpr Row kWidthOfDecimal[] = {{"Bad", "%08d", u32(0)}};
constexpr Row kWideWidth[] = {{"Bad", "%017x", u64(0)}};
constexpr Row kPointerOf16[] = {{"Bad", "%p", u16(0)}};
constexpr Row kFloatOf64[] = {{"Bad", "%f", u64(0)}};
constexpr Row kNumberAsText[] = {{"Bad", "%s", u32(0)}};
constexpr Row kTextAsNumber[] = {{"Bad", "%d", text(0, 8)}};
constexpr Row kNoValue[] = {{"Bad", "%d %d", u32(0)}};
constexpr Row kValueTooMany[] = {{"Bad", "%d", u32(0), u32(4)}};
constexpr Row kBitOutside[] = {{"Bad", "%s", bit(u8(0), 8, kTrueFalse)}};
constexpr Row kBitOfThree[] = {{"Bad", "%s", bit(u8(0), 1, kThree)}};
constexpr Row kUnsafeFormat[] = {{"Bad", "a=%d", u32(0)}};
constexpr Row kUnsafeName[] = {{"Bad", "%s", name(u8(0), kUnsafe)}};
constexpr Row kTooLarge[] = {{"Bad", "%d", u32(kMaxExtent)}};

template <const auto& Table>
constexpr Refusal refusalOf = table_compiler::kSizes<Table, Style::Spaced>.refusal;

TEST(Tables, RefusedRowsAreNamed) {
    const struct {
        Refusal found;
        Reason reason;
        int row;
        const char* tag = "Bad";
    } cases[] = {
        {refusalOf<kOverlap>, Reason::Overlap, 0},
        {refusalOf<kOverlapOfRepeats>, Reason::Overlap, 1},
        {refusalOf<kEmptyTag>, Reason::NotATag, 1, ""},
        {refusalOf<kMarkupInTag>, Reason::NotATag, 1, "Bad<"},
        {refusalOf<kGroupsTag>, Reason::TagBeginsWithItsGroups, 1},
        {refusalOf<kPercentAlone>, Reason::NotAFormat, 0},
        {refusalOf<kUnknownLetter>, Reason::NoSuchFormat, 0},
        {refusalOf<kBlankPadded>, Reason::WidthWithoutZero, 0},
        {refusalOf<kWidthOfDecimal>, Reason::WidthNotOfHex, 0},
        {refusalOf<kWideWidth>, Reason::NotAFormat, 0},
        {refusalOf<kPointerOf16>, Reason::FormatOf32Bits, 0},
        {refusalOf<kFloatOf64>, Reason::FormatOf32Bits, 0},
        {refusalOf<kNumberAsText>, Reason::FormatOfAnotherKind, 0},
        {refusalOf<kTextAsNumber>, Reason::FormatOfAnotherKind, 0},
        {refusalOf<kNoValue>, Reason::MissingValue, 0},
        {refusalOf<kValueTooMany>, Reason::ExtraValue, 0},
        {refusalOf<kBitOutside>, Reason::NotABit, 0},
        {refusalOf<kBitOfThree>, Reason::NotABit, 0},
        {refusalOf<kUnsafeFormat>, Reason::UnsafeText, 0},
        {refusalOf<kUnsafeName>, Reason::UnsafeText, 0},
        {refusalOf<kTooLarge>, Reason::LayoutTooLarge, 1},
    };
    for (const auto& c : cases) {
        const std::string where = "case " + std::to_string(&c - cases);
        EXPECT_EQ(c.found.reason, c.reason) << where;
        EXPECT_EQ(c.found.row, c.row) << where;
        EXPECT_STREQ(c.found.tag.text, c.tag) << where;
    }
    EXPECT_STREQ(refusalOf<kOverlap>.otherTag.text, "Good");
}

constexpr Row kGoodRows[] = {kGood};
constexpr EventRow kTwice[] = {{5, "A"}, {{0, 2, 7}, "B"}};
constexpr EventTable kTwiceTable{.rows = kTwice, .minor = u16(150)};
constexpr EventRow kTwoCatchAlls[] = {{anyOf(3), "A"}, {anyOf(3), "B"}};
constexpr EventTable kTwoCatchAllsTable{
    .rows = kTwoCatchAlls, .major = u32(152), .minor = u32(156)};
constexpr EventRow kNoTitle[] = {{{4, 9}, "", line("x"), {kGoodRows}}};
constexpr EventTable kNoTitleTable{.rows = kNoTitle, .major = u32(152), .minor = u32(156)};
constexpr EventRow kBadPiece[] = {{1, "A", line("x"), {kGoodRows}},
                                  {7, "B", line("x"), {kUnknownLetter}}};
constexpr EventTable kBadPieceTable{.rows = kBadPiece, .minor = u16(150)};
constexpr EventRow kBadSummary[] = {{7, "B", line("%d"), {kGoodRows}}};
constexpr EventTable kBadSummaryTable{.rows = kBadSummary, .minor = u16(150)};
void nothing(Draft&, const Record&, const RecordView&) {}
constexpr CustomPiece kBadForPeople{nothing, "Fans.", kNoValue};
constexpr EventRow kBadRowsOfPiece[] = {{7, "B", line("x"), {kBadForPeople}}};
constexpr EventTable kBadRowsOfPieceTable{.rows = kBadRowsOfPiece, .minor = u16(150)};

TEST(Tables, RefusedEventsAreNamedByTheirCodes) {
    const struct {
        Refusal found;
        Reason reason;
        unsigned major;
        unsigned code;
    } cases[] = {
        {refusalOf<kTwiceTable>, Reason::CodeTwice, 0, 5},
        {refusalOf<kTwoCatchAllsTable>, Reason::CatchAllTwice, 3, 0},
        {refusalOf<kNoTitleTable>, Reason::EmptyTitle, 4, 9},
        {refusalOf<kBadPieceTable>, Reason::NoSuchFormat, 0, 7},
        {refusalOf<kBadSummaryTable>, Reason::MissingValue, 0, 7},
        {refusalOf<kBadRowsOfPieceTable>, Reason::MissingValue, 0, 7},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.found.reason, c.reason) << c.code;
        EXPECT_EQ(c.found.major, c.major) << c.code;
        EXPECT_EQ(c.found.code, c.code);
    }
}

// ---- finding a row -----------------------------------------------------------------------------

constexpr EventRow kFindRows[] = {
    {{1, 0}, "1/0"}, {anyOf(1), "1/any"}, {{1, 10, 19}, "1/10-19"}, {{1, 20}, "1/20"},
    {{2, 5}, "2/5"}, {anyOf(7), "7/any"}, {{7, 0xFFFE}, "7/fffe"},
};
constexpr EventTable kFindTable{.rows = kFindRows, .major = u32(152), .minor = u32(156)};

TEST(Tables, RowsAreFoundByCodes) {
    constexpr const Events& events = kEventsOf<kFindTable>;
    const struct {
        std::uint32_t major;
        std::uint32_t minor;
        const char* title;
    } cases[] = {
        {1, 0, "1/0"},
        {1, 1, "1/any"},
        {1, 9, "1/any"},
        {1, 10, "1/10-19"},
        {1, 19, "1/10-19"},
        {1, 20, "1/20"},
        {1, 21, "1/any"},
        {1, 0x10005, "1/any"},
        {2, 4, ""},
        {2, 5, "2/5"},
        {2, 6, ""},
        {0, 0, ""},
        {3, 5, ""},
        {7, 5, "7/any"},
        {7, 0xFFFE, "7/fffe"},
        {7, 0xFFFFFFFF, "7/any"},
        {0x10001, 10, ""},
        {0xFFFFFFFF, 0, ""},
        {8, 0, ""},
        {2, 0x10005, ""},
    };
    for (const auto& c : cases) {
        const Events::Entry* found = events.find(c.major, c.minor);
        EXPECT_EQ(found ? events.title(*found, 1) : "", c.title) << c.major << "/" << c.minor;
    }
}

} // namespace
} // namespace Pegasus::test
