#include "provider/Settings.h"

#include "event/Ascii.h"

#include <charconv>
#include <fmt/format.h>

namespace Pegasus::provider {

namespace {

std::string_view trim(std::string_view text) {
    while (!text.empty() && mpu::isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && mpu::isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

// Each takes a value over, or says what is wanted.

std::string takeText(std::string& to, std::string_view text) {
    if (text.empty())
        return "a text";
    to = text;
    return {};
}

template <class T>
std::string takeNumber(T& to, std::string_view text, std::uint64_t least, std::uint64_t most,
                       std::uint64_t unit = 1) {
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < least || value > most)
        return fmt::format("a number from {} to {}", least, most);
    to = T(value * unit);
    return {};
}

template <class T>
struct Choice {
    std::string_view name;
    T value;
};

template <class T, std::size_t N>
std::string takeChoice(T& to, std::string_view text, const Choice<T> (&choices)[N]) {
    std::string names;
    for (const Choice<T>& choice : choices) {
        if (choice.name == text) {
            to = choice.value;
            return {};
        }
        names += names.empty() ? "" : ", ";
        names += choice.name;
    }
    return "one of " + names;
}

constexpr Choice<capture::Framing> kFramings[] = {{"cmap", capture::Framing::Message},
                                                  {"record", capture::Framing::Record}};
constexpr Choice<unsigned> kSeverities[] = {
    {"informational", 1}, {"warning", 2}, {"error", 3}, {"none", 0}};
constexpr Choice<Clock> kClocks[] = {
    {"none", Clock::None}, {"unix", Clock::Unix}, {"uptime", Clock::Uptime}};

struct Setting {
    std::string_view name;
    std::string (*take)(Settings&, std::string_view);
};
constexpr Setting kSettings[] = {
    {"spool", [](Settings& s, std::string_view v) { return takeText(s.spool, v); }},
    {"input", [](Settings& s, std::string_view v) { return takeChoice(s.framing, v, kFramings); }},
    {"interval",
     [](Settings& s, std::string_view v) { return takeNumber(s.interval, v, 10, 3600000); }},
    {"max-events",
     [](Settings& s, std::string_view v) { return takeNumber(s.maxEvents, v, 1, 1000000); }},
    {"max-kilobytes",
     [](Settings& s, std::string_view v) {
         return takeNumber(s.maxBytes, v, 64, 1024 * 1024, 1024);
     }},
    {"alert-severity",
     [](Settings& s, std::string_view v) { return takeChoice(s.alertSeverity, v, kSeverities); }},
    {"clock", [](Settings& s, std::string_view v) { return takeChoice(s.clock, v, kClocks); }},
    {"log-name", [](Settings& s, std::string_view v) { return takeText(s.logName, v); }},
    {"owning-entity", [](Settings& s, std::string_view v) { return takeText(s.owningEntity, v); }},
};

std::string take(Settings& settings, std::string_view line) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos)
        return "\"name = value\" wanted";
    const std::string_view name = trim(line.substr(0, equals));
    const std::string_view value = trim(line.substr(equals + 1));
    for (const Setting& setting : kSettings)
        if (setting.name == name) {
            const std::string wanted = setting.take(settings, value);
            return wanted.empty() ? wanted
                                  : fmt::format("{}: \"{}\" ({} wanted)", name, value, wanted);
        }
    return fmt::format("\"{}\" is not a setting", name);
}

} // namespace

Settings readSettings(std::istream& in, const capture::FaultHandler& report) {
    Settings settings;
    std::string line;
    for (unsigned number = 1; std::getline(in, line); ++number) {
        const std::string_view text = trim(std::string_view(line).substr(0, line.find('#')));
        if (text.empty())
            continue;
        if (const std::string wrong = take(settings, text); !wrong.empty())
            report(fmt::format("line {}: {}", number, wrong));
    }
    return settings;
}

} // namespace Pegasus::provider
