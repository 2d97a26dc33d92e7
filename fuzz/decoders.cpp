// Records of every module. The mutator knows the layouts, so that what is after codes, lengths and
// versions is reached.
#include "formats/Explanation.h"
#include "fuzz/Invariants.h"
#include "fuzz/RecordMutator.h"

namespace Pegasus::fuzz {
namespace {

constexpr std::size_t kSourceAt = offsetof(EmpEvLogMsg_s, source);

// A watched decoding says what a plain one says, and leaves no byte unexplained.
void requireExplains(Bytes record) {
    using namespace formats;
    if (record.size() < sizeof(EmpEvLogMsg_s))
        return;
    EventDecoder plain;
    EventDecoder watched({.readings = true});
    const DecodedEvent& event = plain.decode(record);
    const DecodedEvent& same = watched.decode(record);
    requireSame(same.eventID, event.eventID, "title");
    requireSame(same.summary, event.summary, "summary");
    requireSame(same.body, event.body, "body");
    requireSame(same.layout, event.layout, "layout");
    require(same.missingBytes == event.missingBytes, "watching changes what is missing");
    require(same.unreadBytes == event.unreadBytes, "watching changes what is unread");
    std::size_t explained = 0;
    for (const ExplainedBytes& part : explain(same, watched.readings(), watched.isPlain())) {
        require(part.missing <= part.size, "missing bytes are part of what was read");
        if (part.at <= explained)
            explained = std::max<std::size_t>(explained, part.at + part.size);
    }
    require(explained >= record.size(), "every byte is explained");
}

// Input: a byte that chooses the module, then the record. Beyond the known module ids the bytes
// stand for modules with a decoder.
void decoders(Bytes bytes) {
    const test::SuppressTrace quiet;
    Input input(bytes);
    const std::uint8_t choice = input.byte();
    std::string record(characters(input.rest()));
    const auto modules = mpu::modules();
    if (record.size() > kSourceAt)
        record[kSourceAt] =
            static_cast<char>(choice <= 34 ? choice : modules[choice % modules.size()].source);
    record.resize(std::min(record.size(), kMaxRecord));
    requireDecodes(bytesOf(record));
    requireExplains(bytesOf(record));
}

} // namespace
} // namespace Pegasus::fuzz

using Pegasus::fuzz::decoders;
MPUEVENT_FUZZ_TARGET(decoders)

#ifdef MPUEVENT_LIBFUZZER
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned int seed) {
    using namespace Pegasus::fuzz;
    if (size < 2 || maxSize < 2)
        return LLVMFuzzerMutate(data, size, maxSize);
    RecordMutator mutator(seed);
    std::string record(characters({data + 1, size - 1}));
    switch (seed / 7 % 8) {
    case 0:
    case 1:
    case 2:
        return LLVMFuzzerMutate(data, size, maxSize);
    case 3:
        record = mutator.record();
        break;
    default:
        if (record.size() > kSourceAt)
            record[kSourceAt] = static_cast<char>(data[0]);
        mutator.twist(record);
    }
    record.resize(std::min(record.size(), maxSize - 1));
    if (record.size() > kSourceAt)
        data[0] = static_cast<std::uint8_t>(record[kSourceAt]);
    std::memcpy(data + 1, record.data(), record.size());
    return record.size() + 1;
}
#endif
