// mpuevent cut: the chosen messages as a capture again.
#include "tools/mpuevent/Anonymiser.h"
#include "tools/mpuevent/Command.h"
#include "tools/mpuevent/Selector.h"

#include <optional>

namespace Pegasus::tool {

namespace {

struct Options {
    Inputs inputs;
    FilterOptions filter;
    std::string output = "-";
    bool anonymise = false;
};

class Cutter : public SerialSink {
public:
    Cutter(const Options& options, Output& output)
        : SerialSink(output), filter_(options.filter.ofSink()),
          left_(options.filter.ofSink().limit.value_or(UINT64_MAX)) {
        if (options.anonymise)
            anonymiser_.emplace();
    }
    bool take(const Message& message) override {
        if (!filter_.wants(message))
            return true;
        const bool framed = !message.header.empty();
        if (std::exchange(framed_, framed).value_or(framed) != framed) {
            complaint(kFailed, fmt::format("{}: messages and bare records don't go into one file",
                                           message.input));
            return false;
        }
        if (anonymiser_)
            anonymiser_->take(message);
        else
            write(message);
        return output_.proceed() && --left_ != 0;
    }
    Status finish() {
        if (anonymiser_)
            anonymiser_->finish([this](const Message& message) {
                write(message);
                return output_.proceed();
            });
        return SerialSink::finish();
    }

private:
    void write(const Message& message) {
        const auto put = [this](std::span<const std::uint8_t> bytes) {
            output_.text().literal({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
        };
        // The reader lowers a claim that exceeds what the message carries.
        constexpr std::size_t kClaim = offsetof(EmpEvLogMsg_s, evStructLength);
        std::uint8_t claim[2];
        mpu::storeBig(claim, message.claim);
        put(message.header);
        put(message.record.first(kClaim));
        put(claim);
        put(message.record.subspan(kClaim + sizeof claim));
    }

    Filter filter_;
    std::uint64_t left_; // of the messages to write
    std::optional<bool> framed_;
    std::optional<Anonymiser> anonymiser_;
};

Status cut(const Options& options) {
    Output output;
    if (const Status status = options.inputs.openOutput(options.output, output); status != kFine)
        return status;
    if (!output.takesBinary("cut"))
        return kUsage;
    Cutter cutter(options, output);
    readSelected(options.inputs, options.filter, cutter);
    return cutter.finish();
}

} // namespace

Runner addCut(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    options->inputs.addOptions(app);
    options->filter.addOptions(app);
    app.add_flag(
        "--anonymise", options->anonymise,
        "Replace the serial numbers of enclosures and controllers, each by one of the "
        "same length, 4 characters or more (ENC0001, CTL0002, ...): in headers and, from 4 "
        "characters on, where they occur as text in payloads. Everything else remains: "
        "names, addresses, serial numbers of drives, and what is written in another "
        "encoding. Keeps the messages in a temporary file");
    addOutput(app, options->output);
    return [options] { return cut(*options); };
}

} // namespace Pegasus::tool
