#include "formats/Logs.h"

#include "formats/Severity.h"

namespace Pegasus::formats {

namespace {

// The name of a column in the journal, which takes capital letters, digits and "_".
std::string journalName(std::string_view column) {
    const auto isCapital = [](char c) { return c >= 'A' && c <= 'Z'; };
    std::string name = "MPUEVENT_";
    for (std::size_t i = 0; i < column.size(); ++i) {
        if (isCapital(column[i]) && !isCapital(column[i - 1]))
            name += '_';
        name += isCapital(column[i]) ? column[i] : static_cast<char>(column[i] - 'a' + 'A');
    }
    return name + "=";
}

} // namespace

JournalFields::JournalFields(const PrintOptions& options) {
    for (const Column& column : kColumns)
        if (isShown(column, options)) {
            columns_.push_back(&column);
            names_.push_back(journalName(column.name));
        }
}

void JournalFields::add(std::string_view prefix, std::string_view value) {
    fields_.emplace_back(prefix).append(value);
}

const std::vector<std::string>& JournalFields::of(const DecodedEvent& event) {
    fields_.clear();
    text_.clear();
    putHeadline(text_, event);
    add("MESSAGE=", text_.view());
    add("PRIORITY=", std::to_string(kSyslogSeverities[severityOf(event.eventType)]));
    add("SYSLOG_IDENTIFIER=", "mpuevent");
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        const Column& column = *columns_[i];
        if (column.text) {
            if (!(event.*column.text).empty())
                add(names_[i], event.*column.text);
            continue;
        }
        text_.clear();
        column.putNumber(event, text_);
        add(names_[i], text_.view());
    }
    return fields_;
}

} // namespace Pegasus::formats
