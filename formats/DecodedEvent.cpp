#include "formats/DecodedEvent.h"

#include "event/Dispatch.h"
#include "event/HeaderNames.h"
#include "event/Record.h"
#include "formats/Utf8.h"
#include "platform/trace/ProviderTraceServices.h"

#include <memory>
#include <utility>

namespace Pegasus::formats {

namespace {

std::string_view finished(mpu::TextWriter& to, mpu::Untrusted fromRecord) {
    to.clear();
    return to.raw(fromRecord).finish();
}

std::string_view nameOr(std::string_view name, std::uint8_t code, mpu::TextWriter& number) {
    if (!name.empty())
        return name;
    number.clear();
    return number.decimal(code).view();
}

std::string_view narrowed(mpu::TextWriter& to, const String& text) {
    to.clear();
    putUtf8(to, text);
    return to.view();
}

} // namespace

const DecodedEvent& EventDecoder::decode(std::span<const std::uint8_t> bytes) {
    const auto* header = reinterpret_cast<const EmpEvLogMsg_s*>(bytes.data());
    const mpu::DecodeFunction function = mpu::decodeFunctionOf(header->source);
    // Trace lines tell of the class, which a registered decoder has alone.
    if ((!function && mpu::decoderOf(header->source)) ||
        ProviderTraceServices::ptsGetTraceSuppressForPid() == 0) {
        CMAPMessageHeader message;
        message.setMessageLength(
            static_cast<std::uint16_t>(mpu::message_header::kSize + bytes.size()));
        Avrel_memory_istream in(bytes.data(), bytes.size());
        return take(*std::unique_ptr<Avrel_Event>(MPUEvent(message, in).create_Avrel_Event()));
    }
    if (const std::size_t claimed = sizeof *header + header->evStructLength;
        claimed > bytes.size()) {
        padded_.assign(bytes.begin(), bytes.end());
        padded_.resize(claimed);
        header = reinterpret_cast<const EmpEvLogMsg_s*>(padded_.data());
    }
    const mpu::Record record(header, static_cast<unsigned int>(bytes.size()));
    const mpu::RecordView view = record.view();
    event_.enclosureSerialNumber =
        finished(enclosure_, view.text(offsetof(EmpEvLogMsg_s, enclosureSerialNumber), 64));
    event_.controllerSerialNumber =
        finished(controller_, view.text(offsetof(EmpEvLogMsg_s, controllerSerialNumber), 64));
    event_.controllerSlotID = header->slotId;
    event_.eventLogInstanceNumber = header->logInstance;
    event_.sequenceID = header->sequenceId;
    event_.timestamp = header->timestamp;
    event_.source = nameOr(mpu::sourceName(header->source), header->source, source_);
    event_.category = nameOr(mpu::categoryName(header->category), header->category, category_);
    event_.eventTypeText = mpu::eventTypeName(header->eventType);
    event_.eventType = event_.eventTypeText.empty() ? 0 : header->eventType;
    if (event_.eventTypeText.empty())
        event_.eventTypeText = "Unknown";

    draft_.clear();
    if (function)
        function(record, draft_);
    if (draft_.title.view().empty() && !draft_.isTitled)
        draft_.title.decimal(header->eventId);
    event_.eventID = draft_.title.finish();
    event_.summary = draft_.summary.finish();
    event_.body = draft_.body.finish();
    return event_;
}

const DecodedEvent& EventDecoder::take(Avrel_Event& event) {
    event_.enclosureSerialNumber = narrowed(enclosure_, event.getEnclosureSerialNumber());
    event_.controllerSerialNumber = narrowed(controller_, event.getControllerSerialNumber());
    event_.controllerSlotID = event.getControllerSlotID();
    event_.eventLogInstanceNumber = event.getEventLogInstanceNumber();
    event_.sequenceID = event.getSequenceID();
    event_.timestamp = event.getTimestamp();
    event_.source = narrowed(source_, event.getSource());
    event_.category = narrowed(category_, event.getCategory());
    event_.eventType = std::as_const(event).getEventType();
    event_.eventTypeText = narrowed(eventType_, event.getEventType());
    event_.eventID = narrowed(draft_.title, event.getEventID());
    event_.summary = narrowed(draft_.summary, event.getSummary());
    event_.body = narrowed(draft_.body, event.getBody());
    return event_;
}

} // namespace Pegasus::formats
