// The manual page mpuevent(1), from the command's own options.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace Pegasus::tool {

std::string manPage(const CLI::App& app);

} // namespace Pegasus::tool
