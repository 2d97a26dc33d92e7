#include "tools/mpuevent/MetricsFile.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <cstring>
#include <fstream>

namespace Pegasus::tool {

MetricsFile::MetricsFile(std::string path) : path_(std::move(path)) {
    constexpr std::string_view kBegin = "# HELP mpuevent_";
    std::string begin(kBegin.size(), '\0');
    std::ifstream in(path_);
    in.read(begin.data(), static_cast<std::streamsize>(begin.size()));
    if (counts() && in.gcount() != 0 && begin != kBegin)
        throw std::runtime_error(path_ + ": not a metrics file of mpuevent");
}

void MetricsFile::add(const DecodedEvent& event) {
    if (!counts())
        return;
    metrics_.add(event);
    changed_ = true;
    store();
}

void MetricsFile::addFaults(std::uint64_t count) {
    metrics_.addFaults(count);
    changed_ = changed_ || count != 0;
}

void MetricsFile::storeFrom(Clock::time_point begin) {
    const Clock::time_point now = Clock::now();
    if (!counts() || !changed_ || now < begin)
        return;
    mpu::BodyWriter text;
    metrics_.write(text);
    const int error = replaceFile(path_, text.view());
    if (error != 0 && status_ == kFine) {
        complain("{}: {}", path_, std::strerror(error));
        status_ = kFailed;
    }
    changed_ = error != 0;
    next_ = now + std::chrono::seconds(1);
}

void addMetrics(CLI::App& app, std::string& path) {
    app.add_option("--metrics", path,
                   "Also count the events by module, kind of object and severity in this file, for "
                   "Prometheus (the node exporter's textfile collector reads *.prom); it is "
                   "replaced as a whole")
        ->type_name("FILE");
}

} // namespace Pegasus::tool
