#include "tools/mpuevent/Filter.h"

#include "event/HeaderNames.h"
#include "formats/Severity.h"
#include "tools/mpuevent/Numbers.h"

#include <algorithm>
#include <fmt/format.h>

namespace Pegasus::tool {

// Makes the test of one value; throws Wrong with what is allowed. One of the two is null: what the
// header tells is decided before anything is decoded.
struct FilterRow {
    const char* name;
    const char* type;
    const char* kept;
    HeaderTest (*header)(const std::string& value, const TimeOptions& times);
    EventTest (*event)(const std::string& value, bool ignoreCase);
    bool all = false;   // several values must all hold, instead of any
    bool basis = false; // looks at what each element rests on
};

namespace {

std::optional<std::uint32_t> toNumber(std::string_view text) {
    const std::optional<Integer> number = Integer::from(text);
    if (!number || number->negative || number->magnitude > UINT32_MAX)
        return std::nullopt;
    return static_cast<std::uint32_t>(number->magnitude);
}

// The codes of a header byte that `value` means: its number, or all of that name.
std::vector<bool> codesOf(const char* what, const std::string& value,
                          std::string_view (*nameOf)(std::uint8_t)) {
    std::vector<bool> codes(256);
    std::string known;
    bool found = false;
    for (unsigned code = 0; code < 256; ++code) {
        const std::string number = std::to_string(code);
        const std::string name(nameOf(static_cast<std::uint8_t>(code)));
        codes[code] = value == number || (!name.empty() && CLI::detail::to_lower(value) ==
                                                               CLI::detail::to_lower(name));
        found |= codes[code];
        if (!name.empty() && known.find(", " + name + ",") == known.npos)
            known.append(known.empty() ? ", " : " ").append(name).append(",");
    }
    if (!found) {
        known.pop_back();
        throw Wrong{fmt::format("no {} \"{}\"; there are: {}; or a number below 256", what, value,
                                known.substr(2))};
    }
    return codes;
}

HeaderTest source(const std::string& value, const TimeOptions&) {
    return [codes = codesOf("source", value, mpu::sourceName)](const EmpEvLogMsg_s& record) {
        return codes[record.source];
    };
}

HeaderTest category(const std::string& value, const TimeOptions&) {
    return [codes = codesOf("category", value, mpu::categoryName)](const EmpEvLogMsg_s& record) {
        return codes[record.category];
    };
}

HeaderTest severity(const std::string& value, const TimeOptions&) {
    const auto* found =
        std::find_if(std::begin(kSeverities) + 1, std::end(kSeverities),
                     [begin = CLI::detail::to_lower(value)](std::string_view name) {
                         return !begin.empty() && name.starts_with(begin); // no two begin alike
                     });
    if (found == std::end(kSeverities))
        throw Wrong{fmt::format("\"{}\" is none of informational, warning, error", value)};
    const auto least = static_cast<unsigned>(found - kSeverities);
    return [least](const EmpEvLogMsg_s& record) { return severityOf(record.eventType) >= least; };
}

// A serial number, as it is shown.
template <std::size_t Offset>
HeaderTest serial(const std::string& value, const TimeOptions&) {
    return [value](const EmpEvLogMsg_s& record) {
        mpu::StackWriter<128> shown;
        shown.raw(mpu::RecordView(&record, sizeof record).text(Offset, 64));
        return shown.finish() == value;
    };
}

template <auto Member>
HeaderTest number(const std::string& value, const TimeOptions&) {
    const std::optional<std::uint32_t> wanted = toNumber(value);
    if (!wanted)
        throw Wrong{fmt::format("\"{}\" is not a number below 2^32", value)};
    return [wanted = *wanted](const EmpEvLogMsg_s& record) { return record.*Member == wanted; };
}

// Compares the sequence number or the time stamp with what `value` says.
template <class Compare>
HeaderTest compared(const std::string& value, const TimeOptions& times) {
    const bool sequence = value.starts_with("seq:");
    std::optional<std::int64_t> bound = toNumber(std::string_view(value).substr(sequence ? 4 : 0));
    if (!bound) {
        bound = momentFrom(value, times);
        if (!bound)
            throw Wrong{fmt::format("\"{}\" is neither a time stamp (a number below 2^32), nor a "
                                    "sequence number (seq:N), nor a date",
                                    value)};
        if (!times.epoch)
            throw Wrong{fmt::format("\"{}\" needs to know when the time stamps were 0: add "
                                    "--epoch unix, or --epoch and that date",
                                    value)};
        *bound -= *times.epoch;
    }
    return [bound = *bound, sequence](const EmpEvLogMsg_s& record) {
        return Compare()(sequence ? record.sequenceId : record.timestamp, bound);
    };
}

EventTest eventId(const std::string& value, bool) {
    return [value](const DecodedEvent& event) { return event.eventID == value; };
}

constexpr FilterRow kRows[] = {
    {"source", "SOURCE", "from this source, a name or a number", source, nullptr},
    {"category", "CATEGORY", "of this category, a name or a number", category, nullptr},
    {"severity", "LEVEL",
     "at least this severe: informational, warning or error; \"warn\" and \"e\" will do, and "
     "engineering events count alike",
     severity, nullptr},
    {"enclosure", "SERIAL", "from the enclosure with exactly this serial number",
     serial<offsetof(EmpEvLogMsg_s, enclosureSerialNumber)>, nullptr},
    {"controller", "SERIAL", "from the controller with exactly this serial number",
     serial<offsetof(EmpEvLogMsg_s, controllerSerialNumber)>, nullptr},
    {"slot", "N", "from the controller in this slot", number<&EmpEvLogMsg_s::slotId>, nullptr},
    {"log", "N", "from this event log of the controller", number<&EmpEvLogMsg_s::logInstance>,
     nullptr},
    {"id", "N", "with this number for an event id in their header", number<&EmpEvLogMsg_s::eventId>,
     nullptr},
    {"drive", "N", "that name this drive", nullptr, objectTest<DriveKind>, false, true},
    {"volume", "N", "that name this volume", nullptr, objectTest<VolumeKind>, false, true},
    {"lun", "N", "that name this LUN", nullptr, objectTest<LunKind>, false, true},
    {"fan", "N", "that name this fan", nullptr, objectTest<FanKind>, false, true},
    {"adapter", "N", "that name this adapter", nullptr, objectTest<AdapterKind>, false, true},
    {"port", "N", "that name this port", nullptr, objectTest<PortKind>, false, true},
    {"connection", "N", "that name the connection with this socket number", nullptr,
     objectTest<ConnectionKind>, false, true},
    {"initiator", "NAME", "that name this initiator, by its iSCSI name or its address", nullptr,
     objectTest<InitiatorKind>, false, true},
    {"since", "TIME|seq:N",
     "at or after this time stamp or sequence number; with an epoch also a date such as "
     "2009-11-10 (its first second), '2009-11-10 12:00', today, yesterday, or -2h: before now",
     compared<std::greater_equal<std::int64_t>>, nullptr},
    {"until", "TIME|seq:N", "at or before this time stamp or sequence number, or such a date",
     compared<std::less_equal<std::int64_t>>, nullptr},
    {"event-id", "TITLE", "with exactly this title", nullptr, eventId},
    {"grep", "REGEX",
     "with a match of this regular expression (RE2) in a line that the text format shows", nullptr,
     grepTest},
    {"where", "NAME=VALUE",
     "with a field, or an element of the body, of that value, or one that compares as != < <= > >= "
     "say; all conditions must hold",
     nullptr, whereTest, true},
};

} // namespace

void FilterOptions::addOptions(CLI::App& app, TimeUse use, bool endless) {
    addTimeOptions(app, times, use);
    for (const FilterRow& row : kRows)
        for (const bool negated : {false, true}) {
            const std::string name = std::string(negated ? "--not-" : "--") + row.name;
            const auto take = [this, &row, negated, name](const std::vector<std::string>& values) {
                try {
                    this->take(row, negated, values);
                } catch (const Wrong& wrong) {
                    throw CLI::ValidationError(name, wrong.what);
                }
            };
            app.add_option_function<std::vector<std::string>>(
                   name, take,
                   std::string(negated ? "Leave out events " : "Only events ") + row.kept)
                ->type_name(row.type)
                ->allow_extra_args(false)
                ->group("Filters");
        }
    const auto keepTypes = [&](const char* name, unsigned first, const char* description) {
        const auto keep = [this, first] {
            headerRules_.push_back({false, {[first](const EmpEvLogMsg_s& record) {
                                        return record.eventType - first < 3;
                                    }}});
        };
        return app.add_flag_callback(name, keep, description)->group("Filters");
    };
    keepTypes("--customer", 1, "Only events for customers (event types 1 to 3)")
        ->excludes(
            keepTypes("--engineering", 101, "Only events for engineers (event types 101 to 103)"));
    app.add_flag("--ignore-case,-i", ignoreCase_, "--grep takes small and capital letters alike")
        ->group("Filters");
    CLI::Option* limited =
        addNumber(app, "--limit", limit, "Stop after N events", 1)->group("Filters");
    addNumber(
        app, "--context", context,
        "Also N events before and after each, with \"--\" between groups (text, brief, line); "
        "keeps N events in memory")
        ->default_str("")
        ->group("Filters");
    const auto takeAround = [this](const std::string& value) {
        around = durationFrom(value);
        if (!around)
            throw CLI::ValidationError(
                "--around", fmt::format("\"{}\" is not a time such as 90, 90s, 5m, 2h, 1d", value));
    };
    app.add_option_function<std::string>(
           "--around", takeAround,
           "Also the events within this time of each, by time stamps in seconds: 90, 90s, 5m, 2h, "
           "1d; keeps the events of that time, at least 1 MB, in memory")
        ->type_name("TIME")
        ->group("Filters");
    if (endless)
        return;
    addNumber(app, "--last", last, "Only the last N events; keeps them in memory", 1)
        ->excludes(limited)
        ->group("Filters");
    app.add_flag("--reverse", reverse,
                 "The last event first, with --limit N the last N; keeps them in memory")
        ->group("Filters");
}

FilterOptions FilterOptions::ofSink() const {
    if (!selects())
        return *this;
    FilterOptions all;
    all.times = times;
    return all;
}

void FilterOptions::take(const FilterRow& row, bool negated,
                         const std::vector<std::string>& values) {
    if (row.header) {
        headerRules_.push_back({negated, {}});
        for (const std::string& value : values)
            headerRules_.back().any.push_back(row.header(value, times));
        return;
    }
    basis_ = basis_ || row.basis;
    for (const std::string& value : values) {
        if (row.all || &value == &values.front())
            eventRules_.push_back({negated, {}});
        (void)row.event(value, false); // is it right?
        eventRules_.back().any.push_back(
            [&row, value](bool ignoreCase) { return row.event(value, ignoreCase); });
    }
}

Filter::Filter(const FilterOptions& options, const DecodeOptions& decoding)
    : headerRules_(options.headerRules_),
      decoder_({.fieldBasis = decoding.fieldBasis || options.basis_,
                .readings = decoding.readings,
                .knownOnly = decoding.knownOnly,
                .time = options.times}) {
    for (const auto& [negated, any] : options.eventRules_) {
        eventRules_.push_back({negated, {}});
        for (const auto& make : any)
            eventRules_.back().any.push_back(make(options.ignoreCase_));
    }
}

template <class Test, class Subject>
bool Filter::all(const std::vector<FilterRule<Test>>& rules, const Subject& subject) {
    return std::all_of(rules.begin(), rules.end(), [&](const FilterRule<Test>& rule) {
        return rule.negated != std::any_of(rule.any.begin(), rule.any.end(),
                                           [&](const Test& test) { return test(subject); });
    });
}

bool Filter::passes(const Message& message) const {
    // A record in a capture has at least its header.
    return all(headerRules_, *reinterpret_cast<const EmpEvLogMsg_s*>(message.record.data()));
}

const DecodedEvent* Filter::decode(const Message& message) {
    if (!passes(message))
        return nullptr;
    const DecodedEvent& event = decoder_.decode(message.record, {message.input, message.offset});
    if (!all(eventRules_, event))
        return nullptr;
    decoder_.shown();
    return &event;
}

} // namespace Pegasus::tool
