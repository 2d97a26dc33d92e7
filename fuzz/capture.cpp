// Damaged captures: the reader hands out what is in them, says where it passed something over, and
// does so alike however the bytes come in.
#include "capture/Capture.h"
#include "capture/HexText.h"
#include "fuzz/Invariants.h"
#include "fuzz/RecordMutator.h"

#include <cerrno>
#include <vector>

namespace Pegasus::fuzz {
namespace {

using namespace capture;

// Delivers a few bytes at a time and may fail in the end.
class Drops : public ByteSource {
public:
    Drops(Bytes bytes, std::size_t drop, int failure)
        : rest_(bytes), drop_(drop), failure_(failure) {}
    std::size_t read(std::uint8_t* to, std::size_t room) override {
        require(room > 0, "a read has room");
        failed_ = rest_.empty() ? failure_ : 0;
        const Bytes now = rest_.first(std::min({rest_.size(), room, drop_}));
        std::copy(now.begin(), now.end(), to);
        rest_ = rest_.subspan(now.size());
        return now.size();
    }
    int failure() const override { return failed_; }

private:
    Bytes rest_;
    std::size_t drop_;
    int failure_;
    int failed_ = 0;
};

constexpr std::size_t kClaim = offsetof(EmpEvLogMsg_s, evStructLength);

struct Found {
    struct Place {
        std::uint64_t offset;
        std::size_t size;
        bool operator==(const Place&) const = default;
    };
    std::vector<Place> messages;
    std::vector<std::string> reports;
    std::uint64_t passedOver = 0;
    bool operator==(const Found&) const = default;
};

Found read(Bytes capture, Framing framing, bool hex, std::size_t drop, int failure) {
    Found found;
    const FaultHandler onFault = [&](const std::string& what) { found.reports.push_back(what); };
    Drops drops(capture, drop, failure);
    TextSource text(drops, onFault);
    Capture reader(framing, [&](const Damage& damage) {
        found.reports.push_back(damage.str());
        found.passedOver += damage.passedOver;
    });
    reader.open(hex ? static_cast<ByteSource&>(text) : drops);
    for (Message message; reader.next(message);) {
        const std::size_t header = framing == Framing::Message ? mpu::message_header::kSize : 0;
        require(message.header.size() == header, "a message has its header");
        require(message.record.size() >= sizeof(EmpEvLogMsg_s) &&
                    message.record.size() <= kMaxRecord,
                "a record has its header and fits a message");
        require(found.messages.empty() || message.offset > found.messages.back().offset,
                "messages come in order");
        if (!hex) {
            require(message.offset + header + message.record.size() <= capture.size(),
                    "a message is inside the capture");
            const Bytes record = capture.subspan(static_cast<std::size_t>(message.offset) + header,
                                                 message.record.size());
            for (std::size_t i = 0; i < record.size(); ++i)
                require(message.record[i] == record[i] || i / 2 == kClaim / 2,
                        "a message is a part of the capture, but for what it claims to carry");
            require(header == 0 || mpu::loadBig<std::uint16_t>(&message.record[kClaim]) <=
                                       record.size() - sizeof(EmpEvLogMsg_s),
                    "a message carries what it claims");
        }
        if (found.messages.size() < 4)
            require(message.decode() != nullptr, "a message gives an event");
        found.messages.push_back({message.offset, header + message.record.size()});
    }
    if (hex) // how far the text is read ahead decides what is told first
        std::sort(found.reports.begin(), found.reports.end());
    require(failure != 0 || hex || reader.position() == capture.size(),
            "a capture is read to its end");
    return found;
}

// Input: flags and the capture. 1: bare records; 2: hex text; 4: fails in the end; from 8 on how
// many bytes come at a time.
void capture(Bytes bytes) {
    const test::SuppressTrace quiet;
    Input input(bytes);
    const unsigned flags = input.byte();
    const Framing framing = flags & 1 ? Framing::Record : Framing::Message;
    const bool hex = (flags & 2) != 0;
    const int failure = flags & 4 ? EIO : 0;
    const Bytes all = input.rest();
    const Found found = read(all, framing, hex, all.size() + 1, failure);
    require(found == read(all, framing, hex, 1 + (flags >> 3) * 7u, failure),
            "a capture reads alike however it comes in");
    for (const std::string& report : found.reports)
        require(report.starts_with("offset ") || (hex && report.starts_with("line ")),
                "a report names the place");
    if (hex || failure != 0)
        return;
    std::uint64_t end = 0;
    std::uint64_t gaps = 0;
    for (const Found::Place& message : found.messages) {
        gaps += message.offset - std::min(end, message.offset);
        end = message.offset + message.size;
    }
    require(found.passedOver == gaps + all.size() - end, "what is passed over is reported");
}

} // namespace
} // namespace Pegasus::fuzz

using Pegasus::fuzz::capture;
MPUEVENT_FUZZ_TARGET(capture)

#ifdef MPUEVENT_LIBFUZZER
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

// Adds messages, which no blind change of bytes would make.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned int seed) {
    using namespace Pegasus;
    if (seed % 4 != 0 || size == 0)
        return LLVMFuzzerMutate(data, size, maxSize);
    std::string record = fuzz::RecordMutator(seed).record();
    record.resize(std::min<std::size_t>(record.size(), 200));
    std::string made;
    if ((data[0] & 1) == 0) {
        CMAPMessageHeader header;
        header.setMessageLength(static_cast<Uint16>(mpu::message_header::kSize + record.size()));
        made.assign(reinterpret_cast<const char*>(header.wireBytes()), mpu::message_header::kSize);
    }
    if (record.size() > offsetof(EmpEvLogMsg_s, eventId))
        mpu::storeBig(&record[offsetof(EmpEvLogMsg_s, evStructLength)],
                      static_cast<std::uint16_t>(record.size() - sizeof(EmpEvLogMsg_s)));
    made += record;
    if (data[0] & 2) {
        const String digits =
            Avrel_Event::hexifiedString(made.data(), static_cast<long>(made.size()));
        made = fuzz::utf8(digits) + "\n";
    }
    if (size + made.size() > maxSize)
        return LLVMFuzzerMutate(data, size, maxSize);
    const std::size_t at = seed / 4 % 3 == 0 ? 1 + seed / 12 % size : size;
    std::memmove(data + at + made.size(), data + at, size - at);
    std::memcpy(data + at, made.data(), made.size());
    return size + made.size();
}
#endif
