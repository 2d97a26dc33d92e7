#include "formats/ReportPage.h"

#include "formats/ReportTemplate.h"
#include "formats/Severity.h"
#include "formats/Utf8.h"

#include <algorithm>
#include <fmt/format.h>

namespace Pegasus::formats {

void ReportPage::begin(mpu::TextWriter& out) {
    out.literal(kPageBegin);
}

void ReportPage::add(const DecodedEvent& event, mpu::TextWriter& out) {
    statistics_.add(event);
    out.literal("<tr class=\"s").decimal(severityOf(event.eventType));
    std::string_view signs[3];
    if (event.layout == nameOf(Provenance::Assumed))
        signs[0] = "~";
    if (event.missingBytes != 0)
        signs[1] = "!";
    if (event.unreadBytes != 0)
        signs[2] = "+";
    out.literal("\" data-signs=\"");
    for (const std::string_view sign : signs)
        out.literal(sign);
    out.literal("\"><td>").decimal(event.sequenceID);
    out.literal("<td>").decimal(event.timestamp);
    putXml(out.literal("<td>"), event.eventTypeText);
    putXml(out.literal("<td>"), event.source);
    putXml(out.literal("<td><details><summary><b>"), event.eventID);
    putXml(out.literal("</b> "), event.summary);
    out.literal(signs[0].empty() ? "" : " ~").literal(signs[1].empty() ? "" : " !");
    block_.clear();
    printer_->print(event, block_);
    std::string_view block = block_.view();
    block.remove_suffix(block.size() - 1 - block.find_last_not_of('\n'));
    putXml(out.literal("</summary><pre>"), block);
    out.literal("</pre></details>\n");
}

void ReportPage::end(std::uint64_t faults, mpu::TextWriter& out) {
    out.literal(kPageMiddle);
    facts(out, faults);
    if (statistics_.events != 0) {
        chart(out);
        legend(out);
    }
    sources(out);
    out.literal(kPageEnd);
}

void ReportPage::facts(mpu::TextWriter& out, std::uint64_t faults) const {
    out.literal("<p>").decimal64(statistics_.events).literal(" events");
    if (statistics_.events != 0) {
        out.literal(", time ").decimal(statistics_.time.first);
        out.literal(" to ").decimal(statistics_.time.last);
        out.literal(", sequence ").decimal(statistics_.sequence.first);
        out.literal(" to ").decimal(statistics_.sequence.last);
    }
    out.literal(faults == 0 ? ", no damage" : ", damage: ");
    if (faults != 0)
        out.decimal64(faults).literal(faults == 1 ? " place" : " places");
    out.literal("</p>\n");
}

// Stacked bars over time, errors at the bottom.
void ReportPage::chart(mpu::TextWriter& out) const {
    constexpr std::size_t kBars = 96;
    constexpr std::size_t kStep = 10;
    constexpr std::uint64_t kHeight = 120;
    const Range& time = statistics_.time;
    const std::vector<SeverityCounts> buckets = statistics_.timeLine.buckets(kBars, time);
    const auto sum = [](const SeverityCounts& counts) {
        return counts[0] + counts[1] + counts[2] + counts[3];
    };
    std::uint64_t most = 1;
    for (const SeverityCounts& counts : buckets)
        most = std::max(most, sum(counts));
    out.literal("<svg role=\"img\" aria-label=\"Events over time, by severity\" "
                "viewBox=\"0 -6 960 156\">\n");
    const std::uint64_t length = std::uint64_t(time.last) - time.first + 1;
    for (std::size_t i = 0; i < buckets.size(); ++i) {
        if (sum(buckets[i]) == 0)
            continue;
        out.literal("<g><title>from ");
        out.decimal64(time.first + (i * length + kBars - 1) / kBars);
        double y = kHeight + 10;
        for (unsigned severity = 4; severity-- > 0;)
            if (buckets[i][severity] != 0)
                out.literal(fmt::format(", {} {}", buckets[i][severity], kSeverities[severity]));
        out.literal("</title>");
        for (unsigned severity = 4; severity-- > 0;) {
            if (buckets[i][severity] == 0)
                continue;
            const double height =
                static_cast<double>(kHeight * buckets[i][severity]) / static_cast<double>(most);
            y -= height;
            out.literal(
                fmt::format(R"(<rect class="s{}" x="{}" y="{:.2f}" width="{}" height="{:.2f}"/>)",
                            severity, i * kStep, y, kStep - 1, height));
        }
        out.literal("</g>\n");
    }
    out.literal(fmt::format("<line x1=\"0\" y1=\"130\" x2=\"960\" y2=\"130\"/>"
                            "<text x=\"0\" y=\"146\">{}</text>"
                            "<text x=\"960\" y=\"146\" text-anchor=\"end\">{}</text>"
                            "<text x=\"0\" y=\"5\">{} events</text></svg>\n",
                            time.first, time.last, most));
}

void ReportPage::legend(mpu::TextWriter& out) const {
    out.literal("<p class=\"legend\">");
    for (unsigned severity = 4; severity-- > 0;)
        if (statistics_.severities[severity] != 0)
            out.literal(fmt::format("<span class=\"s{}\">{} {}</span> ", severity,
                                    kSeverities[severity], statistics_.severities[severity]));
    out.literal("</p>\n");
}

void ReportPage::sources(mpu::TextWriter& out) const {
    const auto all = statistics_.bySource();
    out.literal("<div id=\"sources\"><table><tr><th>Source<th>Events<th>~ assumed<th>! short"
                "<th>+ unread\n");
    for (const auto& [source, counts] : all) {
        putXml(out.literal("<tr><td>"), source);
        for (const std::uint64_t count :
             {counts.count, counts.assumed, counts.shortOf, counts.unread})
            out.literal("<td>").decimal64(count);
        out.literal("\n");
    }
    out.literal(kFiltersBegin);
    for (const auto& [source, counts] : all)
        putXml(out.literal("<option>"), source);
    out.literal(kFiltersEnd);
}

} // namespace Pegasus::formats
