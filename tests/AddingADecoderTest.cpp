// The decoder of docs/adding-a-decoder.md: compiled, compared with the page, and tried.
#include "decoders/common/Unknown.h"
#include "event/Avrel_Event.h"
#include "event/Catalogue.h"
#include "tests/RecordBuilder.h"

#include <fstream>
#include <gtest/gtest.h>

namespace Pegasus::mpu::esm {
void decode(const Record& record, Draft& draft); // by its row in decoders/Decode.h
}

// clang-format off
// ---- the page's code, without its includes -------------------------------------------------------

namespace Pegasus::mpu::esm {

inline constexpr std::string_view kStateTexts[] = {"Stopped", "Running", "Failed"};
inline constexpr NameTable kStates = names<kStateTexts>();

inline constexpr Row kTimerRows[] = {
    {"Thread_Index", "%d", u32(0)},
    {"State", "%s", name(u32(4), kStates)},
    {"isRecurring", "%s", flag(u32(12), kTrueFalse)},
    Row("Retries", "%u", u16(16)).assumed(),
    {"Reason", "%s", text(18)}, // to its NUL or the end of the data
};

inline constexpr Row kFanRows[] = {{"Fan", "%d", u16(0)}};

inline constexpr EventRow kEventRows[] = {
    {7, "Timer", line("Timer: %s", text(18)), {kTimerRows, sample(18, "Timed out\0"sv)}},
    {8, {"Fan Error", "Fan Warning", "Fan"}, line("Fan %d", u16(0)), {kFanRows}},
};
inline constexpr EventTable kEvents{.rows = kEventRows, .minor = u16(150)};
static_assert(accepted<kEvents>);

inline constexpr const EventTable* kTables[] = {&kEvents};
inline constexpr Module kModule{26, "ESM_Event", {}, kTables};

} // namespace Pegasus::mpu::esm

namespace Pegasus {

class MPUEVENT_EXPORT ESM_Event : public Avrel_Event {
public:
    ESM_Event(const EmpEvLogMsg_s* record, int length);
    ~ESM_Event() override;
};

} // namespace Pegasus

namespace Pegasus {

using namespace mpu;

void esm::decode(const Record& record, Draft& draft) {
    constexpr const Events& events = kEventsOf<kEvents>;
    const Events::Entry* event = events.find(record.eventId());
    if (!event)
        return decodeUnknown(
            record, draft,
            {"ESM_Event", __LINE__, "Unknown EventID: ", "***UNKNOWN EventID***"});
    events.write(draft, *event, record, record.payload());
}

ESM_Event::ESM_Event(const EmpEvLogMsg_s* record, int length)
    : Avrel_Event(record, static_cast<unsigned int>(length)) {
    take(record, length, esm::decode);
}

ESM_Event::~ESM_Event() = default;

} // namespace Pegasus

// ---- end of the page's code ----------------------------------------------------------------------
// clang-format on

namespace Pegasus::test {
namespace {

// Lines of a file between those that begin with `begin` and `end`, without blank ones and includes.
std::string codeOf(const char* path, std::string_view begin, std::string_view end) {
    std::ifstream in(path);
    std::string code;
    bool inside = false;
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with(inside ? end : begin))
            inside = !inside;
        else if (inside && !line.empty() && !line.starts_with("#include"))
            code += line + "\n";
    }
    return code;
}

TEST(AddingADecoder, PageHasTheCodeOfThisFile) {
    EXPECT_EQ(codeOf(MPUEVENT_DOCS_DIR "adding-a-decoder.md", "```cpp", "```"),
              codeOf(MPUEVENT_DOCS_DIR "../tests/AddingADecoderTest.cpp", "// ---- the page's",
                     "// ---- end"));
}

TEST(AddingADecoder, ItDecodes) {
    const SuppressTrace quiet;
    ASSERT_TRUE(
        MPUEvent::registerDecoder(26, [](const EmpEvLogMsg_s* record, int length) -> Avrel_Event* {
            return new ESM_Event(record, length);
        }));
    const auto timer =
        RecordBuilder(26, 7).u32(0, 5).u32(4, 1).u32(12, 1).u16(16, 3).text(18, "a<b");
    EXPECT_EQ(timer.title(), "Timer");
    EXPECT_EQ(timer.summary(), "Timer: a<b");
    EXPECT_EQ(timer.body(), "<Thread_Index>5</Thread_Index> <State>Running</State> "
                            "<isRecurring>TRUE</isRecurring> <Retries>3</Retries> "
                            "<Reason>a?b</Reason> ");
    EXPECT_EQ(RecordBuilder(26, 8).severity(3).u16(0, 2).title(), "Fan Error");
    EXPECT_EQ(RecordBuilder(26, 9).u16(0, 0xABCD).body(), "<Hex>ABCD</Hex>");
    MPUEvent::registerDecoder(26, nullptr);
}

} // namespace
} // namespace Pegasus::test
