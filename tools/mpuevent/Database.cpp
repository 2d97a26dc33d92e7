#ifdef MPUEVENT_SQLITE

#include "tools/mpuevent/Database.h"

#include "event/Ascii.h"
#include "formats/Columns.h"
#include "formats/Severity.h"
#include "formats/Utf8.h"

#include <algorithm>
#include <fmt/format.h>
#include <sqlite3.h>
#include <stdexcept>

namespace Pegasus::tool {

namespace {

constexpr int kApplication = 0x4D505545; // "MPUE", so that no other database is written to
constexpr int kVersion = 1;
constexpr std::size_t kMaxIds = 100000;

// The columns of events are these, those that every format has, and these. A row for each element
// would take ten times as long to add as the event: they are JSON objects, which "fields" takes
// apart.
constexpr char kEventsBegin[] = R"(
CREATE TABLE IF NOT EXISTS events (
    id INTEGER PRIMARY KEY,
    capture INTEGER NOT NULL REFERENCES captures (id),
    offset INTEGER NOT NULL,
    recordHash INTEGER NOT NULL,
    severity INTEGER NOT NULL,
)";
constexpr char kEventsEnd[] = R"(
    elements TEXT NOT NULL,
    elementBasis TEXT
);
)";
constexpr char kTables[] = R"(
CREATE TABLE IF NOT EXISTS captures (
    id INTEGER PRIMARY KEY,
    name TEXT NOT NULL,
    bytes INTEGER NOT NULL,
    added TEXT NOT NULL
);
CREATE TABLE IF NOT EXISTS damage (
    capture INTEGER NOT NULL REFERENCES captures (id),
    offset INTEGER NOT NULL,
    passedOver INTEGER NOT NULL,
    reason TEXT NOT NULL
);
CREATE TABLE IF NOT EXISTS objects (
    id INTEGER PRIMARY KEY,
    kind TEXT NOT NULL,
    name TEXT NOT NULL,
    enclosureSerialNumber TEXT NOT NULL,
    controllerSerialNumber TEXT NOT NULL,
    model TEXT,
    serialNumber TEXT,
    UNIQUE (kind, name, enclosureSerialNumber, controllerSerialNumber)
);
CREATE TABLE IF NOT EXISTS namings (
    object INTEGER NOT NULL REFERENCES objects (id),
    event INTEGER NOT NULL REFERENCES events (id),
    assumed INTEGER NOT NULL,
    PRIMARY KEY (object, event)
) WITHOUT ROWID;
CREATE UNIQUE INDEX IF NOT EXISTS eventsByKey ON events
    (sequenceID, recordHash, eventLogInstanceNumber, controllerSerialNumber); -- numbers first: fast
CREATE INDEX IF NOT EXISTS eventsByTime ON events (timestamp);
CREATE INDEX IF NOT EXISTS eventsByCapture ON events (capture, offset);
CREATE INDEX IF NOT EXISTS errors ON events (timestamp) WHERE severity = 3;

CREATE VIEW IF NOT EXISTS fields AS
    SELECT events.id AS event, element.key AS name, element.value AS value,
        coalesce((SELECT basis.value ->> 0 FROM json_each(elementBasis) AS basis
            WHERE basis.key = element.key), 'documented') AS layout,
        coalesce((SELECT basis.value ->> 1 FROM json_each(elementBasis) AS basis
            WHERE basis.key = element.key), 0) AS missingBytes
    FROM events, json_each(elements) AS element;
CREATE VIEW IF NOT EXISTS titles AS
    SELECT source, eventID, count(*) AS events, max(severity) AS severity,
        min(timestamp) AS firstTimestamp, max(timestamp) AS lastTimestamp
    FROM events GROUP BY source, eventID;
CREATE VIEW IF NOT EXISTS stories AS
    SELECT kind, name, objects.enclosureSerialNumber, objects.controllerSerialNumber, timestamp,
        sequenceID, severity, source, eventID, summary, assumed, event
    FROM objects JOIN namings ON object = objects.id JOIN events ON event = events.id;
CREATE VIEW IF NOT EXISTS worst AS
    SELECT kind, name, enclosureSerialNumber, controllerSerialNumber,
        sum(severity = 3) AS errors, sum(severity = 2) AS warnings, count(*) AS events,
        min(timestamp) AS firstTimestamp, max(timestamp) AS lastTimestamp,
        sum(assumed) AS assumed
    FROM stories GROUP BY kind, name, enclosureSerialNumber, controllerSerialNumber
    ORDER BY errors DESC, warnings DESC, events DESC;
CREATE VIEW IF NOT EXISTS origins AS
    SELECT events.id AS event, captures.name AS file, offset
    FROM events JOIN captures ON capture = captures.id;
)";

// FNV-1a: the same on every machine, for ever, since files keep it.
std::int64_t hashOf(std::span<const std::uint8_t> bytes) {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const std::uint8_t byte : bytes)
        hash = (hash ^ byte) * 0x100000001B3;
    return static_cast<std::int64_t>(hash);
}

void run(sqlite3* database, const char* text) {
    if (sqlite3_exec(database, text, nullptr, nullptr, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(database));
}

// A number that shows the same text again.
bool isPlainNumber(std::string_view text) {
    constexpr std::size_t kDigits = 18; // of any 64-bit number
    const std::string_view digits = text.substr(text.starts_with('-'));
    return !digits.empty() && digits.size() <= kDigits && (digits[0] != '0' || text == "0") &&
           std::all_of(digits.begin(), digits.end(), mpu::isDigit);
}

// Those that every format has by itself.
bool isKept(const Column& column) {
    return column.extra == Extra::None;
}

std::ptrdiff_t columns() {
    return std::count_if(std::begin(kColumns), std::end(kColumns), isKept);
}

std::string parameters(std::ptrdiff_t count) {
    std::string all = "?";
    while (--count != 0)
        all += ", ?";
    return all;
}

} // namespace

Statement::Statement(sqlite3* database, const std::string& text) : database_(database) {
    check(sqlite3_prepare_v3(database, text.data(), static_cast<int>(text.size()),
                             SQLITE_PREPARE_PERSISTENT, &statement_, nullptr));
}

Statement::~Statement() {
    sqlite3_finalize(statement_);
}

void Statement::check(int result) {
    if (result != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(database_));
}

Statement& Statement::operator<<(std::int64_t value) {
    check(sqlite3_bind_int64(statement_, ++next_, value));
    return *this;
}

Statement& Statement::operator<<(std::string_view value) {
    check(sqlite3_bind_text64(statement_, ++next_, value.empty() ? "" : value.data(), value.size(),
                              SQLITE_STATIC, SQLITE_UTF8));
    return *this;
}

std::int64_t Statement::run() {
    const int result = sqlite3_step(statement_);
    const std::int64_t found =
        result == SQLITE_ROW ? sqlite3_column_int64(statement_, 0) : std::int64_t{0};
    const int ended = sqlite3_reset(statement_); // tells again what went wrong
    sqlite3_clear_bindings(statement_);
    next_ = 0;
    check(ended);
    return found;
}

struct Database::Statements {
    explicit Statements(sqlite3* db)
        : addEvent(db, "INSERT OR IGNORE INTO events VALUES (NULL, ?, ?, ?, ?, " +
                           parameters(columns() + 2) + ")"),
          addNaming(db, "INSERT OR IGNORE INTO namings VALUES (?, ?, ?)"),
          addObject(db, "INSERT OR IGNORE INTO objects VALUES (NULL, ?, ?, ?, ?, NULL, NULL)"),
          findObject(db, "SELECT id FROM objects WHERE kind = ? AND name = ? AND "
                         "enclosureSerialNumber = ? AND controllerSerialNumber = ?"),
          describeObject(db, "UPDATE objects SET model = ?, serialNumber = ? WHERE id = ?"),
          addCapture(db, "INSERT INTO captures VALUES (NULL, ?, 0, datetime('now'))"),
          endCapture(db, "UPDATE captures SET bytes = ? WHERE id = ?"),
          addDamage(db, "INSERT INTO damage SELECT ?1, ?2, ?3, ?4"),
          knowsDamage(db, "SELECT count(*) FROM damage JOIN captures ON capture = id WHERE name = "
                          "(SELECT name FROM captures WHERE id = ?) AND offset = ? AND "
                          "passedOver = ? AND reason = ?") {}

    Statement addEvent, addNaming, addObject, findObject, describeObject, addCapture, endCapture,
        addDamage, knowsDamage;
};

void Database::Close::operator()(sqlite3* database) const {
    sqlite3_close_v2(database);
}

Database::Database(const std::string& path) {
    sqlite3* opened = nullptr;
    const int result =
        sqlite3_open_v2(path.c_str(), &opened,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    database_.reset(opened);
    if (result != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(opened));
    sqlite3_busy_timeout(opened, 10000);
    const auto pragma = [&](const char* name) {
        return Statement(opened, fmt::format("PRAGMA {}", name)).run();
    };
    const std::int64_t application = pragma("application_id");
    const std::int64_t version = pragma("user_version");
    const bool isNew =
        Statement(opened, "SELECT count(*) FROM sqlite_schema").run() == 0 && application == 0;
    if (!isNew && application != kApplication)
        throw std::runtime_error("a database, but not of events");
    if (!isNew && version != kVersion)
        throw std::runtime_error(
            fmt::format("written by another version (tables {}, expected {})", version, kVersion));
    std::string events = kEventsBegin;
    for (const Column& column : kColumns)
        if (isKept(column))
            events += fmt::format("    {} {} NOT NULL,\n", column.name,
                                  column.number ? "INTEGER" : "TEXT");
    events += kEventsEnd;
    run(opened, "PRAGMA page_size = 16384"); // of a new file: for rows of this size
    run(opened, "BEGIN IMMEDIATE");
    run(opened, events.c_str());
    run(opened, kTables);
    run(opened, fmt::format("PRAGMA application_id = {}; PRAGMA user_version = {}; COMMIT",
                            kApplication, kVersion)
                    .c_str());
    // A killed process leaves a whole file whatever these are.
    run(opened, "PRAGMA synchronous = NORMAL; PRAGMA cache_size = -32768");
    statements_ = std::make_unique<Statements>(opened);
}

Database::~Database() = default;

void Database::begin(const std::string& capture) {
    run(database_.get(), "BEGIN IMMEDIATE");
    objectIds_.clear(); // a transaction may have come to nothing
    news_ = 0;
    statements_->addCapture << capture;
    statements_->addCapture.run();
    capture_ = sqlite3_last_insert_rowid(database_.get());
}

void Database::add(const DecodedEvent& event, const Message& message) {
    Statement& add = statements_->addEvent;
    add << capture_ << static_cast<std::int64_t>(message.offset) << hashOf(message.record)
        << std::int64_t{severityOf(event.eventType)};
    for (const Column& column : kColumns)
        if (isKept(column))
            column.number ? add << std::int64_t{event.*column.number} : add << event.*column.text;
    const std::vector<ObjectReference>& objects = finder_.of(event);
    putElements(event);
    add << elements_.view();
    if (!basis_.view().empty())
        add << basis_.view();
    add.run();
    if (sqlite3_changes(database_.get()) == 0) {
        ++known_;
        return;
    }
    ++added_;
    ++news_;
    const std::int64_t id = sqlite3_last_insert_rowid(database_.get());
    for (const ObjectReference& object : objects) {
        if (object.kind >= ControllerKind) // these are columns
            continue;
        const std::int64_t objectId = idOf(object, event);
        statements_->addNaming << objectId << id << std::int64_t{object.isAssumed};
        statements_->addNaming.run();
        if (object.kind == DriveKind &&
            !(finder_.model().empty() && finder_.serialNumber().empty())) {
            statements_->describeObject << finder_.model() << finder_.serialNumber() << objectId;
            statements_->describeObject.run();
        }
    }
}

// {"Drive": 7, "State": "Failed"}; of what is not documented or not complete
// {"Drive": ["assumed", 4]}.
void Database::putElements(const DecodedEvent& event) {
    elements_.clear();
    basis_.clear();
    elements_.literal("{");
    const std::vector<BodyItem>& items = finder_.items();
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (items[i].type != BodyItem::Element)
            continue;
        elements_.literal(elements_.view().size() == 1 ? "" : ",");
        putJson(elements_, items[i].name);
        elements_.literal(":");
        const std::string_view value = trimmed(items[i].text);
        isPlainNumber(value) ? elements_.literal(value) : putJson(elements_, value);
        const FieldBasis basis = event.fields.empty() ? FieldBasis() : event.fields[i];
        if (basis.layout == Provenance::Documented && basis.missingBytes == 0)
            continue;
        basis_.literal(basis_.view().empty() ? "{" : ",");
        putJson(basis_, items[i].name).literal(":[\"").literal(nameOf(basis.layout));
        basis_.literal("\",").decimal(basis.missingBytes).literal("]");
    }
    elements_.literal("}");
    if (!basis_.view().empty())
        basis_.literal("}");
}

std::int64_t Database::idOf(const ObjectReference& object, const DecodedEvent& event) {
    const ObjectKind& kind = kObjectKinds[object.kind];
    const std::string_view controller =
        kind.perController ? event.controllerSerialNumber : std::string_view();
    std::string key;
    for (const std::string_view part :
         {kind.name, std::string_view(object.id), event.enclosureSerialNumber, controller})
        key.append(part).push_back('\0');
    if (const auto found = objectIds_.find(key); found != objectIds_.end())
        return found->second;
    for (Statement* statement : {&statements_->addObject, &statements_->findObject})
        *statement << kind.name << std::string_view(object.id) << event.enclosureSerialNumber
                   << controller;
    statements_->addObject.run();
    const std::int64_t id = statements_->findObject.run();
    if (objectIds_.size() < kMaxIds)
        objectIds_.emplace(std::move(key), id);
    return id;
}

void Database::add(const Damage& damage) {
    for (Statement* statement : {&statements_->knowsDamage, &statements_->addDamage})
        *statement << capture_ << static_cast<std::int64_t>(damage.offset)
                   << static_cast<std::int64_t>(damage.passedOver)
                   << std::string_view(damage.reason);
    const bool isNew = statements_->knowsDamage.run() == 0;
    statements_->addDamage.run();
    news_ += isNew;
}

void Database::end(std::uint64_t bytes) {
    if (news_ == 0) {
        run(database_.get(), "ROLLBACK");
        return;
    }
    statements_->endCapture << static_cast<std::int64_t>(bytes) << capture_;
    statements_->endCapture.run();
    run(database_.get(), "COMMIT");
}

} // namespace Pegasus::tool

#endif
