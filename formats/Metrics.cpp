#include "formats/Metrics.h"

#include "event/HeaderNames.h"
#include "formats/Severity.h"

namespace Pegasus::formats {

namespace {

void putHead(mpu::TextWriter& out, std::string_view name, std::string_view help) {
    out.literal("# HELP ").literal(name).literal(" ").literal(help);
    out.literal("\n# TYPE ").literal(name).literal(" counter\n");
}

void putLabel(mpu::TextWriter& out, std::string_view name, std::string_view value) {
    out.literal(name).literal("=\"");
    for (const char c : value)
        out.literal(c == '\n'   ? "\\n"
                    : c == '"'  ? "\\\""
                    : c == '\\' ? "\\\\"
                                : std::string_view(&c, 1));
    out.literal("\"");
}

void putCounts(mpu::TextWriter& out, std::string_view metric, std::string_view label,
               std::string_view value, const SeverityCounts& counts) {
    for (std::size_t i = 0; i < counts.size(); ++i) {
        putLabel(out.literal(metric).literal("{"), label, value);
        putLabel(out.literal(","), "severity", kSeverities[i]);
        out.literal("} ").decimal64(counts[i]).literal("\n");
    }
}

} // namespace

// A counter that is there before its first event lets a rate show that one, too.
Metrics::Metrics() {
    for (unsigned code = 0; code < 256; ++code)
        if (const std::string_view name = mpu::sourceName(static_cast<std::uint8_t>(code));
            !name.empty())
            modules_[std::string(name)];
}

void Metrics::add(const DecodedEvent& event) {
    const unsigned severity = severityOf(event.eventType);
    auto module = modules_.find(event.source);
    if (module == modules_.end()) // the number of one without a name, of which there are 256
        module = modules_.emplace(event.source, SeverityCounts{}).first;
    ++module->second[severity];
    std::array<bool, kKinds> named{};
    for (const ObjectReference& object : finder_.of(event))
        if (object.kind < kKinds)
            named[object.kind] = true;
    for (std::size_t i = 0; i < kKinds; ++i)
        kinds_[i][severity] += named[i];
}

void Metrics::write(mpu::TextWriter& out) const {
    putHead(out, "mpuevent_events_total", "Events by the module that wrote them.");
    for (const auto& [name, counts] : modules_)
        putCounts(out, "mpuevent_events_total", "module", name, counts);
    putHead(out, "mpuevent_object_events_total", "Events that name an object of this kind.");
    for (std::size_t i = 0; i < kKinds; ++i)
        putCounts(out, "mpuevent_object_events_total", "kind", kObjectKinds[i].name, kinds_[i]);
    putHead(out, "mpuevent_faults_total", "Damaged places in the captures.");
    out.literal("mpuevent_faults_total ").decimal64(faults_).literal("\n");
}

} // namespace Pegasus::formats
