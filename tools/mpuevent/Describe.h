// The manual page and the shell completions, from the command's own option table.
#pragma once

#include "tools/mpuevent/Output.h"

namespace CLI {
class App;
}

namespace Pegasus::tool {

// Adds the hidden option --describe, used when the command is built, and fills in `what` when it is
// given: "man", "bash" or "zsh".
void addDescribe(CLI::App& app, std::string& what);

std::string describe(const CLI::App& app, const std::string& what);

} // namespace Pegasus::tool
