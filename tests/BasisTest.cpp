// What an event rests on: how well the places are known, what the record lacks, what nobody reads.
#include "formats/Explanation.h"
#include "tests/CommandFixture.h"
#include "tools/catalogue/Modules.h"
#include "tools/catalogue/Sample.h"

#include <gmock/gmock.h>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <set>

namespace Pegasus::test {

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr auto kDocumented = Provenance::Documented;
constexpr auto kAssumed = Provenance::Assumed;

RecordBuilder network(unsigned code) {
    return RecordBuilder(24, code);
}

} // namespace

TEST(Basis, OfEvents) {
    const SuppressTrace quiet;
    struct Case {
        const char* what;
        RecordBuilder record;
        Provenance layout;
        unsigned missing;
        unsigned unread;
    };
    const Case cases[] = {
        {"whole structure", network(1055).words(0, 16), kDocumented, 0, 0},
        {"eleven counters and more of zeros", network(1055).words(0, 2), kDocumented, 56, 0},
        {"a number that straddles the end", network(1055).counted(0, 62), kDocumented, 2, 0},
        {"the last words of a message are not shown", network(1021).counted(0, 56).text(56, "x"),
         kDocumented, 0, 16},
        {"bytes after the last structure", network(1055).words(0, 20), kDocumented, 0, 16},
        {"a text ends with the record", network(1000).bytes(0, "abc"), kDocumented, 0, 0},
        {"bytes after a text", network(1000).text(0, "abc").u32(4, 1), kDocumented, 0, 4},
        {"a dump of what was claimed", network(9).u32(0, 1).payloadLength(100), kDocumented, 96, 0},
        {"a claim that nobody needs", network(1055).words(0, 16).payloadLength(100), kDocumented, 0,
         0},
        {"nothing, and it would be good news", RecordBuilder(33, 6), kAssumed, 4, 0},
        {"a drive that an assumed number names",
         RecordBuilder(6, 1).version(1).u32(4, 121).u32(36, 7).u32(40, 0), kAssumed, 0, 4},
        {"no decoder", RecordBuilder(77, 1).u32(0, 1), kDocumented, 0, 4},
    };
    for (const Case& c : cases) {
        const EventBasis basis = c.record.decode()->getBasis();
        EXPECT_EQ(basis.layout, c.layout) << c.what;
        EXPECT_EQ(basis.missingBytes, c.missing) << c.what;
        EXPECT_EQ(basis.unreadBytes, c.unread) << c.what;
    }
}

TEST(Basis, OfShortMessages) {
    const std::vector<unsigned char> record = network(1000).text(0, "abc").record();
    for (const std::size_t size : {std::size_t{20}, std::size_t{151}}) {
        CMAPMessageHeader header;
        header.setMessageLength(static_cast<Uint16>(mpu::message_header::kSize + size));
        Avrel_memory_istream in(record.data(), size);
        const std::unique_ptr<Avrel_Event> event(MPUEvent(header, in).create_Avrel_Event());
        EXPECT_GE(event->getBasis().missingBytes, 152 - size);
    }
}

// The counts on the fast path are those of what a watched decoding reads, for every row of every
// table, cut at any place; and watching changes no text.
TEST(Basis, IsWhatIsRead) {
    const SuppressTrace quiet;
    formats::EventDecoder plain;
    formats::EventDecoder watched({.readings = true});
    mpu::SampleWriter samples(3);
    for (const mpu::Module& module : mpu::modules()) {
        for (const mpu::RecordKind& kind : mpu::kindsOf(module)) {
            std::string record = samples.record(module, kind);
            for (const std::size_t cut : {0u, 1u, 7u, 40u}) {
                record.resize(std::max<std::size_t>(152, record.size() - cut));
                const std::span<const std::uint8_t> bytes{
                    reinterpret_cast<const std::uint8_t*>(record.data()), record.size()};
                const formats::DecodedEvent& event = plain.decode(bytes);
                const formats::DecodedEvent& same = watched.decode(bytes);
                const std::string where = std::string(module.decoder) + ": " + kind.title();
                ASSERT_EQ(event.body, same.body) << where;
                ASSERT_EQ(event.summary, same.summary) << where;
                std::size_t unread = 0;
                std::set<std::size_t> missing;
                Provenance weakest = Provenance::Documented;
                for (const formats::ExplainedBytes& part :
                     formats::explain(same, watched.readings(), watched.isPlain())) {
                    unread += part.use == formats::ExplainedBytes::Unread ? part.size : 0;
                    for (std::size_t i = 0; i < part.missing; ++i)
                        missing.insert(part.at + part.size - 1 - i);
                    weakest = std::max(weakest, part.layout);
                }
                EXPECT_EQ(event.unreadBytes, unread) << where;
                EXPECT_EQ(event.missingBytes, missing.size()) << where;
                EXPECT_EQ(event.layout, nameOf(std::max(weakest, watched.readings().meaning())))
                    << where;
            }
        }
    }
}

// What a row says that a function reads is all that it reads.
TEST(Basis, FunctionsReadTheirFields) {
    std::set<const mpu::CustomField*> seen;
    std::mt19937 random(5);
    for (const mpu::Module& module : mpu::modules())
        for (const mpu::RecordKind& kind : mpu::kindsOf(module))
            for (const mpu::RecordKind::Structure& structure : kind.structures())
                for (const mpu::Row& row : structure.rows)
                    for (const mpu::Value& value : row.values) {
                        if (!value.custom || !seen.insert(value.custom).second)
                            continue;
                        for (unsigned i = 0; i < 1000; ++i) {
                            const unsigned bits = i % 32; // small numbers, too
                            std::string shown[2];
                            std::array<std::uint8_t, 64> field;
                            for (std::size_t k = 0; k < value.size; ++k)
                                field[k] = static_cast<std::uint8_t>(random() >> bits);
                            for (std::string& text : shown) {
                                for (std::size_t k = value.size; k < field.size(); ++k)
                                    field[k] = static_cast<std::uint8_t>(random());
                                text.resize(value.custom->maxLength + mpu::TextWriter::kSlack);
                                text.resize(static_cast<std::size_t>(
                                    value.custom->put(text.data(), field.data()) - text.data()));
                                EXPECT_LE(text.size(), value.custom->maxLength) << row.tag;
                            }
                            ASSERT_EQ(shown[0], shown[1]) << module.decoder << ": " << row.tag;
                        }
                    }
    EXPECT_GE(seen.size(), 10u);
}

// An element is read where a row of its name says, by the decoders' code too, and is known no
// better.
TEST(Basis, ElementsComeFromTheirRows) {
    const SuppressTrace quiet;
    formats::EventDecoder decoder({.readings = true});
    mpu::SampleWriter samples(11);
    unsigned found = 0;
    for (const mpu::Module& module : mpu::modules())
        for (const mpu::RecordKind& kind : mpu::kindsOf(module)) {
            const std::string record = samples.record(module, kind);
            const formats::DecodedEvent& event = decoder.decode(
                {reinterpret_cast<const std::uint8_t*>(record.data()), record.size()});
            std::multimap<std::string, formats::ExplainedBytes> shown;
            for (formats::ExplainedBytes& part :
                 formats::explain(event, decoder.readings(), decoder.isPlain()))
                if (part.use == formats::ExplainedBytes::Element)
                    shown.emplace(part.name, std::move(part));
            for (const mpu::RecordKind::Structure& structure : kind.structures())
                for (const mpu::Row& row : structure.rows) {
                    const auto [begin, end] = shown.equal_range(std::string(row.tag));
                    const mpu::Value& value = row.values[0];
                    if (begin == end || !value.isRead() || value.size == 0)
                        continue;
                    ++found;
                    EXPECT_TRUE(std::any_of(begin, end,
                                            [&](const auto& one) {
                                                const formats::ExplainedBytes& part = one.second;
                                                return part.at == structure.at + value.at &&
                                                       part.size <= value.size &&
                                                       part.layout >= row.provenance;
                                            }))
                        << module.decoder << ", " << kind.title() << ": " << row.tag;
                }
        }
    EXPECT_GE(found, 4800u);
}

class BasisCommandTest : public CommandTest {
protected:
    void give(const RecordBuilder& record) {
        const std::vector<unsigned char> message = record.message();
        write("input", {message.begin(), message.end()});
    }
};

TEST_F(BasisCommandTest, Signs) {
    give(RecordBuilder(33, 6).timestamp(5));
    EXPECT_THAT(run("decode").out, HasSubstr("\n  ~ layout assumed\n  ! 4 bytes short\n"));
    EXPECT_THAT(run("decode --format brief").out,
                HasSubstr("  ~ layout assumed  ! 4 bytes short\n"));
    give(network(1055).words(0, 17));
    const std::string text = run("decode").out;
    EXPECT_THAT(text, HasSubstr("\n  + 4 bytes unread\n"));
    EXPECT_THAT(text, Not(HasSubstr("layout assumed")));
    EXPECT_THAT(text, Not(HasSubstr("Payload")));
    EXPECT_THAT(run("decode --raw").out, HasSubstr("\n  Payload:\n    0000  00000001 00000002 "));
    give(RecordBuilder(77, 1).u32(0, 0x41424344)); // nothing else would show it
    EXPECT_THAT(run("decode").out, HasSubstr("\n  Payload:\n    0000  41424344 "));
    // Titles that codes without a row have as well.
    for (const RecordBuilder& unknown : {RecordBuilder(5, 1).u32s(0, {1, 9999, 0, 0, 0}),
                                         RecordBuilder(6, 1).version(1).u32s(0, {0, 9999})}) {
        give(unknown);
        EXPECT_THAT(run("decode --format brief").out, HasSubstr("  ? unknown code"));
    }
    give(network(9).u32(0, 0x41424344)); // says so in its summary
    EXPECT_THAT(run("decode --format brief").out, Not(HasSubstr("unknown code")));
    const auto event = nlohmann::json::parse(run("decode --format json --raw").out);
    EXPECT_EQ(event.at("raw"), "41424344");
    EXPECT_EQ(event.at("unreadBytes"), 0);
}

TEST_F(BasisCommandTest, Fields) {
    give(network(1055).words(0, 15).bytes(60, "\1\2"));
    const auto fields =
        nlohmann::json::parse(run("decode --format json --fields").out).at("fields");
    for (const nlohmann::json& field : fields)
        EXPECT_EQ(field.value("missingBytes", 0), field.at("name") == "TcpOutRsts" ? 2 : 0)
            << field;
    give(RecordBuilder(33, 6));
    EXPECT_THAT(run("decode --format xml --fields").out,
                HasSubstr("<field name=\"Power_Supply_Status\" layout=\"assumed\" "
                          "missingBytes=\"4\">Power AC Redundancy OK</field>"));
}

TEST_F(BasisCommandTest, KnownOnly) {
    give(RecordBuilder(33, 6).u32(0, 1));
    const auto event = nlohmann::json::parse(run("decode --format json --known-only").out);
    EXPECT_EQ(event.at("eventID"), "ES Adapter Power Supply Status Event");
    EXPECT_EQ(event.at("summary"), "");
    EXPECT_EQ(event.at("body"), "<Hex>00000001</Hex>");
    give(RecordBuilder(6, 9).version(1).u32(4, 121).u32(28, 7));
    EXPECT_THAT(run("decode --known-only").out, Not(HasSubstr("Drive 7")));
    give(network(1055).words(0, 16));
    EXPECT_EQ(run("decode --known-only").out, run("decode").out);
}

TEST_F(BasisCommandTest, Explain) {
    give(network(1021).counted(0, 30).sequence(9));
    const std::string text = run("explain").out;
    EXPECT_THAT(text, StartsWith("Event 9: standard input:0  "));
    EXPECT_THAT(text, HasSubstr("\n   153     3  010203             %08X       "
                                "OpCode_Type: 00010203\n"));
    EXPECT_THAT(text, HasSubstr("\n   180     4  1C1D               %08X     ! "
                                "[2 missing] General_Use1: 1C1D0000\n"));
    EXPECT_THAT(text, Not(HasSubstr("(not read)")));
    std::size_t longest = 0;
    for (std::size_t at = 0, end; (end = text.find('\n', at)) != text.npos; at = end + 1)
        if (text.compare(at, 5, "Event") != 0)
            longest = std::max(longest, end - at);
    EXPECT_LE(longest, 80u);
    const auto event = nlohmann::json::parse(run("explain --format json").out);
    EXPECT_EQ(event.at("file"), "standard input");
    EXPECT_EQ(event.at("offset"), 0);
    EXPECT_EQ(event.at("missingBytes"), 10);
    const auto& last = event.at("bytes").back();
    EXPECT_EQ(last.at("name"), "General_Use3");
    EXPECT_EQ(last.at("missing"), 4);
    EXPECT_THAT(run("explain --format html").out,
                HasSubstr("<tr class=documented data-at=180 data-size=4><td>180<td>4<td>%08X<td>"
                          "General_Use1: 1C1D0000 <em>! 2 missing</em>"));
    EXPECT_EQ(run("explain --sequence").status, 2);
}

} // namespace Pegasus::test
