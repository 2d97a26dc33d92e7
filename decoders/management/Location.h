// What the management decoders share: the location block at the head of a payload, the order of
// text and structure after it, and the elements that both end with.
#pragma once

#include "decoders/management/LocationBlock.h"
#include "event/RecordView.h"
#include "event/TextWriter.h"

namespace Pegasus::mpu {

// Copies the text and a NUL to a caller's buffer.
void copyText(char* out, std::string_view text);

struct Location {
    std::uint16_t line = 0;
    Untrusted file;
    Untrusted function;
};
Location locationOf(const RecordView& block);

// Unpacks `block` for callers with buffers of 32 characters each.
void unpackLocation(const LocationBlock& block, int& line, char* function, char* file);

// A record with a location block in front of its data. Some events have the block always, others
// when the payload is longer than it.
class LocatedRecord {
public:
    enum class Block : std::uint8_t { Always, WhenLonger };
    LocatedRecord(const RecordView& record, Block block);

    std::uint8_t severity() const { return record_.u8(147); }
    RecordView data() const { return data_; }

    // "<Text>text</Text> "
    static void putText(TextWriter& body, Untrusted text);
    // "<Hex>", the bytes after `text`, "</Hex>\n"
    void putDump(TextWriter& body, Untrusted text) const;
    // File, Func and Line
    void putTrailer(TextWriter& body) const;

    // For data that begin with a text: what is after it, and how many bytes the payload has left
    // there. That may be negative: the block is always counted. A text that the payload can't hold
    // takes no room.
    struct Rest {
        bool holdsText;
        RecordView data;
        int left;
    };
    Rest after(Untrusted text) const;

private:
    RecordView record_;
    RecordView data_;
    Location location_;
};

} // namespace Pegasus::mpu
