#include "formats/DecodedEvent.h"

#include "event/Dispatch.h"
#include "event/HeaderNames.h"
#include "event/Record.h"
#include "formats/Readings.h"
#include "formats/Utf8.h"
#include "platform/trace/ProviderTraceServices.h"

#include <algorithm>
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

EventDecoder::EventDecoder(const DecodeOptions& options) : options_(options), clock_(options.time) {
    if (options.fieldBasis || options.readings || options.knownOnly)
        readings_ = std::make_unique<Readings>(draft_);
}

EventDecoder::~EventDecoder() = default;

const DecodedEvent& EventDecoder::decode(std::span<const std::uint8_t> bytes,
                                         const Origin& origin) {
    const auto* header = reinterpret_cast<const EmpEvLogMsg_s*>(bytes.data());
    event_.payload = bytes.subspan(sizeof *header);
    event_.fields = {};
    event_.file = finished(file_, mpu::Untrusted(origin.file));
    event_.offset = origin.offset;
    if (readings_)
        readings_->clear();
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
    const mpu::RecordView view(header, sizeof *header);
    event_.enclosureSerialNumber =
        finished(enclosure_, view.text(offsetof(EmpEvLogMsg_s, enclosureSerialNumber), 64));
    event_.controllerSerialNumber =
        finished(controller_, view.text(offsetof(EmpEvLogMsg_s, controllerSerialNumber), 64));
    event_.controllerSlotID = header->slotId;
    event_.eventLogInstanceNumber = header->logInstance;
    event_.sequenceID = header->sequenceId;
    event_.timestamp = header->timestamp;
    tellTime();
    event_.source = nameOr(mpu::sourceName(header->source), header->source, source_);
    event_.category = nameOr(mpu::categoryName(header->category), header->category, category_);
    event_.eventTypeText = mpu::eventTypeName(header->eventType);
    event_.eventType = event_.eventTypeText.empty() ? 0 : header->eventType;
    if (event_.eventTypeText.empty())
        event_.eventTypeText = "Unknown";

    const mpu::Record record(header, static_cast<unsigned int>(bytes.size()), &draft_.footprint);
    const auto watchedBy = [&](Readings* readings) {
        draft_.footprint.setTrace(readings);
        decode(record, function);
        draft_.footprint.setTrace(nullptr);
    };
    watchedBy(options_.readings ? readings_.get() : nullptr);
    const EventBasis basis = draft_.footprint.basis();
    tell(basis);
    const bool isSure = basis.layout == Provenance::Documented && basis.missingBytes == 0;
    if (readings_ && (options_.readings || !isSure)) {
        if (!options_.readings)
            watchedBy(readings_.get());
        tellFields(basis);
        if (options_.knownOnly && basis.layout == Provenance::Assumed)
            leaveOut(*header);
    }
    return event_;
}

void EventDecoder::decode(const mpu::Record& record, mpu::DecodeFunction function) {
    draft_.clear();
    if (function)
        function(record, draft_);
    if (draft_.title.view().empty() && !draft_.isTitled)
        draft_.title.decimal(record.eventId());
    // Where in the texts each reading is holds for texts that are sanitized character by character.
    isPlain_ = !draft_.title.hasMarkup() && !draft_.summary.hasMarkup() && !draft_.body.hasMarkup();
    event_.eventID = draft_.title.finish();
    event_.summary = draft_.summary.finish();
    event_.body = draft_.body.finish();
}

void EventDecoder::tellTime() {
    event_.time = clock_.rfc3339(event_.timestamp);
    event_.shownTime =
        options_.time.style == TimeStyle::Iso ? event_.time : clock_.shown(event_.timestamp);
}

void EventDecoder::tell(const EventBasis& basis) {
    event_.layout = nameOf(basis.layout);
    event_.missingBytes = basis.missingBytes;
    event_.unreadBytes = basis.unreadBytes;
    event_.isUnknown = basis.isUnknown;
}

void EventDecoder::tellFields(const EventBasis& basis) {
    const std::vector<BodyItem>& items = parser_.parse(event_.body);
    if (isPlain_) {
        event_.fields = readings_->basisOf(event_.body, items);
    } else {
        anyField_.assign(items.size(), {basis.layout, 0});
        event_.fields = anyField_;
    }
}

// What is assumed goes; for title and summary the number stands, for elements the payload.
void EventDecoder::leaveOut(const EmpEvLogMsg_s& header) {
    const auto assumed = [&](Reading::Text text) {
        return readings_->meaning() == Provenance::Assumed ||
               std::any_of(
                   readings_->all().begin(), readings_->all().end(), [&](const Reading& reading) {
                       return reading.text == text && reading.provenance == Provenance::Assumed;
                   });
    };
    if (assumed(Reading::Title)) {
        draft_.title.clear();
        event_.eventID = draft_.title.decimal(header.eventId).view();
    }
    if (assumed(Reading::Summary))
        event_.summary = {};
    known_.clear();
    knownFields_.clear();
    const std::vector<BodyItem>& items = parser_.parse(event_.body);
    std::size_t done = 0;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (event_.fields[i].layout != Provenance::Assumed) {
            knownFields_.push_back(event_.fields[i]);
            continue;
        }
        const auto [begin, end] = extentOf(event_.body, items[i]);
        known_.raw(mpu::Untrusted(event_.body.substr(done, begin - done)));
        done = end;
    }
    known_.raw(mpu::Untrusted(event_.body.substr(done)));
    known_.literal("<Hex>");
    known_.hexBytes({reinterpret_cast<const char*>(event_.payload.data()), event_.payload.size()});
    known_.literal("</Hex>");
    knownFields_.emplace_back();
    event_.body = known_.view();
    event_.fields = knownFields_;
}

const DecodedEvent& EventDecoder::take(Avrel_Event& event) {
    event_.enclosureSerialNumber = narrowed(enclosure_, event.getEnclosureSerialNumber());
    event_.controllerSerialNumber = narrowed(controller_, event.getControllerSerialNumber());
    event_.controllerSlotID = event.getControllerSlotID();
    event_.eventLogInstanceNumber = event.getEventLogInstanceNumber();
    event_.sequenceID = event.getSequenceID();
    event_.timestamp = event.getTimestamp();
    tellTime();
    event_.source = narrowed(source_, event.getSource());
    event_.category = narrowed(category_, event.getCategory());
    event_.eventType = std::as_const(event).getEventType();
    event_.eventTypeText = narrowed(eventType_, event.getEventType());
    event_.eventID = narrowed(draft_.title, event.getEventID());
    event_.summary = narrowed(draft_.summary, event.getSummary());
    event_.body = narrowed(draft_.body, event.getBody());
    tell(event.getBasis());
    return event_;
}

} // namespace Pegasus::formats
