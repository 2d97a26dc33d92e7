#include "tools/mpuevent/Selector.h"

#include <utility>

namespace Pegasus::tool {

namespace {

// Events that the clock has left behind still wait as long as they take no more than this: the
// clocks of two logs in one capture may differ.
constexpr std::size_t kFewBytes = std::size_t{1} << 20;

} // namespace

Selector::Kept::Kept(const Message& message, Position at, bool isHit)
    : position(at), hit(isHit), wanted(isHit), like(message) {
    bytes.reserve(message.header.size() + message.record.size());
    bytes.insert(bytes.end(), message.header.begin(), message.header.end());
    bytes.insert(bytes.end(), message.record.begin(), message.record.end());
}

Message Selector::Kept::message() const {
    const std::span<const std::uint8_t> all(bytes);
    Message message = like;
    message.header = all.first(like.header.size());
    message.record = all.subspan(like.header.size());
    return message;
}

Selector::Selector(const FilterOptions& options, Sink& to)
    : Relay(to), options_(options), filter_(options), ending_(options.last || options.reverse),
      left_(options.reverse ? UINT64_MAX : options.limit.value_or(UINT64_MAX)),
      last_(options.last.value_or(options.limit.value_or(UINT64_MAX))) {}

bool Selector::areClose(const Position& one, const Position& other) const {
    const auto apart = [](std::uint64_t a, std::uint64_t b) { return a < b ? b - a : a - b; };
    return apart(one.number, other.number) <= options_.context ||
           (options_.around && apart(one.time, other.time) <= *options_.around);
}

bool Selector::take(const Message& message) {
    const Position now{count_++,
                       reinterpret_cast<const EmpEvLogMsg_s*>(message.record.data())->timestamp};
    const bool hit = left_ != 0 && filter_.wants(message);
    if (hit) {
        for (Kept& kept : waiting_)
            if (areClose(kept.position, now))
                pass(std::move(kept));
        waiting_.clear();
        waitingBytes_ = 0;
        hit_ = now;
        --left_;
    }
    if (!hit && !(hit_ && areClose(*hit_, now)))
        wait(message, now);
    else if (ending_)
        pass(Kept(message, now, hit));
    else
        hand(message, now.number);
    // After the limit nothing more comes that is close to its hit, as far as clocks go on.
    const bool ended = left_ == 0 && now.number - hit_->number >= options_.context &&
                       (!options_.around || now.time > hit_->time + *options_.around);
    return more_ && !ended;
}

void Selector::wait(const Message& message, const Position& now) {
    if (options_.context == 0 && !options_.around)
        return;
    waiting_.emplace_back(message, now, false);
    waitingBytes_ += waiting_.back().bytes.size();
    while (!areClose(waiting_.front().position, now) &&
           (!options_.around || waitingBytes_ > kFewBytes)) {
        waitingBytes_ -= waiting_.front().bytes.size();
        waiting_.pop_front();
    }
}

void Selector::pass(Kept&& kept) {
    if (!ending_) {
        hand(kept.message(), kept.position.number);
        return;
    }
    keptHits_ += kept.hit;
    kept_.push_back(std::move(kept));
    for (; keptHits_ > last_; kept_.pop_front())
        keptHits_ -= kept_.front().hit;
}

void Selector::finish() {
    // What was close to hits that are not among the last is left out.
    const auto mark = [this](auto from, auto to) {
        const Kept* hit = nullptr;
        for (; from != to; ++from)
            if (from->hit)
                hit = &*from;
            else if (hit && areClose(hit->position, from->position))
                from->wanted = true;
    };
    mark(kept_.begin(), kept_.end());
    mark(kept_.rbegin(), kept_.rend());
    while (!kept_.empty() && more_) {
        const Kept& kept = options_.reverse ? kept_.back() : kept_.front();
        if (kept.wanted)
            hand(kept.message(), kept.position.number);
        options_.reverse ? kept_.pop_back() : kept_.pop_front();
    }
}

void Selector::hand(const Message& message, std::uint64_t number) {
    if (!more_)
        return;
    if ((options_.context != 0 || options_.around) && handed_ && number != *handed_ + 1 &&
        number + 1 != *handed_)
        to_.onGap();
    handed_ = number;
    ++handedCount_;
    more_ = to_.take(message);
}

std::uint64_t readSelected(const Inputs& inputs, const FilterOptions& options, Sink& sink) {
    if (!options.selects())
        return inputs.read(sink);
    Selector selector(options, sink);
    const std::uint64_t faults = inputs.read(selector);
    selector.finish();
    sink.onLeftOut(selector.leftOut());
    return faults;
}

} // namespace Pegasus::tool
