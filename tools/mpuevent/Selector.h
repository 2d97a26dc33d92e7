// What takes more than a look at one event: those beside it, the last ones, the last one first.
#pragma once

#include "tools/mpuevent/Filter.h"
#include "tools/mpuevent/Inputs.h"

#include <deque>

namespace Pegasus::tool {

// Hands the wanted messages, and those beside them, to a sink that takes all it gets. Keeps copies
// of messages as the help says.
class Selector : public Relay {
public:
    Selector(const FilterOptions& options, Sink& to);

    bool take(const Message& message) override;
    // Hands over what is kept for the end.
    void finish();
    // Events that were read and not handed over.
    std::uint64_t leftOut() const { return count_ - handedCount_; }

private:
    // Where an event is among all.
    struct Position {
        std::uint64_t number;
        std::uint32_t time;
    };
    struct Kept {
        Position position;
        bool hit;
        bool wanted;
        Message like; // but for its bytes
        std::vector<std::uint8_t> bytes;

        Kept(const Message& message, Position at, bool isHit);
        Message message() const;
    };

    bool areClose(const Position& one, const Position& other) const;
    void wait(const Message& message, const Position& position);
    void pass(Kept&& kept);
    void hand(const Message& message, std::uint64_t number);

    const FilterOptions& options_;
    Filter filter_;
    const bool ending_;                   // all is handed over at the end
    std::uint64_t left_;                  // hits until the limit
    const std::uint64_t last_;            // hits of those that are handed over at the end
    std::uint64_t count_ = 0;             // of events
    std::optional<Position> hit_;         // the last one
    std::deque<Kept> waiting_;            // for a hit that they are close to
    std::size_t waitingBytes_ = 0;        // of them
    std::deque<Kept> kept_;               // for the end
    std::uint64_t keptHits_ = 0;          // among them
    std::optional<std::uint64_t> handed_; // number of the last one
    std::uint64_t handedCount_ = 0;
    bool more_ = true; // is wanted
};

// Has `sink` take what the options want of the inputs; returns the number of faults.
std::uint64_t readSelected(const Inputs& inputs, const FilterOptions& options, Sink& sink);

} // namespace Pegasus::tool
