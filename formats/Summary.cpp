#include "formats/Summary.h"

#include "formats/Columns.h"
#include "formats/Severity.h"
#include "formats/Utf8.h"

#include <fmt/format.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

namespace Pegasus::formats {

namespace {

// Text for a person, padded to its column.
void cell(mpu::TextWriter& out, std::string_view text, std::size_t width) {
    putPrintable(out, text);
    for (std::size_t i = text.size(); i < width; ++i)
        out.literal(" ");
}

void number(mpu::TextWriter& out, std::uint64_t value) {
    out.literal(fmt::format("{:>10}  ", value));
}

// "1000 to 1003; 1 event before: 0"
void times(mpu::TextWriter& out, const TimeLine::Axis& axis, Clock& clock) {
    out.literal(clock.text(axis.shown.time.first)).literal(" to ");
    out.literal(clock.text(axis.shown.time.last));
    for (const auto& [part, where] :
         {std::pair(axis.before, "before"), std::pair(axis.after, "after")}) {
        if (part.events == 0)
            continue;
        out.literal(fmt::format("; {} event{} {}: {}", part.events, part.events == 1 ? "" : "s",
                                where, clock.text(part.time.first)));
        if (part.time.last != part.time.first)
            out.literal(" to ").literal(clock.text(part.time.last));
    }
    out.literal("\n");
}

// Numbers of these years are more likely Unix time than anything else.
void guess(mpu::TextWriter& out, const Range& time) {
    constexpr std::uint32_t k2000 = 946684800;
    constexpr std::uint32_t k2050 = 2524608000;
    if (time.first >= k2000 && time.last < k2050)
        out.literal(fmt::format("Guess: the times look like Unix time: {} to {}; --epoch unix "
                                "shows them so\n",
                                rfc3339(time.first, true), rfc3339(time.last, true)));
}

} // namespace

void writeTextSummary(const Statistics& all, std::uint64_t faults, const SummaryOptions& options,
                      mpu::TextWriter& out) {
    const auto coloured = [&](unsigned severity, std::size_t width) {
        out.literal(options.colour ? kColours[severity] : "");
        cell(out, kSeverities[severity], width);
        out.literal(options.colour ? kPlain : "");
    };
    Clock clock(options.time);
    out.literal("Events: ").decimal64(all.events).literal("\n");
    if (all.events != 0) {
        const TimeLine::Axis axis = all.timeLine.axis();
        times(out.literal("Time: "), axis, clock);
        if (options.time.style == TimeStyle::Raw && !options.time.epoch)
            guess(out, axis.shown.time);
        out.literal("Sequence: ")
            .decimal(all.sequence.first)
            .literal(" to ")
            .decimal(all.sequence.last);
        out.literal("\n");
    }
    out.literal("Damage: ");
    if (faults == 0)
        out.literal("none\n");
    else
        out.decimal64(faults).literal(faults == 1 ? " place\n" : " places\n");
    if (all.events == 0)
        return;

    out.literal("\n     Count  Severity\n");
    for (unsigned severity = 4; severity-- > 0;) {
        if (all.severities[severity] == 0)
            continue;
        number(out, all.severities[severity]);
        coloured(severity, 0);
        out.literal("\n");
    }
    out.literal("\n     Count    ~Assumed      !Short     +Unread  Source\n");
    for (const auto& [source, counts] : all.bySource()) {
        number(out, counts.count);
        number(out, counts.assumed);
        number(out, counts.shortOf);
        number(out, counts.unread);
        cell(out, source, 0);
        out.literal("\n");
    }
    // Those of one style are about as long.
    const std::size_t width = std::max<std::size_t>(clock.text(all.time.last).size(), 10);
    out.literal(fmt::format("\n     Count  {:>{}}  {:>{}}  Worst          Source       Title\n",
                            "First time", width, "Last time", width));
    for (const Statistics::Title& title : all.byTitle()) {
        number(out, title.count);
        for (const std::uint32_t time : {title.time.first, title.time.last})
            out.literal(fmt::format("{:>{}}  ", clock.text(time), width));
        coloured(title.severity, 15);
        cell(out, title.source, 13);
        cell(out, title.text, 0);
        out.literal("\n");
    }
    if (all.otherTitles != 0) {
        number(out, all.otherTitles);
        out.literal("with other titles\n");
    }
}

void writeJsonSummary(const Statistics& all, std::uint64_t faults, const SummaryOptions& options,
                      mpu::TextWriter& out) {
    rapidjson::StringBuffer buffer;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> json(buffer);
    json.SetIndent(' ', 2);
    const auto text = [&](std::string_view value) {
        json.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
    };
    const auto span = [&](const char* first, const char* last, const Range& range, bool known) {
        json.Key(first);
        known ? json.Uint(range.first) : json.Null();
        json.Key(last);
        known ? json.Uint(range.last) : json.Null();
    };
    const auto times = [&](const Range& range) {
        if (!options.time.epoch || all.events == 0)
            return;
        Clock clock(options.time);
        json.Key("firstTime");
        text(clock.rfc3339(range.first));
        json.Key("lastTime");
        text(clock.rfc3339(range.last));
    };
    const auto count = [&](const char* name, std::uint64_t value) {
        json.Key(name);
        json.Uint64(value);
    };
    json.StartObject();
    count("formatVersion", kFormatVersion);
    count("events", all.events);
    count("damagedPlaces", faults);
    span("firstTimestamp", "lastTimestamp", all.time, all.events != 0);
    times(all.time);
    span("firstSequenceID", "lastSequenceID", all.sequence, all.events != 0);
    json.Key("severities");
    json.StartObject();
    for (unsigned severity = 4; severity-- > 0;)
        count(kSeverities[severity].data(), all.severities[severity]);
    json.EndObject();
    json.Key("sources");
    json.StartArray();
    for (const auto& [source, counts] : all.bySource()) {
        json.StartObject();
        json.Key("source");
        text(source);
        count("count", counts.count);
        count("withAssumedLayout", counts.assumed);
        count("withMissingBytes", counts.shortOf);
        count("withUnreadBytes", counts.unread);
        json.EndObject();
    }
    json.EndArray();
    json.Key("titles");
    json.StartArray();
    for (const Statistics::Title& title : all.byTitle()) {
        json.StartObject();
        json.Key("source");
        text(title.source);
        json.Key("eventID");
        text(title.text);
        json.Key("worstSeverity");
        text(kSeverities[title.severity]);
        count("count", title.count);
        span("firstTimestamp", "lastTimestamp", title.time, true);
        times(title.time);
        json.EndObject();
    }
    json.EndArray();
    count("otherTitles", all.otherTitles);
    json.EndObject();
    out.literal({buffer.GetString(), buffer.GetSize()}).literal("\n");
}

} // namespace Pegasus::formats
