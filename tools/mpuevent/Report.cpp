// mpuevent report: a self-contained HTML page.
#include "formats/ReportPage.h"
#include "tools/mpuevent/Command.h"
#include "tools/mpuevent/Selector.h"

#include <cstdlib>
#include <ctime>

namespace Pegasus::tool {

namespace {

// What the page tells one by one; the rest is counted.
constexpr std::size_t kMaxFiles = 1000;
constexpr std::size_t kMaxRemarks = 300;

struct Options {
    Inputs inputs;
    FilterOptions filter;
    std::string output = "-";
};

class PageWriter : public SerialSink {
public:
    PageWriter(const FilterOptions& options, Output& output)
        : SerialSink(output), filter_(options.ofSink(), {.readings = true}),
          limit_(options.ofSink().limit.value_or(UINT64_MAX)) {
        facts_.times = options.times;
        page_.begin(output.text());
    }

    void onBegin(const std::string& name) override { name_ = name; }
    void onEnd(std::uint64_t bytes) override {
        if (facts_.files.size() < kMaxFiles)
            facts_.files.emplace_back(name_, bytes);
        else
            ++facts_.moreFiles;
    }
    void onLeftOut(std::uint64_t events) override { facts_.leftOut += events; }
    void complaint(Status status, const std::string& text) override {
        SerialSink::complaint(status, text);
        if (facts_.remarks.size() < kMaxRemarks)
            facts_.remarks.push_back(text);
        else
            ++facts_.moreRemarks;
    }
    bool take(const Message& message) override {
        if (const DecodedEvent* event = filter_.decode(message)) {
            const EventDecoder& decoder = filter_.decoder();
            page_.add(*event, decoder.readings(), decoder.isPlain(), output_.text());
        } else {
            ++facts_.leftOut;
        }
        return output_.proceed() && page_.events() < limit_;
    }

    Status finish(std::uint64_t faults, std::string filters, std::string program) {
        facts_.faults = faults;
        facts_.filters = std::move(filters);
        facts_.program = std::move(program);
        facts_.made = now();
        page_.end(facts_, output_.text());
        return SerialSink::finish();
    }

private:
    // In UTC; what SOURCE_DATE_EPOCH says where two runs are to give the same bytes.
    static std::string now() {
        const char* fixed = std::getenv("SOURCE_DATE_EPOCH");
        const std::time_t time = fixed ? std::strtoll(fixed, nullptr, 10) : std::time(nullptr);
        std::tm parts{};
        char text[32] = "";
        if (gmtime_r(&time, &parts))
            (void)std::strftime(text, sizeof text, "%Y-%m-%d %H:%M UTC", &parts);
        return text;
    }

    Filter filter_;
    const std::uint64_t limit_;
    ReportPage page_;
    ReportFacts facts_;
    std::string name_; // of the input
};

// The filters that were given, as on the command line.
std::string filtersOf(const CLI::App& app) {
    std::string all;
    for (const CLI::Option* option : app.get_options())
        if (option->get_group() == "Filters")
            for (const std::string& value : option->results()) {
                all.append(all.empty() ? "" : " ").append(option->get_name());
                if (option->get_expected_max() != 0)
                    all.append(" ").append(value);
            }
    return all;
}

Status report(const Options& options, const CLI::App& app) {
    Output output;
    if (const Status status = options.inputs.openOutput(options.output, output); status != kFine)
        return status;
    PageWriter writer(options.filter, output);
    const std::uint64_t faults = readSelected(options.inputs, options.filter, writer);
    return writer.finish(faults, filtersOf(app), app.get_parent()->version());
}

} // namespace

Runner addReport(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    options->inputs.addOptions(app);
    options->filter.addOptions(app, TimeUse::Show);
    addOutput(app, options->output);
    return [options, &app] { return report(*options, app); };
}

} // namespace Pegasus::tool
