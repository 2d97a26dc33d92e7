// mpuevent: reads captures of the controller's event log.
#include "platform/trace/ProviderTraceServices.h"
#include "tools/mpuevent/Choices.h"
#include "tools/mpuevent/Command.h"
#include "tools/mpuevent/Completions.h"
#include "tools/mpuevent/ManPage.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <csignal>
#include <new>

namespace Pegasus::tool {

namespace {

constexpr Command kCommands[] = {
    {"decode", "Decode captures", addDecode},
    {"summary", "Count what captures hold", addSummary},
    {"verify", "Tell damage, gaps and repetitions", addVerify},
    {"report", "Write a self-contained HTML report", addReport},
    {"follow", "Decode captures as they grow", addFollow},
    {"formats", "Print the record reference or the JSON Schema", addFormats},
    {"sample", "Write a demonstration capture", addSample},
};

// What is written in the source tree and installed: see scripts/renew.
struct Description {
    const char* name;
    std::string (*make)(const CLI::App& app);
};
constexpr Description kDescriptions[] = {
    {"man", manPage}, {"bash", bashCompletion}, {"zsh", zshCompletion}};

constexpr char kExamples[] = R"(Examples:
  Which drive failed, and when?
    mpuevent decode --format brief --severity warning --grep 'Drive:? \d' eventlog.cap
  What is in there?
    mpuevent summary eventlog.cap
  All about some events:
    mpuevent decode --source 'I/O Mgr' --since seq:4000 --not-event-id Statistics eventlog.cap
  For other programs:
    mpuevent decode --format json --jobs 0 eventlog.cap | jq .summary
    mpuevent decode --format csv --fields --output events.csv eventlog.cap
  Is it whole?
    mpuevent verify eventlog.cap
  A page for a ticket:
    mpuevent report eventlog.cap --output report.html
  As it happens:
    mpuevent follow --severity warning --format brief eventlog.cap
  A hex dump that came by mail:
    mpuevent decode mail.txt

Exit status: 0 all well, 1 some of the input was damaged, 2 wrong usage,
3 could not read or write.)";

Status show(std::string_view text) {
    Output out;
    out.text().literal(text);
    return out.finish();
}

Status run(int argc, char** argv) {
    CLI::App app("Decodes the event log of the storage controller.", "mpuevent");
    app.set_version_flag("--version", "mpuevent " MPUEVENT_VERSION);
    app.footer(kExamples);
    app.require_subcommand(0, 1);
    std::string described;
    app.add_option("--describe", described)
        ->check(CLI::IsMember(namesOf(kDescriptions)))
        ->group("");
    Runner runner;
    for (const Command& command : kCommands) {
        CLI::App* sub = app.add_subcommand(command.name, command.description);
        sub->final_callback([&runner, chosen = command.add(*sub)] { runner = chosen; });
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        return show(app.help());
    } catch (const CLI::CallForVersion& version) {
        return show(std::string(version.what()) + "\n");
    } catch (const CLI::ParseError& error) {
        complain("{}; \"mpuevent --help\" tells more", error.what());
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
