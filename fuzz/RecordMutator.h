// Makes hostile records out of the layout tables: a sample of some kind, then a few of its
// fields set to what decoders stumble over. A new decoder is covered as soon as its tables are in
// the catalogue.
#pragma once

#include "fuzz/Target.h"
#include "tools/catalogue/Modules.h"
#include "tools/catalogue/Sample.h"

#include <algorithm>

namespace Pegasus::fuzz {

class RecordMutator {
    template <class Rows>
    const auto& pick(const Rows& from) {
        return from[below(static_cast<std::uint32_t>(std::size(from)))];
    }
    std::uint32_t below(std::uint32_t bound) {
        return static_cast<std::uint32_t>(random_()) % bound;
    }

public:
    explicit RecordMutator(std::uint32_t seed) : random_(seed), samples_(seed) {}

    // A new hostile record.
    std::string record() {
        const mpu::Module& module = pick(mpu::modules());
        const std::vector<mpu::RecordKind> kinds = kindsOf(module);
        const mpu::RecordKind& kind = pick(kinds);
        std::string record = samples_.record(module, kind);
        twist(record, &kind);
        return record;
    }

    // Twists a record, as one of the kind whose keys it has, or of any.
    void twist(std::string& record) {
        const std::uint8_t source =
            record.size() > kSource ? static_cast<std::uint8_t>(record[kSource]) : std::uint8_t{0};
        for (const mpu::Module& module : mpu::modules())
            if (module.source == source) {
                const std::vector<mpu::RecordKind> kinds = kindsOf(module);
                for (const mpu::RecordKind& kind : kinds)
                    if (hasKeys(record, kind) && below(4) != 0)
                        return twist(record, &kind);
                return twist(record, &pick(kinds));
            }
        twist(record, nullptr);
    }

private:
    static constexpr std::size_t kSource = offsetof(EmpEvLogMsg_s, source);
    static constexpr std::size_t kClaimed = offsetof(EmpEvLogMsg_s, evStructLength);

    // A module that is decoded as another has no kinds of its own.
    std::vector<mpu::RecordKind> kindsOf(const mpu::Module& module) {
        std::vector<mpu::RecordKind> kinds = mpu::kindsOf(module);
        while (kinds.empty())
            kinds = mpu::kindsOf(pick(mpu::modules()));
        return kinds;
    }

    static bool hasKeys(const std::string& record, const mpu::RecordKind& kind) {
        const mpu::RecordView view(record.data(), record.size());
        const std::vector<mpu::Key> keys = kind.keys();
        return std::all_of(keys.begin(), keys.end(), [&](const mpu::Key& key) {
            return (view.u32(key.at) >> (32 - 8 * key.size)) == key.value;
        });
    }

    void twist(std::string& record, const mpu::RecordKind* kind) {
        std::vector<mpu::RecordKind::Structure> structures;
        if (kind)
            structures = kind->structures();
        for (std::uint32_t n = 1 + below(4); n > 0; --n) {
            switch (below(structures.empty() ? 6 : 12)) {
            case 0: // the payload's end
                record.resize(below(3) == 0 ? below(1200)
                                            : record.size() - below(5) % (record.size() + 1));
                break;
            case 1: // a number anywhere
                putNumber(record, below(static_cast<std::uint32_t>(record.size() + 1)),
                          1u << below(4));
                break;
            case 2: // a text anywhere in the payload
                putText(record, sizeof(EmpEvLogMsg_s) + below(200));
                break;
            case 3: // severity, category, payload version or event id
                putNumber(record, kSource + 1 + below(4), 1 + below(2));
                break;
            case 4: // a long tail
                for (std::uint32_t i = 1 + below(below(8) == 0 ? 400 : 20); i > 0; --i)
                    record += text();
                break;
            case 5: // a payload length that is not true
                put(record, kClaimed, 2, interesting(static_cast<std::uint32_t>(record.size())));
                continue;
            default:
                field(record, pick(structures));
            }
            if (below(8) != 0 && record.size() >= sizeof(EmpEvLogMsg_s))
                put(record, kClaimed, 2, record.size() - sizeof(EmpEvLogMsg_s));
        }
    }

    void field(std::string& record, const mpu::RecordKind::Structure& part) {
        if (part.rows.empty())
            return putNumber(record, part.at + below(64), 4);
        const mpu::Row& row = pick(part.rows);
        for (const mpu::Value& value : row.values) {
            if (!value.isRead())
                continue;
            const std::size_t at =
                part.at + value.at + (row.count ? below(row.count) * row.stride : 0u);
            if (value.kind == mpu::Value::Text || value.kind == mpu::Value::Trimmed)
                putText(record, at);
            else
                putNumber(record, at, value.size);
        }
    }

    std::uint64_t interesting(std::uint32_t size) {
        const std::uint64_t near[] = {0,      1,       2,          3,          4,      7,
                                      8,      31,      32,         33,         63,     64,
                                      0x7F,   0x80,    0xFF,       0x100,      0x7FFF, 0x8000,
                                      0xFFFF, 0x10000, 0x7FFFFFFF, 0x80000000, ~0ull,  1ull << 63};
        switch (below(4)) {
        case 0:
            return random_();
        case 1:
            return size + below(9) - 4ull - (below(2) == 0 ? sizeof(EmpEvLogMsg_s) : 0);
        default:
            return near[below(std::size(near))];
        }
    }
    void putNumber(std::string& record, std::size_t at, std::size_t size) {
        put(record, at, std::min<std::size_t>(size, 8),
            interesting(static_cast<std::uint32_t>(record.size())));
    }
    static void put(std::string& record, std::size_t at, std::size_t size, std::uint64_t value) {
        char bytes[8];
        mpu::storeBig(bytes, value);
        put(record, at, {bytes + sizeof bytes - size, size});
    }
    static void put(std::string& record, std::size_t at, std::string_view bytes) {
        if (record.size() < at + bytes.size())
            record.resize(at + bytes.size());
        record.replace(at, bytes.size(), bytes);
    }

    std::string text() {
        using namespace std::string_view_literals;
        static constexpr std::string_view kPieces[] = {
            "<"sv,        ">"sv,
            "</"sv,       "</>"sv,
            "<Tag>"sv,    "</Tag>"sv,
            "="sv,        "a=b "sv,
            "\0"sv,       "\n"sv,
            "\t"sv,       " "sv,
            ","sv,        ", "sv,
            "."sv,        ". "sv,
            ":"sv,        "\\"sv,
            "%s%n"sv,     "&amp;"sv,
            "\xFF"sv,     "\xC3\xA9"sv,
            "\xC3"sv,     "\xED\xA0\x80"sv,
            "\xF4\x8F"sv, "xyz"sv,
            "0x1F"sv,     "\"'"sv,
            "]]>"sv,      "\x7F\x80"sv,
            "\r\n"sv,     "<a><b>"sv,
            "</b></a>"sv, "key = value\n"sv,
            "func()"sv,   "12"sv,
        };
        std::string made;
        for (std::uint32_t n = 1 + below(6); n > 0; --n)
            made += pick(kPieces);
        if (below(4) == 0)
            made.append(below(300), "a= <\n\0\xFF"[below(7)]);
        return made;
    }
    void putText(std::string& record, std::size_t at) {
        std::string made = text();
        if (below(2) == 0)
            made.push_back('\0');
        put(record, at, made);
    }

    std::mt19937 random_;
    mpu::SampleWriter samples_;
};

} // namespace Pegasus::fuzz
