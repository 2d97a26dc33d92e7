// The newest events, as the records that they came in: a record is many times smaller than its
// decoded texts, and decoding it takes microseconds.
#pragma once

#include "event/Avrel_Event.h"

#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

namespace Pegasus::provider {

struct Entry {
    // Of the record's bytes, so that an event has the same one whenever and from wherever it is
    // read.
    std::uint64_t id;
    std::vector<std::uint8_t> record; // at least its header

    const EmpEvLogMsg_s& header() const {
        return *reinterpret_cast<const EmpEvLogMsg_s*>(record.data());
    }
    std::unique_ptr<Avrel_Event> decode() const;
};

// Entries outlive their place in the ring for whoever still holds them.
using EntryPointer = std::shared_ptr<const Entry>;

// May be used from several threads.
class EventRing {
public:
    EventRing(std::size_t maxEvents, std::size_t maxBytes)
        : maxEvents_(maxEvents), maxBytes_(maxBytes) {}

    // Puts the record in, at the cost of the oldest. Null when the same one is there already.
    EntryPointer add(std::span<const std::uint8_t> record);
    EntryPointer find(std::uint64_t id) const;
    std::vector<EntryPointer> all() const; // oldest first
    std::size_t size() const;

private:
    const std::size_t maxEvents_;
    const std::size_t maxBytes_;
    mutable std::mutex mutex_;
    std::deque<EntryPointer> entries_;
    std::unordered_map<std::uint64_t, EntryPointer> byId_;
    std::size_t bytes_ = 0;
};

} // namespace Pegasus::provider
