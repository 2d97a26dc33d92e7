// Options whose values are the rows of a table.
#pragma once

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace Pegasus::tool {

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

// "text: tables; json: a JSON object", from rows that have a `description` as well.
template <class Table>
std::string descriptionsOf(const Table& table) {
    std::string all;
    for (const auto& row : table)
        all.append(all.empty() ? "" : "; ").append(row.name).append(": ").append(row.description);
    return all;
}

} // namespace Pegasus::tool
