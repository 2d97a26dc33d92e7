#include "formats/NamedValues.h"

#include "formats/Columns.h"

#include <algorithm>

namespace Pegasus::formats {

namespace {

const Column* columnOf(std::string_view name) {
    const auto* found = std::find_if(std::begin(kColumns), std::end(kColumns),
                                     [name](const Column& column) { return column.name == name; });
    return found == std::end(kColumns) ? nullptr : found;
}

} // namespace

NamedValues::NamedValues(const std::string& name)
    : name_(name), tag_("<" + name + ">"), column_(columnOf(name)) {}

const std::vector<std::string_view>& NamedValues::of(const DecodedEvent& event) {
    values_.clear();
    if (column_ && column_->text) {
        values_.push_back(event.*column_->text);
    } else if (column_) {
        number_.clear();
        column_->putNumber(event, number_);
        values_.push_back(number_.view());
    } else if (event.body.find(tag_) != event.body.npos) {
        for (const BodyItem& item : parser_.parse(event.body))
            if (item.type == BodyItem::Element && item.name == name_)
                values_.push_back(item.text);
    }
    return values_;
}

std::string_view NamedValues::joined(const DecodedEvent& event) {
    const std::vector<std::string_view>& values = of(event);
    if (values.size() < 2)
        return values.empty() ? std::string_view() : values.front();
    joined_ = values.front();
    for (std::size_t i = 1; i < values.size(); ++i)
        joined_.append("; ").append(values[i]);
    return joined_;
}

} // namespace Pegasus::formats
