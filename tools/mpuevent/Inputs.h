// The captures named on the command line.
#pragma once

#include "capture/Capture.h"
#include "tools/mpuevent/Output.h"

#include <algorithm>

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

namespace Pegasus::tool {

// Takes what the captures hold, in order.
class Sink {
public:
    virtual ~Sink() = default;
    // Returns false when it wants no more.
    virtual bool take(const Message& message) = 0;
    // What is wrong with an input at this place, and what it makes of the exit status.
    virtual void complaint(Status status, const std::string& text) = 0;
};

// Complains at once.
class SerialSink : public Sink {
public:
    explicit SerialSink(Output& output) : output_(output) {}
    void complaint(Status status, const std::string& text) override {
        status_ = std::max(status_, status);
        output_.flush();
        complain(text);
    }
    // Of the inputs and of the output, which ends here.
    Status finish() { return std::max(status_, output_.finish()); }

protected:
    Output& output_;

private:
    Status status_ = kFine;
};

// What an input holds, and how it is read.
class InputKind {
public:
    void addOption(CLI::App& app);

    struct Result {
        bool more; // is wanted by the sink
        std::uint64_t faults;
    };
    // Hands over every message of one input. Faults are passed over; many are counted instead of
    // being told.
    Result read(const std::string& name, ByteSource& bytes, Sink& sink) const;

private:
    std::string name_ = "cmap";
    std::uint64_t maxReports_ = 20;
};

class Inputs {
public:
    void addOptions(CLI::App& app);

    // Hands over every message of every file in order. Faults are passed over; returns their
    // number. Shows progress.
    std::uint64_t read(Sink& sink) const;

    // Reports a file to be written that is one of the inputs too.
    bool spares(const std::string& output) const;

private:
    std::vector<std::string> files_{"-"};
    InputKind kind_;
};

inline void addOutput(CLI::App& app, std::string& file) {
    app.add_option("--output,-o", file, "Where to write; \"-\": standard output")
        ->type_name("FILE")
        ->capture_default_str();
}

// The names in a table of rows with a `name`.
template <class Table>
std::vector<std::string> namesOf(const Table& table) {
    std::vector<std::string> names;
    for (const auto& row : table)
        names.emplace_back(row.name);
    return names;
}

// The row of a name that is in the table.
template <class Table>
const auto& rowOf(const Table& table, std::string_view name) {
    return *std::find_if(std::begin(table), std::end(table),
                         [name](const auto& row) { return row.name == name; });
}

} // namespace Pegasus::tool
