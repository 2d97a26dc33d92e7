// A source as a slow pipe is one.
#pragma once

#include "capture/ByteSource.h"

#include <string>

namespace Pegasus::test {

// Delivers a few bytes at a time.
class Dribble : public capture::ByteSource {
public:
    Dribble(const std::string& all, std::size_t step)
        : memory_(all.data(), all.size()), step_(step) {}
    std::size_t read(std::uint8_t* to, std::size_t room) override {
        return memory_.read(to, std::min(room, step_));
    }

private:
    capture::MemorySource memory_;
    std::size_t step_;
};

} // namespace Pegasus::test
