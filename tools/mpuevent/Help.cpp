#include "tools/mpuevent/Help.h"

#include <algorithm>
#include <fmt/format.h>
#include <numeric>
#include <sys/ioctl.h>
#include <unistd.h>

namespace Pegasus::tool {

namespace {

std::size_t terminalWidth() {
    winsize size{};
    const bool known = ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0;
    return std::clamp<std::size_t>(known ? size.ws_col : 80, 40, 100);
}

class Formatter : public CLI::Formatter {
public:
    explicit Formatter(std::size_t width) : width_(width) {
        column_width(std::min<std::size_t>(30, width * 3 / 8));
    }

    std::string make_option_opts(const CLI::Option* option) const override {
        const Argument argument(*option);
        return argument.takesValue ? " " + argument.value() : "";
    }
    std::string make_option_desc(const CLI::Option* option) const override {
        return beside(Argument(*option).explanation());
    }
    std::string make_subcommand(const CLI::App* command) const override {
        std::ostringstream out;
        CLI::detail::format_help(out, command->get_name(), beside(command->get_description()),
                                 get_column_width());
        return out.str();
    }
    std::string make_footer(const CLI::App* app) const override {
        return wrapped(app->get_footer(), width_) + "\n";
    }

private:
    std::string beside(const std::string& text) const {
        return wrapped(text, width_ - get_column_width());
    }

    const std::size_t width_;
};

// How many characters have to be inserted, removed or replaced to make one of the other.
std::size_t distance(std::string_view one, std::string_view other) {
    std::vector<std::size_t> row(other.size() + 1); // from the beginning of `one` to that of other
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (const char c : one) {
        std::size_t diagonal = row[0]++;
        for (std::size_t i = 0; i < other.size(); ++i) {
            const std::size_t replaced = diagonal + (other[i] != c);
            diagonal = row[i + 1];
            row[i + 1] = std::min({replaced, row[i] + 1, diagonal + 1});
        }
    }
    return row.back();
}

} // namespace

std::string wrapped(std::string_view text, std::size_t width) {
    std::string out;
    for (const std::string& line : CLI::detail::split(std::string(text), '\n')) {
        out += out.empty() ? "" : "\n";
        std::string_view rest = line;
        while (rest.size() > width && !rest.starts_with(' ')) {
            std::size_t at = rest.rfind(' ', width);
            at = at == rest.npos ? rest.find(' ') : at;
            if (at == rest.npos)
                break;
            out.append(rest.substr(0, at)).append("\n");
            rest.remove_prefix(at + 1);
        }
        out += rest;
    }
    return out;
}

void setHelp(CLI::App& app) {
    app.formatter(std::make_shared<Formatter>(terminalWidth()));
}

std::string suggestionFor(const CLI::App& parsed) {
    const Texts unknown = parsed.remaining(true);
    if (unknown.empty())
        return "";
    const std::string word = unknown.front().substr(0, unknown.front().find('='));
    const std::vector<const CLI::App*> commands =
        parsed.get_subcommands([](const CLI::App* command) { return command->count() != 0; });
    Texts known;
    if (word.starts_with('-')) {
        for (const Argument& argument : argumentsOf(commands.empty() ? parsed : *commands.front()))
            known.insert(known.end(), argument.names.begin(), argument.names.end());
    } else if (commands.empty()) {
        for (const CLI::App* command : commandsOf(parsed))
            known.push_back(command->get_name());
    }
    const auto closest = std::min_element(
        known.begin(), known.end(), [&word](const std::string& one, const std::string& other) {
            return distance(word, one) < distance(word, other);
        });
    return closest == known.end() || distance(word, *closest) > word.size() / 3
               ? ""
               : fmt::format(" (did you mean \"{}\"?)", *closest);
}

} // namespace Pegasus::tool
