// mpuevent objects and mpuevent drives: what happened to each part.
#include "formats/ObjectPrinter.h"
#include "tools/mpuevent/Command.h"
#include "tools/mpuevent/Selector.h"

namespace Pegasus::tool {

namespace {

struct Options {
    Inputs inputs;
    FilterOptions filter;
    std::optional<ObjectKindIndex> kind;
    bool story = false;
    std::string format = "text";
    std::string output = "-";
};

class Collector : public SerialSink {
public:
    Collector(const FilterOptions& options, Output& output)
        : SerialSink(output), filter_(options.ofSink(), {.fieldBasis = true}),
          limit_(options.ofSink().limit.value_or(UINT64_MAX)) {}
    bool take(const Message& message) override {
        if (const DecodedEvent* event = filter_.decode(message)) {
            objects.add(*event);
            ++events_;
        }
        return events_ < limit_;
    }

    Objects objects;

private:
    Filter filter_;
    const std::uint64_t limit_;
    std::uint64_t events_ = 0;
};

Status objects(const Options& options) {
    if (!options.inputs.spares(options.output))
        return kUsage;
    Output output;
    if (!output.open(options.output))
        return kFailed;
    Collector collector(options.filter, output);
    readSelected(options.inputs, options.filter, collector);
    const bool isText = options.format == kObjectFormats[0].name;
    const auto all = collector.objects.worstFirst(options.kind);
    bool assumed = false;
    for (const Object* object : all) {
        rowOf(kObjectFormats, options.format)
            .write(*object, {options.story, output.coloured()}, output.text());
        assumed = assumed || object->assumed != 0;
        if (!output.proceed())
            break;
    }
    if (isText && all.empty())
        output.text().literal("No event names one.\n");
    if (isText && assumed)
        output.text().literal("\n~ named by a layout that is assumed\n");
    if (collector.objects.others() != 0)
        collector.complaint(kFine, fmt::format("{} events of more objects than are kept",
                                               collector.objects.others()));
    return collector.finish();
}

std::shared_ptr<Options> addOptions(CLI::App& app) {
    auto options = std::make_shared<Options>();
    options->filter.addOptions(app);
    app.add_flag("--story", options->story, "Also the steps of each object's story");
    app.add_option("--format", options->format, "Output format. " + descriptionsOf(kObjectFormats))
        ->check(CLI::IsMember(namesOf(kObjectFormats)))
        ->capture_default_str();
    addOutput(app, options->output);
    return options;
}

} // namespace

Runner addObjects(CLI::App& app) {
    const auto options = addOptions(app);
    std::vector<std::string> names;
    for (const ObjectKind& kind : kObjectKinds)
        names.emplace_back(kind.plural);
    app.validate_positionals();
    app.add_option_function<std::string>(
           "kind",
           [options](const std::string& name) {
               const auto* kind =
                   std::find_if(std::begin(kObjectKinds), std::end(kObjectKinds),
                                [&](const ObjectKind& one) { return one.plural == name; });
               options->kind = static_cast<ObjectKindIndex>(kind - std::begin(kObjectKinds));
           },
           "Of one kind; what is no kind is a capture")
        ->type_name("KIND")
        ->check(CLI::IsMember(names));
    options->inputs.addOptions(app);
    return [options] { return objects(*options); };
}

Runner addDrives(CLI::App& app) {
    const auto options = addOptions(app);
    options->inputs.addOptions(app);
    options->kind = DriveKind;
    return [options] { return objects(*options); };
}

} // namespace Pegasus::tool
