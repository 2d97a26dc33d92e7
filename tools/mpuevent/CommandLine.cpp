#include "tools/mpuevent/CommandLine.h"

#include <algorithm>
#include <fmt/format.h>

namespace Pegasus::tool {

Argument::Argument(const CLI::Option& option)
    : description(option.get_description()), defaultValue(option.get_default_str()),
      takesValue(option.get_items_expected_max() > 0),
      repeats(option.get_items_expected_max() > 1) {
    for (const std::string& name : option.get_snames())
        names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        names.push_back("--" + name);
    // The parser keeps a list of choices as "TYPE:{one,two}".
    type = option.get_type_name();
    const std::size_t list = type.find(":{");
    if (list != std::string::npos) {
        choices = CLI::detail::split(type.substr(list + 2, type.find('}') - list - 2), ',');
        type.resize(list);
    }
}

std::string Argument::value() const {
    return choices.empty() || positional() ? type : joined(choices, "|");
}

std::string Argument::explanation() const {
    if (positional() && !choices.empty())
        return fmt::format("{}: {}", description, joined(choices, ", "));
    return !takesValue || defaultValue.empty()
               ? description
               : fmt::format("{} (default: {})", description, defaultValue);
}

std::vector<Argument> argumentsOf(const CLI::App& app) {
    std::vector<Argument> arguments;
    for (const CLI::Option* option : app.get_options())
        if (!option->get_group().empty())
            arguments.emplace_back(*option);
    std::stable_partition(arguments.begin(), arguments.end(),
                          [](const Argument& argument) { return !argument.positional(); });
    return arguments;
}

std::vector<const CLI::App*> commandsOf(const CLI::App& app) {
    return app.get_subcommands(
        [](const CLI::App* command) { return !command->get_group().empty(); });
}

std::string joined(const Texts& texts, std::string_view between) {
    return fmt::format("{}", fmt::join(texts, between));
}

} // namespace Pegasus::tool
