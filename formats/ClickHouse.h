// The tables of events for ClickHouse.
#pragma once

#include <string>

namespace Pegasus::formats {

// The statements that make them: on each server a table of its own and one over all servers of the
// cluster "mpuevent", and what counts as events come in. They take JSON lines as they are.
std::string clickhouseSql();

} // namespace Pegasus::formats
