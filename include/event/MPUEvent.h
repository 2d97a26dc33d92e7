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
#include <cstring>
#include <memory>
#include <utility>

namespace Pegasus {

// Makes the decoder of one module: `new SomeDecoder(record, length)`. May throw; null stands for an
// event with header fields alone.
using DecoderFactory = Avrel_Event* (*)(const EmpEvLogMsg_s* record, int length);

// A message header and a private copy of the record after it. Different messages may be used from
// different threads; so may one message by functions that don't change it.
//
// What throws leaves the message as it was, but for a short read (see deserialize).
class MPUEVENT_EXPORT MPUEvent {
public:
    // A message without a record.
    explicit MPUEvent(const CMAPMessageHeader& header);
    // Reads the record from `in`; throws as deserialize does.
    MPUEvent(const CMAPMessageHeader& header, Avrel_istream& in);
    // Copies have a record of their own: one of no bytes, which decodes as zeros, when `other` is a
    // message without a record.
    MPUEvent(const MPUEvent& other);
    MPUEvent& operator=(const MPUEvent& other);
    // Take over the record, or that there is none; `other` keeps its header alone.
    MPUEvent(MPUEvent&& other) noexcept;
    MPUEvent& operator=(MPUEvent&& other) noexcept;

    virtual ~MPUEvent();
    virtual CMAPMessageHeader getCMAPMessageHeader() const;
    virtual void setCMAPMessageHeader(const CMAPMessageHeader& header);
    // The header's text, then the record's header on the same line.
    virtual String str() const;
    // Reads the record, as many bytes as the header's message length says beyond the header's own
    // 64. Throws CMAPOperationFailedException when the stream delivers fewer or fails; the message
    // then holds what came, the rest zero. What the stream throws passes, and the message is as
    // before; so it is after std::bad_alloc for the record.
    virtual Avrel_istream& deserialize(Avrel_istream& in);

    // The decoded event, by the decoder of the module that the record names; an event with header
    // fields alone for a module without one; null for a message without a record. The caller owns
    // the event, which needs neither message nor record any more. When a decoder throws, the event
    // has the summary "XMLizer Failure" and a dump of the record for a body. Throws nothing but
    // std::bad_alloc.
    Avrel_Event* create_Avrel_Event() const;

    // Sets the decoder of a module id that has none of the library's own; null takes it away. The
    // modules 1 and 4 are decoded like 0 and 3, so with the decoders registered for those, unless
    // they have their own. False, and no change, for an id that the library decodes. Decoding
    // threads may run meanwhile: each event is decoded by the decoder that is set when it starts.
    static bool registerDecoder(unsigned char source, DecoderFactory factory);

private:
    // The bytes of a record, or none; pointer and length change together.
    class Bytes {
    public:
        Bytes() = default;
        explicit Bytes(std::uint32_t size) : data_(new std::uint8_t[size]()), size_(size) {}
        Bytes(Bytes&& other) noexcept { swap(other); }
        Bytes& operator=(Bytes&& other) noexcept {
            Bytes taken(std::move(other));
            swap(taken);
            return *this;
        }

        // A copy that has `size` bytes, the last ones zero; of none, too.
        Bytes padded(std::uint32_t size) const {
            Bytes copy(size);
            if (size_ != 0)
                std::memcpy(copy.data(), data(), size_);
            return copy;
        }

        std::uint8_t* data() const { return data_.get(); }
        std::uint32_t size() const { return size_; }

    private:
        void swap(Bytes& other) noexcept {
            data_.swap(other.data_);
            std::swap(size_, other.size_);
        }

        std::unique_ptr<std::uint8_t[]> data_;
        std::uint32_t size_ = 0;
    };

    CMAPMessageHeader header_;
    Bytes record_;
};

} // namespace Pegasus
