#include "event/Layout.h"

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

void write(TextWriter& out, const Layout& layout, RecordView view) {
    // Checked once: behind this every number lies inside.
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
    for (const Step* step = layout.steps;; ++step) {
        const std::size_t lead = step->lead;
        next = putLiteral(next, text, lead);
        text += lead;
        const std::uint8_t* at = bytes + step->at;
        switch (step->op) {
        case Step::End:
            out.commit(next);
            return;
        case Step::Literal:
            break;
        case Step::Upper4x8:
            next = putHex8(next, loadBig<std::uint32_t>(at), Case::Upper);
            break;
        case Step::Signed:
            next = putSigned(next, static_cast<std::int32_t>(loadBig<std::uint32_t>(at)));
            break;
        case Step::Unsigned:
            if (step->size <= 4)
                next = putDecimal(next, static_cast<std::uint32_t>(loadNumber(at, step->size)));
            else
                next = putDecimal(next, loadNumber(at, step->size));
            break;
        case Step::Upper:
            next = putHex(next, loadNumber(at, step->size), step->aux, Case::Upper);
            break;
        case Step::Lower:
            next = putHex(next, loadNumber(at, step->size), step->aux, Case::Lower);
            break;
        case Step::Pointer: {
            const std::uint32_t value = loadBig<std::uint32_t>(at);
            next = putText(next, value == 0 ? "(nil)" : "0x");
            if (value != 0)
                next = putHex(next, value, 1, Case::Lower);
            break;
        }
        case Step::Float:
            next = putFloat(next, loadBig<std::uint32_t>(at));
            break;
        case Step::Name:
            next = layout.helpers[step->aux].names->put(next, loadNumber(at, step->size));
            break;
        case Step::Function:
            next = layout.helpers[step->aux].put(next, at);
            break;
        case Step::Bit: {
            const std::uint64_t value = loadNumber(at, step->size);
            const bool set = step->bit == kAnyBit ? value != 0 : (value >> step->bit & 1) != 0;
            next = putText(next, layout.helpers[step->aux].names->at(set));
            break;
        }
        case Step::Text:
        case Step::Trimmed: {
            std::string_view found =
                view.text(step->at, step->extra ? step->extra : RecordView::kToEnd);
            if (step->op == Step::Trimmed)
                found = trimBlanks(found);
            out.commit(next);
            out.text(found);
            next = out.reserve(layout.room);
            break;
        }
        case Step::SkipZero:
            if (loadNumber(at, step->size) == 0) {
                text += step->extra;
                step += step->aux;
            }
            break;
        default:
            __builtin_unreachable(); // the compiler of layouts makes no other
        }
    }
}

} // namespace Pegasus::mpu
