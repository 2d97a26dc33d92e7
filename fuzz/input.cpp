// Inputs of every kind: what they are taken for, and the bytes that come out, don't depend on how
// they come in; dumps of a message in every form give the message.
#include "capture/Recognise.h"
#include "fuzz/Target.h"

#include <vector>

namespace Pegasus::fuzz {
namespace {

using namespace capture;

constexpr std::size_t kEnough = std::size_t{8} << 20; // bytes: lines "*" may stand for more

// Delivers a few bytes at a time.
class Drops : public ByteSource {
public:
    Drops(Bytes bytes, std::size_t drop) : memory_(bytes.data(), bytes.size()), drop_(drop) {}
    std::size_t read(std::uint8_t* to, std::size_t room) override {
        require(room > 0, "a read has room");
        return memory_.read(to, std::min(room, drop_));
    }

private:
    MemorySource memory_;
    std::size_t drop_;
};

struct Found {
    Framing framing;
    std::string description;
    std::string refusal;
    std::string bytes;
    std::vector<std::string> reports;
    bool operator==(const Found&) const = default;
};

Found read(Bytes all, InputHints hints, std::size_t drop) {
    Found found;
    Drops drops(all, drop);
    const RecognisedInput input(drops, hints,
                                [&](const std::string& what) { found.reports.push_back(what); });
    found.framing = input.framing();
    found.description = input.description();
    found.refusal = input.refusal();
    std::vector<std::uint8_t> some(60000);
    while (const std::size_t got = input.bytes().read(some.data(), some.size())) {
        found.bytes.append(reinterpret_cast<const char*>(some.data()), got);
        if (found.bytes.size() > kEnough)
            break;
    }
    found.bytes.resize(std::min(found.bytes.size(), kEnough));
    return found;
}

// Input: flags, then what is read. 1, 2: which hints; the rest how many bytes come at a time.
void input(Bytes bytes) {
    static constexpr InputHints kHints[] = {
        {}, {Framing::Message, true}, {Framing::Record, false}, {{}, true}};
    Input in(bytes);
    const unsigned flags = in.byte();
    const Bytes all = in.rest();
    const Found once = read(all, kHints[flags & 3], all.size() + 1);
    const Found again = read(all, kHints[flags & 3], 1 + (flags >> 2) * 3u);
    requireSame(again.description, once.description, "an input is one thing");
    requireSame(again.refusal, once.refusal, "an input is refused for one reason");
    requireSame(again.bytes, once.bytes, "an input has the same bytes however it comes in");
    require(again.framing == once.framing, "an input is framed alike however it comes in");
    // Of compressed data the libraries take more or less before they see a fault.
    const bool packed = once.description.find(" data") != std::string::npos;
    require(packed || once.bytes.size() == kEnough || again.reports == once.reports,
            "an input has the same faults however it comes in");
    for (const std::string& report : once.reports)
        require(report.starts_with("line ") || report.starts_with("compressed data, offset "),
                "a report names the place");
    if (once.description.empty() && (flags & 1) == 0)
        require(once.bytes == characters(all), "a plain input is handed on as it is");
}

} // namespace
} // namespace Pegasus::fuzz

using Pegasus::fuzz::input;
MPUEVENT_FUZZ_TARGET(input)
