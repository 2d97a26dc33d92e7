// mpuevent formats and mpuevent sample: what the layout tables say and show.
#include "event/Avrel_Event.h"
#include "formats/ClickHouse.h"
#include "formats/Schema.h"
#include "formats/Utf8.h"
#include "tools/catalogue/Modules.h"
#include "tools/catalogue/Reference.h"
#include "tools/catalogue/Sample.h"
#include "tools/mpuevent/Command.h"
#include "tools/mpuevent/Inputs.h"
#include "tools/mpuevent/Numbers.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <optional>

namespace Pegasus::tool {

namespace {

std::string sourceName(const mpu::Module& module) {
    const CString name = Avrel_Event(nullptr, 0).sourceFromEmpValue(module.source).getCString();
    return std::string(name);
}

bool isCalled(const mpu::Module& module, const std::string& name) {
    return name == std::to_string(module.source) || name == module.decoder ||
           name == sourceName(module);
}

// The modules that `name` means, all for an empty one.
std::vector<mpu::Module> select(const std::string& name) {
    std::vector<mpu::Module> found;
    for (const mpu::Module& module : mpu::modules())
        if (name.empty() || isCalled(module, name))
            found.push_back(module);
    return found;
}

void addModule(CLI::App& app, const char* option, std::string& module) {
    app.add_option(option, module, "One module: its number, its source name or its decoder")
        ->type_name("MODULE")
        ->check([](const std::string& name) {
            std::string known;
            for (const mpu::Module& row : mpu::modules()) {
                if (isCalled(row, name))
                    return std::string();
                known.append(known.empty() ? "" : ", ").append(sourceName(row));
            }
            return "no decoder for " + name + "; there are: " + known;
        });
}

struct ReferenceFormat {
    const char* name;
    const char* description;
    std::string (*make)(std::span<const mpu::Module>, const mpu::CodeFilter& wanted);
};
constexpr ReferenceFormat kReferenceFormats[] = {
    {"text", "the record reference for a terminal",
     [](auto modules, const auto& wanted) {
         return mpu::reference(modules, mpu::Page::Text, wanted);
     }},
    {"markdown", "the same for a browser",
     [](auto modules, const auto& wanted) {
         return mpu::reference(modules, mpu::Page::Markdown, wanted);
     }},
    {"json-schema", "the schema of decode --format json",
     [](auto modules, const auto&) { return jsonSchema(modules); }},
    {"clickhouse-sql",
     "tables for a ClickHouse cluster, which take what decode --format json writes",
     [](auto, const auto&) { return clickhouseSql(); }},
};

// "1040", or two codes as in "1/32"; nothing for what is neither.
std::optional<mpu::CodeFilter> parseCode(const std::string& text) {
    mpu::CodeFilter wanted;
    std::uint32_t number = 0;
    const char* at = text.data();
    const char* const end = at + text.size();
    for (bool first = true;; first = false) {
        const auto [next, error] = std::from_chars(at, end, number);
        if (error != std::errc())
            return std::nullopt;
        wanted.minor = number;
        if (next == end)
            return wanted;
        if (!first || *next != '/')
            return std::nullopt;
        wanted.major = number;
        at = next + 1;
    }
}

struct FormatsOptions {
    std::string module;
    std::string code;
    std::string format = "text";
};

Status formats(const FormatsOptions& options) {
    const std::vector<mpu::Module> modules = select(options.module);
    const mpu::CodeFilter wanted = parseCode(options.code).value_or(mpu::CodeFilter());
    const auto isTold = [&](const mpu::Module& module) {
        const std::vector<mpu::RecordKind> kinds = mpu::kindsOf(module);
        return std::any_of(kinds.begin(), kinds.end(), [&](const mpu::RecordKind& kind) {
            return kind.row && wanted.passes(kind.row->codes);
        });
    };
    std::vector<mpu::Module> told;
    std::copy_if(modules.begin(), modules.end(), std::back_inserter(told),
                 [&](const mpu::Module& module) { return wanted.isAll() || isTold(module); });
    if (told.empty()) {
        complain("--code: no event has the code {}", options.code);
        return kUsage;
    }
    Output output;
    output.text().literal(rowOf(kReferenceFormats, options.format).make(told, wanted));
    return output.finish();
}

struct SampleOptions {
    std::string module;
    std::string output = "-";
    std::uint64_t count = 0;
    std::uint32_t seed = 1;
};

Status sample(const SampleOptions& options) {
    Output output;
    if (!output.open(options.output))
        return kFailed;
    if (!output.takesBinary("sample"))
        return kUsage;
    mpu::SampleWriter samples(options.seed);
    const std::vector<mpu::Module> chosen = select(options.module);
    for (std::uint64_t made = 0, before = 0;; before = made) {
        for (const mpu::Module& module : chosen)
            for (const mpu::RecordKind& kind : mpu::kindsOf(module)) {
                output.text().literal(samples.message(module, kind));
                if (++made == options.count || !output.proceed())
                    return output.finish();
            }
        if (options.count == 0 || made == before)
            return output.finish();
    }
}

} // namespace

Runner addFormats(CLI::App& app) {
    const auto options = std::make_shared<FormatsOptions>();
    addModule(app, "module,--module", options->module);
    app.add_option("--code", options->code,
                   "Tell one event: its code, or class and code as in 1/32")
        ->type_name("CODE")
        ->check([](const std::string& text) {
            return parseCode(text) ? std::string() : "not a code: " + text;
        });
    app.add_option("--format", options->format,
                   "Output format. " + descriptionsOf(kReferenceFormats))
        ->check(CLI::IsMember(namesOf(kReferenceFormats)))
        ->capture_default_str();
    return [options] { return formats(*options); };
}

Runner addSample(CLI::App& app) {
    const auto options = std::make_shared<SampleOptions>();
    addModule(app, "--module", options->module);
    addNumber(app, "--count", options->count,
              "Number of messages, all kinds in turn; 0 = one of each kind");
    addNumber(app, "--seed", options->seed, "Random seed for the field values");
    addOutput(app, options->output);
    return [options] { return sample(*options); };
}

} // namespace Pegasus::tool
