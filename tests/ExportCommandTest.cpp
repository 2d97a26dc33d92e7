// Events as tables of a database.
#ifdef MPUEVENT_SQLITE

#include "tests/CommandFixture.h"

#include <memory>
#include <regex>
#include <sqlite3.h>

namespace Pegasus::test {

namespace {

class ExportCommandTest : public CommandTest {
protected:
    // The rows as lines, with "|" between values.
    std::string ask(const std::string& question) {
        sqlite3* opened = nullptr;
        EXPECT_EQ(sqlite3_open((folder_ + "/events.db").c_str(), &opened), SQLITE_OK);
        const std::unique_ptr<sqlite3, int (*)(sqlite3*)> database(opened, sqlite3_close);
        sqlite3_busy_timeout(opened, 10000); // of a process that is being killed
        std::string rows;
        const auto add = [](void* to, int count, char** values, char**) {
            for (int i = 0; i < count; ++i)
                static_cast<std::string*>(to)
                    ->append(i == 0 ? "" : "|")
                    .append(values[i] ? values[i] : "NULL");
            static_cast<std::string*>(to)->push_back('\n');
            return 0;
        };
        EXPECT_EQ(sqlite3_exec(opened, question.c_str(), add, &rows, nullptr), SQLITE_OK)
            << question << sqlite3_errmsg(opened);
        return rows;
    }
    std::string counts() {
        return ask("SELECT (SELECT count(*) FROM captures), (SELECT count(*) FROM events), "
                   "(SELECT count(*) FROM namings), (SELECT count(*) FROM damage)");
    }
};

std::string drive(std::uint32_t sequence, std::uint32_t number) {
    return messageOf(RecordBuilder(6, 1)
                         .version(1)
                         .sequence(sequence)
                         .severity(3)
                         .timestamp(100 + sequence)
                         .u32(4, 121)
                         .u32(36, number));
}

} // namespace

TEST_F(ExportCommandTest, AddsWhatIsNew) {
    write("a", drive(1, 7) + std::string(20, 'x') + drive(2, 7));
    write("b", drive(2, 7) + drive(3, 9) + drive(3, 10)); // a number twice, two records
    const struct {
        const char* inputs;
        const char* said;
        int status;
        const char* counts; // captures, events, namings (drive and adapter), damage
    } cases[] = {
        {"a", "events.db: 2 events added, 0 known before\n", 1, "1|2|4|1\n"},
        {"a", "events.db: 0 events added, 2 known before\n", 1, "1|2|4|1\n"},
        {"b a", "events.db: 2 events added, 3 known before\n", 1, "2|4|8|1\n"},
        {"nothing b", "events.db: 0 events added, 3 known before\n", 3, "2|4|8|1\n"},
    };
    for (const auto& c : cases) {
        const Result result = run("export -o events.db " + std::string(c.inputs));
        EXPECT_EQ(result.status, c.status) << c.inputs;
        EXPECT_NE(result.err.find(c.said), result.err.npos) << result.err;
        EXPECT_EQ(counts(), c.counts) << c.inputs;
    }
    EXPECT_EQ(ask("SELECT file, origins.offset, sequenceID, severity, layout, timestamp, eventID, "
                  "summary "
                  "FROM events JOIN origins ON id = event ORDER BY id"),
              "a|0|1|3|assumed|101|Drive Removed|Drive 7, Offline device\n"
              "a|276|2|3|assumed|102|Drive Removed|Drive 7, Offline device\n"
              "b|256|3|3|assumed|103|Drive Removed|Drive 9, Offline device\n"
              "b|512|3|3|assumed|103|Drive Removed|Drive 10, Offline device\n");
    EXPECT_EQ(ask("SELECT name, value, typeof(value), layout, missingBytes FROM fields WHERE event "
                  "= 1 AND name IN ('Drive', 'ID_Select', 'Event_Number')"),
              "Drive|7|integer|assumed|0\n"
              "ID_Select|0x00000000|text|assumed|4\n"
              "Event_Number|121|integer|documented|0\n");
    EXPECT_EQ(ask("SELECT name, errors, assumed FROM worst WHERE kind = 'drive'"),
              "7|2|2\n10|1|1\n9|1|1\n");
    EXPECT_EQ(ask("SELECT name, offset, passedOver, reason FROM damage JOIN captures ON "
                  "capture = id"),
              "a|256|20|no record header (source 0, event type 0, category 0)\n");
}

TEST_F(ExportCommandTest, AddsParts) {
    write("a", drive(1, 7) + std::string(20, 'x') + drive(2, 7)); // cut at 266, in the damage
    EXPECT_EQ(run("export -o events.db --part 1/2 a").status, 1);
    EXPECT_EQ(run("export -o events.db --part 2/2 a").status, 0);
    EXPECT_EQ(counts(), "2|2|4|1\n");
    EXPECT_EQ(ask("SELECT name, bytes FROM captures"), "a|266\na|266\n");
}

TEST_F(ExportCommandTest, RefusesWhatIsNoDatabaseOfEvents) {
    write("events.db", "Read me.");
    EXPECT_EQ(run("export -o events.db").err, "mpuevent: events.db: file is not a database\n");
    write("events.db", "");
    ask("CREATE TABLE mine (a)");
    const Result result = run("export -o events.db");
    EXPECT_EQ(result.err, "mpuevent: events.db: a database, but not of events\n");
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(ask("SELECT name FROM sqlite_schema"), "mine\n");
    EXPECT_EQ(run("export -o input").status, 2); // an input, too
    EXPECT_EQ(run("export -o none/events.db").err,
              "mpuevent: none/events.db: unable to open database file\n");
}

TEST_F(ExportCommandTest, LeavesAWholeFileWhenKilled) {
    ASSERT_EQ(run("sample --count 20000 -o all").status, 0);
    for (const char* time : {"0.02", "0.1", "0.2"}) {
        shell(std::string("timeout -s KILL ") + time + " $mpuevent export -o events.db all 2>err");
        EXPECT_EQ(ask("PRAGMA integrity_check"), "ok\n");
        if (ask("SELECT count(*) FROM sqlite_schema WHERE name = 'origins'") == "1\n") {
            const std::string events = ask("SELECT count(*) FROM events");
            EXPECT_TRUE(events == "0\n" || events == "20000\n") << events;
        }
    }
}

// Every question of the page has an answer.
TEST_F(ExportCommandTest, AnswersTheQuestionsOfThePage) {
    ASSERT_EQ(run("sample --count 4000 --seed 3 -o all").status, 0);
    write("all", read("all") + std::string(30, 'x') + drive(1, 7));
    ASSERT_EQ(run("export -o events.db all").status, 1);
    std::ifstream page(MPUEVENT_DOCS_DIR "sql.md");
    const std::string text{std::istreambuf_iterator<char>(page), {}};
    const std::regex block("```sql\n([^`]*)```");
    int questions = 0;
    for (std::sregex_iterator found(text.begin(), text.end(), block), end; found != end; ++found) {
        EXPECT_NE(ask((*found)[1]), "") << (*found)[1];
        ++questions;
    }
    EXPECT_EQ(questions, 10);
}

} // namespace Pegasus::test

#endif
