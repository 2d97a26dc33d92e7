#include "formats/Statistics.h"

#include "formats/Severity.h"

#include <algorithm>
#include <utility>

namespace Pegasus::formats {

namespace {

constexpr std::size_t kMaxMoments = 4096;
constexpr std::size_t kMaxTitles = 10000; // records may make up any

} // namespace

void TimeLine::add(std::uint32_t time, unsigned severity) {
    ++moments_[time >> shift_][severity];
    while (moments_.size() > kMaxMoments) {
        ++shift_;
        std::map<std::uint32_t, SeverityCounts> coarse;
        for (const auto& [moment, counts] : moments_)
            for (std::size_t i = 0; i < counts.size(); ++i)
                coarse[moment >> 1][i] += counts[i];
        moments_ = std::move(coarse);
    }
}

std::vector<SeverityCounts> TimeLine::buckets(std::size_t count, const Range& time) const {
    std::vector<SeverityCounts> buckets(count);
    const std::uint64_t length = std::uint64_t(time.last) - time.first + 1;
    for (const auto& [moment, counts] : moments_) {
        // A coarse moment may begin before the first event.
        const std::uint32_t begin = std::max(moment << shift_, time.first);
        SeverityCounts& bucket =
            buckets[static_cast<std::size_t>(std::uint64_t{begin - time.first} * count / length)];
        for (std::size_t i = 0; i < counts.size(); ++i)
            bucket[i] += counts[i];
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
