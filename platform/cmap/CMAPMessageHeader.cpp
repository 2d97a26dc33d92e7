#include "platform/cmap/CMAPMessageHeader.h"

#include "event/Ascii.h"
#include "event/BigEndian.h"
#include "event/RecordView.h"
#include "event/TextWriter.h"

namespace Pegasus {

using namespace mpu;
namespace header = mpu::message_header;

constinit std::atomic<std::uint32_t> CMAPMessageHeader::nextHandleValue{1};

CMAPMessageHeader::CMAPMessageHeader() : wire_{}, extra_(0) {
    setMessageLength(header::kSize);
    storeBig(wire_ + header::kHandle, nextHandleValue.fetch_add(1, std::memory_order_relaxed));
}

CMAPMessageHeader::CMAPMessageHeader(const void* wireBytes) : extra_(0) {
    std::memcpy(wire_, wireBytes, sizeof wire_);
}

std::uint16_t CMAPMessageHeader::getMessageLength() const {
    return loadBig<std::uint16_t>(wire_ + header::kLength);
}

void CMAPMessageHeader::setMessageLength(std::uint16_t length) {
    storeBig(wire_ + header::kLength, length);
}

std::uint32_t CMAPMessageHeader::getHandle() const {
    return loadBig<std::uint32_t>(wire_ + header::kHandle);
}

String CMAPMessageHeader::str() const {
    const RecordView wire(wire_, sizeof wire_);
    StackWriter<512> out;
    out.literal("MessageType: ").decimal(wire.u8(header::kMessageType));
    out.literal(", Version: ").decimal(wire.u8(header::kVersion));
    out.literal(", Length: ").decimal(wire.u16(header::kLength));
    out.literal(", Protocol: ").decimal(wire.u8(header::kProtocol));
    out.literal(", Type: 0x").hexUpper(wire.u32(header::kProtocol) & 0xFFFFFFu, 6);
    out.literal(", Requestor: ").decimal(wire.u8(header::kRequestor));
    out.literal(", Control: 0x").hexUpper(wire.u8(header::kControl), 2);
    out.literal(", Destination: ").decimal(wire.u8(header::kDestination));
    out.literal(", ReturnCode: ").decimal(wire.u32(header::kReturnCode));
    out.literal(", Handle: 0x").hexUpper(wire.u32(header::kHandle), 8);
    return out.string();
}

std::string CMAPMessageHeader::cmapXmlTagNameFix(const char* name) {
    std::string fixed(name ? name : "");
    for (std::size_t i = 0; i < fixed.size(); ++i)
        fixed[i] = tagCharacter(fixed[i], i == 0);
    return fixed;
}

} // namespace Pegasus
