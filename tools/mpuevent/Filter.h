// Which events are wanted.
#pragma once

#include "capture/Capture.h"
#include "tools/mpuevent/FilterTests.h"
#include "tools/mpuevent/Times.h"

#include <optional>

namespace Pegasus::tool {

using namespace capture;

struct FilterRow;

using HeaderTest = std::function<bool(const EmpEvLogMsg_s&)>;

// What is wanted by one option: what passes any of the tests, or none when negated.
template <class Test>
struct FilterRule {
    bool negated;
    std::vector<Test> any;
};

// What the filter options say. Each has a twin that begins with "--not-" and leaves out what the
// option keeps. An option that is given more than once keeps what any of its values does; an event
// must pass all options.
class FilterOptions {
public:
    // Of events that may come without end none is the last.
    void addOptions(CLI::App& app, TimeUse use = TimeUse::Filter, bool endless = false);
    // Whether it takes a Selector to find what is wanted.
    bool selects() const { return last || reverse || context != 0 || around; }
    // What is left to the sink of the messages.
    FilterOptions ofSink() const;

    std::optional<std::uint64_t> limit;  // to the number of events, from the last one on in reverse
    std::optional<std::uint64_t> last;   // so many of them only
    bool reverse = false;                // the last one first
    std::uint64_t context = 0;           // so many events on both sides of each are wanted as well
    std::optional<std::uint64_t> around; // and those within so many seconds
    TimeOptions times;

private:
    friend class Filter;
    void take(const FilterRow& row, bool negated, const std::vector<std::string>& values);

    std::vector<FilterRule<HeaderTest>> headerRules_;
    // What makes the tests of an event: these hold scratch memory.
    using MakeTest = std::function<EventTest(bool ignoreCase)>;
    std::vector<FilterRule<MakeTest>> eventRules_;
    bool ignoreCase_ = false;
    bool basis_ = false; // of each element is looked at
};

// Applies the options. Holds scratch memory: one for each thread.
class Filter {
public:
    explicit Filter(const FilterOptions& options, const DecodeOptions& decoding = {});
    // Whether the record's header alone lets it pass: no need to decode it if not.
    bool passes(const Message& message) const;
    // Whether it is wanted; decodes no more than that takes.
    bool wants(const Message& message) {
        return eventRules_.empty() ? passes(message) : decode(message) != nullptr;
    }
    // The event of the message until the next call, null if it is not wanted.
    const DecodedEvent* decode(const Message& message);
    // What decoded it.
    const EventDecoder& decoder() const { return decoder_; }

private:
    template <class Test, class Subject>
    static bool all(const std::vector<FilterRule<Test>>& rules, const Subject& subject);

    const std::vector<FilterRule<HeaderTest>> headerRules_;
    std::vector<FilterRule<EventTest>> eventRules_;
    EventDecoder decoder_;
};

} // namespace Pegasus::tool
