#include "event/Footprint.h"

#include "event/EmpEvLogMsg_s.h"

#include <algorithm>
#include <bit>

namespace Pegasus::mpu {

// Words of the bits that stand for nothing but the header.
static constexpr std::size_t kHeaderWords = sizeof(EmpEvLogMsg_s) / 32;

void Footprint::begin(std::size_t carried) {
    carried_ = std::max(carried, sizeof(EmpEvLogMsg_s));
    const std::size_t words = carried_ / kBits + 2;
    if (words > kFew) {
        many_.assign(words, 0);
        read_ = many_.data();
    } else {
        read_ = few_;
        std::fill_n(few_, words, 0);
    }
    std::fill_n(read_, kHeaderWords, ~std::uint32_t{0});
    read_[kHeaderWords] = (std::uint32_t{1} << sizeof(EmpEvLogMsg_s) % kBits) - 1;
    lacked_.clear();
    missing_ = static_cast<std::uint32_t>(carried_ - carried);
    weakest_ = Provenance::Documented;
    isUnknown_ = false;
}

void Footprint::read(std::size_t at, std::size_t inside, std::size_t wanted) {
    const std::size_t end = at + inside;
    const std::size_t carriedEnd = std::min(end, carried_);
    if (trace_) [[unlikely]]
        trace_->read(at, wanted, at + wanted - std::clamp(carriedEnd, at, at + wanted));
    if (wanted > inside || end > carried_) [[unlikely]]
        lack(std::max(at, carriedEnd), at + wanted);
    if (at < carriedEnd)
        mark(at, carriedEnd);
}

void Footprint::readNumber(std::size_t at, std::size_t size) {
    if (trace_ || at + size > carried_) [[unlikely]]
        return read(at, size, size);
    const std::uint64_t bits = ((std::uint64_t{1} << size) - 1) << at % kBits;
    read_[at / kBits] |= static_cast<std::uint32_t>(bits);
    read_[at / kBits + 1] |= static_cast<std::uint32_t>(bits >> kBits);
}

void Footprint::readText(std::size_t at, std::size_t size) {
    if (at < carried_)
        read(at, std::min(size, carried_ - at), std::min(size, carried_ - at));
}

void Footprint::mark(std::size_t begin, std::size_t end) {
    std::uint32_t* const first = read_ + begin / kBits;
    std::uint32_t* const last = read_ + (end - 1) / kBits;
    const std::uint32_t from = ~std::uint32_t{0} << begin % kBits;
    const std::uint32_t to = ~std::uint32_t{0} >> (kBits - 1 - (end - 1) % kBits);
    if (first == last) {
        *first |= from & to;
        return;
    }
    *first |= from;
    std::fill(first + 1, last, ~std::uint32_t{0});
    *last |= to;
}

[[gnu::cold]] void Footprint::lack(std::size_t begin, std::size_t end) {
    if (lacked_.size() < end)
        lacked_.resize(end);
    for (; begin < end; ++begin) {
        missing_ += !lacked_[begin];
        lacked_[begin] = true;
    }
}

EventBasis Footprint::basis() const {
    std::size_t unread = carried_ - kHeaderWords * kBits;
    for (std::size_t i = kHeaderWords; i <= carried_ / kBits; ++i)
        unread -= ~read_[i] == 0 ? kBits : static_cast<std::size_t>(std::popcount(read_[i]));
    return {weakest_, missing_, static_cast<std::uint32_t>(unread), isUnknown_};
}

} // namespace Pegasus::mpu
