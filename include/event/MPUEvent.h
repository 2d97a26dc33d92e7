// An event message of the controller, and the way from it to the decoded event:
//
//     MPUEvent message(header, stream);
//     std::unique_ptr<Avrel_Event> event(message.create_Avrel_Event());
//
#pragma once

#include "event/Avrel_Event.h"
#include "event/Export.h"
#include "platform/cmap/Avrel_istream.h"
#include "platform/cmap/CMAPMessageHeader.h"

#include <cstdint>
#include <memory>

namespace Pegasus {

// Makes the decoder of one module: `new SomeDecoder(record, length)`. May throw; null stands for an
// event with header fields alone.
using DecoderFactory = Avrel_Event* (*)(const EmpEvLogMsg_s* record, int length);

// A message header and a private copy of the record behind it. Different messages may be used from
// different threads; so may one message by functions that don't change it.
class MPUEVENT_EXPORT MPUEvent {
public:
    // A message without a record.
    explicit MPUEvent(const CMAPMessageHeader& header);
    // Reads the record from `in`; throws as deserialize does.
    MPUEvent(const CMAPMessageHeader& header, Avrel_istream& in);
    MPUEvent(const MPUEvent& other);
    MPUEvent& operator=(const MPUEvent& other);

    virtual ~MPUEvent();
    virtual CMAPMessageHeader getCMAPMessageHeader() const;
    virtual void setCMAPMessageHeader(const CMAPMessageHeader& header);
    // The header's text, then the record's header on the same line.
    virtual String str() const;
    // Reads the record, as many bytes as the header's message length says beyond the header's own
    // 64. Throws CMAPOperationFailedException when the stream delivers fewer or fails; the message
    // then holds what came, the rest zero.
    virtual Avrel_istream& deserialize(Avrel_istream& in);

    // The decoded event, by the decoder of the module that the record names; an event with header
    // fields alone for a module without one; null for a message without a record. The caller owns
    // the event, which needs neither message nor record any more. When a decoder throws, the event
    // has the summary "XMLizer Failure" and a dump of the record for a body. Throws nothing but
    // std::bad_alloc.
    Avrel_Event* create_Avrel_Event() const;

    // Sets the decoder of a module id that has none of the library's own; null takes it away.
    // False, and no change, for an id that has. Decoding threads may run meanwhile: each event is
    // decoded by the decoder that is set when it starts.
    static bool registerDecoder(unsigned char source, DecoderFactory factory);

private:
    const EmpEvLogMsg_s* record() const {
        return reinterpret_cast<const EmpEvLogMsg_s*>(record_.get());
    }

    CMAPMessageHeader header_;
    std::unique_ptr<std::uint8_t[]> record_; // null when the message carries none
    std::uint32_t length_ = 0;               // bytes at record_
};

} // namespace Pegasus
