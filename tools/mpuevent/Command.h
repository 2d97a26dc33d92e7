// The subcommands of mpuevent.
#pragma once

#include "tools/mpuevent/Output.h"

#include <functional>

namespace CLI {
class App;
}

namespace Pegasus::tool {

// Does the work once the options are read.
using Runner = std::function<Status()>;

struct Command {
    const char* name;
    const char* description;
    const char* examples;
    Runner (*add)(CLI::App& app); // declares the options
};

Runner addCut(CLI::App& app);
Runner addDecode(CLI::App& app);
Runner addDrives(CLI::App& app);
Runner addExplain(CLI::App& app);
Runner addExport(CLI::App& app);
Runner addFollow(CLI::App& app);
Runner addFormats(CLI::App& app);
Runner addObjects(CLI::App& app);
Runner addReport(CLI::App& app);
Runner addSample(CLI::App& app);
Runner addSummary(CLI::App& app);
Runner addVerify(CLI::App& app);

} // namespace Pegasus::tool
