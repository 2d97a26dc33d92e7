#include "formats/Readings.h"

#include "event/Interpreter.h"

#include <fmt/format.h>

namespace Pegasus::formats {

namespace {

// As the tables write it; "l" and the sign of small numbers are lost in compiling.
std::string formOf(const mpu::Instruction& i) {
    using mpu::Opcode;
    switch (i.op) {
    case Opcode::Unsigned:
        return "%u";
    case Opcode::Signed:
        return "%d";
    case Opcode::Upper:
    case Opcode::Lower:
    case Opcode::Upper4x8: {
        const unsigned digits = i.op == Opcode::Upper4x8 ? 8 : i.operand;
        const char letter = i.op == Opcode::Lower ? 'x' : 'X';
        return digits > 1 ? fmt::format("%0{}{}", digits, letter) : fmt::format("%{}", letter);
    }
    case Opcode::Pointer:
        return "%p";
    case Opcode::Float:
        return "%f";
    case Opcode::Name:
        return "name";
    case Opcode::Bit:
        return fmt::format("bit {}", static_cast<unsigned>(i.bit));
    case Opcode::Flag:
        return "flag";
    case Opcode::SkipZero:
        return "if not 0";
    default:
        return "%s";
    }
}

// How many of the bytes came.
std::size_t came(const mpu::RecordView& view, std::size_t at, std::size_t count) {
    const std::size_t inside = view.size() - std::min(at, view.size());
    const std::size_t carried = view.footprint()->carried();
    return std::min({count, inside, carried - std::min(carried, view.offset() + at)});
}

} // namespace

void Readings::clear() {
    settled_ = 0;
    all_.clear();
    stretches_.clear();
    meaning_ = Provenance::Documented;
}

void Readings::read(std::size_t at, std::size_t count, std::size_t missing) {
    if (inLayout_ || count == 0)
        return;
    settle();
    const std::size_t begin = draft_.body.view().size();
    summaryBegin_ = draft_.summary.view().size();
    titleBegin_ = draft_.title.view().size();
    all_.push_back({static_cast<std::uint32_t>(at), static_cast<std::uint32_t>(count),
                    static_cast<std::uint32_t>(missing),
                    stretches_.empty() ? Provenance::Documented : stretches_.back().provenance,
                    Reading::Body, true, "", begin, begin});
}

void Readings::write(mpu::TextWriter& out, const mpu::Layout& layout, const mpu::RecordView& view,
                     std::string_view titleOf) {
    const Reading::Text text = &out == &draft_.title     ? Reading::Title
                               : &out == &draft_.summary ? Reading::Summary
                                                         : Reading::Body;
    const bool isOther = &out != &draft_.body && text == Reading::Body; // what code copies later
    settle();
    inLayout_ = true;
    mpu::noteNumbers(layout, view);
    const auto watch = [&](const mpu::Instruction& i, std::size_t begin, std::size_t end) {
        using mpu::Opcode;
        if (i.op == Opcode::EventName)
            return;
        std::size_t size = i.size;
        std::size_t missing = 0;
        if (i.op == Opcode::Text) {
            const std::size_t most = i.extra ? i.extra : mpu::RecordView::kToEnd;
            size = view.text(i.at, most).size();
            size += size < most && i.at + size < view.size(); // the NUL
        } else {
            if (i.op == Opcode::Trimmed)
                size = i.extra;
            missing = size - came(view, i.at, size);
        }
        if (size == 0) // a text that the record has no room for
            return;
        all_.push_back({static_cast<std::uint32_t>(view.offset() + i.at),
                        static_cast<std::uint32_t>(size), static_cast<std::uint32_t>(missing),
                        i.provenance, text, isOther, formOf(i), begin, end});
        if (isOther)
            all_.back().begin = all_.back().end = draft_.body.view().size();
    };
    mpu::interpret(out, layout, view, titleOf, watch);
    inLayout_ = false;
    settled_ = all_.size();
}

// Code has written what it read before: perhaps to another text than the body.
void Readings::settle() {
    for (; settled_ < all_.size(); ++settled_) {
        Reading& reading = all_[settled_];
        if (draft_.body.view().size() != reading.begin)
            continue;
        if (draft_.summary.view().size() != summaryBegin_) {
            reading.text = Reading::Summary;
            reading.begin = reading.end = summaryBegin_;
        } else if (draft_.title.view().size() != titleBegin_) {
            reading.text = Reading::Title;
            reading.begin = reading.end = titleBegin_;
        }
    }
}

void Readings::beginCode(Provenance provenance) {
    settle();
    stretches_.push_back({draft_.body.view().size(), provenance});
}

// What the decoder read to get here are the codes.
void Readings::beginEvent(Provenance provenance) {
    settle();
    meaning_ = provenance;
    for (Reading& reading : all_)
        if (reading.byCode)
            reading.provenance = std::max(reading.provenance, provenance);
}

std::pair<std::size_t, std::size_t> extentOf(std::string_view body, const BodyItem& item) {
    const auto at = [&](std::string_view part) {
        return static_cast<std::size_t>(part.data() - body.data());
    };
    switch (item.type) {
    case BodyItem::Element:
        // The tags, and the blank after the element.
        {
            std::size_t end = at(item.text) + item.text.size() + item.name.size() + 3;
            end += end < body.size() && body[end] == ' ';
            return {at(item.name) - 1, end};
        }
    case BodyItem::Text:
        return {at(item.text), at(item.text) + item.text.size()};
    default: // the tag alone
        return {at(item.name) - 1, at(item.name) + item.name.size() + 1};
    }
}

std::vector<std::size_t> Readings::itemsOf(std::string_view body,
                                           const std::vector<BodyItem>& items) const {
    std::vector<std::size_t> found;
    std::size_t item = 0;
    std::size_t last = 0;
    for (const Reading& reading : all_) {
        if (reading.text != Reading::Body) {
            found.push_back(kNone);
            continue;
        }
        if (reading.begin < last)
            item = 0;
        last = reading.begin;
        // The one that it is in, or the next one that is written.
        while (item < items.size() &&
               (items[item].type == BodyItem::Group || items[item].type == BodyItem::End ||
                extentOf(body, items[item]).second <= reading.begin))
            ++item;
        found.push_back(item < items.size() && (reading.byCode || reading.end > reading.begin ||
                                                extentOf(body, items[item]).first < reading.begin)
                            ? item
                            : kNone);
    }
    return found;
}

const std::vector<FieldBasis>& Readings::basisOf(std::string_view body,
                                                 const std::vector<BodyItem>& items) {
    basis_.assign(items.size(), {});
    const std::vector<std::size_t> found = itemsOf(body, items);
    for (std::size_t i = 0; i < found.size(); ++i) {
        if (found[i] == kNone)
            continue;
        FieldBasis& basis = basis_[found[i]];
        basis.layout = std::max(basis.layout, all_[i].provenance);
        basis.missingBytes += all_[i].missing;
    }
    std::size_t stretch = 0;
    for (std::size_t i = 0; i < items.size() && !stretches_.empty(); ++i) {
        const std::size_t begin = extentOf(body, items[i]).first;
        while (stretch + 1 < stretches_.size() && stretches_[stretch + 1].begin <= begin)
            ++stretch;
        if (stretches_[stretch].begin <= begin)
            basis_[i].layout = std::max(basis_[i].layout, stretches_[stretch].provenance);
    }
    return basis_;
}

} // namespace Pegasus::formats
