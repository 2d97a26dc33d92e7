#include "formats/ReportPage.h"

#include "formats/Packed.h"
#include "formats/ReportFiles.h"
#include "formats/Utf8.h"

#include <algorithm>
#include <initializer_list>

namespace Pegasus::formats {

namespace {

constexpr std::size_t kMaxObjects = 300; // with a story in the page

void putTexts(mpu::TextWriter& json, std::initializer_list<std::string_view> texts) {
    for (const std::string_view text : texts)
        putJson(json.literal(","), text);
}

// Severity, source, title, summary, count, times and sequence numbers of the first and the last.
void putStep(mpu::TextWriter& json, const StoryStep& step) {
    json.literal("[").decimal(step.severity);
    putTexts(json, {step.source, step.title, step.summary});
    json.literal(",").decimal64(step.count);
    for (const std::uint32_t number :
         {step.time.first, step.time.last, step.firstSequence, step.lastSequence})
        json.literal(",").decimal(number);
    json.literal("]");
}

// 'sha256-...', as content security policies name a script, from the hash in hexadecimal.
void putHash(mpu::TextWriter& out, std::string_view hex) {
    std::string bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2)
        bytes.push_back(static_cast<char>(std::stoul(std::string(hex.substr(i, 2)), nullptr, 16)));
    putBase64(out.literal("'sha256-"), bytes);
    out.literal("'");
}

} // namespace

void ReportPage::begin(mpu::TextWriter& out) {
    out.literal("<!DOCTYPE html>\n<html lang=\"en\">\n<meta charset=\"utf-8\">\n"
                "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
                "base-uri 'none'; form-action 'none'; style-src ");
    putHash(out, kReportCssHash);
    putHash(out.literal("; script-src "), kReportJsHash);
    out.literal("\">\n<style>").literal(kReportCss).literal("</style>\n").literal(kReportHtml);
}

void ReportPage::add(const DecodedEvent& event, const Readings& readings, bool isPlain,
                     mpu::TextWriter& out) {
    chunk_.add(event, objects_.add(event), readings, isPlain);
    ++events_;
    first_ = std::min(first_, event.timestamp);
    last_ = std::max(last_, event.timestamp);
    if (chunk_.isFull())
        chunk_.flush(out);
}

void ReportPage::end(const ReportFacts& facts, mpu::TextWriter& out) {
    if (!chunk_.isEmpty())
        chunk_.flush(out);
    mpu::StackWriter<1024> json;
    putJson(json.literal("{\"program\":"), facts.program);
    putJson(json.literal(",\"made\":"), facts.made);
    json.literal(",\"files\":[");
    for (const auto& file : facts.files) {
        putJson(json.literal(&file == facts.files.data() ? "[" : ",["), file.first);
        json.literal(",").decimal64(file.second).literal("]");
    }
    json.literal("],\"moreFiles\":").decimal64(facts.moreFiles);
    json.literal(",\"remarks\":[");
    for (const std::string& remark : facts.remarks)
        putJson(json.literal(&remark == facts.remarks.data() ? "" : ","), remark);
    json.literal("],\"moreRemarks\":").decimal64(facts.moreRemarks);
    json.literal(",\"faults\":").decimal64(facts.faults);
    putJson(json.literal(",\"filters\":"), facts.filters);
    json.literal(",\"leftOut\":").decimal64(facts.leftOut);
    json.literal(",\"events\":").decimal64(events_);
    putTimes(facts.times, json);
    putObjects(json);
    json.literal("}");
    putPacked(out, "facts", json.view());
    out.literal("<script>").literal(kReportJs).literal("</script>\n</html>\n");
}

// "zone" has the offsets of another zone than UTC, each after the Unix time of its beginning.
void ReportPage::putTimes(const TimeOptions& times, mpu::TextWriter& json) const {
    if (times.style == TimeStyle::Raw || !times.epoch)
        return;
    json.literal(",\"epoch\":").literal(std::to_string(*times.epoch));
    if (times.utc || events_ == 0)
        return;
    const char* before = ",\"zone\":[[";
    for (const auto& [from, offset] : zoneOffsets(first_ + *times.epoch, last_ + *times.epoch)) {
        json.literal(before).literal(std::to_string(from));
        json.literal(",").literal(std::to_string(offset)).literal("]");
        before = ",[";
    }
    json.literal("]");
}

// "kinds" has the words for them, "objects" the worst ones first.
void ReportPage::putObjects(mpu::TextWriter& json) const {
    json.literal(",\"kinds\":[");
    for (const ObjectKind& kind : kObjectKinds) {
        putJson(json.literal(&kind == kObjectKinds ? "[" : ",["), kind.title);
        json.literal(kind.perController ? ",1]" : ",0]");
    }
    const std::vector<const Object*> objects = objects_.worstFirst();
    const std::size_t told = std::min(objects.size(), kMaxObjects);
    json.literal("],\"moreObjects\":").decimal64(objects.size() - told);
    json.literal(",\"objects\":[");
    for (std::size_t i = 0; i < told; ++i) {
        const Object& object = *objects[i];
        json.literal(i == 0 ? "{\"kind\":" : ",{\"kind\":").decimal(object.kind);
        putJson(json.literal(",\"id\":"), object.id);
        putJson(json.literal(",\"enclosure\":"), object.enclosure);
        putJson(json.literal(",\"controller\":"), object.controller);
        putJson(json.literal(",\"model\":"), object.model);
        putJson(json.literal(",\"serialNumber\":"), object.serialNumber);
        json.literal(",\"events\":").decimal64(object.events);
        json.literal(",\"assumed\":").decimal64(object.assumed);
        json.literal(",\"severities\":[");
        for (const std::uint64_t& count : object.severities)
            json.literal(&count == object.severities.data() ? "" : ",").decimal64(count);
        json.literal("],\"time\":[").decimal(object.time.first);
        json.literal(",").decimal(object.time.last);
        json.literal("],\"untold\":").decimal64(object.untold).literal(",\"story\":[");
        for (const StoryStep& step : object.story)
            putStep(json.literal(&step == object.story.data() ? "" : ","), step);
        json.literal("]}");
    }
    json.literal("]");
}

} // namespace Pegasus::formats
