// The elements of an event's body.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Pegasus::formats {

// A body is a run of elements, flat but for groups of elements, and of text between them.
struct BodyItem {
    enum Type : unsigned char {
        Text,    // outside elements, without the blanks around it
        Element, // name and value
        Group,   // an element that has elements; its items follow
        End,     // of the group
    };
    Type type;
    std::string_view name;
    std::string_view text;
};

// Without the blanks and line breaks around it.
std::string_view trimmed(std::string_view text);

// Splits a body; the items point into it. Total: a tag without partner is text, and so is one with
// more than 32 open ones inside it. Groups and ends match. Linear in the length of the body.
class BodyParser {
public:
    const std::vector<BodyItem>& parse(std::string_view body);

private:
    struct Tag {
        std::size_t begin; // "<"
        std::size_t end;   // after ">"
        std::string_view name;
        bool matches; // has its partner
        bool closes;
    };
    void findTags(std::string_view body);
    void addText(std::string_view text);

    std::vector<Tag> tags_;
    std::vector<std::size_t> open_; // indices of opening tags without a partner so far
    std::vector<BodyItem> items_;
};

} // namespace Pegasus::formats
