#include "formats/ClickHouse.h"

#include "formats/Columns.h"
#include "formats/Severity.h"

#include <fmt/format.h>

namespace Pegasus::formats {

namespace {

// The table over all servers has no materialized columns: they would be sent to the servers, which
// refuse them. Any server may have any event of a log, but copies of one event meet on the same.
constexpr char kTables[] =
    R"(-- Tables of events for ClickHouse. Run this on each server of the cluster "mpuevent"; then
--     mpuevent decode --format json CAPTURE |
--         clickhouse-client --query 'INSERT INTO events FORMAT JSONEachRow'
-- adds events, on any server and by as many processes as you like.

-- The events of this server. What comes again is merged away, some time; FINAL leaves it out now.
CREATE TABLE IF NOT EXISTS eventsLocal (
{meanings}    severity UInt8 MATERIALIZED
        {severity}, -- 0 unknown, 1 informational, 2 warning, 3 error
    contentHash UInt64 MATERIALIZED
        sipHash64({content})
) ENGINE = ReplacingMergeTree
ORDER BY (controllerSerialNumber, eventLogInstanceNumber, sequenceID, contentHash);

-- The events of all servers.
CREATE TABLE IF NOT EXISTS events (
{columns}    severity UInt8 ALIAS
        {severity} -- as above
) ENGINE = Distributed(mpuevent, currentDatabase(), eventsLocal,
    cityHash64(controllerSerialNumber, eventLogInstanceNumber, sequenceID));

-- What is counted as events come in. It is the events' keys that are kept, so that one that comes
-- twice counts once.
CREATE MATERIALIZED VIEW IF NOT EXISTS countsLocal
ENGINE = AggregatingMergeTree
ORDER BY (source, eventID, severity, layout, isShort, hasUnread) AS
SELECT source, eventID, severity, layout,
    missingBytes != 0 AS isShort, unreadBytes != 0 AS hasUnread,
    uniqExactState(controllerSerialNumber, eventLogInstanceNumber, sequenceID, contentHash) AS keys,
    minState(timestamp) AS firstTime, maxState(timestamp) AS lastTime,
    minState(sequenceID) AS firstSequence, maxState(sequenceID) AS lastSequence
FROM eventsLocal GROUP BY source, eventID, severity, layout, isShort, hasUnread;

CREATE TABLE IF NOT EXISTS counts AS countsLocal
ENGINE = Distributed(mpuevent, currentDatabase(), countsLocal);

CREATE VIEW IF NOT EXISTS totals AS
SELECT uniqExactMerge(keys) AS events,
    minMerge(firstTime) AS firstTimestamp, maxMerge(lastTime) AS lastTimestamp,
    minMerge(firstSequence) AS firstSequenceID, maxMerge(lastSequence) AS lastSequenceID
FROM counts;

CREATE VIEW IF NOT EXISTS severities AS
SELECT severity, uniqExactMerge(keys) AS events FROM counts GROUP BY severity;

CREATE VIEW IF NOT EXISTS sources AS
SELECT source, uniqExactMerge(keys) AS events,
    uniqExactMergeIf(keys, layout = 'assumed') AS withAssumedLayout,
    uniqExactMergeIf(keys, isShort) AS withMissingBytes,
    uniqExactMergeIf(keys, hasUnread) AS withUnreadBytes
FROM counts GROUP BY source;

CREATE VIEW IF NOT EXISTS titles AS
SELECT source, eventID, uniqExactMerge(keys) AS events, max(severity) AS worstSeverity,
    minMerge(firstTime) AS firstTimestamp, maxMerge(lastTime) AS lastTimestamp
FROM counts GROUP BY source, eventID;
)";

// multiIf(eventType IN (1, 101), 1, eventType IN (2, 102), 2, 0)
std::string severity() {
    std::string all = "multiIf(";
    for (unsigned severity = 1; severity < std::size(kSeverities); ++severity) {
        std::string types;
        for (unsigned type = 0; type < 256; ++type)
            if (severityOf(type) == severity)
                types += fmt::format("{}{}", types.empty() ? "" : ", ", type);
        all += fmt::format("eventType IN ({}), {}, ", types, severity);
    }
    return all + "0)";
}

} // namespace

std::string clickhouseSql() {
    std::string columns, meanings;
    std::string content; // of what every event has
    for (const Column& column : kColumns) {
        const char* const type = column.text ? "String" : column.number ? "UInt32" : "UInt64";
        columns += fmt::format("    {} {},\n", column.name, type);
        meanings += fmt::format("    {} {}, -- {}\n", column.name, type, column.meaning);
        if (column.extra == Extra::None)
            content += fmt::format("{}{}", content.empty() ? "" : ", ", column.name);
    }
    return fmt::format(kTables, fmt::arg("columns", columns), fmt::arg("meanings", meanings),
                       fmt::arg("content", content), fmt::arg("severity", severity()));
}

} // namespace Pegasus::formats
