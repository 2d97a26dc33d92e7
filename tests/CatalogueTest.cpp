// What holds for all decoders alike: their samples decode and show every element of their tables,
// and no record, however cut or twisted, does more than change its own text.
#include "tests/RecordBuilder.h"

#include "tools/catalogue/Modules.h"
#include "tools/catalogue/Reference.h"
#include "tools/catalogue/Sample.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

namespace Pegasus::test {
namespace {

std::unique_ptr<Avrel_Event> decode(std::string_view record) {
    CMAPMessageHeader header;
    header.setMessageLength(static_cast<Uint16>(mpu::message_header::kSize + record.size()));
    Avrel_memory_istream in(record.data(), record.size());
    return std::unique_ptr<Avrel_Event>(MPUEvent(header, in).create_Avrel_Event());
}

// All names of elements in `body`.
std::set<std::string> elements(const std::string& body) {
    std::set<std::string> names;
    for (std::size_t at = body.find("</"); at != std::string::npos; at = body.find("</", at + 1))
        names.insert(body.substr(at + 2, body.find('>', at) - at - 2));
    return names;
}

TEST(Catalogue, SamplesDecodeAndShowEveryElementByItsName) {
    SuppressTrace quiet;
    for (const mpu::Module& module : mpu::modules()) {
        std::set<std::string> shown;
        mpu::SampleWriter samples(7);
        for (int round = 0; round < 8; ++round)
            for (const mpu::RecordKind& kind : mpu::kindsOf(module)) {
                const auto event = decode(samples.record(module, kind));
                const std::string summary = utf8(event->getSummary());
                ASSERT_NE(summary, "XMLizer Failure") << module.decoder;
                shown.merge(elements(utf8(event->getBody())));
            }
        std::set<std::string> prefixes;
        for (const std::string& name : shown)
            for (std::size_t n = 1; n <= name.size(); ++n)
                prefixes.insert(name.substr(0, n));
        for (const mpu::RecordKind& kind : mpu::kindsOf(module))
            for (const auto& structure : kind.structures())
                for (const mpu::Row& row : structure.rows)
                    if (row.kind != mpu::Row::Line) {
                        const std::size_t end = row.tag.find('%');
                        const std::string name(row.tag.substr(0, end));
                        EXPECT_TRUE((end == row.tag.npos ? shown : prefixes).contains(name))
                            << module.decoder << ", " << kind.title() << ": " << row.tag;
                    }
    }
}

// Every sample cut at every length, and with every byte at 00 and FF; each decoded twice.
TEST(Catalogue, TwistedSamplesDecode) {
    SuppressTrace quiet;
    const auto check = [](const std::string& record) {
        const std::string before = record;
        const auto event = decode(record);
        const auto again = decode(record);
        ASSERT_EQ(utf8(event->str()), utf8(again->str()));
        ASSERT_EQ(record, before);
        ASSERT_NE(utf8(event->getSummary()), "XMLizer Failure");
    };
    mpu::SampleWriter samples(3);
    for (const mpu::Module& module : mpu::modules())
        for (const mpu::RecordKind& kind : mpu::shapesOf(module)) {
            std::string record = samples.record(module, kind);
            for (std::size_t n = record.size(); n >= 144; n -= n > 400 ? 7 : 1)
                check(record.substr(0, n));
            for (std::size_t i = 144; i < record.size(); i += i < 300 ? 1 : 5)
                for (char value : {'\0', '\xFF', '<'}) {
                    const char kept = std::exchange(record[i], value);
                    check(record);
                    record[i] = kept;
                }
        }
}

TEST(Catalogue, EveryModuleWithADecoderIsInIt) {
    std::set<unsigned> listed;
    for (const mpu::Module& module : mpu::modules()) {
        EXPECT_TRUE(listed.insert(module.source).second) << module.decoder;
        for (const mpu::RecordKind& kind : mpu::kindsOf(module))
            EXPECT_FALSE(kind.title().empty()) << module.decoder;
    }
    const auto plain = [](const EmpEvLogMsg_s*, int) -> Avrel_Event* { return nullptr; };
    for (unsigned source = 0; source < 256; ++source) {
        const bool decoded = !MPUEvent::registerDecoder(static_cast<unsigned char>(source), plain);
        MPUEvent::registerDecoder(static_cast<unsigned char>(source), nullptr);
        EXPECT_EQ(listed.contains(source), decoded) << source;
    }
}

TEST(Catalogue, CommittedReferenceIsCurrent) {
    std::ifstream file(MPUEVENT_DOCS_DIR "record-reference.md");
    std::stringstream committed;
    committed << file.rdbuf();
    EXPECT_TRUE(committed.str() == mpu::reference(mpu::modules(), mpu::Page::Markdown))
        << "docs/record-reference.md: run scripts/renew";
}

} // namespace
} // namespace Pegasus::test
