// mpuevent export: events as tables of a database.
#include "tools/mpuevent/Command.h"
#include "tools/mpuevent/Database.h"
#include "tools/mpuevent/Inputs.h"
#include "tools/mpuevent/Selector.h"

#include <stdexcept>

namespace Pegasus::tool {

namespace {

struct Options {
    Inputs inputs;
    FilterOptions filter;
    std::string output;
};

#ifdef MPUEVENT_SQLITE

class Exporter : public Sink {
public:
    Exporter(const FilterOptions& options, Database& database)
        : filter_(options, {.fieldBasis = true}), database_(database),
          left_(options.limit.value_or(UINT64_MAX)) {}

    void onBegin(const std::string& name) override { database_.begin(name); }
    void onEnd(std::uint64_t bytes) override { database_.end(bytes); }
    bool take(const Message& message) override {
        if (const DecodedEvent* event = filter_.decode(message)) {
            database_.add(*event, message);
            --left_;
        }
        return left_ != 0;
    }
    void onDamage(const std::string& input, const Damage& damage) override {
        database_.add(damage);
        Sink::onDamage(input, damage);
    }
    void complaint(Status status, const std::string& text) override {
        status_ = std::max(status_, status);
        complain(text);
    }
    Status status() const { return status_; }

private:
    Filter filter_;
    Database& database_;
    std::uint64_t left_;
    Status status_ = kFine;
};

Status exportEvents(const Options& options) {
    if (!options.inputs.spares(options.output))
        return kUsage;
    if (options.filter.selects()) {
        complain("export takes no --context or --around: ask the database");
        return kUsage;
    }
    try {
        Database database(options.output);
        Exporter exporter(options.filter, database);
        options.inputs.read(exporter);
        complain("{}: {} events added, {} known before", options.output, database.added(),
                 database.known());
        return exporter.status();
    } catch (const std::runtime_error& error) {
        complain("{}: {}", options.output, error.what());
        return kFailed;
    }
}

#else

Status exportEvents(const Options&) {
    complain("built without SQLite: nothing can be exported");
    return kFailed;
}

#endif

} // namespace

Runner addExport(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    options->inputs.addOptions(app, true);
    options->filter.addOptions(app, TimeUse::Filter, true);
    options->inputs.addPart(app);
    app.add_option("--output,-o", options->output, "The SQLite file, which is made or added to")
        ->type_name("FILE")
        ->required();
    return [options] { return exportEvents(*options); };
}

} // namespace Pegasus::tool
