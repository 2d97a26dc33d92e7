// What shells complete on the command line, from the command's own options.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace Pegasus::tool {

std::string bashCompletion(const CLI::App& app);
std::string zshCompletion(const CLI::App& app);

} // namespace Pegasus::tool
