// mpuevent verify: what is amiss in captures, and how many bytes became events.
#include "formats/DecodedEvent.h"
#include "formats/Utf8.h"
#include "tools/mpuevent/Command.h"
#include "tools/mpuevent/Inputs.h"

#include <map>
#include <optional>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace Pegasus::tool {

namespace {

constexpr std::size_t kMaxLogs = 10000; // records may make up any

struct VerifyFormat {
    const char* name;
    const char* description;
};
constexpr VerifyFormat kVerifyFormats[] = {{"text", "a line per finding"},
                                           {"json", "a JSON object per finding and line"}};

struct Options {
    Inputs inputs;
    std::string format = "text";
    std::string output = "-";
};

// One line: the same as text and as JSON members, which differ by kind.
class Finding {
public:
    Finding(const char* kind, std::string_view file) : json_(buffer_) {
        json_.StartObject();
        add("kind", kind);
        add("file", file);
    }
    Finding& add(const char* key, std::string_view value) {
        json_.Key(key);
        json_.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
        return *this;
    }
    Finding& add(const char* key, std::uint64_t value) {
        json_.Key(key);
        json_.Uint64(value);
        return *this;
    }
    Finding& add(const char* key, std::optional<std::uint32_t> value) {
        json_.Key(key);
        value ? json_.Uint(*value) : json_.Null();
        return *this;
    }
    std::string_view json() {
        json_.EndObject();
        return {buffer_.GetString(), buffer_.GetSize()};
    }

private:
    rapidjson::StringBuffer buffer_;
    rapidjson::Writer<rapidjson::StringBuffer> json_;
};

class Verifier : public SerialSink {
public:
    Verifier(bool json, Output& output) : SerialSink(output), json_(json) {}

    void onBegin(const std::string& name) override {
        mpu::LineWriter utf8;
        putUtf8(utf8, mpu::toString(name));
        file_ = utf8.view();
    }
    void complaint(Status status, const std::string& text) override {
        findings_ += status == kDamaged;
        SerialSink::complaint(status, text);
    }
    void onDamage(const std::string&, const Damage& damage) override {
        passedOver_ += damage.passedOver;
        waiting_.push_back(damage);
    }
    bool take(const Message& message) override;
    void onEnd(std::uint64_t bytes) override;

private:
    struct Last {
        std::uint32_t sequence;
        std::uint32_t timestamp;
    };

    void tellDamage(std::optional<std::uint32_t> after);
    void checkSequence(const Message& message, Last& last, const Last& now);
    void tell(std::string_view text, Finding& finding);

    const bool json_;
    std::string file_;
    std::uint64_t events_ = 0;
    std::uint64_t eventBytes_ = 0;
    std::uint64_t end_ = 0; // of the last event
    std::uint64_t passedOver_ = 0;
    std::uint64_t findings_ = 0;
    std::optional<std::uint32_t> before_; // sequence number of the last event
    std::vector<Damage> waiting_;         // for that of the next
    // By enclosure, controller, slot and log instance, as they are in records.
    std::map<std::string, Last, std::less<>> logs_;
    EventDecoder decoder_;
};

bool Verifier::take(const Message& message) {
    const auto& record = *reinterpret_cast<const EmpEvLogMsg_s*>(message.record.data());
    const Last now{record.sequenceId, record.timestamp};
    tellDamage(now.sequence);
    const std::uint64_t end = message.offset + message.header.size() + message.record.size();
    ++events_;
    eventBytes_ += end - std::max(end_, message.offset);
    end_ = end;
    before_ = now.sequence;
    const std::string_view log(reinterpret_cast<const char*>(message.record.data()),
                               offsetof(EmpEvLogMsg_s, sequenceId));
    if (const auto found = logs_.find(log); found != logs_.end())
        checkSequence(message, found->second, now);
    else if (logs_.size() < kMaxLogs)
        logs_.emplace(log, now);
    return output_.proceed();
}

void Verifier::tellDamage(std::optional<std::uint32_t> after) {
    const auto sequence = [](std::optional<std::uint32_t> number) {
        return number ? fmt::format("sequence {}", *number) : std::string("none");
    };
    for (const Damage& damage : waiting_) {
        Finding finding("damage", file_);
        finding.add("offset", damage.offset).add("length", damage.passedOver);
        finding.add("reason", damage.reason);
        finding.add("sequenceBefore", before_).add("sequenceAfter", after);
        tell(fmt::format("{} (event before: {}, after: {})", damage.str(), sequence(before_),
                         sequence(after)),
             finding);
    }
    waiting_.clear();
}

void Verifier::checkSequence(const Message& message, Last& last, const Last& now) {
    const auto report = [&](const char* kind, const std::string& what, std::uint32_t before,
                            std::uint32_t after) {
        const DecodedEvent& event = decoder_.decode(message.record);
        Finding finding(kind, file_);
        finding.add("offset", message.offset)
            .add("enclosureSerialNumber", event.enclosureSerialNumber)
            .add("controllerSerialNumber", event.controllerSerialNumber)
            .add("controllerSlotID", std::uint64_t{event.controllerSlotID})
            .add("eventLogInstanceNumber", std::uint64_t{event.eventLogInstanceNumber})
            .add("before", std::uint64_t{before})
            .add("after", std::uint64_t{after});
        tell(fmt::format("offset {}: {} (enclosure \"{}\", controller \"{}\", slot {}, log {})",
                         message.offset, what, event.enclosureSerialNumber,
                         event.controllerSerialNumber, event.controllerSlotID,
                         event.eventLogInstanceNumber),
             finding);
    };
    const std::uint32_t step = now.sequence - last.sequence; // numbers may start over at 0
    if (now.sequence == last.sequence)
        report("repetition", fmt::format("sequence {} is repeated", now.sequence), last.sequence,
               now.sequence);
    else if (step > INT32_MAX)
        report("back", fmt::format("sequence {} after {}", now.sequence, last.sequence),
               last.sequence, now.sequence);
    else if (step != 1)
        report(
            "gap",
            fmt::format("sequence {} after {}: {} missing", now.sequence, last.sequence, step - 1),
            last.sequence, now.sequence);
    else if (now.timestamp < last.timestamp)
        report("clock", fmt::format("time {} after {}", now.timestamp, last.timestamp),
               last.timestamp, now.timestamp);
    last = now;
}

void Verifier::onEnd(std::uint64_t bytes) {
    tellDamage(std::nullopt);
    const std::uint64_t findings = findings_;
    Finding total("total", file_);
    total.add("bytes", bytes)
        .add("events", events_)
        .add("eventBytes", eventBytes_)
        .add("passedOver", passedOver_)
        .add("findings", findings);
    if (findings != 0)
        raise(kDamaged);
    tell(fmt::format("{} bytes: {} events in {} bytes, {} bytes passed over; {}", bytes, events_,
                     eventBytes_, passedOver_,
                     findings == 0 ? "nothing amiss" : fmt::format("{} findings", findings)),
         total);
    events_ = eventBytes_ = end_ = passedOver_ = findings_ = 0; // for the next one
    before_.reset();
    logs_.clear();
}

void Verifier::tell(std::string_view text, Finding& finding) {
    ++findings_;
    mpu::TextWriter& out = output_.text();
    if (json_)
        out.literal(finding.json());
    else
        putPrintable(out, fmt::format("{}: {}", file_, text));
    out.literal("\n");
    output_.proceed();
}

Status verify(const Options& options) {
    Output output;
    if (const Status status = options.inputs.openOutput(options.output, output); status != kFine)
        return status;
    Verifier verifier(options.format == "json", output);
    options.inputs.read(verifier);
    return verifier.finish();
}

} // namespace

Runner addVerify(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    options->inputs.addOptions(app, true);
    app.add_option("--format", options->format, "Output format. " + descriptionsOf(kVerifyFormats))
        ->check(CLI::IsMember(namesOf(kVerifyFormats)))
        ->capture_default_str();
    addOutput(app, options->output);
    return [options] { return verify(*options); };
}

} // namespace Pegasus::tool
