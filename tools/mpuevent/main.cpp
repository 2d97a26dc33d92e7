// mpuevent: reads captures of the controller's event log.
#include "platform/trace/ProviderTraceServices.h"
#include "tools/mpuevent/Choices.h"
#include "tools/mpuevent/Command.h"
#include "tools/mpuevent/Completions.h"
#include "tools/mpuevent/Examples.h"
#include "tools/mpuevent/Help.h"
#include "tools/mpuevent/ManPage.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <csignal>
#include <new>

namespace Pegasus::tool {

namespace {

constexpr Command kCommands[] = {
    {"decode", "Decode captures", kDecodeExamples, addDecode},
    {"explain", "Show which bytes each element of an event comes from", kExplainExamples,
     addExplain},
    {"summary", "Count what captures hold", kSummaryExamples, addSummary},
    {"objects", "Tell what happened to drives, fans, connections and others", kObjectsExamples,
     addObjects},
    {"drives", "Tell what happened to each drive", kDrivesExamples, addDrives},
    {"verify", "Tell damage, gaps and repetitions", kVerifyExamples, addVerify},
    {"report", "Write a self-contained HTML report", kReportExamples, addReport},
    {"export", "Add captures to an SQLite database", kExportExamples, addExport},
    {"cut", "Write chosen messages as a capture again", kCutExamples, addCut},
    {"follow", "Decode captures as they grow", kFollowExamples, addFollow},
    {"formats", "Print the record reference or a schema", kFormatsExamples, addFormats},
    {"sample", "Write a demonstration capture", kSampleExamples, addSample},
};

// What is written in the source tree and installed: see scripts/renew.
struct Description {
    const char* name;
    std::string (*make)(const CLI::App& app);
};
constexpr Description kDescriptions[] = {
    {"man", manPage}, {"bash", bashCompletion}, {"zsh", zshCompletion}};

Status show(std::string_view text) {
    Output out;
    out.text().literal(text);
    return out.finish();
}

Status run(int argc, char** argv) {
    CLI::App app("Decodes the event log of the storage controller.", "mpuevent");
    app.set_version_flag("--version", "mpuevent " MPUEVENT_VERSION);
    app.footer(kExamples);
    setHelp(app);
    app.require_subcommand(0, 1);
    std::string described;
    app.add_option("--describe", described)
        ->check(CLI::IsMember(namesOf(kDescriptions)))
        ->group("");
    Runner runner;
    for (const Command& command : kCommands) {
        CLI::App* sub = app.add_subcommand(command.name, command.description);
        sub->footer(command.examples);
        sub->final_callback([&runner, chosen = command.add(*sub)] { runner = chosen; });
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        return show(app.help());
    } catch (const CLI::CallForVersion& version) {
        return show(std::string(version.what()) + "\n");
    } catch (const CLI::ParseError& error) {
        complain("{}{}; \"mpuevent --help\" tells more", error.what(), suggestionFor(app));
        return kUsage;
    }
    if (!described.empty())
        return show(rowOf(kDescriptions, described).make(app));
    if (!runner) {
        complain("no command given; see mpuevent --help");
        return kUsage;
    }
    return runner();
}

} // namespace

} // namespace Pegasus::tool

int main(int argc, char** argv) {
    using namespace Pegasus;
    std::signal(SIGPIPE, SIG_IGN); // shows as a write error
    ProviderTraceServices::ptsSetTraceSuppressForPid(1);
    try {
        return tool::run(argc, argv);
    } catch (const std::bad_alloc&) {
        tool::complain("out of memory");
    } catch (const std::exception& error) {
        tool::complain(error.what());
    }
    return tool::kFailed;
}
