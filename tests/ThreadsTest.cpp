// The library from many threads at once. Run under the thread sanitizer by .ci/run.
#include "fuzz/Invariants.h"
#include "platform/cmap/ManagedObject.h"
#include "tools/catalogue/Modules.h"
#include "tools/catalogue/Sample.h"

#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <thread>

namespace Pegasus::test {
namespace {

constexpr unsigned kThreads = 8;

// Runs `work(number)` in all threads, which start together.
template <class Work>
void together(Work work) {
    std::atomic<unsigned> waiting{kThreads};
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < kThreads; ++i)
        threads.emplace_back([&, i] {
            for (--waiting; waiting != 0;)
                std::this_thread::yield();
            work(i);
        });
    for (std::thread& thread : threads)
        thread.join();
}

struct Case {
    MPUEvent message;
    std::string says;
};

std::string decode(const MPUEvent& message) {
    return utf8(std::unique_ptr<Avrel_Event>(message.create_Avrel_Event())->str());
}

// A message of every shape, its length false so that decoding it traces.
std::vector<Case> everyShape() {
    const SuppressTrace quiet;
    std::vector<Case> all;
    mpu::SampleWriter samples(9);
    for (const mpu::Module& module : mpu::modules())
        for (const mpu::RecordKind& kind : mpu::shapesOf(module)) {
            const std::string record = samples.record(module, kind) + "tail";
            CMAPMessageHeader header;
            header.setMessageLength(
                static_cast<Uint16>(mpu::message_header::kSize + record.size()));
            Avrel_memory_istream in(record.data(), record.size());
            all.push_back({MPUEvent(header, in), {}});
            all.back().says = decode(all.back().message);
        }
    return all;
}

TEST(Threads, TheSameMessagesDecodeAlikeInAll) {
    const std::vector<Case> cases = everyShape();
    std::atomic<unsigned> wrong{0};
    std::size_t lines = 0;
    {
        const CaptureTrace trace;
        together([&](unsigned i) {
            for (std::size_t n = 0; n < 2 * cases.size(); ++n) {
                const Case& one = cases[(n + i * 7) % cases.size()];
                wrong += decode(one.message) != one.says;
                wrong += decode(MPUEvent(one.message)) != one.says;
            }
        });
        lines = trace.lines().size();
        for (const std::string& line : trace.lines())
            ASSERT_NE(line.find(":----: "), std::string::npos) << line; // whole
    }
    EXPECT_EQ(wrong, 0u);
    EXPECT_GE(lines, 3 * 4 * kThreads * cases.size());
}

TEST(Threads, TracingIsSwitchedMeanwhile) {
    const std::vector<Case> cases = everyShape();
    const CaptureTrace trace;
    std::atomic<unsigned> wrong{0};
    together([&](unsigned i) {
        for (const Case& one : cases) {
            if (i == 0) {
                ProviderTraceServices::ptsSetTraceSuppressForPid(
                    1 - ProviderTraceServices::ptsGetTraceSuppressForPid());
            }
            wrong += decode(one.message) != one.says;
        }
    });
    EXPECT_EQ(wrong, 0u);
}

TEST(Threads, HandlesAreUnique) {
    constexpr unsigned kEach = 2000;
    std::vector<std::uint32_t> handles(kThreads * kEach);
    together([&](unsigned i) {
        for (unsigned n = 0; n < kEach; ++n)
            handles[i * kEach + n] =
                n % 2 ? CMAPMessageHeader().getHandle()
                      : MPUEvent(CMAPMessageHeader()).getCMAPMessageHeader().getHandle();
    });
    EXPECT_EQ(std::set<std::uint32_t>(handles.begin(), handles.end()).size(), handles.size());
}

Avrel_Event* custom(const EmpEvLogMsg_s* record, int length) {
    std::unique_ptr<Avrel_Event> event(new Avrel_Event(record, static_cast<unsigned int>(length)));
    event->setSummary("custom");
    return event.release();
}

class Custom_Object : public ManagedObject {
public:
    String render(const void*, unsigned int) const override { return "custom "; }
};

TEST(Threads, DecodersAndClassesAreRegisteredMeanwhile) {
    const SuppressTrace quiet;
    std::atomic<unsigned> wrong{0};
    together([&](unsigned i) {
        for (unsigned n = 0; n < 300; ++n) {
            if (i == 0)
                MPUEvent::registerDecoder(200, n % 2 ? custom : nullptr);
            if (i == 1)
                ManagedObject::registerClass(
                    200, n % 2 ? +[]() -> ManagedObject* { return new Custom_Object; } : nullptr);
            const std::string summary = utf8(RecordBuilder(200, 1).decode()->getSummary());
            wrong += !summary.empty() && summary != "custom";
            const std::string body = utf8(RecordBuilder(29, 2018).u8(32, 200).decode()->getBody());
            wrong += !body.starts_with("custom ") && !body.starts_with("<ClassName>");
        }
    });
    MPUEvent::registerDecoder(200, nullptr);
    ManagedObject::registerClass(200, nullptr);
    EXPECT_EQ(wrong, 0u);
}

} // namespace
} // namespace Pegasus::test
