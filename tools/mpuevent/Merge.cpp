#include "tools/mpuevent/Merge.h"

#include <algorithm>

namespace Pegasus::tool {

namespace {

constexpr std::size_t kMaxOpen = 32; // about a megabyte each

// One stream, at its next message.
struct Head {
    std::unique_ptr<MessageStream> stream;
    std::size_t index;
    Message message{};
    std::uint32_t time = 0; // the latest so far

    bool next() {
        if (!stream->next(message))
            return false;
        time = std::max<std::uint32_t>(
            time, reinterpret_cast<const EmpEvLogMsg_s*>(message.record.data())->timestamp);
        return true;
    }
    bool operator<(const Head& other) const {
        return time != other.time ? time < other.time : index < other.index;
    }
};

// The same of few streams, which are open at once.
void mergeOpen(std::size_t first, std::size_t last, const OpenStream& open,
               const TakeMessage& take) {
    std::vector<Head> heads;
    for (std::size_t index = first; index != last; ++index)
        if (Head head{open(index), index}; head.next())
            heads.push_back(std::move(head));
    const auto later = [](const Head& one, const Head& other) { return other < one; };
    std::make_heap(heads.begin(), heads.end(), later);
    while (!heads.empty()) {
        std::pop_heap(heads.begin(), heads.end(), later);
        Head& earliest = heads.back();
        if (!take(earliest.message)) {
            for (Head& head : heads)
                head.stream->close();
            return;
        }
        if (earliest.next())
            std::push_heap(heads.begin(), heads.end(), later);
        else
            heads.pop_back();
    }
}

} // namespace

void merge(std::size_t count, const OpenStream& open, const TakeMessage& take) {
    if (count <= kMaxOpen) {
        mergeOpen(0, count, open, take);
        return;
    }
    Spool spool;
    std::vector<std::uint64_t> ends{0}; // of what was merged
    for (std::size_t first = 0; first < count; first += kMaxOpen) {
        mergeOpen(first, std::min(first + kMaxOpen, count), open, [&](const Message& message) {
            spool.add(message);
            return true;
        });
        ends.push_back(spool.end());
    }
    spool.flush();
    // The latest time before a message is the same in what was merged as in its input.
    const auto again = [&](std::size_t index) { return spool.read(ends[index], ends[index + 1]); };
    merge(ends.size() - 1, again, take);
}

} // namespace Pegasus::tool
