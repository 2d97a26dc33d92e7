#include "provider/EventRing.h"

#include "capture/Capture.h"

#include <algorithm>

namespace Pegasus::provider {

namespace {

std::uint64_t fnv1a(std::span<const std::uint8_t> bytes) {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (std::uint8_t byte : bytes)
        hash = (hash ^ byte) * 0x100000001B3;
    return hash;
}

} // namespace

std::unique_ptr<Avrel_Event> Entry::decode() const {
    return capture::Message{0, {}, record}.decode();
}

EntryPointer EventRing::add(std::span<const std::uint8_t> record) {
    std::uint64_t id = fnv1a(record);
    const std::scoped_lock lock(mutex_);
    for (auto same = byId_.find(id); same != byId_.end(); same = byId_.find(++id))
        if (std::ranges::equal(same->second->record, record))
            return nullptr;
    auto entry = std::make_shared<const Entry>(Entry{id, {record.begin(), record.end()}});
    entries_.push_back(entry);
    byId_.emplace(id, entry);
    bytes_ += record.size();
    while (entries_.size() > maxEvents_ || (bytes_ > maxBytes_ && entries_.size() > 1)) {
        bytes_ -= entries_.front()->record.size();
        byId_.erase(entries_.front()->id);
        entries_.pop_front();
    }
    return entry;
}

EntryPointer EventRing::find(std::uint64_t id) const {
    const std::scoped_lock lock(mutex_);
    const auto found = byId_.find(id);
    return found == byId_.end() ? nullptr : found->second;
}

std::vector<EntryPointer> EventRing::all() const {
    const std::scoped_lock lock(mutex_);
    return {entries_.begin(), entries_.end()};
}

std::size_t EventRing::size() const {
    const std::scoped_lock lock(mutex_);
    return entries_.size();
}

} // namespace Pegasus::provider
