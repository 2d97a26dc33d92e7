// mpuevent objects and mpuevent drives: what happened to each part.
#include "formats/ObjectPrinter.h"
#include "tools/mpuevent/Command.h"
#include "tools/mpuevent/EventSink.h"

namespace Pegasus::tool {

namespace {

struct Options : GatherOptions {
    std::optional<ObjectKindIndex> kind;
    bool story = false;
};

class Collector : public EventSink {
public:
    Collector(const FilterOptions& options, Output& output)
        : EventSink(options, output, {.fieldBasis = true}) {}

    Objects objects;

private:
    void add(const DecodedEvent& event) override { objects.add(event); }
};

Status objects(const Options& options) {
    Output output;
    if (const Status status = options.inputs.openOutput(options.output, output); status != kFine)
        return status;
    Collector collector(options.filter, output);
    readSelected(options.inputs, options.filter, collector);
    const bool isText = options.format == kObjectFormats[0].name;
    const auto all = collector.objects.worstFirst(options.kind);
    bool assumed = false;
    for (const Object* object : all) {
        rowOf(kObjectFormats, options.format)
            .write(*object, {options.story, output.coloured(), options.filter.times},
                   output.text());
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

void addOptions(CLI::App& app, Options& options) {
    addGatherOptions(app, options, kObjectFormats, TimeUse::Show);
    app.add_flag("--story", options.story, "Also the steps of each object's story");
}

} // namespace

Runner addObjects(CLI::App& app) {
    const auto options = std::make_shared<Options>();
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
           "Only objects of one kind")
        ->type_name("KIND")
        ->check(CLI::IsMember(names));
    addOptions(app, *options);
    return [options] { return objects(*options); };
}

Runner addDrives(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    addOptions(app, *options);
    options->kind = DriveKind;
    return [options] { return objects(*options); };
}

} // namespace Pegasus::tool
