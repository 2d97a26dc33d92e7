#include "tools/mpuevent/Describe.h"

#include "tools/catalogue/Modules.h"
#include "tools/mpuevent/Inputs.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>

namespace Pegasus::tool {

namespace {

using Texts = std::vector<std::string>;

std::string joined(const Texts& texts, std::string_view between) {
    return fmt::format("{}", fmt::join(texts, between));
}

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

std::string upperCase(std::string text) {
    for (char& c : text)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return text;
}

// In single quotes of a shell.
std::string shellQuoted(std::string_view text) {
    std::string out = "'";
    for (const char c : text)
        out.append(c == '\'' ? "'\\''" : std::string(1, c));
    return out + "'";
}

// What a person can type at one place of the command line.
struct Argument {
    Texts names; // "--format"; none for a positional argument
    std::string type;
    Texts choices; // all that is allowed, where that is a list
    std::string description;
    std::string standard; // value when it is not given
    bool takesValue;
    bool repeats;

    explicit Argument(const CLI::Option& option)
        : description(option.get_description()), standard(option.get_default_str()),
          takesValue(option.get_items_expected_max() > 0),
          repeats(option.get_items_expected_max() > 1) {
        for (const std::string& name : option.get_snames())
            names.push_back("-" + name);
        for (const std::string& name : option.get_lnames())
            names.push_back("--" + name);
        // The parser keeps a list of choices as "TYPE:{one,two}".
        type = option.get_type_name();
        const std::size_t open = type.find('{');
        const std::size_t close = type.find('}');
        if (open != std::string::npos && close != std::string::npos)
            choices = CLI::detail::split(type.substr(open + 1, close - open - 1), ',');
        type = type.substr(0, type.find(':'));
    }

    bool positional() const { return names.empty(); }

    // What a shell can offer for the value.
    Texts offers() const {
        Texts offers = choices;
        if (type == "MODULE")
            for (const mpu::Module& module : mpu::modules())
                offers.emplace_back(module.decoder);
        return offers;
    }
};

// All but the hidden ones, the positional ones last.
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

// ---- manual page --------------------------------------------------------------------------------

// One line of running text: nothing in it is a request or an escape.
std::string roff(std::string_view text) {
    std::string out = text.starts_with('.') || text.starts_with('\'') ? "\\&" : "";
    for (const char c : text)
        out.append(c == '\\' ? "\\e" : c == '-' ? "\\-" : std::string(1, c));
    return out;
}

void manArguments(std::string& page, const CLI::App& app) {
    for (const Argument& argument : argumentsOf(app)) {
        page += ".TP\n";
        Texts names;
        for (const std::string& name : argument.names)
            names.push_back("\\fB" + roff(name) + "\\fR");
        page += joined(names, ", ");
        if (argument.takesValue) {
            page += argument.positional() ? "" : " ";
            page += argument.choices.empty() ? "\\fI" + roff(argument.type) + "\\fR"
                                             : roff(joined(argument.choices, "|"));
        }
        page += "\n" + roff(argument.description);
        if (argument.takesValue && !argument.standard.empty())
            page += " (standard: " + roff(argument.standard) + ")";
        page += "\n";
    }
}

// The paragraphs below the help, each "Heading: text" or "Heading:" and indented lines.
void manFooter(std::string& page, const std::string& footer) {
    bool heading = true;
    bool literal = false;
    for (std::string line : CLI::detail::split(footer, '\n')) {
        const std::size_t colon = line.find(':');
        if (line.empty()) {
            heading = true;
            continue;
        }
        if (heading && colon != std::string::npos) {
            page += std::exchange(literal, false) ? ".fi\n.SH " : ".SH ";
            page += upperCase(line.substr(0, colon)) + "\n";
            line.erase(0, line.find_first_not_of(' ', colon + 1));
        }
        heading = false;
        if (line.starts_with("  ") && !std::exchange(literal, true))
            page += ".nf\n";
        if (!line.empty())
            page += roff(line) + "\n";
    }
    if (literal)
        page += ".fi\n";
}

std::string man(const CLI::App& app) {
    std::string page = fmt::format(".TH MPUEVENT 1 \"\" \"{}\" \"User Commands\"\n", app.version());
    page += ".SH NAME\nmpuevent \\- decode the event log of a storage controller\n"
            ".SH SYNOPSIS\n";
    const std::vector<const CLI::App*> commands = commandsOf(app);
    for (const CLI::App* command : commands) {
        page += ".B mpuevent " + command->get_name() + "\n[\\fIOPTION\\fR]...";
        for (const Argument& argument : argumentsOf(*command))
            if (argument.positional())
                page += " [\\fI" + argument.type + "\\fR]" + (argument.repeats ? "..." : "");
        page += "\n.br\n";
    }
    page +=
        ".SH DESCRIPTION\n" + roff(app.get_description()) +
        "\nA capture holds the controller's messages, or their bare records. What a file is, is\n"
        "recognised by its first bytes: messages or records as they are, also inside other bytes\n"
        "such as a pcap file or a disk image; as text (xxd, hexdump, od \\-tx1, tcpdump \\-X or\n"
        "\\-xx, C arrays, plain hexadecimal digits, base64), which may be quoted with \"> \" or "
        "have\n"
        "other text around it; and gzip, xz or zstd data of any of that. What is not a plain\n"
        "capture is named on standard error.\n";
    page += ".SH COMMANDS\n";
    for (const CLI::App* command : commands) {
        page +=
            ".SS mpuevent " + command->get_name() + "\n" + roff(command->get_description()) + ".\n";
        manArguments(page, *command);
        if (command->get_footer() != app.get_footer()) { // which it has by default
            page += ".PP\n.nf\n";
            for (const std::string& line : CLI::detail::split(command->get_footer(), '\n'))
                page += roff(line) + "\n";
            page += ".fi\n";
        }
    }
    page += ".SH OPTIONS\n";
    manArguments(page, app);
    manFooter(page, app.get_footer());
    page += ".SH SEE ALSO\n.BR libMPUEvent (3)\n";
    return page;
}

// ---- completions --------------------------------------------------------------------------------

std::string bashOffer(const Argument& argument) {
    if (argument.type == "FILE")
        return "_mpuevent_files";
    const Texts offers = argument.offers();
    return offers.empty() ? "true" : "_mpuevent_words " + shellQuoted(joined(offers, " "));
}

// One command's cases: behind an option that takes a value, then at the start of a word.
void bashCases(std::string& values, std::string& words, const CLI::App& app,
               const std::string& name, const Texts& commands) {
    Texts names;
    std::string positional =
        commands.empty() ? "true" : "_mpuevent_words " + shellQuoted(joined(commands, " "));
    for (const Argument& argument : argumentsOf(app)) {
        if (argument.positional()) {
            positional = bashOffer(argument);
            continue;
        }
        names.insert(names.end(), argument.names.begin(), argument.names.end());
        for (const std::string& option : argument.names)
            if (argument.takesValue)
                values +=
                    fmt::format("    {}/{}) {}; return ;;\n", name, option, bashOffer(argument));
    }
    words += fmt::format("    {}/-*) _mpuevent_words {} ;;\n    {}/*) {} ;;\n", name,
                         shellQuoted(joined(names, " ")), name, positional);
}

Texts namesOf(const std::vector<const CLI::App*>& commands) {
    Texts names;
    for (const CLI::App* command : commands)
        names.push_back(command->get_name());
    return names;
}

std::string bash(const CLI::App& app) {
    const std::vector<const CLI::App*> commands = commandsOf(app);
    std::string values;
    std::string words;
    bashCases(values, words, app, "", namesOf(commands));
    for (const CLI::App* command : commands)
        bashCases(values, words, *command, command->get_name(), {});
    return "# bash completion for mpuevent\n"
           "_mpuevent_words() { mapfile -t COMPREPLY < <(compgen -W \"$1\" -- \"$cur\"); }\n"
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
           joined(namesOf(commands), " | ") +
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

std::string zshArguments(const CLI::App& app, std::string_view indent) {
    std::string out;
    for (const Argument& argument : argumentsOf(app)) {
        const Texts offers = argument.offers();
        std::string action;
        if (argument.takesValue)
            action = fmt::format(":{}:{}", escaped(argument.type, ":", "\\"),
                                 argument.type == "FILE" ? "_files"
                                 : offers.empty()        ? ""
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

std::string zsh(const CLI::App& app) {
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

struct Kind {
    const char* name;
    std::string (*make)(const CLI::App& app);
};
constexpr Kind kKinds[] = {{"man", man}, {"bash", bash}, {"zsh", zsh}};

} // namespace

void addDescribe(CLI::App& app, std::string& what) {
    app.add_option("--describe", what)->check(CLI::IsMember(tool::namesOf(kKinds)))->group("");
}

std::string describe(const CLI::App& app, const std::string& what) {
    return rowOf(kKinds, what).make(app);
}

} // namespace Pegasus::tool
