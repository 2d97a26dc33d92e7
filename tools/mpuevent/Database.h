// Events in an SQLite file.
#pragma once

#include "capture/Capture.h"
#include "formats/Objects.h"

#include <memory>
#include <string>
#include <unordered_map>

struct sqlite3;
struct sqlite3_stmt;

namespace Pegasus::tool {

using namespace capture;
using namespace formats;

// One statement, prepared once. Throws std::runtime_error when the database fails.
class Statement {
public:
    Statement(sqlite3* database, const std::string& text);
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    // Values for the parameters, in their order. Texts must live until the run.
    Statement& operator<<(std::int64_t value);
    Statement& operator<<(std::string_view value);
    // Ends the row of values. Returns the first column, 0 if there is no row.
    std::int64_t run();

private:
    void check(int result);

    sqlite3* const database_;
    sqlite3_stmt* statement_ = nullptr;
    int next_ = 0;
};

// Adds captures to a file, each in a transaction of its own: what is not whole is not there. An
// event that is there already, by controller, log, sequence number and the bytes of its record, is
// not added again; a capture that brings neither an event nor damage that is new leaves no trace.
// Throws std::runtime_error when the file can't be read or written, or holds something else.
class Database {
public:
    explicit Database(const std::string& path);
    ~Database();

    void begin(const std::string& capture);
    // Of an event that was decoded with DecodeOptions::fieldBasis.
    void add(const DecodedEvent& event, const Message& message);
    void add(const Damage& damage);
    // `bytes`: of the capture.
    void end(std::uint64_t bytes);

    std::uint64_t added() const { return added_; }
    std::uint64_t known() const { return known_; } // events that were there already

private:
    struct Close {
        void operator()(sqlite3* database) const;
    };
    struct Statements;

    void putElements(const DecodedEvent& event);
    std::int64_t idOf(const ObjectReference& object, const DecodedEvent& event);

    std::unique_ptr<sqlite3, Close> database_;
    std::unique_ptr<Statements> statements_;
    ObjectFinder finder_;
    mpu::BodyWriter elements_;
    mpu::BodyWriter basis_;
    std::unordered_map<std::string, std::int64_t>
        objectIds_; // of this run, as far as they are kept
    std::int64_t capture_ = 0;
    std::uint64_t added_ = 0;
    std::uint64_t known_ = 0;
    std::uint64_t news_ = 0; // in this capture
};

} // namespace Pegasus::tool
