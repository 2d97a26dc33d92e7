// Captures that grow while they are read.
#include "capture/Tail.h"
#include "tests/RecordBuilder.h"

#include <cerrno>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

namespace Pegasus::test {

namespace {

using namespace capture;

// 216 bytes.
std::string message(std::uint32_t sequence) {
    const auto all = RecordBuilder(23, 101).sequence(sequence).message();
    return {all.begin(), all.end()};
}

// A file without a name, and its reader.
class TailTest : public testing::Test {
protected:
    void append(std::string_view bytes) {
        ASSERT_EQ(::write(descriptor_, bytes.data(), bytes.size()),
                  static_cast<ssize_t>(bytes.size()));
    }
    void empty() {
        ASSERT_EQ(::ftruncate(descriptor_, 0), 0);
        ASSERT_EQ(::lseek(descriptor_, 0, SEEK_SET), 0);
    }
    // The sequence ids and the offsets of what came.
    std::string poll(bool last = false) {
        std::string got;
        EXPECT_EQ(file_.poll(
                      capture_,
                      [&](const Message& m) {
                          got += std::to_string(mpu::loadBig<std::uint32_t>(&m.record[136])) + "@" +
                                 std::to_string(m.offset) + " ";
                          return true;
                      },
                      last),
                  0);
        return got;
    }

    int descriptor_ = ::open(testing::TempDir().c_str(), O_TMPFILE | O_RDWR, 0600);
    Tail file_{::dup(descriptor_)};
    std::vector<std::string> reports_;
    Capture capture_{Framing::Message,
                     [this](const Damage& damage) { reports_.push_back(damage.str()); }};

    void TearDown() override { ::close(descriptor_); }
};

} // namespace

TEST_F(TailTest, ReadsWhatCame) {
    EXPECT_EQ(poll(), "");
    append(message(1) + message(2));
    EXPECT_EQ(poll(), "1@0 2@216 ");
    EXPECT_EQ(poll(), "");
    append(message(3));
    EXPECT_EQ(poll(), "3@432 ");
    EXPECT_TRUE(reports_.empty());
}

// Byte by byte: nothing is early, nothing late, nothing damaged.
TEST_F(TailTest, WaitsForTheRest) {
    const std::string all = message(1) + message(2);
    for (std::size_t i = 0; i < all.size(); ++i) {
        append(all.substr(i, 1));
        EXPECT_EQ(poll(), i + 1 == 216 ? "1@0 " : i + 1 == 432 ? "2@216 " : "") << i;
    }
    EXPECT_TRUE(reports_.empty());
}

// In whatever pieces damage arrives, the same is found as in the whole file.
TEST_F(TailTest, DamageWaitsForWhatFollows) {
    std::string wrong = message(2);
    mpu::storeBig(&wrong[10], std::uint16_t(250)); // leads to nothing, the record does
    const std::string all = message(1) + std::string(300, '\1') + message(5) + wrong + message(3) +
                            std::string(100, '\xff') + message(4) + message(6);
    for (const std::size_t step : {1u, 13u, 216u, 500u}) {
        reports_.clear();
        empty();
        EXPECT_EQ(poll(), "");
        std::string got;
        for (std::size_t at = 0; at < all.size(); at += step) {
            append(all.substr(at, step));
            got += poll();
        }
        EXPECT_EQ(got, "1@0 5@516 2@732 3@948 4@1264 6@1480 ") << step;
        EXPECT_EQ(reports_.size(), 3u) << step;
    }
}

// A length that is wrong must not hide what follows until that much has come.
TEST_F(TailTest, OneWholeMessageBehindDamageIsEnough) {
    append(message(1) + std::string(100, '\xff') + message(2).substr(0, 215));
    EXPECT_EQ(poll(), "1@0 ");
    append(message(2).substr(215));
    EXPECT_EQ(poll(), "2@316 ");
    EXPECT_THAT(reports_, testing::ElementsAre(
                              "offset 216: no record header (source 0, event type 0, category "
                              "0); 100 bytes passed over, resuming at offset "
                              "316"));
    const auto stopped = RecordBuilder(23, 101).u32(36, 1).message(); // while it was written
    append(std::string(stopped.begin(), stopped.begin() + 100) + message(4));
    EXPECT_EQ(poll(), "4@632 ");
    append(message(5));
    EXPECT_EQ(poll(), "5@848 ");
    EXPECT_EQ(reports_.size(), 2u);
}

TEST_F(TailTest, ReportsAnUnfinishedMessageAtTheLast) {
    append(message(1) + message(2).substr(0, 200));
    EXPECT_EQ(poll(), "1@0 ");
    EXPECT_TRUE(reports_.empty());
    EXPECT_EQ(poll(true), "");
    EXPECT_THAT(reports_,
                testing::ElementsAre("offset 216: the input ends after 136 bytes of a "
                                     "record header (expected 152); 200 bytes passed over, no "
                                     "further message found"));
}

TEST_F(TailTest, StartsAgainInAFileCutShort) {
    append(message(1) + message(2));
    EXPECT_EQ(poll(), "1@0 2@216 ");
    empty();
    append(message(3));
    EXPECT_EQ(poll(), "3@0 ");
    empty();
    EXPECT_EQ(poll(), "");
    append(message(4) + message(5));
    EXPECT_EQ(poll(), "4@0 5@216 ");
    EXPECT_TRUE(reports_.empty());
}

TEST_F(TailTest, ReadsOnFromItsPlaceWhenStopped) {
    const std::string all = message(1) + message(2) + message(3);
    MemorySource whole(all.data(), all.size());
    capture_.open(whole);
    Message m;
    ASSERT_TRUE(capture_.next(m));
    EXPECT_EQ(capture_.place().offset, 216u);
    MemorySource rest(all.data() + 216, all.size() - 216);
    capture_.open(rest, capture_.place());
    ASSERT_TRUE(capture_.next(m));
    EXPECT_EQ(m.offset, 216u);
}

} // namespace Pegasus::test
