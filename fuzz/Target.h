// How a fuzz target is written: a function from bytes, named by MPUEVENT_FUZZ_TARGET at the end of
// its file. It throws Broken, or anything else, when one of its claims does not hold.
//
// The file is compiled twice: with MPUEVENT_LIBFUZZER as a libFuzzer program, and without into the
// ordinary tests and into fuzz_replay, which find the function in targets().
#pragma once

#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Pegasus::fuzz {

using Bytes = std::span<const std::uint8_t>;
using Target = void (*)(Bytes input);

class Broken : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

inline void require(bool holds, std::string_view claim) {
    if (!holds)
        throw Broken("broken: " + std::string(claim));
}

// What is equal must be so character by character; tells where it is not.
inline void requireSame(std::string_view ours, std::string_view wanted, std::string_view claim) {
    if (ours == wanted)
        return;
    std::size_t at = 0;
    while (at < ours.size() && at < wanted.size() && ours[at] == wanted[at])
        ++at;
    const auto around = [at](std::string_view text) {
        return "\"" + std::string(text.substr(at > 20 ? at - 20 : 0, 60)) + "\"";
    };
    require(false, std::string(claim) + ": at " + std::to_string(at) + " " + around(ours) +
                       ", wanted " + around(wanted));
}

// Memory of exactly this size, so that AddressSanitizer sees a read of one byte too many.
class ExactCopy {
public:
    explicit ExactCopy(Bytes bytes) : data_(new std::uint8_t[bytes.size()]), size_(bytes.size()) {
        if (size_ != 0)
            std::memcpy(data_.get(), bytes.data(), size_);
    }
    std::uint8_t* data() { return data_.get(); }
    operator Bytes() const { return {data_.get(), size_}; }

private:
    std::unique_ptr<std::uint8_t[]> data_;
    std::size_t size_;
};

// Takes the input apart. Past its end everything is zero or empty.
class Input {
public:
    explicit Input(Bytes bytes) : rest_(bytes) {}

    std::uint8_t byte() {
        const Bytes one = take(1);
        return one.empty() ? std::uint8_t{0} : one[0];
    }
    std::uint32_t word() {
        std::uint32_t value = 0;
        for (int i = 0; i < 4; ++i)
            value = value << 8 | byte();
        return value;
    }
    Bytes take(std::size_t count) {
        const Bytes taken = rest_.first(std::min(count, rest_.size()));
        rest_ = rest_.subspan(taken.size());
        return taken;
    }
    Bytes rest() const { return rest_; }

private:
    Bytes rest_;
};

inline std::string_view characters(Bytes bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}
inline Bytes bytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

inline void run(Target target, Bytes input) {
    const ExactCopy copy(input);
    target(copy);
}

// By name, where targets are linked together.
inline std::map<std::string, Target>& targets() {
    static std::map<std::string, Target> all;
    return all;
}

} // namespace Pegasus::fuzz

#ifdef MPUEVENT_LIBFUZZER
#define MPUEVENT_FUZZ_TARGET(name)                                                                 \
    extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {            \
        Pegasus::fuzz::run(name, {data, size});                                                    \
        return 0;                                                                                  \
    }
#else
#define MPUEVENT_FUZZ_TARGET(name)                                                                 \
    [[maybe_unused]] static const bool added_##name =                                              \
        Pegasus::fuzz::targets().emplace(#name, name).second;
#endif
