// Prints what decoding costs: by family, by decoder and on a mixed stream, each beside the plain
// decoder and the floor of the same run. With --kinds: for every kind of record.
#include "bench/Records.h"
#include "platform/trace/ProviderTraceServices.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>

extern "C" void* __libc_malloc(std::size_t);
extern "C" void* __libc_realloc(void*, std::size_t);

namespace {

std::size_t allocations;
std::size_t allocated;

} // namespace

// Counted where all of them pass.
extern "C" void* malloc(std::size_t size) {
    ++allocations;
    allocated += size;
    return __libc_malloc(size);
}
extern "C" void* realloc(void* old, std::size_t size) {
    ++allocations;
    allocated += size;
    return __libc_realloc(old, size);
}

namespace Pegasus::bench {

namespace {

// Times `one` for all messages of a stream in turn.
template <class Item, class One>
void measure(benchmark::State& state, const std::vector<Item>& items, One one) {
    std::size_t characters = 0;
    for (const Item& item : items) // warm
        characters += one(item);
    const std::size_t perRound = characters;
    allocations = allocated = 0;
    for (auto _ : state)
        for (const Item& item : items)
            characters += one(item);
    const double events =
        static_cast<double>(state.iterations()) * static_cast<double>(items.size());
    state.counters["events"] = benchmark::Counter(events, benchmark::Counter::kIsRate);
    state.counters["ns"] = benchmark::Counter(events * 1e-9, benchmark::Counter::kIsRate |
                                                                 benchmark::Counter::kInvert);
    state.counters["characters"] =
        static_cast<double>(perRound) / static_cast<double>(items.size());
    state.counters["allocations"] = static_cast<double>(allocations) / events;
    state.counters["allocated"] = static_cast<double>(allocated) / events;
    benchmark::DoNotOptimize(characters);
}

void add(const Stream& stream) {
    benchmark::RegisterBenchmark(
        (stream.name + "|ours").c_str(),
        [stream](benchmark::State& state) { measure(state, stream.messages, decodeOne); });
    std::vector<PlainDecoder> plain(stream.messages.begin(), stream.messages.end());
    benchmark::RegisterBenchmark(
        (stream.name + "|plain").c_str(), [plain](benchmark::State& state) {
            measure(state, plain, [](const PlainDecoder& d) { return d.decodeOne(); });
        });
    std::vector<Floor> floors(stream.messages.begin(), stream.messages.end());
    benchmark::RegisterBenchmark(
        (stream.name + "|floor").c_str(), [floors](benchmark::State& state) {
            measure(state, floors, [](const Floor& f) { return f.copyOne(); });
        });
}

// One line a stream, when its three runs are there.
class Table : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override {
        std::printf("| %-58s | events/s |     ns | chars | MB/s | allocs | bytes | plain/ours | "
                    "ours/floor |\n|%s|---|---|---|---|---|---|---|---|\n",
                    "Records", std::string(60, '-').c_str());
        return true;
    }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            const std::string name = run.run_name.function_name;
            const std::size_t bar = name.rfind('|');
            auto& row = rows_[name.substr(0, bar)];
            row[name.substr(bar + 1)] = run.counters;
            if (row.size() == 3)
                print(name.substr(0, bar), row);
        }
    }
    double worstPlain = 1e9, worstFloor = 0;

private:
    using Row = std::map<std::string, benchmark::UserCounters>;
    void print(const std::string& name, Row& row) {
        benchmark::UserCounters& ours = row["ours"];
        const double ns = ours["ns"];
        const double plain = row["plain"]["ns"] / ns;
        const double floor = ns / row["floor"]["ns"];
        worstPlain = std::min(worstPlain, plain);
        worstFloor = std::max(worstFloor, floor);
        std::printf("| %-58s | %8.0f | %6.0f | %5.0f | %4.0f | %6.1f | %5.0f | %10.1f | %10.2f |\n",
                    name.c_str(), 1e9 / ns, ns, ours["characters"].value,
                    1e3 * ours["characters"] / ns, ours["allocations"].value,
                    ours["allocated"].value, plain, floor);
        std::fflush(stdout);
    }
    std::map<std::string, Row> rows_;
};

} // namespace

} // namespace Pegasus::bench

int main(int argc, char** argv) {
    using namespace Pegasus;
    using namespace Pegasus::bench;
    ProviderTraceServices::ptsSetTraceSuppressForPid(1);
    bool all = false;
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], "--kinds") == 0) {
            all = true;
            argv[i] = argv[--argc];
        }
    benchmark::Initialize(&argc, argv);
    if (all) {
        for (const Stream& stream : kinds())
            add(stream);
    } else {
        for (const Stream& stream : decoders())
            add(stream);
        for (const Stream& stream : families())
            add(stream);
        add(mixed());
    }
    Table table;
    benchmark::RunSpecifiedBenchmarks(&table);
    std::printf("\nAt worst: %.1f times as fast as the plain decoder, %.2f times the floor.\n",
                table.worstPlain, table.worstFloor);
    benchmark::Shutdown();
}
