#include "formats/Body.h"

#include "event/Ascii.h"

#include <algorithm>

namespace Pegasus::formats {

namespace {

constexpr std::size_t kMaxDepth = 32; // ours nest twice
constexpr std::size_t kMaxName = 128;
constexpr std::size_t kNone = static_cast<std::size_t>(-1);

bool isName(std::string_view name) {
    return !name.empty() && name.size() <= kMaxName && name.front() != ' ' &&
           std::all_of(name.begin(), name.end(),
                       [](char c) { return mpu::isPrintable(c) && c != '<'; });
}

} // namespace

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && mpu::isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && mpu::isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

void BodyParser::findTags(std::string_view body) {
    tags_.clear();
    for (std::size_t at = body.find('<'); at != std::string_view::npos;
         at = body.find('<', at + 1)) {
        const std::string_view rest = body.substr(at + 1, kMaxName + 2);
        const std::size_t gt = rest.find('>');
        if (gt == std::string_view::npos)
            continue;
        const bool closes = rest.front() == '/';
        const std::string_view name = rest.substr(closes, gt - closes);
        if (isName(name))
            tags_.push_back({at, at + 1 + gt + 1, name, kNone, closes});
    }
}

// A closing tag ends the innermost open element of its name; what was opened inside and not closed
// is text, and so is a closing tag without an opening one.
void BodyParser::matchTags() {
    open_.clear();
    for (std::size_t i = 0; i < tags_.size(); ++i) {
        if (!tags_[i].closes) {
            if (open_.size() == kMaxDepth)
                open_.erase(open_.begin());
            open_.push_back(i);
            continue;
        }
        for (std::size_t k = open_.size(); k-- > 0;) {
            if (tags_[open_[k]].name == tags_[i].name) {
                tags_[open_[k]].partner = i;
                tags_[i].partner = open_[k];
                open_.resize(k);
                break;
            }
        }
    }
    tags_.erase(std::remove_if(tags_.begin(), tags_.end(),
                               [](const Tag& tag) { return tag.partner == kNone; }),
                tags_.end());
}

void BodyParser::addText(std::string_view text) {
    text = trimmed(text);
    if (!text.empty())
        items_.push_back({BodyItem::Text, {}, text});
}

const std::vector<BodyItem>& BodyParser::parse(std::string_view body) {
    findTags(body);
    matchTags();
    items_.clear();
    std::size_t done = 0;
    for (std::size_t i = 0; i < tags_.size(); ++i) {
        const Tag& tag = tags_[i];
        addText(body.substr(done, tag.begin - done));
        done = tag.end;
        if (tag.closes) {
            items_.push_back({BodyItem::End, tag.name, {}});
        } else if (i + 1 < tags_.size() && tags_[i + 1].closes) {
            // Tags that are left match, so this one is ours.
            const Tag& closer = tags_[++i];
            items_.push_back({BodyItem::Element, tag.name, body.substr(done, closer.begin - done)});
            done = closer.end;
        } else {
            items_.push_back({BodyItem::Group, tag.name, {}});
        }
    }
    addText(body.substr(done));
    return items_;
}

} // namespace Pegasus::formats
