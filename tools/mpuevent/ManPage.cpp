#include "tools/mpuevent/ManPage.h"

#include "tools/mpuevent/CommandLine.h"

#include <fmt/format.h>
#include <utility>

namespace Pegasus::tool {

namespace {

std::string upperCase(std::string text) {
    for (char& c : text)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return text;
}

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
            page += argument.choices.empty() ? "\\fI" + roff(argument.value()) + "\\fR"
                                             : roff(argument.value());
        }
        page += "\n" + roff(argument.explanation()) + "\n";
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

} // namespace

std::string manPage(const CLI::App& app) {
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
        page += ".PP\n.nf\n";
        for (const std::string& line : CLI::detail::split(command->get_footer(), '\n'))
            page += roff(line) + "\n";
        page += ".fi\n";
    }
    page +=
        ".SH TEXTS\n"
        "What a body quotes of a record is reduced to letters, digits, blanks and common\n"
        "punctuation, and all else becomes \"?\", with these exceptions, which have it as the\n"
        "record does: the bodies of NCS other than the statistics of the management port, those\n"
        "of I/O Mgr and AWR and long ones of iSNS, and the summaries of all modules but SCC, AIM\n"
        "and DDLM, SMIS and SMIS IND. What is not UTF\\-8 becomes \"?\" everywhere.\n"
        "Texts, lines and tables for people show control characters as escapes such as \\ex1B.\n"
        ".PP\n"
        "\"~ layout assumed\" marks an event some of whose places in the record nobody documents;\n"
        "\"! 4 bytes short\" one whose record ends before its layout, so that zeros stand for the\n"
        "rest; \"+ 4 bytes unread\" one whose payload has bytes that nothing reads. JSON, XML and\n"
        "CSV have the same as layout, missingBytes and unreadBytes. \"? unknown code\" marks an\n"
        "event whose title and summary don\\(aqt say that its code is in no table.\n";
    page += ".SH OPTIONS\n";
    manArguments(page, app);
    manFooter(page, app.get_footer());
    page += ".SH SEE ALSO\n.BR libMPUEvent (3)\n";
    return page;
}

} // namespace Pegasus::tool
