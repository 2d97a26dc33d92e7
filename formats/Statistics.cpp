#include "formats/Statistics.h"

#include "formats/Severity.h"

#include <algorithm>
#include <utility>

namespace Pegasus::formats {

namespace {

constexpr std::size_t kMaxMoments = 4096;
constexpr std::uint32_t kFar = 86400;
constexpr std::size_t kMaxTitles = 10000; // records may make up any

} // namespace

void TimeLine::add(std::uint32_t time, unsigned severity) {
    Moment& now = moments_[time >> shift_];
    ++now.counts[severity];
    now.time.add(time);
    while (moments_.size() > kMaxMoments) {
        ++shift_;
        std::map<std::uint32_t, Moment> coarse;
        for (const auto& [at, moment] : moments_) {
            Moment& sum = coarse[at >> 1];
            for (std::size_t i = 0; i < moment.counts.size(); ++i)
                sum.counts[i] += moment.counts[i];
            sum.time.add(moment.time);
        }
        moments_ = std::move(coarse);
    }
}

TimeLine::Axis TimeLine::axis() const {
    std::uint64_t events = 0;
    for (const auto& [at, moment] : moments_)
        events += moment.events();
    const std::uint64_t rest = events < 10 ? 0 : std::max<std::uint64_t>(events / 100, 1);
    // The event with `rest` others before it, in either direction.
    const auto edge = [rest](auto moment) -> const Range& {
        for (std::uint64_t passed = moment->second.events(); passed <= rest; ++moment)
            passed += std::next(moment)->second.events();
        return moment->second.time;
    };
    Axis axis;
    if (events == 0)
        return axis;
    const std::uint32_t first = edge(moments_.begin()).first;
    const std::uint32_t last = edge(moments_.rbegin()).last;
    const std::uint32_t far = std::max(last - first, kFar);
    for (const auto& [at, moment] : moments_) {
        Part& part = moment.time.last < first && first - moment.time.last > far   ? axis.before
                     : moment.time.first > last && moment.time.first - last > far ? axis.after
                                                                                  : axis.shown;
        part.events += moment.events();
        part.time.add(moment.time);
    }
    return axis;
}

std::vector<SeverityCounts> TimeLine::buckets(std::size_t count, const Range& time) const {
    std::vector<SeverityCounts> buckets(count);
    const std::uint64_t length = std::uint64_t(time.last) - time.first + 1;
    for (const auto& [at, moment] : moments_) {
        const std::uint32_t begin = moment.time.first;
        if (begin < time.first || begin > time.last)
            continue;
        SeverityCounts& bucket =
            buckets[static_cast<std::size_t>(std::uint64_t{begin - time.first} * count / length)];
        for (std::size_t i = 0; i < moment.counts.size(); ++i)
            bucket[i] += moment.counts[i];
    }
    return buckets;
}

void Statistics::add(const DecodedEvent& event) {
    const unsigned severity = severityOf(event.eventType);
    ++events;
    time.add(event.timestamp);
    sequence.add(event.sequenceID);
    ++severities[severity];
    timeLine.add(event.timestamp, severity);
    const std::string source(event.source);
    Source& counts = sources_[source];
    ++counts.count;
    counts.assumed += event.layout == nameOf(Provenance::Assumed);
    counts.shortOf += event.missingBytes != 0;
    counts.unread += event.unreadBytes != 0;
    auto key = std::make_pair(source, std::string(event.eventID));
    auto found = titles_.find(key);
    if (found == titles_.end()) {
        if (titles_.size() == kMaxTitles) {
            ++otherTitles;
            return;
        }
        Title title{key.first, key.second, 0, 0, {}};
        found = titles_.emplace(std::move(key), std::move(title)).first;
    }
    Title& title = found->second;
    ++title.count;
    title.severity = std::max(title.severity, severity);
    title.time.add(event.timestamp);
}

std::vector<std::pair<std::string, Statistics::Source>> Statistics::bySource() const {
    std::vector<std::pair<std::string, Source>> all(sources_.begin(), sources_.end());
    std::stable_sort(all.begin(), all.end(),
                     [](const auto& a, const auto& b) { return a.second.count > b.second.count; });
    return all;
}

std::vector<Statistics::Title> Statistics::byTitle() const {
    std::vector<Title> all;
    for (const auto& [key, title] : titles_)
        all.push_back(title);
    std::stable_sort(all.begin(), all.end(),
                     [](const Title& a, const Title& b) { return a.count > b.count; });
    return all;
}

} // namespace Pegasus::formats
