// Memory runs out: at each single allocation of a decode, and at it and all that follow.
#include "fuzz/Invariants.h"
#include "fuzz/RecordMutator.h"
#include "platform/cmap/CMAPOperationFailedException.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <new>
#include <optional>
#include <utility>

// Every allocation of the library passes here: operator new by replacement, which reaches the C++
// library too, the C functions through the linker (--wrap).
namespace {

thread_local long live = 0; // blocks

struct Limit {
    long left; // allocations that succeed
    bool once; // then one fails, else all do
    unsigned failed = 0;
};
thread_local Limit* limit = nullptr; // none

bool allowed() {
    if (!limit || limit->left-- > 0)
        return true;
    ++limit->failed;
    if (limit->once)
        limit = nullptr;
    return false;
}

void* counted(void* memory) {
    if (memory)
        ++live;
    return memory;
}

} // namespace

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* memory, std::size_t size);
void __real_free(void* memory);

void* __wrap_malloc(std::size_t size) {
    return allowed() ? counted(__real_malloc(size)) : nullptr;
}
void* __wrap_calloc(std::size_t count, std::size_t size) {
    return allowed() ? counted(__real_calloc(count, size)) : nullptr;
}
void* __wrap_realloc(void* memory, std::size_t size) {
    if (!allowed())
        return nullptr;
    return memory ? __real_realloc(memory, size) : counted(__real_malloc(size));
}
void __wrap_free(void* memory) {
    if (memory)
        --live;
    __real_free(memory);
}
}

void* operator new(std::size_t size) {
    if (void* memory = std::malloc(size ? size : 1))
        return memory;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size ? size : 1);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size ? size : 1);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace Pegasus::test {
namespace {

// No limit while this lives: for what looks at a result.
class Plenty {
public:
    Plenty() : before_(std::exchange(limit, nullptr)) {}
    ~Plenty() { limit = before_; }
    Plenty(const Plenty&) = delete;
    Plenty& operator=(const Plenty&) = delete;

private:
    Limit* before_;
};

MPUEvent messageOf(const std::string& record) {
    CMAPMessageHeader header;
    header.setMessageLength(static_cast<Uint16>(mpu::message_header::kSize + record.size()));
    Avrel_memory_istream in(record.data(), record.size());
    return MPUEvent(header, in);
}

// Calls `act` with 0, 1, 2 ... allocations until one call sees no failure. What throws must be
// bad_alloc, and all it took must be given back. Returns how many calls failed.
template <class Act>
unsigned exhaust(bool once, Act act) {
    for (long allowed = 0;; ++allowed) {
        Limit now{allowed, once};
        bool threw = false;
        const long before = live;
        limit = &now;
        try {
            act();
        } catch (const std::bad_alloc&) {
            threw = true;
        }
        limit = nullptr;
        EXPECT_EQ(live, before) << "left behind after " << allowed << " allocations";
        if (now.failed == 0) {
            EXPECT_FALSE(threw);
            return static_cast<unsigned>(allowed);
        }
        EXPECT_TRUE(threw || once) << "nothing said after " << allowed << " allocations";
        if (::testing::Test::HasFailure())
            return 0;
    }
}

// An event, the fallback of one, or bad_alloc; and the next decode is as if nothing had happened.
unsigned decodeScarcely(const std::string& record) {
    const MPUEvent message = messageOf(record);
    const fuzz::Said whole =
        fuzz::said(*std::unique_ptr<Avrel_Event>(message.create_Avrel_Event()));
    constexpr std::size_t summary = 6;
    unsigned steps = 0;
    for (bool once : {false, true}) {
        steps = exhaust(once, [&] {
            const std::unique_ptr<Avrel_Event> event(message.create_Avrel_Event());
            const Plenty plenty;
            const fuzz::Said said = fuzz::said(*event);
            if (said != whole) {
                EXPECT_TRUE(once);
                EXPECT_EQ(said.texts[summary], "XMLizer Failure");
                EXPECT_TRUE(said.texts[summary + 1].starts_with("Exception in XMLizer"));
                constexpr std::size_t kHeaderNumbers = 5; // the dump rests on other bytes
                EXPECT_TRUE(std::equal(said.numbers.begin(), said.numbers.begin() + kHeaderNumbers,
                                       whole.numbers.begin()));
                for (std::size_t i = 0; i < summary - 1; ++i)
                    EXPECT_EQ(said.texts[i], whole.texts[i]);
            }
        });
        EXPECT_TRUE(fuzz::said(*std::unique_ptr<Avrel_Event>(message.create_Avrel_Event())) ==
                    whole);
    }
    return steps;
}

TEST(Allocation, AnyOfADecodeMayFail) {
    const SuppressTrace quiet;
    mpu::SampleWriter samples(5);
    for (const mpu::Module& module : mpu::modules())
        for (const mpu::RecordKind& kind : mpu::shapesOf(module)) {
            const std::string record = samples.record(module, kind);
            EXPECT_GT(decodeScarcely(record), 0u) << module.decoder << ", " << kind.title();
            decodeScarcely(record.substr(0, 160)); // padded
            decodeScarcely(record + "<a>\xFF=</a>" + std::string(6000, '='));
            ASSERT_FALSE(HasFailure()) << module.decoder << ", " << kind.title();
        }
    fuzz::RecordMutator mutator(6);
    for (int i = 0; i < 300; ++i) {
        decodeScarcely(mutator.record());
        ASSERT_FALSE(HasFailure()) << i;
    }
}

TEST(Allocation, AnyOfATracedDecodeMayFail) {
    const CaptureTrace trace;
    const MPUEvent message = messageOf(
        mpu::SampleWriter(5).record(mpu::modules()[0], mpu::kindsOf(mpu::modules()[0])[0]) +
        "more than announced");
    for (bool once : {false, true})
        EXPECT_GT(
            exhaust(once, [&] { std::unique_ptr<Avrel_Event>(message.create_Avrel_Event()); }), 0u);
}

std::string says(const MPUEvent& message) {
    const Plenty plenty;
    const std::unique_ptr<Avrel_Event> event(message.create_Avrel_Event());
    return utf8(message.str()) + (event ? utf8(event->str()) : "");
}

// Whatever fails on the way, a message is as before or as after, and everything can be done with it
// again.
TEST(Allocation, AnyOfAMessageMayFail) {
    const SuppressTrace quiet;
    const std::string bytes = std::string(146, 'n') + '\x17' + std::string(300, 'n');
    const MPUEvent before = messageOf(std::string(200, 'm'));
    const MPUEvent after = messageOf(bytes);
    MPUEvent broken(after.getCMAPMessageHeader());
    {
        Avrel_memory_istream in(bytes.data(), 250);
        EXPECT_THROW(broken.deserialize(in), CMAPOperationFailedException);
    }
    MPUEvent unread(before);
    unread.setCMAPMessageHeader(after.getCMAPMessageHeader());
    const auto read = [&](std::size_t count) {
        return [&bytes, count](MPUEvent& message) {
            Avrel_memory_istream in(bytes.data(), count);
            try {
                message.deserialize(in);
            } catch (const CMAPOperationFailedException&) {
                EXPECT_LT(count, bytes.size());
            }
        };
    };
    const struct {
        std::function<void(MPUEvent&)> change;
        const MPUEvent& from;
        const MPUEvent& to;
    } cases[] = {
        {read(bytes.size()), unread, after},
        {read(250), unread, broken},
        {[&](MPUEvent& message) { message = after; }, before, after},
        {[](MPUEvent& message) { MPUEvent(message).str(); }, before, before},
        {[](MPUEvent& message) { std::unique_ptr<Avrel_Event>(message.create_Avrel_Event()); },
         after, after},
    };
    for (const auto& c : cases)
        for (bool once : {false, true})
            EXPECT_GT(exhaust(once,
                              [&] {
                                  std::optional<MPUEvent> message;
                                  {
                                      const Plenty plenty;
                                      message.emplace(c.from);
                                  }
                                  try {
                                      c.change(*message);
                                  } catch (const std::bad_alloc&) {
                                      const Plenty plenty;
                                      const std::string now = says(*message);
                                      EXPECT_TRUE(now == says(c.from) || now == says(c.to));
                                      EXPECT_EQ(says(MPUEvent(*message)), now);
                                      c.change(*message);
                                      EXPECT_EQ(says(*message), says(c.to));
                                      *message = c.from;
                                      EXPECT_EQ(says(*message), says(c.from));
                                      throw;
                                  }
                              }),
                      0u)
                << &c - cases;
}

} // namespace
} // namespace Pegasus::test
