// Made-up messages that show every kind of record of every decoder.
#pragma once

#include "event/Catalogue.h"

#include <cstdint>
#include <random>
#include <string>

namespace Pegasus::mpu {

// Makes messages one after the other, the same ones for the same seed on every machine.
class SampleWriter {
public:
    explicit SampleWriter(std::uint32_t seed) : random_(seed) {}

    // A record of `section` with a plausible value in every field of its rows.
    std::string record(const Module& module, const Section& section);
    // The same with a message header in front.
    std::string message(const Module& module, const Section& section);

private:
    void fill(std::string& record, const Part& part);
    void fill(std::string& record, const Row& row, const Value& value, std::size_t at);
    std::uint32_t below(std::uint32_t bound) {
        return static_cast<std::uint32_t>(random_()) % bound;
    }

    std::mt19937 random_;
    std::uint32_t made_ = 0;
};

} // namespace Pegasus::mpu
