#include "tools/mpuevent/Unique.h"

#include <bit>
#include <random>
#include <utility>

namespace Pegasus::tool {

namespace {

std::uint64_t randomKey() {
    std::random_device random;
    return std::uint64_t{random()} << 32 | random();
}

} // namespace

std::uint64_t KeyedHash::operator()(std::span<const std::uint8_t> bytes) const {
    std::uint64_t v0 = key_[0] ^ 0x736F6D6570736575;
    std::uint64_t v1 = key_[1] ^ 0x646F72616E646F6D;
    std::uint64_t v2 = key_[0] ^ 0x6C7967656E657261;
    std::uint64_t v3 = key_[1] ^ 0x7465646279746573;
    const auto rounds = [&](unsigned count) {
        while (count-- > 0) {
            v0 += v1;
            v2 += v3;
            v1 = std::rotl(v1, 13) ^ v0;
            v3 = std::rotl(v3, 16) ^ v2;
            v0 = std::rotl(v0, 32);
            v2 += v1;
            v0 += v3;
            v1 = std::rotl(v1, 17) ^ v2;
            v3 = std::rotl(v3, 21) ^ v0;
            v2 = std::rotl(v2, 32);
        }
    };
    const auto mix = [&](std::uint64_t word) {
        v3 ^= word;
        rounds(2);
        v0 ^= word;
    };
    std::uint64_t last = std::uint64_t{bytes.size()} << 56;
    for (; bytes.size() >= 8; bytes = bytes.subspan(8)) {
        std::uint64_t word = 0;
        for (unsigned i = 0; i < 8; ++i)
            word |= std::uint64_t{bytes[i]} << 8 * i;
        mix(word);
    }
    for (unsigned i = 0; i < bytes.size(); ++i)
        last |= std::uint64_t{bytes[i]} << 8 * i;
    mix(last);
    v2 ^= 0xFF;
    rounds(4);
    return v0 ^ v1 ^ v2 ^ v3;
}

Unique::Unique(Sink& to) : Relay(to), hash_(randomKey(), randomKey()), known_(1024) {}

bool Unique::take(const Message& message) {
    // The claim too, which the reader may have lowered.
    return !insert(hash_(message.record) + message.claim) || to_.take(message);
}

bool Unique::insert(std::uint64_t hash) {
    hash += hash == 0;
    const auto placeOf = [this](std::uint64_t wanted) {
        std::size_t at = static_cast<std::size_t>(wanted) & (known_.size() - 1);
        while (known_[at] != 0 && known_[at] != wanted)
            at = (at + 1) & (known_.size() - 1);
        return at;
    };
    if (std::uint64_t& place = known_[placeOf(hash)]; place == 0)
        place = hash;
    else
        return false;
    if (++count_ < known_.size() / 4 * 3)
        return true;
    const std::vector<std::uint64_t> all =
        std::exchange(known_, std::vector<std::uint64_t>(2 * known_.size()));
    for (const std::uint64_t one : all)
        if (one != 0)
            known_[placeOf(one)] = one;
    return true;
}

} // namespace Pegasus::tool
