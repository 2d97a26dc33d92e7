#include "tools/catalogue/Sample.h"

#include "platform/cmap/CMAPMessageHeader.h"

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

} // namespace

void SampleWriter::fill(std::string& record, const Row& row, const Value& value, std::size_t at) {
    const std::uint64_t bits = static_cast<std::uint64_t>(random_()) << 32 | random_();
    switch (value.kind) {
    case Value::None:
    case Value::Index:
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
    case Value::Function: // what its bytes mean is the function's: see the section's fills
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

void SampleWriter::fill(std::string& record, const Part& part) {
    for (const Row& row : part.rows)
        for (std::size_t i = 0; i < row.count; ++i)
            for (const Value& value : row.values)
                fill(record, row, value, part.at + value.at + i * row.step);
}

std::string SampleWriter::record(const Module& module, const Section& section) {
    std::string record(kHeader, '\0');
    for (const Part& part : section.parts)
        fill(record, part);
    for (const Fill& fill : section.fills)
        putBytes(record, fill.at, fill.bytes);

    EmpEvLogMsg_s header{};
    const std::uint32_t slot = 1 + below(2);
    std::memcpy(header.enclosureSerialNumber, "ENC0004711", 10);
    std::memcpy(header.controllerSerialNumber, slot == 1 ? "CTL0000815" : "CTL0000816", 10);
    header.slotId = slot;
    header.logInstance = 1;
    header.sequenceId = ++made_;
    header.timestamp = 0x4AF00000u + 60 * made_;
    header.source = module.source;
    header.eventType = static_cast<std::uint8_t>((below(4) == 0 ? 101 : 1) + made_ % 3);
    header.category = static_cast<std::uint8_t>(1 + module.source % 14);
    record.replace(0, kHeader, reinterpret_cast<const char*>(&header), kHeader);
    for (const Key& key : section.keys)
        putNumber(record, key.at, key.size, key.value);
    putNumber(record, offsetof(EmpEvLogMsg_s, evStructLength), 2, record.size() - kHeader);
    return record;
}

std::string SampleWriter::message(const Module& module, const Section& section) {
    const std::string record = this->record(module, section);
    CMAPMessageHeader header;
    header.setMessageLength(static_cast<std::uint16_t>(message_header::kSize + record.size()));
    return std::string(reinterpret_cast<const char*>(header.wireBytes()), message_header::kSize) +
           record;
}

} // namespace Pegasus::mpu
