#include "tools/mpuevent/Completions.h"

#include "event/HeaderNames.h"
#include "formats/Columns.h"
#include "tools/catalogue/Modules.h"
#include "tools/mpuevent/Choices.h"
#include "tools/mpuevent/CommandLine.h"

#include <algorithm>
#include <fmt/format.h>

namespace Pegasus::tool {

namespace {

// `text` with `before` in front of each of the `marked` characters.
std::string escaped(std::string_view text, std::string_view marked, std::string_view before) {
    std::string out;
    for (const char c : text) {
        if (marked.find(c) != std::string_view::npos)
            out += before;
        out += c;
    }
    return out;
}

// In single quotes of a shell.
std::string shellQuoted(std::string_view text) {
    std::string out = "'";
    for (const char c : text)
        out.append(c == '\'' ? "'\\''" : std::string(1, c));
    return out + "'";
}

Texts codeNames(std::string_view (*nameOf)(std::uint8_t)) {
    Texts names;
    for (unsigned code = 0; code < 256; ++code) {
        const std::string name(nameOf(static_cast<std::uint8_t>(code)));
        if (!name.empty() && std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(name);
    }
    return names;
}

// Values that are not all that is allowed, or take a while to list.
struct Offers {
    std::string_view type;
    bool list; // of values with commas between
    Texts (*make)();
};
constexpr Offers kOffers[] = {
    {"MODULE", false,
     [] {
         Texts names;
         for (const mpu::Module& module : mpu::modules())
             names.emplace_back(module.decoder);
         return names;
     }},
    {"SOURCE", false, [] { return codeNames(mpu::sourceName); }},
    {"CATEGORY", false, [] { return codeNames(mpu::categoryName); }},
    {"LEVEL", false,
     [] {
         return Texts{"informational", "warning", "error"};
     }},
    {"unix|DATE|boot", false,
     [] {
         return Texts{"unix", "boot"};
     }},
    {"TIME|seq:N", false,
     [] {
         return Texts{"today", "yesterday", "seq:"};
     }},
    {"COLUMNS", true, [] { return namesOf(formats::kColumns); }},
};

const Offers* offersOf(const Argument& argument) {
    const auto* found = std::find_if(std::begin(kOffers), std::end(kOffers),
                                     [&](const Offers& row) { return row.type == argument.type; });
    return found == std::end(kOffers) ? nullptr : found;
}

// What a shell can offer for the value.
Texts offersFor(const Argument& argument) {
    const Offers* const offers = offersOf(argument);
    return offers ? offers->make() : argument.choices;
}

bool isList(const Argument& argument) {
    const Offers* const offers = offersOf(argument);
    return offers && offers->list;
}

std::string bashWords(const Texts& words) {
    std::string out;
    for (const std::string& word : words)
        out += " " + (word.find(' ') == word.npos ? word : shellQuoted(word));
    return out;
}

std::string bashOffer(const Argument& argument) {
    if (argument.type == "FILE")
        return "_mpuevent_files";
    if (argument.type == "ZONE")
        return "_mpuevent_words $(timedatectl list-timezones 2>/dev/null)";
    const Texts offers = offersFor(argument);
    return offers.empty()
               ? "true"
               : (isList(argument) ? "_mpuevent_list" : "_mpuevent_words") + bashWords(offers);
}

// One command's cases: after an option that takes a value, then at the start of a word.
void bashCases(std::string& values, std::string& words, const CLI::App& app,
               const std::string& name, const Texts& commands) {
    Texts names;
    std::string positional = commands.empty() ? "true" : "_mpuevent_words" + bashWords(commands);
    for (const Argument& argument : argumentsOf(app)) {
        if (argument.positional()) {
            if (positional == "true") // or what the first one may be: files where none begins so
                positional = bashOffer(argument);
            continue;
        }
        names.insert(names.end(), argument.names.begin(), argument.names.end());
        for (const std::string& option : argument.names)
            if (argument.takesValue)
                values +=
                    fmt::format("    {}/{}) {}; return ;;\n", name, option, bashOffer(argument));
    }
    words += fmt::format("    {}/-*) _mpuevent_words{} ;;\n    {}/*) {} ;;\n", name,
                         bashWords(names), name, positional);
}

Texts commandNames(const std::vector<const CLI::App*>& commands) {
    Texts names;
    for (const CLI::App* command : commands)
        names.push_back(command->get_name());
    return names;
}

} // namespace

std::string bashCompletion(const CLI::App& app) {
    const std::vector<const CLI::App*> commands = commandsOf(app);
    std::string values;
    std::string words;
    bashCases(values, words, app, "", commandNames(commands));
    for (const CLI::App* command : commands)
        bashCases(values, words, *command, command->get_name(), {});
    return "# bash completion for mpuevent\n"
           "_mpuevent_words() { # those that begin as what is typed, quoted or not\n"
           "    local word typed=${cur//\\\\/}\n"
           "    typed=${typed#[\\'\\\"]}\n"
           "    for word; do\n"
           "        [[ ${word,,} == \"${typed,,}\"* ]] || continue\n"
           "        [[ $cur == [\\'\\\"]* ]] || printf -v word %q \"$word\"\n"
           "        COMPREPLY+=(\"$word\")\n"
           "    done\n"
           "}\n"
           "_mpuevent_list() { # the same after the last comma\n"
           "    local before=${cur%\"${cur##*,}\"} cur=${cur##*,}\n"
           "    _mpuevent_words \"$@\"\n"
           "    COMPREPLY=(\"${COMPREPLY[@]/#/$before}\")\n"
           "    compopt -o nospace 2>/dev/null\n"
           "}\n"
           "_mpuevent_files() {\n"
           "    compopt -o filenames 2>/dev/null\n"
           "    mapfile -t COMPREPLY < <(compgen -f -- \"$cur\")\n"
           "}\n"
           "_mpuevent() {\n"
           "    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}"
           " command='' word\n"
           "    COMPREPLY=()\n"
           "    [[ $prev == '=' ]] && prev=${COMP_WORDS[COMP_CWORD - 2]}\n"
           "    [[ $cur == '=' ]] && cur=''\n"
           "    for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
           "        case $word in\n"
           "        " +
           joined(commandNames(commands), " | ") +
           ") command=$word && break ;;\n"
           "        esac\n"
           "    done\n"
           "    case $command/$prev in\n" +
           values +
           "    esac\n"
           "    case $command/$cur in\n" +
           words +
           "    esac\n"
           "}\n"
           "complete -F _mpuevent mpuevent\n";
}

namespace {

std::string zshArguments(const CLI::App& app, std::string_view indent) {
    std::string out;
    for (const Argument& argument : argumentsOf(app)) {
        Texts offers = offersFor(argument);
        for (std::string& offer : offers)
            offer = escaped(offer, " :()", "\\");
        std::string action;
        if (argument.takesValue)
            action = fmt::format(":{}:{}", escaped(argument.type, ":", "\\"),
                                 argument.type == "FILE"   ? "_files"
                                 : argument.type == "ZONE" ? "_time_zone"
                                 : offers.empty()          ? ""
                                 : isList(argument) ? "_sequence compadd - " + joined(offers, " ")
                                                    : "(" + joined(offers, " ") + ")");
        const auto put = [&](std::string_view argumentText) {
            out += fmt::format("{}{} \\\n", indent, shellQuoted(argumentText));
        };
        if (argument.positional())
            put((argument.repeats ? "*" : "1") + action);
        for (const std::string& name : argument.names)
            put(fmt::format("{}{}{}[{}]{}", argument.repeats ? "*" : "", name,
                            argument.takesValue && name.starts_with("--") ? "=" : "",
                            escaped(argument.description, "[]:\\", "\\"), action));
    }
    return out;
}

} // namespace

std::string zshCompletion(const CLI::App& app) {
    const std::vector<const CLI::App*> commands = commandsOf(app);
    std::string out = "#compdef mpuevent\n"
                      "_mpuevent() {\n"
                      "    local curcontext=$curcontext state line\n"
                      "    local -a commands=(\n";
    for (const CLI::App* command : commands)
        out += "        " +
               shellQuoted(command->get_name() + ":" +
                           escaped(command->get_description(), ":", "\\")) +
               "\n";
    out += "    )\n"
           "    _arguments -C \\\n" +
           zshArguments(app, "        ") +
           "        '1:command:->command' \\\n"
           "        '*::argument:->argument'\n"
           "    case $state in\n"
           "    command) _describe command commands ;;\n"
           "    argument)\n"
           "        case $line[1] in\n";
    for (const CLI::App* command : commands)
        out += "        " + command->get_name() + ")\n            _arguments \\\n" +
               zshArguments(*command, "                ") + "                ;;\n";
    return out + "        esac\n"
                 "        ;;\n"
                 "    esac\n"
                 "}\n"
                 "_mpuevent \"$@\"\n";
}

} // namespace Pegasus::tool
