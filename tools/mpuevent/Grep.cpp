// Events by a regular expression.
#include "formats/Printer.h"
#include "tools/mpuevent/FilterTests.h"

#include <algorithm>
#include <fmt/format.h>

#ifdef MPUEVENT_RE2
#include <re2/re2.h>
#endif

namespace Pegasus::tool {

#ifdef MPUEVENT_RE2

namespace {

// "^" and "$" are those of each line, and nothing matches beyond one.
RE2 compiled(std::string_view pattern, bool ignoreCase) {
    RE2::Options options;
    options.set_log_errors(false);
    options.set_never_nl(true);
    options.set_case_sensitive(!ignoreCase);
    return RE2("(?m)" + std::string(pattern), options);
}

// The first character that is wrong, from 1 on.
std::size_t placeOf(const std::string& pattern, const RE2& wrong) {
    std::size_t right = pattern.find(wrong.error_arg());
    if (wrong.error_arg().empty() || right == pattern.npos) { // what is wrong is not named
        right = pattern.size();
        while (right != 0 &&
               compiled(std::string_view(pattern).substr(0, right), false).error_code() ==
                   wrong.error_code())
            --right;
    }
    return 1 + static_cast<std::size_t>(std::count_if(pattern.begin(),
                                                      pattern.begin() + static_cast<long>(right),
                                                      [](char c) { return (c & 0xC0) != 0x80; }));
}

class Grep {
public:
    Grep(const std::string& pattern, bool ignoreCase)
        : regex_(compiled(pattern, ignoreCase)), printer_(makeTextPrinter({})) {
        if (!regex_.ok())
            throw Wrong{fmt::format("\"{}\", character {}: {}", pattern, placeOf(pattern, regex_),
                                    regex_.error().substr(0, regex_.error().find(':')))};
    }
    bool matches(const DecodedEvent& event) {
        text_.clear();
        printer_->print(event, text_);
        const std::string_view text = text_.view();
        return RE2::PartialMatch({text.data(), text.size()}, regex_);
    }

private:
    const RE2 regex_; // its time is linear in the text
    const std::unique_ptr<Printer> printer_;
    mpu::BodyWriter text_;
};

} // namespace

EventTest grepTest(const std::string& pattern, bool ignoreCase) {
    return [grep = std::make_shared<Grep>(pattern, ignoreCase)](const DecodedEvent& event) {
        return grep->matches(event);
    };
}

#else

EventTest grepTest(const std::string&, bool) {
    throw Wrong{"this command is built without regular expressions (RE2)"};
}

#endif

} // namespace Pegasus::tool
