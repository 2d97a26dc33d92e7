#include "decoders/management/Location.h"

#include "decoders/common/Numbered.h"

namespace Pegasus::mpu {

namespace {

constexpr std::size_t kFileAt = offsetof(LocationBlock, text);

} // namespace

void copyText(char* out, std::string_view text) {
    if (!text.empty())
        std::memcpy(out, text.data(), text.size());
    out[text.size()] = '\0';
}

Location locationOf(const RecordView& block) {
    Location found;
    found.line = block.u16(0);
    found.file = block.text(kFileAt, sizeof(LocationBlock) - kFileAt);
    const std::size_t functionAt = kFileAt + found.file.size() + 1;
    if (functionAt < sizeof(LocationBlock))
        found.function = block.text(functionAt, sizeof(LocationBlock) - functionAt);
    return found;
}

void unpackLocation(const LocationBlock& block, int& line, char* function, char* file) {
    const Location found = locationOf({&block, sizeof block});
    line = found.line;
    copyText(function, found.function.raw());
    copyText(file, found.file.raw());
}

LocatedRecord::LocatedRecord(const RecordView& record, Block block)
    : record_(record), data_(record.subview(sizeof(EmpEvLogMsg_s))) {
    if (block == Block::Always || record.u16(144) > sizeof(LocationBlock)) {
        location_ = locationOf(data_.subview(0, sizeof(LocationBlock)));
        data_ = data_.subview(sizeof(LocationBlock));
    }
}

void LocatedRecord::putText(TextWriter& body, Untrusted text) {
    body.element("Text", text, " ");
}

void LocatedRecord::putDump(TextWriter& body, Untrusted text) const {
    const Rest rest = after(text);
    const std::size_t left = rest.left > 0 ? static_cast<std::size_t>(rest.left) : 0;
    body.literal("<Hex>").hexBytes(rest.data.bytes(0, left)).literal("</Hex>\n");
}

void LocatedRecord::putTrailer(TextWriter& body) const {
    body.element("File", location_.file, " ").element("Func", location_.function, " ");
    numbered(body, "<Line>", location_.line, "</Line> ");
}

LocatedRecord::Rest LocatedRecord::after(Untrusted text) const {
    const int room = static_cast<int>(record_.u16(144)) - static_cast<int>(sizeof(LocationBlock));
    const int taken = static_cast<int>(text.size()) + 1;
    if (room < taken)
        return {false, data_, room};
    return {true, data_.subview(text.size() + 1), room - taken};
}

} // namespace Pegasus::mpu
