// What people look for in the help: tasks, and the command lines that do them.
#pragma once

namespace Pegasus::tool {

inline constexpr char kDecodeExamples[] = R"(Examples:
  All about a drive:
    mpuevent decode --format brief --drive 7 events.cap
  What happened beside its errors?
    mpuevent decode --format brief --drive 7 --severity err --around 5m events.cap
  All about some events:
    mpuevent decode --source 'I/O Mgr' --since seq:4000 events.cap
  The errors of a day, with dates:
    mpuevent decode --epoch unix --since 2009-11-10 --severity err events.cap
  How long after the event before?
    mpuevent decode --format brief --time delta events.cap
  The newest errors:
    mpuevent decode --severity err --reverse --limit 20 events.cap
  For other programs:
    mpuevent decode --format json --jobs 0 events.cap | jq .summary
    mpuevent decode --format csv --columns sequenceID,Drive events.cap
  The third of eight machines:
    mpuevent decode --part 3/8 --format json events.cap
  Both controllers of an enclosure, in the order of time:
    mpuevent decode --merge --unique --format brief --origin left.cap right.cap
  A hex dump that came by mail:
    mpuevent decode mail.txt)";

inline constexpr char kCutExamples[] = R"(Examples:
  What happened around an event, to send along:
    mpuevent cut --where Drive=7 --around 1h events.cap --output drive7.cap
  The same without serial numbers:
    mpuevent cut --anonymise drive7.cap --output shared.cap
  What both controllers wrote, as one:
    mpuevent cut --merge --unique left.cap right.cap --output all.cap)";

inline constexpr char kExplainExamples[] = R"(Examples:
  Where does it come from?
    mpuevent explain --since seq:4711 --limit 1 events.cap
  The same to look at with a pointer:
    mpuevent explain --where Drive=7 --format html -o bytes.html events.cap)";

inline constexpr char kSummaryExamples[] = R"(Examples:
  What is in there?
    mpuevent summary events.cap
  What did one module log?
    mpuevent summary --source 'Dev Mgr' --format json events.cap)";

inline constexpr char kObjectsExamples[] = R"(Examples:
  What failed?
    mpuevent objects --severity warn events.cap
  Who lost a connection?
    mpuevent objects initiators --story events.cap)";

inline constexpr char kDrivesExamples[] = R"(Examples:
  Which drive failed, and when?
    mpuevent drives events.cap
  What happened to it?
    mpuevent drives --drive 7 --story events.cap)";

inline constexpr char kVerifyExamples[] = R"(Examples:
  Is it whole?
    mpuevent verify events.cap)";

inline constexpr char kReportExamples[] = R"(Examples:
  A page for a ticket:
    mpuevent report events.cap --output report.html
  What happened beside the errors:
    mpuevent report --severity err --around 10m events.cap --output errors.html)";

inline constexpr char kExportExamples[] = R"(Examples:
  Captures of a week, to ask questions of:
    mpuevent export --output events.db events.cap
    sqlite3 -box events.db 'SELECT * FROM worst LIMIT 10')";

inline constexpr char kFollowExamples[] = R"(Examples:
  As it happens:
    mpuevent follow --severity warning --format brief events.cap
  From where the last run stopped:
    mpuevent follow --cursor events.cursor --format json events.cap
  With counts for Prometheus:
    mpuevent follow --format brief --metrics mpuevent.prom events.cap)";

inline constexpr char kFormatsExamples[] = R"(Examples:
  What does an event hold?
    mpuevent formats --module 24 --code 1040
  The schema of the JSON output:
    mpuevent formats --format json-schema
  Tables for a ClickHouse cluster:
    mpuevent formats --format clickhouse-sql | clickhouse-client --multiquery)";

inline constexpr char kSampleExamples[] = R"(Examples:
  A capture to try the other commands with:
    mpuevent sample --output sample.cap
  Many events of one module:
    mpuevent sample --module SATA8P_Event --count 1000 --output drives.cap)";

inline constexpr char kExamples[] = R"(Examples:
  Which drive failed, and when?
    mpuevent drives events.cap
  What is in there?
    mpuevent summary events.cap
  Is it whole?
    mpuevent verify events.cap
  A page for a ticket:
    mpuevent report events.cap --output report.html
  As it happens:
    mpuevent follow --severity warning --format brief events.cap

"mpuevent COMMAND --help" has the options of a command, and more examples.

Exit status: 0 all well, 1 some of the input was damaged, 2 wrong usage, 3 could not read or write.)";

} // namespace Pegasus::tool
