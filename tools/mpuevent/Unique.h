// Events that several captures hold.
#pragma once

#include "tools/mpuevent/Inputs.h"

#include <span>

namespace Pegasus::tool {

// A keyed hash whose collisions nobody can make who does not know the key: SipHash-2-4.
class KeyedHash {
public:
    KeyedHash(std::uint64_t key0, std::uint64_t key1) : key_{key0, key1} {}
    std::uint64_t operator()(std::span<const std::uint8_t> bytes) const;

private:
    std::uint64_t key_[2];
};

// Hands on the first of several messages whose records have the same bytes; controller, log and
// sequence number are among them. It knows records by 64 bits: that two different ones are taken
// for the same is a matter of one in 40 million, among a million of them.
class Unique : public Relay {
public:
    explicit Unique(Sink& to);
    bool take(const Message& message) override;

private:
    // Whether it is new.
    bool insert(std::uint64_t hash);

    const KeyedHash hash_;
    std::vector<std::uint64_t> known_; // at or after the place that the hash says; 0: free
    std::size_t count_ = 0;
};

} // namespace Pegasus::tool
