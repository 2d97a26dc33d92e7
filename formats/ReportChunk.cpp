#include "formats/ReportChunk.h"

#include "event/EmpEvLogMsg_s.h"
#include "formats/Basis.h"
#include "formats/Packed.h"
#include "formats/Severity.h"
#include "formats/Utf8.h"

#include <algorithm>
#include <fmt/printf.h>

namespace Pegasus::formats {

namespace {

constexpr std::size_t kHeader = sizeof(EmpEvLogMsg_s);

enum ColumnIndex { kType, kSource, kTitle, kController, kSummary, kObjects };

void putNumbers(mpu::TextWriter& out, const std::vector<std::uint32_t>& numbers) {
    for (const std::uint32_t& number : numbers)
        out.literal(&number == numbers.data() ? "" : ",").decimal(number);
}

// The difference of two unsigned numbers, and a comma.
void putStep(mpu::TextWriter& out, std::uint32_t& last, std::uint32_t value, bool isFirst) {
    out.literal(isFirst ? "" : ",").literal(value < last ? "-" : "");
    out.decimal(value < last ? last - value : value - last);
    last = value;
}

// What code writes from a number alone is most often decimal; few signed ones are negative.
std::string_view formOf(const Reading& reading) {
    return reading.byCode || reading.form == "%d" ? "%u" : std::string_view(reading.form);
}

// The number, high byte first, as printf() would write it; "" where that is not known.
std::string numberOf(const Reading& reading, std::span<const std::uint8_t> payload) {
    const std::string_view form = formOf(reading);
    const std::size_t at = reading.at - kHeader;
    if (!form.starts_with('%') || std::string_view("uXx").find(form.back()) == form.npos ||
        reading.size > 8 || at > payload.size() || reading.size > payload.size() - at)
        return {};
    std::uint64_t value = 0;
    for (const std::uint8_t byte : payload.subspan(at, reading.size))
        value = value << 8 | byte;
    return fmt::sprintf(fmt::string_view(form.data(), form.size()), value);
}

// The text with printf() formats where it has numbers that are in the payload, "" where it has
// none. Moves the readings of these numbers, in their order, before the others.
std::string ruleOf(std::string_view body, std::string_view text,
                   std::span<const std::uint8_t> payload, std::vector<const Reading*>& readings) {
    // What code reads may come in any order that the compiler likes.
    std::stable_sort(readings.begin(), readings.end(), [](const Reading* a, const Reading* b) {
        return std::pair(a->byCode, a->byCode ? a->at : 0) <
               std::pair(b->byCode, b->byCode ? b->at : 0);
    });
    if (text.find('%') != text.npos)
        return {};
    std::string rule;
    std::size_t done = 0;
    auto others = readings.begin();
    const auto start = static_cast<std::size_t>(text.data() - body.data());
    for (auto next = readings.begin(); next != readings.end(); ++next) {
        const Reading& reading = **next;
        const std::size_t begin = reading.byCode ? 0 : reading.begin - start;
        const std::size_t end = reading.byCode ? text.size() : reading.end - start;
        if (begin < done || begin >= end || end > text.size() ||
            text.substr(begin, end - begin) != numberOf(reading, payload))
            continue;
        rule.append(text.substr(done, begin - done)).append(formOf(reading));
        done = end;
        std::rotate(others++, next, next + 1);
    }
    return done == 0 ? rule : rule.append(text.substr(done));
}

} // namespace

std::uint32_t ReportChunk::Texts::indexOf(std::string_view json) {
    const auto [found, isNew] =
        indices_.try_emplace(std::string(json), static_cast<std::uint32_t>(texts_.size()));
    if (isNew)
        texts_.push_back(&found->first);
    return found->second;
}

void ReportChunk::Texts::put(mpu::TextWriter& out, std::string_view between) const {
    for (const std::string* const& text : texts_)
        out.literal(&text == texts_.data() ? "" : between).literal(*text);
}

void ReportChunk::Texts::clear() {
    indices_.clear();
    texts_.clear();
}

void ReportChunk::add(const DecodedEvent& event, const std::vector<ObjectReference>& objects,
                      const Readings& readings, bool isPlain) {
    addRow(event, objects);
    addBody(event, readings, isPlain);
    ++count_;
}

void ReportChunk::addRow(const DecodedEvent& event, const std::vector<ObjectReference>& objects) {
    putStep(sequences_, sequence_, event.sequenceID, count_ == 0);
    putStep(times_, time_, event.timestamp, count_ == 0);
    signs_.literal(count_ == 0 ? "" : ",")
        .decimal((event.layout == nameOf(Provenance::Assumed) ? 1u : 0u) |
                 (event.missingBytes != 0 ? 2u : 0u) | (event.unreadBytes != 0 ? 4u : 0u) |
                 (event.isUnknown && !saysUnknown(event) ? 8u : 0u));
    const auto add = [&](ColumnIndex column) {
        columns_[column].of.push_back(columns_[column].texts.indexOf(text_.view()));
        text_.clear();
    };
    putJson(text_.literal("["), event.eventTypeText);
    text_.literal(",").decimal(severityOf(event.eventType)).literal("]");
    add(kType);
    putJson(text_, event.source);
    add(kSource);
    putJson(text_, event.eventID);
    add(kTitle);
    putJson(text_.literal("["), event.enclosureSerialNumber);
    putJson(text_.literal(","), event.controllerSerialNumber);
    text_.literal(",").decimal(event.controllerSlotID);
    text_.literal(",").decimal(event.eventLogInstanceNumber).literal("]");
    add(kController);
    putJson(text_, event.summary);
    add(kSummary);
    text_.literal("[");
    for (const ObjectReference& object : objects) {
        if (object.kind >= ControllerKind)
            continue;
        text_.literal(text_.view().size() == 1 ? "[" : ",[").decimal(object.kind);
        putJson(text_.literal(","), object.id);
        text_.literal(object.isAssumed ? ",1]" : ",0]");
    }
    text_.literal("]");
    add(kObjects);
}

void ReportChunk::addBody(const DecodedEvent& event, const Readings& readings, bool isPlain) {
    const std::vector<BodyItem>& items = parser_.parse(event.body);
    readingsOf_.resize(std::max(readingsOf_.size(), items.size()));
    for (std::size_t i = 0; i < items.size(); ++i)
        readingsOf_[i].clear();
    if (isPlain) {
        const std::vector<std::size_t> itemOf = readings.itemsOf(event.body, items);
        for (std::size_t i = 0; i < itemOf.size(); ++i) {
            const Reading& reading = readings.all()[i];
            if (itemOf[i] == Readings::kNone || reading.at < kHeader)
                continue;
            std::vector<const Reading*>& of = readingsOf_[itemOf[i]];
            // What code reads twice on its way is told once.
            if (!reading.byCode || std::none_of(of.begin(), of.end(), [&](const Reading* other) {
                    return other->at == reading.at && other->size == reading.size;
                }))
                of.push_back(&reading);
        }
    }
    for (std::size_t i = 0; i < items.size(); ++i) {
        const BodyItem& item = items[i];
        const Provenance layout =
            i < event.fields.size() ? event.fields[i].layout : Provenance::Documented;
        putJson(form_.literal(i == 0 ? "[[" : ",[").decimal(item.type).literal(","), item.name);
        form_.literal(",").decimal(static_cast<std::uint32_t>(layout));
        const std::string rule = ruleOf(event.body, item.text, event.payload, readingsOf_[i]);
        putJson(form_.literal(","), rule);
        for (const Reading* reading : readingsOf_[i])
            for (const std::uint32_t number : {reading->at - static_cast<std::uint32_t>(kHeader),
                                               reading->size, reading->missing})
                form_.literal(",").decimal(number);
        form_.literal("]");
        if (rule.empty() && (item.type == BodyItem::Element || item.type == BodyItem::Text))
            putJson(values_.literal(","), item.text);
    }
    form_.literal(items.empty() ? "[]" : "]");
    bodies_.literal(count_ == 0 ? "[" : ",\n[").decimal(forms_.indexOf(form_.view()));
    putJson(bodies_.literal(","), event.category);
    bodies_.literal(",").decimal(event.missingBytes).literal(",").decimal(event.unreadBytes);
    putPayload(bodies_.literal(",\""), event);
    bodies_.literal("\"").literal(values_.view()).literal("]");
    form_.clear();
    values_.clear();
}

void ReportChunk::flush(mpu::TextWriter& out) {
    mpu::StackWriter<64> json;
    json.literal("{\"sequence\":[").literal(sequences_.view());
    json.literal("],\"time\":[").literal(times_.view());
    json.literal("],\"signs\":[").literal(signs_.view()).literal("]");
    for (const Column& column : columns_) {
        json.literal(",\"").literal(column.name).literal("\":");
        if (&column < &columns_[kSummary]) {
            column.texts.put(json.literal("{\"texts\":["));
            json.literal("],\"of\":");
        }
        putNumbers(json.literal("["), column.of);
        json.literal(&column < &columns_[kSummary] ? "]}" : "]");
    }
    columns_[kSummary].texts.put(json.literal("}\n\n"), "\n");
    columns_[kObjects].texts.put(json.literal("\n\n"), "\n");
    for (Column& column : columns_) {
        column.texts.clear();
        column.of.clear();
    }
    putPacked(out, "rows", json.view());
    json.clear();
    forms_.put(json.literal("{\"forms\":["));
    json.literal("],\"events\":[").literal(bodies_.view()).literal("]}");
    putPacked(out, "bodies", json.view());
    forms_.clear();
    bodies_.clear();
    sequences_.clear();
    times_.clear();
    signs_.clear();
    count_ = 0;
    sequence_ = time_ = 0;
}

} // namespace Pegasus::formats
