#include "event/Layout.h"

#include <algorithm>

namespace Pegasus::mpu {

namespace {

// Copies whole blocks: both sides have kSlack bytes to spare.
inline char* putLiteral(char* out, const char* text, std::size_t count) {
    constexpr std::size_t kBlock = TextWriter::kSlack;
    std::memcpy(out, text, kBlock);
    if (count > kBlock) {
        std::memcpy(out + kBlock, text + kBlock, kBlock);
        for (std::size_t at = 2 * kBlock; at < count; at += kBlock)
            std::memcpy(out + at, text + at, kBlock);
    }
    return out + count;
}

inline std::uint64_t loadNumber(const std::uint8_t* at, unsigned size) {
    switch (size) {
    case 1:
        return *at;
    case 2:
        return loadBig<std::uint16_t>(at);
    case 4:
        return loadBig<std::uint32_t>(at);
    case 8:
        return loadBig<std::uint64_t>(at);
    default:
        std::uint64_t value = 0;
        for (unsigned i = 0; i < size; ++i)
            value = value << 8 | at[i];
        return value;
    }
}

} // namespace

std::string_view trimBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

void write(TextWriter& out, const Layout& layout, RecordView view, std::string_view titleOf) {
    // Checked once: from here on every number is inside.
    std::uint8_t padded[kMaxExtent];
    const std::uint8_t* bytes = view.data();
    if (view.size() < layout.extent || !bytes) {
        std::memset(padded, 0, layout.extent);
        if (bytes)
            std::memcpy(padded, bytes, view.size());
        bytes = padded;
    }
    const char* text = layout.text;
    char* next = out.reserve(layout.room);
    for (const Instruction* i = layout.code;; ++i) {
        next = putLiteral(next, text, i->literalLength);
        text += i->literalLength;
        const std::uint8_t* at = bytes + i->at;
        switch (i->op) {
        case Opcode::End:
            out.commit(next);
            return;
        case Opcode::Literal:
            break;
        case Opcode::Upper4x8:
            next = putHex8(next, loadBig<std::uint32_t>(at), Case::Upper);
            break;
        case Opcode::Signed:
            next = putSigned(next, static_cast<std::int32_t>(loadBig<std::uint32_t>(at)));
            break;
        case Opcode::Unsigned:
            if (i->size <= 4)
                next = putDecimal(next, static_cast<std::uint32_t>(loadNumber(at, i->size)));
            else
                next = putDecimal(next, loadNumber(at, i->size));
            break;
        case Opcode::Upper:
            next = putHex(next, loadNumber(at, i->size), i->operand, Case::Upper);
            break;
        case Opcode::Lower:
            next = putHex(next, loadNumber(at, i->size), i->operand, Case::Lower);
            break;
        case Opcode::Pointer: {
            const std::uint32_t value = loadBig<std::uint32_t>(at);
            next = putText(next, value == 0 ? "(nil)" : "0x");
            if (value != 0)
                next = putHex(next, value, 1, Case::Lower);
            break;
        }
        case Opcode::Float:
            next = putFloat(next, loadBig<std::uint32_t>(at));
            break;
        case Opcode::Name:
            next = layout.operands[i->operand].names->put(next, loadNumber(at, i->size));
            break;
        case Opcode::Custom:
            next = layout.operands[i->operand].put(next, at);
            break;
        case Opcode::Bit: {
            const std::uint64_t value = loadNumber(at, i->size);
            const bool set = i->bit == kAnyBit ? value != 0 : (value >> i->bit & 1) != 0;
            next = putText(next, layout.operands[i->operand].names->at(set));
            break;
        }
        case Opcode::Text:
        case Opcode::Trimmed: {
            Untrusted found = view.text(i->at, i->extra ? i->extra : RecordView::kToEnd);
            if (i->op == Opcode::Trimmed)
                found = Untrusted(trimBlanks(found.raw()));
            out.commit(next);
            out.untrusted(found);
            next = out.reserve(layout.room);
            break;
        }
        case Opcode::EventName:
            out.commit(next);
            out.literal(titleOf);
            next = out.reserve(layout.room);
            break;
        case Opcode::SkipZero:
            if (loadNumber(at, i->size) == 0) {
                text += i->extra;
                i += i->operand;
            }
            break;
        default:
            __builtin_unreachable(); // the compiler of tables makes no other
        }
    }
}

const Events::Entry* Events::find(std::uint32_t major, std::uint32_t minor) const {
    // Codes beyond 16 bits are matched by catch-alls only, whose last code is 0xFFFF.
    const auto clamped = [](std::uint32_t n) { return std::min<std::uint32_t>(n, 0xFFFF); };
    const auto codeOf = [](const Entry& entry) {
        return std::uint32_t{entry.major} << 16 | entry.first;
    };
    const std::uint32_t group = clamped(major) << 16;
    const std::uint32_t wanted = group | clamped(minor);
    const Entry* const end = entries + count;
    const Entry* found = std::upper_bound(
        entries, end, wanted, [&](std::uint32_t c, const Entry& e) { return c < codeOf(e); });
    if (found != entries && (--found)->major == clamped(major) && clamped(minor) <= found->last)
        return found;
    found = std::lower_bound(entries, end, group,
                             [&](const Entry& e, std::uint32_t c) { return codeOf(e) < c; });
    return found != end && found->major == clamped(major) && found->last == Codes::kAnyCode
               ? found
               : nullptr;
}

void Events::pieces(Draft& draft, Range range, std::string_view name, const Record& record,
                    RecordView data) const {
    const Piece* piece = pieceCodes + range.first;
    for (const Piece* const end = piece + range.count; piece != end; ++piece) {
        const RecordView view = data.subview(piece->at);
        if (piece->isCustom)
            functions[piece->index](draft, record, view);
        else
            mpu::write(draft.body, layout(piece->index), view, name);
    }
}

void Events::writeRows(TextWriter& body, const Entry& entry, unsigned first, unsigned n,
                       RecordView data) const {
    const Piece* piece = pieceCodes + entry.piece + 1 + first;
    for (const std::uint16_t start = piece->at; n > 0; --n, ++piece)
        mpu::write(body, layout(piece->index), data.subview(piece->at - start));
}

void Events::writeBody(Draft& draft, const Entry& entry, const Record& record,
                       RecordView data) const {
    const std::string_view name = title(entry, 0);
    const Piece& summary = pieceCodes[entry.piece];
    if (summary.isCustom)
        functions[summary.index](draft, record, data.subview(summary.at));
    else
        mpu::write(draft.summary, layout(summary.index), data, name);
    pieces(
        draft,
        {static_cast<std::uint16_t>(entry.piece + 1), static_cast<std::uint8_t>(entry.pieces - 1)},
        name, record, data);
}

void Events::write(Draft& draft, const Entry& entry, const Record& record, RecordView data) const {
    draft.title.literal(title(entry, record.severity()));
    writeBody(draft, entry, record, data);
}

} // namespace Pegasus::mpu
