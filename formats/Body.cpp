#include "formats/Body.h"

#include "event/Ascii.h"

#include <algorithm>
#include <array>

namespace Pegasus::formats {

namespace {

constexpr std::size_t kMaxDepth = 32; // ours nest twice
constexpr std::size_t kMaxName = 128;

// What a name may hold; it begins with no blank.
constexpr auto kNameCharacters = [] {
    std::array<bool, 256> all{};
    for (unsigned c = 0; c < 128; ++c)
        all[c] = mpu::isPrintable(static_cast<char>(c)) && c != '<' && c != '>';
    return all;
}();

// The name that `text` begins with if ">" follows it, else an empty one.
std::string_view nameAt(std::string_view text) {
    const std::size_t most = std::min(text.size(), kMaxName + 1);
    std::size_t length = 0;
    while (length < most && kNameCharacters[static_cast<unsigned char>(text[length])])
        ++length;
    const bool isName = length < most && text[length] == '>' && text[0] != ' ';
    return text.substr(0, isName ? length : 0);
}

// The same if it is the one that is expected.
std::string_view nameIf(std::string_view text, std::string_view expected) {
    const std::size_t length = expected.size();
    const bool isIt = text.size() > length && text[length] == '>' && text.starts_with(expected);
    return text.substr(0, isIt ? length : 0);
}

} // namespace

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && mpu::isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && mpu::isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

// A closing tag ends the innermost open element of its name; what was opened inside and not closed
// is text, and so is a closing tag without an opening one.
void BodyParser::findTags(std::string_view body) {
    tags_.clear();
    open_.clear();
    std::size_t matched = 0;
    for (std::size_t at = body.find('<'); at != std::string_view::npos; at = body.find('<', at)) {
        const std::size_t begin = at++;
        const bool closes = at < body.size() && body[at] == '/';
        const std::string_view rest = body.substr(at + closes);
        std::string_view name;
        // Most closing tags are those of the tag before.
        if (closes && !open_.empty())
            name = nameIf(rest, tags_[open_.back()].name);
        if (name.empty())
            name = nameAt(rest);
        if (name.empty())
            continue;
        at += closes + name.size() + 1;
        tags_.push_back({begin, at, name, false, closes});
        if (!closes) {
            if (open_.size() == kMaxDepth)
                open_.erase(open_.begin());
            open_.push_back(tags_.size() - 1);
            continue;
        }
        for (std::size_t k = open_.size(); k-- > 0;) {
            if (tags_[open_[k]].name == name) {
                tags_[open_[k]].matches = tags_.back().matches = true;
                matched += 2;
                open_.resize(k);
                break;
            }
        }
    }
    if (matched != tags_.size())
        std::erase_if(tags_, [](const Tag& tag) { return !tag.matches; });
}

void BodyParser::addText(std::string_view text) {
    text = trimmed(text);
    if (!text.empty())
        items_.push_back({BodyItem::Text, {}, text});
}

const std::vector<BodyItem>& BodyParser::parse(std::string_view body) {
    findTags(body);
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
