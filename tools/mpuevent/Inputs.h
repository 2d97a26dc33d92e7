// The captures named on the command line.
#pragma once

#include "tools/mpuevent/Capture.h"
#include "tools/mpuevent/Output.h"

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

class Inputs {
public:
    void addOptions(CLI::App& app);

    // Hands over every message of every file in order. Faults are passed over.
    void read(Sink& sink) const;

    // The one of the files that `path` names too, or null.
    const std::string* find(const std::string& path) const;

private:
    std::vector<std::string> files_{"-"};
    std::string input_ = "cmap";
};

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
