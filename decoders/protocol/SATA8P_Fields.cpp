#include "decoders/protocol/SATA8P_Fields.h"

#include "decoders/protocol/SATA8P_Event.h"
#include "decoders/protocol/SATA8P_Layouts.h"

#include <charconv>

namespace Pegasus {

namespace mpu::sata {

namespace {

// Two digits per byte with a blank between the bytes.
char* putPairs(char* out, const std::uint8_t* bytes, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if (i > 0)
            *out++ = ' ';
        out = putHexByte(out, bytes[i], Case::Lower);
    }
    return out;
}

std::string_view errorCause(std::uint8_t error, bool read) {
    const unsigned lowest = error ? static_cast<unsigned>(std::countr_zero(error)) : kNoError;
    return kErrorCauses.at(read && lowest == kWriteError ? kReadError : lowest);
}

bool isReadCommand(std::uint8_t ata) { // READ DMA EXT, READ FPDMA QUEUED, READ LONG
    return ata == 0x25 || ata == 0x60 || ata == 0x22;
}

char* putNumbered(char* out, std::string_view before, std::uint32_t n) {
    out = putDecimal(putText(out, before), n);
    *out++ = ')';
    return out;
}

char* putRequestStatus(char* out, std::uint32_t status, std::uint32_t detail) {
    if (status == 1)
        return putText(out, "Success");
    if (status != 2)
        return putNumbered(out, "Unknown (", status);
    const std::string_view failure = kRequestFailures.find(detail);
    return failure.empty() ? putNumbered(out, "Unknown failure (", detail) : putText(out, failure);
}

} // namespace

// Single precision, so the last digits of a large capacity are those that fit in 24 bits; the
// scaling is by powers of 2 and exact.
char* putSize(char* out, std::uint64_t sectors) {
    struct Unit {
        float size;
        char name[3];
    };
    constexpr Unit kUnits[] = {{1073741824.0f, "GB"}, {1048576.0f, "MB"}, {1024.0f, "KB"}};
    constexpr Unit kBytes = {1.0f, "B"};
    const float bytes = static_cast<float>(sectors) * 512.0f;
    const Unit* unit =
        std::find_if(std::begin(kUnits), std::end(kUnits), [&](auto& u) { return bytes > u.size; });
    if (unit == std::end(kUnits))
        unit = &kBytes;
    const double scaled = bytes / unit->size;
    out = std::to_chars(out, out + kCapacityRoom, scaled, std::chars_format::fixed, 1).ptr;
    *out++ = ' ';
    return putText(out, unit->name);
}

char* putSeconds(char* out, std::uint32_t seconds, std::uint32_t milliseconds) {
    const double value = seconds + milliseconds / 1000.0;
    out = std::to_chars(out, out + kElapsedRoom, value, std::chars_format::fixed, 3).ptr;
    return putText(out, " Seconds");
}

char* putCapacity(char* out, const std::uint8_t* at) {
    return putSize(out, loadBig<std::uint64_t>(at));
}

char* putElapsed(char* out, const std::uint8_t* at) {
    return putSeconds(out, loadBig<std::uint32_t>(at), loadBig<std::uint32_t>(at + 4));
}

char* putCdb(char* out, const std::uint8_t* at) {
    const std::uint32_t length = loadBig<std::uint32_t>(at + v3::kCdbSize);
    return putPairs(out, at, std::min<std::uint32_t>(length, v3::kCdbSize));
}

char* putFisLba(char* out, const std::uint8_t* at) {
    std::uint64_t lba = 0;
    for (const unsigned i : {6u, 5u, 4u, 2u, 1u, 0u}) // 3 is the device byte
        lba = lba << 8 | at[i];
    return putHex(out, lba, 8, Case::Lower);
}

char* putSenseKey(char* out, const std::uint8_t* at) {
    return kSenseKeys.put(out, *at & 0x0Fu);
}

char* putSenseNumber(char* out, const std::uint8_t* at) {
    return putHexByte(out, *at & 0x0F, Case::Lower);
}

char* putRegisterCause(char* out, const std::uint8_t* at) {
    const std::uint32_t command = loadBig<std::uint32_t>(at + 3);
    const bool failed = (at[0] & 0x01) != 0;
    return putText(out, failed ? errorCause(at[1], command == kRead || command == kReadLong)
                               : kErrorCauses.at(kNoCause));
}

char* putRequestStatus(char* out, const std::uint8_t* at) {
    return putRequestStatus(out, at[0], at[1]);
}

char* putSwapped(char* out, const std::uint8_t* at) {
    const std::uint64_t high = loadBig<std::uint32_t>(at + 4);
    return putHex(out, high << 32 | loadBig<std::uint32_t>(at), 8, Case::Lower);
}

char* putPcixCommand(char* out, const std::uint8_t* at) {
    return kPcixCommands.put(out, at[3] & 0x0Fu);
}

void putCommandFis(TextWriter& body, const RecordView& fis) {
    write(body, kLayout<v3::kCommandFisRows, Style::Joined>, fis);
}

std::string_view putStatusFis(TextWriter& body, const RecordView& fis, std::uint8_t command) {
    const std::string_view cause = errorCause(fis.u8(3), isReadCommand(command));
    body.literal("<Error_Cause>").literal(cause).literal("</Error_Cause>");
    write(body, kLayout<v3::kStatusFisRows, Style::Joined>, fis);
    return cause;
}

std::string_view putSense(TextWriter& body, const RecordView& sense) {
    write(body, kLayout<v3::kSenseRows, Style::Joined>, sense);
    return kSenseKeys.at(sense.u8(v3::kSenseKeyAt) & 0x0F);
}

namespace {

using FieldWriter = StackWriter<1024>;

std::string nameOf(const NameTable& table, std::uint32_t code) {
    LineWriter out;
    table.put(out, code);
    return std::string(out.view());
}

} // namespace

} // namespace mpu::sata

using namespace mpu;
using namespace mpu::sata;

void SATA8P_Event::build_cdb(XmlString& body, const unsigned char* cdb, unsigned int length) {
    FieldWriter out;
    out.open("CDB");
    out.commit(putPairs(out.reserve(std::size_t{3} * length), cdb, length));
    out.close("CDB").open("CDB_Length").decimal(length).close("CDB_Length");
    body.append(out.view());
}

void SATA8P_Event::build_command_fis(XmlString& body, const SATA_HOST_DEVICE_FIS& command) {
    FieldWriter out;
    putCommandFis(out, {&command, sizeof command});
    body.append(out.view());
}

void SATA8P_Event::build_status_fis(XmlString& body, const SATA_DEVICE_HOST_FIS& status,
                                    const SATA_HOST_DEVICE_FIS& command, std::string& summary) {
    FieldWriter out;
    summary.append(putStatusFis(out, {&status, sizeof status}, command.command));
    body.append(out.view());
}

void SATA8P_Event::build_request_sense(XmlString& body, const SCSI_REQ_SENSE_DATA& sense,
                                       std::string& summary) {
    FieldWriter out;
    summary.append(putSense(out, {&sense, sizeof sense}));
    body.append(out.view());
}

std::string SATA8P_Event::get_inquiry_string(const char* text, int length) {
    const RecordView view(text, length > 0 ? static_cast<std::size_t>(length) : 0);
    return std::string(trimBlanks(view.text(0).raw()));
}

std::string SATA8P_Event::get_capacity(unsigned long long sectors) {
    char text[kCapacityRoom];
    return {text, putSize(text, sectors)};
}

std::string SATA8P_Event::get_capacity(unsigned int high, unsigned int low) {
    return get_capacity(static_cast<unsigned long long>(high) << 32 | low);
}

std::string SATA8P_Event::build_seconds(unsigned int seconds, unsigned int milliseconds) {
    char text[kElapsedRoom];
    return {text, putSeconds(text, seconds, milliseconds)};
}

std::string SATA8P_Event::get_marvell_command(unsigned int command) {
    return nameOf(kMarvellCommands, command);
}

std::string SATA8P_Event::get_drp_command(unsigned int command) {
    return nameOf(kRequestCommands, command);
}

std::string SATA8P_Event::get_drp_status(unsigned int status, unsigned int detail) {
    char text[kRequestStatusRoom];
    return {text, putRequestStatus(text, status, detail)};
}

std::string SATA8P_Event::build_unknown_string(unsigned int n) {
    char text[kRequestStatusRoom];
    return {text, putNumbered(text, "Unknown (", n)};
}

} // namespace Pegasus
