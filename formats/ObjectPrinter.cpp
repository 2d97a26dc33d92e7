#include "formats/ObjectPrinter.h"

#include "formats/Columns.h"
#include "formats/Severity.h"
#include "formats/Utf8.h"

#include <algorithm>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace Pegasus::formats {

namespace {

constexpr std::string_view kCounted[] = {"of unknown severity", "informational", "warnings"};
constexpr unsigned kError = 3;
constexpr std::size_t kTold = 4; // errors by title in a line

// What a line tells, in the order of time: errors by their titles, others by their number.
struct Part {
    const StoryStep* only; // null for several titles
    std::uint64_t count;
    unsigned severity;
    Range time;
};

std::vector<Part> partsOf(const Object& object) {
    std::vector<Part> parts;
    for (const StoryStep& step : object.story) {
        const auto same = std::find_if(parts.begin(), parts.end(), [&](const Part& part) {
            return part.severity == step.severity &&
                   (step.severity != kError || part.only->title == step.title);
        });
        if (same == parts.end()) {
            parts.push_back({&step, step.count, step.severity, step.time});
            continue;
        }
        if (same->severity != kError)
            same->only = nullptr;
        same->count += step.count;
        same->time.add(step.time.first);
        same->time.add(step.time.last);
    }
    return parts;
}

void putSpan(mpu::TextWriter& out, const Range& time, Clock& clock) {
    out.literal(clock.text(time.first));
    if (time.last != time.first)
        out.literal(" to ").literal(clock.text(time.last));
}

void putPart(mpu::TextWriter& out, const Part& part, Clock& clock) {
    if (part.severity == kError || part.count == 1) {
        if (part.count != 1)
            out.decimal64(part.count).literal(" ");
        else if (part.severity != kError)
            out.literal(kSeverities[part.severity]).literal(" ");
        putPrintable(out, part.only->title);
        out.literal(" ");
        putSpan(out, part.time, clock);
        return;
    }
    out.decimal64(part.count).literal(" ").literal(kCounted[part.severity]);
    out.literal(" since ").literal(clock.text(part.time.first));
}

} // namespace

void writeTextObject(const Object& object, const ObjectOptions& options, mpu::TextWriter& out) {
    Clock clock(options.time);
    const auto worst =
        static_cast<unsigned>(object.severities.rend() -
                              std::find_if(object.severities.rbegin(), object.severities.rend(),
                                           [](std::uint64_t count) { return count != 0; }) -
                              1);
    out.literal(options.colour ? kColours[worst] : "");
    putPrintable(out, object.name());
    out.literal(options.colour ? kPlain : "");
    const char* before = ": ";
    std::size_t errors = 0;
    for (const Part& part : partsOf(object)) {
        if (part.severity == kError && ++errors > kTold)
            continue;
        putPart(out.literal(before), part, clock);
        before = ", ";
    }
    if (errors > kTold)
        out.literal(", ").decimal64(errors - kTold).literal(" more kinds of error");
    if (object.untold != 0)
        out.literal(", ").decimal64(object.untold).literal(" more events");
    if (object.events > 1)
        out.literal(", last ").literal(clock.text(object.time.last));
    if (!object.model.empty())
        putPrintable(out.literal("; model "), object.model);
    if (!object.serialNumber.empty())
        putPrintable(out.literal("; serial number "), object.serialNumber);
    if (object.assumed == object.events)
        out.literal("  ~");
    else if (object.assumed != 0)
        out.literal("  ~ in ").decimal64(object.assumed).literal(" of ").decimal64(object.events);
    out.literal("\n");
    if (!options.story)
        return;
    for (const StoryStep& step : object.story) {
        putSpan(out.literal("    "), step.time, clock);
        out.literal("  ").literal(options.colour ? kColours[step.severity] : "");
        out.literal(kSeverities[step.severity]).literal(options.colour ? kPlain : "");
        putPrintable(out.literal("  "), step.source);
        putPrintable(out.literal("  "), step.title);
        if (!step.summary.empty())
            putPrintable(out.literal(": "), step.summary);
        if (step.count != 1)
            out.literal(", ").decimal64(step.count).literal(" times");
        out.literal("  (seq ").decimal(step.firstSequence);
        if (step.count != 1)
            out.literal(" to ").decimal(step.lastSequence);
        out.literal(")\n");
    }
}

void writeJsonObject(const Object& object, const ObjectOptions& options, mpu::TextWriter& out) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> json(buffer);
    const auto text = [&](const char* name, std::string_view value) {
        json.Key(name);
        json.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
    };
    const auto count = [&](const char* name, std::uint64_t value) {
        json.Key(name);
        json.Uint64(value);
    };
    const auto span = [&](const Range& range) {
        count("firstTimestamp", range.first);
        count("lastTimestamp", range.last);
        if (options.time.epoch) {
            Clock clock(options.time);
            text("firstTime", clock.rfc3339(range.first));
            text("lastTime", clock.rfc3339(range.last));
        }
    };
    json.StartObject();
    text("kind", kObjectKinds[object.kind].name);
    text("id", object.id);
    text("enclosureSerialNumber", object.enclosure);
    if (!object.controller.empty())
        text("controllerSerialNumber", object.controller);
    if (!object.model.empty())
        text("model", object.model);
    if (!object.serialNumber.empty())
        text("serialNumber", object.serialNumber);
    count("events", object.events);
    count("withAssumedLayout", object.assumed);
    json.Key("severities");
    json.StartObject();
    for (unsigned severity = 4; severity-- > 0;)
        count(kSeverities[severity].data(), object.severities[severity]);
    json.EndObject();
    span(object.time);
    if (options.story) {
        json.Key("story");
        json.StartArray();
        for (const StoryStep& step : object.story) {
            json.StartObject();
            text("severity", kSeverities[step.severity]);
            text("source", step.source);
            text("eventID", step.title);
            text("summary", step.summary);
            count("count", step.count);
            span(step.time);
            count("firstSequenceID", step.firstSequence);
            count("lastSequenceID", step.lastSequence);
            json.EndObject();
        }
        json.EndArray();
        count("untoldEvents", object.untold);
    }
    json.EndObject();
    out.literal({buffer.GetString(), buffer.GetSize()}).literal("\n");
}

} // namespace Pegasus::formats
