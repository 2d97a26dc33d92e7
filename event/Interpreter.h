// Runs a compiled table of rows.
#pragma once

#include "event/Layout.h"

namespace Pegasus::mpu {

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

[[gnu::always_inline]] inline std::uint64_t loadNumber(const std::uint8_t* at, unsigned size) {
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

// Writes the elements of the structure at the start of `view`. `watch` is told of each value: its
// instruction, and where in the output it is; of a row that is left out, that it is nowhere.
template <class Watch>
[[gnu::always_inline]] inline void interpret(TextWriter& out, const Layout& layout,
                                             const RecordView& view, std::string_view titleOf,
                                             Watch&& watch) {
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
        const std::size_t begin = out.position(next);
        switch (i->op) {
        case Opcode::End:
            out.commit(next);
            return;
        case Opcode::Literal:
            continue;
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
        case Opcode::Bit:
        case Opcode::Flag: {
            const std::uint64_t bits = loadNumber(at, i->size);
            const bool set = i->op == Opcode::Flag ? bits != 0 : (bits >> i->bit & 1) != 0;
            next = putText(next, layout.operands[i->operand].names->at(set));
            break;
        }
        case Opcode::Text:
        case Opcode::Trimmed: {
            Untrusted found = view.text(i->at, i->extra ? i->extra : RecordView::kToEnd);
            if (i->op == Opcode::Trimmed) {
                view.note(i->at, i->extra);
                found = Untrusted(trimBlanks(found.raw()));
            }
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
                watch(*i, begin, begin);
                text += i->extra;
                i += i->operand;
            }
            continue;
        default:
            __builtin_unreachable(); // the compiler of tables makes no other
        }
        watch(*i, begin, out.position(next));
    }
}

} // namespace Pegasus::mpu
