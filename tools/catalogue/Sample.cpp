#include "tools/catalogue/Sample.h"

#include "platform/cmap/CMAPMessageHeader.h"

#include <algorithm>

namespace Pegasus::mpu {

namespace {

constexpr std::size_t kHeader = sizeof(EmpEvLogMsg_s);

void putBytes(std::string& record, std::size_t at, std::string_view bytes) {
    if (record.size() < at + bytes.size())
        record.resize(at + bytes.size());
    record.replace(at, bytes.size(), bytes);
}

void putNumber(std::string& record, std::size_t at, std::size_t size, std::uint64_t value) {
    char bytes[8];
    storeBig(bytes, value);
    putBytes(record, at, {bytes + sizeof bytes - size, size});
}

// A code of the row; for a catch-all one that no other row has.
std::uint32_t codeOf(const EventTable& table, const EventRow& row) {
    if (!row.codes.isAny())
        return row.codes.first;
    std::uint32_t code = 1;
    for (const EventRow& other : table.rows)
        if (other.codes.major == row.codes.major && !other.codes.isAny() &&
            other.codes.last >= code)
            code = other.codes.last + 1u;
    return code;
}

// Whether the row is for what no other row has, by a number in the data that a field may be, too.
bool isOpen(const EventTable& table, const EventRow& row) {
    return row.codes.isAny() && table.minor.at >= kHeader;
}

// Whether the record is one of another row, of those that have its major number.
bool isOfAnother(std::string_view record, const EventTable& table, const EventRow& row) {
    const RecordView view(record.data(), record.size());
    const std::uint32_t code = view.u32(table.minor.at) >> (32 - 8 * table.minor.size);
    return std::any_of(table.rows.begin(), table.rows.end(), [&](const EventRow& other) {
        return other.codes.major == row.codes.major && !other.codes.isAny() &&
               other.codes.first <= code && code <= other.codes.last;
    });
}

} // namespace

void SampleWriter::fill(std::string& record, const Row& row, const Value& value, std::size_t at) {
    const std::uint64_t bits = static_cast<std::uint64_t>(random_()) << 32 | random_();
    switch (value.kind) {
    case Value::None:
    case Value::Index:
    case Value::EventName:
        return;
    case Value::Number: {
        const bool decimal = row.format.find_first_of("du") != std::string_view::npos;
        std::uint64_t number = decimal ? 1 + bits % (value.size == 1 ? 200 : 5000) : bits;
        if (row.format.find('f') != std::string_view::npos)
            number = std::bit_cast<std::uint32_t>(static_cast<float>(bits % 2000) / 100);
        putNumber(record, at, value.size, number);
        return;
    }
    case Value::Bit:
        putNumber(record, at, value.size, bits);
        return;
    case Value::Custom: // what its bytes mean is the function's
        for (std::size_t i = 0; i < value.size; ++i)
            putNumber(record, at + i, 1, below(256));
        return;
    case Value::Name: {
        const std::size_t codes = value.names->codes();
        std::size_t code = static_cast<std::size_t>(bits % codes);
        for (std::size_t tries = 0; value.names->at(code).empty() && tries < codes; ++tries)
            code = (code + 1) % codes;
        putNumber(record, at, value.size, code);
        return;
    }
    case Value::Text:
    case Value::Trimmed: {
        std::string text(row.tag);
        text.append(1, '-').append(std::to_string(bits % 90 + 10));
        if (value.size != 0)
            text.resize(value.size, value.kind == Value::Trimmed ? ' ' : '\0');
        else
            text.push_back('\0');
        putBytes(record, at, text);
        return;
    }
    }
}

std::string SampleWriter::record(const Module& module, const RecordKind& kind) {
    std::string record(kHeader, '\0');
    const std::vector<RecordKind::Structure> structures = kind.structures();
    for (const RecordKind::Structure& structure : structures)
        for (const Row& row : structure.rows)
            for (std::size_t i = 0; i < row.count; ++i)
                for (const Value& value : row.values)
                    fill(record, row, value, structure.at + value.at + i * row.stride);
    for (const RecordKind::Structure& structure : structures)
        putBytes(record, structure.at, structure.sample);

    EmpEvLogMsg_s header; // a title's row may have filled the event id
    std::memcpy(&header, record.data(), kHeader);
    const std::uint32_t slot = 1 + below(2);
    std::memcpy(header.enclosureSerialNumber, "ENC0004711", 10);
    std::memcpy(header.controllerSerialNumber, slot == 1 ? "CTL0000815" : "CTL0000816", 10);
    header.slotId = slot;
    header.logInstance = 1;
    header.sequenceId = ++inLog_[slot - 1]; // each controller has a log of its own
    ++made_;
    header.timestamp = 0x4AF00000u + 60 * made_;
    header.source = module.source;
    header.eventType = static_cast<std::uint8_t>((below(4) == 0 ? 101 : 1) + made_ % 3);
    header.category = static_cast<std::uint8_t>(1 + module.source % 14);
    record.replace(0, kHeader, reinterpret_cast<const char*>(&header), kHeader);
    for (const Key& key : kind.keys())
        putNumber(record, key.at, key.size, key.value);
    if (kind.row && isOpen(*kind.table, *kind.row) && isOfAnother(record, *kind.table, *kind.row)) {
        const Value& minor = kind.table->minor;
        putNumber(record, minor.at, minor.size, codeOf(*kind.table, *kind.row));
    }
    putNumber(record, offsetof(EmpEvLogMsg_s, evStructLength), 2, record.size() - kHeader);
    return record;
}

std::string SampleWriter::message(const Module& module, const RecordKind& kind) {
    const std::string record = this->record(module, kind);
    CMAPMessageHeader header;
    header.setMessageLength(static_cast<std::uint16_t>(message_header::kSize + record.size()));
    return std::string(reinterpret_cast<const char*>(header.wireBytes()), message_header::kSize) +
           record;
}

std::vector<RecordKind> kindsOf(const Module& module) {
    std::vector<RecordKind> kinds;
    for (const EventTable* table : module.tables)
        for (const EventRow& row : table->rows)
            kinds.push_back({table, &row});
    return kinds;
}

std::vector<RecordKind> shapesOf(const Module& module) {
    const auto isSame = [](const Piece& a, const Piece& b) {
        return a.at == b.at && a.rows.data() == b.rows.data() && a.custom == b.custom;
    };
    std::vector<RecordKind> shapes;
    for (const RecordKind& kind : kindsOf(module))
        if (std::none_of(shapes.begin(), shapes.end(), [&](const RecordKind& known) {
                return known.table == kind.table &&
                       std::equal(kind.row->pieces.begin(), kind.row->pieces.end(),
                                  known.row->pieces.begin(), isSame);
            }))
            shapes.push_back(kind);
    return shapes;
}

std::string RecordKind::title() const {
    std::string text(table->heading);
    text.append(text.empty() ? "" : ": ");
    if (row->codes.major != 0)
        text.append(std::to_string(row->codes.major)).append("/");
    text.append(row->codes.isAny() ? "any" : std::to_string(row->codes.first));
    return text.append(" ").append(row->title.other);
}

std::vector<Key> RecordKind::keys() const {
    std::vector<Key> keys(table->keys.begin(), table->keys.end());
    const auto select = [&](const Value& number, std::uint32_t code) {
        if (number.kind != Value::None)
            keys.push_back({number.at, static_cast<std::uint8_t>(number.size), code});
    };
    select(table->major, row->codes.major);
    if (!isOpen(*table, *row))
        select(table->minor, codeOf(*table, *row));
    return keys;
}

std::vector<RecordKind::Structure> RecordKind::structures() const {
    std::vector<Structure> all;
    const auto add = [&](std::span<const Piece> pieces, std::size_t base) {
        for (const Piece& piece : pieces)
            if (piece.kind == Piece::Custom)
                all.push_back({piece.custom->rows, base + piece.at, piece.custom->sample});
            else if (piece.kind != Piece::None)
                all.push_back({piece.rows, base + piece.at, piece.sample});
    };
    add(table->frame, 0);
    all.push_back({{&table->title, 1}, 0, {}});
    all.push_back({{&row->summary.row, 1}, table->dataAt, {}});
    for (const Pieces* pieces : {&table->head, &row->pieces, &table->tail})
        add(*pieces, table->dataAt);
    return all;
}

} // namespace Pegasus::mpu
