// Made-up messages that show every kind of record of every decoder.
#pragma once

#include "event/Catalogue.h"

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace Pegasus::mpu {

// What a sample can be of: a row of a table of events.
struct RecordKind {
    const EventTable* table;
    const EventRow* row;

    // For people: "1040 LAG Port Status Event".
    std::string title() const;
    // The numbers that select it.
    std::vector<Key> keys() const;

    struct Structure {
        std::span<const Row> rows;
        std::size_t at; // from the start of the record
        std::string_view sample;
    };
    // What tables say of its bytes.
    std::vector<Structure> structures() const;
};
// In the order of the tables.
std::vector<RecordKind> kindsOf(const Module& module);
// The same without those whose bodies are made as another's.
std::vector<RecordKind> shapesOf(const Module& module);

// Makes messages one after the other, the same ones for the same seed on every machine.
class SampleWriter {
public:
    explicit SampleWriter(std::uint32_t seed) : random_(seed) {}

    // A record of the kind with a plausible value in every field of its rows.
    std::string record(const Module& module, const RecordKind& kind);
    // The same after a message header.
    std::string message(const Module& module, const RecordKind& kind);

private:
    void fill(std::string& record, const Row& row, const Value& value, std::size_t at);
    std::uint32_t below(std::uint32_t bound) {
        return static_cast<std::uint32_t>(random_()) % bound;
    }

    std::mt19937 random_;
    std::uint32_t made_ = 0;
    std::uint32_t inLog_[2]{}; // of those, in the log of each controller
};

} // namespace Pegasus::mpu
