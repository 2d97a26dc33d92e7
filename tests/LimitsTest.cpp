// What a decode may cost: stack, output and time, for every kind of record of every decoder.
#include "fuzz/Invariants.h"
#include "fuzz/RecordMutator.h"
#include "tests/Build.h"

#include <gtest/gtest.h>

#include <ctime>
#include <functional>
#include <pthread.h>
#include <sys/mman.h>

namespace Pegasus::test {
namespace {

using fuzz::kMaxRecord;

constexpr std::size_t kStackOfADecode = 16 * 1024;

MPUEvent messageOf(const std::string& record) {
    CMAPMessageHeader header;
    header.setMessageLength(static_cast<Uint16>(mpu::message_header::kSize + record.size()));
    Avrel_memory_istream in(record.data(), record.size());
    return MPUEvent(header, in);
}

// Records of `size` bytes whose payload repeats one piece, after the numbers that select the kind
// of record.
std::vector<std::string> monotonous(const mpu::Module& module, const mpu::RecordKind& kind,
                                    std::size_t size) {
    using namespace std::string_view_literals;
    mpu::SampleWriter samples(3);
    std::vector<std::string> all;
    for (std::string_view piece : {"\0"sv, "="sv, "<"sv, "\n"sv, "a"sv, "\xFF"sv, "\x01"sv, "<a>"sv,
                                   "</"sv, "a=\n"sv, "=a "sv, " "sv, ","sv, "\\"sv, "<a></a>"sv,
                                   "\0\1"sv, "\0\0\0\1"sv, "\0\0\0\x08"sv, "\xC3\xA9"sv}) {
        std::string record = samples.record(module, kind);
        // Once after the sample, once over all but its keys.
        for (std::size_t from : {record.size(), sizeof(EmpEvLogMsg_s)}) {
            std::string twisted = record.substr(0, from);
            while (twisted.size() < size)
                twisted += piece;
            twisted.resize(size);
            for (const mpu::Key& key : kind.keys())
                twisted.replace(key.at, key.size, record, key.at, key.size);
            mpu::storeBig(&twisted[offsetof(EmpEvLogMsg_s, evStructLength)],
                          static_cast<std::uint16_t>(size - sizeof(EmpEvLogMsg_s)));
            all.push_back(twisted);
        }
    }
    return all;
}

void forEveryShape(const std::function<void(const mpu::Module&, const mpu::RecordKind&)>& act) {
    for (const mpu::Module& module : mpu::modules())
        for (const mpu::RecordKind& kind : mpu::shapesOf(module))
            act(module, kind);
}

// ---- stack ----

// Runs `work` in a thread on painted memory and returns how much of that lost its paint.
std::size_t stackOf(const std::function<void()>& work) {
    constexpr std::size_t size = 128 * 1024;
    constexpr unsigned char paint = 0xA5;
    void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    std::memset(memory, paint, size);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, memory, size);
    pthread_t thread;
    const int error = pthread_create(
        &thread, &attributes,
        [](void* argument) -> void* {
            (*static_cast<const std::function<void()>*>(argument))();
            return nullptr;
        },
        const_cast<std::function<void()>*>(&work));
    EXPECT_EQ(error, 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    const unsigned char* bytes = static_cast<const unsigned char*>(memory);
    std::size_t untouched = 0;
    while (untouched < size && bytes[untouched] == paint)
        ++untouched;
    munmap(memory, size);
    return size - untouched;
}

TEST(Limits, ADecodeNeedsLittleStack) {
    if (kSanitized)
        GTEST_SKIP() << "sanitizers widen stack frames";
    const SuppressTrace quiet;
    const std::size_t none = stackOf([] {});
    std::size_t most = 0;
    std::string where;
    const auto check = [&](const std::string& record) {
        const MPUEvent message = messageOf(record);
        const std::size_t used =
            stackOf([&] { std::unique_ptr<Avrel_Event>(message.create_Avrel_Event()); }) - none;
        if (used > most) {
            most = used;
            where = "source " +
                    std::to_string(mpu::RecordView(record.data(), record.size()).u8(146)) +
                    ", event id " +
                    std::to_string(mpu::RecordView(record.data(), record.size()).u16(150));
        }
    };
    forEveryShape([&](const mpu::Module& module, const mpu::RecordKind& kind) {
        for (const std::string& record : monotonous(module, kind, 2000))
            check(record);
    });
    fuzz::RecordMutator mutator(4);
    for (int i = 0; i < 500; ++i)
        check(mutator.record());
    ASSERT_TRUE(
        MPUEvent::registerDecoder(200, [](const EmpEvLogMsg_s*, int) -> Avrel_Event* { throw 1; }));
    std::string failing(1000, '\xC8');
    check(failing);
    MPUEvent::registerDecoder(200, nullptr);
    RecordProperty("stack", std::to_string(most) + " bytes: " + where);
    EXPECT_LT(most, kStackOfADecode) << where;
    EXPECT_GT(most, 1024u); // measured at all
}

// ---- output and time ----

TEST(Limits, OutputAndTimeGrowWithTheRecordAlone) {
    const SuppressTrace quiet;
    double slowest = 0;
    double widest = 0;
    std::string where;
    forEveryShape([&](const mpu::Module& module, const mpu::RecordKind& kind) {
        for (const std::string& record : monotonous(module, kind, kMaxRecord)) {
            const MPUEvent message = messageOf(record);
            const std::clock_t start = std::clock();
            const std::unique_ptr<Avrel_Event> event(message.create_Avrel_Event());
            slowest = std::max(slowest, static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
            const std::size_t size =
                event->getBody().size() + event->getSummary().size() + event->getEventID().size();
            if (const double ratio = static_cast<double>(size) / kMaxRecord; ratio > widest) {
                widest = ratio;
                where = std::string(module.decoder) + ", " + kind.title();
            }
            ASSERT_NO_THROW(fuzz::requireBounded(fuzz::said(*event), kMaxRecord))
                << module.decoder << ", " << kind.title();
        }
    });
    // A quadratic step would take minutes; the bound leaves room for emulators and sanitizers.
    EXPECT_LT(slowest, 2.0);
    EXPECT_LT(widest, static_cast<double>(fuzz::kOutputPerByte)) << where;
    RecordProperty("widest", std::to_string(widest) + " characters a byte: " + where);
    RecordProperty("slowest", std::to_string(slowest * 1000) + " ms");
}

} // namespace
} // namespace Pegasus::test
