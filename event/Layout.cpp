#include "event/Layout.h"

#include "event/Interpreter.h"

#include <algorithm>

namespace Pegasus::mpu {

std::string_view trimBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

namespace {

[[gnu::noinline, gnu::cold]] void noteBytes(const Layout& layout, const RecordView& view) {
    for (std::size_t at = 0; at < layout.extent; ++at)
        if (layout.mask[at / 32] >> at % 32 & 1)
            view.note(at, 1);
}

} // namespace

void write(TextWriter& out, const Layout& layout, const RecordView& view,
           std::string_view titleOf) {
    if (Footprint* footprint = view.footprint()) {
        footprint->weaken(layout.provenance);
        if (footprint->trace()) [[unlikely]]
            return footprint->trace()->write(out, layout, view, titleOf);
        noteNumbers(layout, view);
    }
    interpret(out, layout, view, titleOf, [](const Instruction&, std::size_t, std::size_t) {});
}

void noteNumbers(const Layout& layout, const RecordView& view) {
    if (!layout.mask)
        view.note(0, layout.extent);
    else if (!view.noteMask(layout.mask, layout.extent)) [[unlikely]]
        noteBytes(layout, view);
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

void Events::call(Draft& draft, const Piece& piece, const Record& record,
                  const RecordView& view) const {
    Footprint* const footprint = view.footprint();
    if (footprint)
        footprint->beginCode(piece.provenance);
    functions[piece.index](draft, record, view);
    if (footprint)
        footprint->beginCode(Provenance::Documented);
}

void Events::pieces(Draft& draft, Range range, std::string_view name, const Record& record,
                    const RecordView& data) const {
    const Piece* piece = pieceCodes + range.first;
    for (const Piece* const end = piece + range.count; piece != end; ++piece) {
        const RecordView view = data.subview(piece->at);
        if (piece->isCustom)
            call(draft, *piece, record, view);
        else
            mpu::write(draft.body, layout(piece->index), view, name);
    }
}

void Events::writeRows(TextWriter& body, const Entry& entry, unsigned first, unsigned n,
                       const RecordView& data) const {
    const Piece* piece = pieceCodes + entry.piece + 1 + first;
    for (const std::uint16_t start = piece->at; n > 0; --n, ++piece)
        mpu::write(body, layout(piece->index), data.subview(piece->at - start));
}

void Events::writeBody(Draft& draft, const Entry& entry, const Record& record,
                       const RecordView& data) const {
    const std::string_view name = title(entry, 0);
    const Piece& summary = pieceCodes[entry.piece];
    if (Footprint* footprint = data.footprint())
        footprint->beginEvent(entry.provenance);
    if (summary.isCustom)
        call(draft, summary, record, data.subview(summary.at));
    else
        mpu::write(draft.summary, layout(summary.index), data, name);
    pieces(
        draft,
        {static_cast<std::uint16_t>(entry.piece + 1), static_cast<std::uint8_t>(entry.pieces - 1)},
        name, record, data);
}

void Events::write(Draft& draft, const Entry& entry, const Record& record,
                   const RecordView& data) const {
    draft.title.literal(title(entry, record.severity()));
    writeBody(draft, entry, record, data);
}

} // namespace Pegasus::mpu
