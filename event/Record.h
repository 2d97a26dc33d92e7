// The record as decoders see it.
#pragma once

#include "event/RecordView.h"

namespace Pegasus::mpu {

// A record's header by name, and all of its bytes.
class Record {
public:
    // The readable extent is what was announced, or what the record claims if that is more. Lengths
    // that no message can carry count as nothing announced, and what was not announced as missing.
    explicit Record(const EmpEvLogMsg_s* record, unsigned int announced = 0,
                    Footprint* footprint = nullptr)
        : header_(*record), view_(RecordView::of(record, announced, footprint)),
          payload_(view_.subview(sizeof *record)) {
        if (footprint)
            footprint->begin(announced == 0 || announced > 0xFFFF ? view_.size() : announced);
    }
    // A payload alone: the header is all zeros, its bytes are not there.
    explicit Record(const RecordView& payload) : header_(kNoHeader), payload_(payload) {}

    std::uint8_t source() const { return header_.source; }
    std::uint8_t severity() const { return header_.eventType; }
    std::uint8_t payloadVersion() const { return header_.payloadVersion; }
    std::uint16_t eventId() const { return header_.eventId; }
    // As the record claims.
    std::uint16_t payloadLength() const { return header_.evStructLength; }

    const RecordView& view() const { return view_; }
    const RecordView& payload() const { return payload_; }

private:
    static constexpr EmpEvLogMsg_s kNoHeader{};

    const EmpEvLogMsg_s& header_;
    RecordView view_;
    RecordView payload_;
};

} // namespace Pegasus::mpu
