// Which bytes of a record became what.
#pragma once

#include "formats/Printer.h"
#include "formats/Readings.h"

namespace Pegasus::formats {

// A run of the record's bytes and what was made of it.
struct ExplainedBytes {
    enum Use : unsigned char {
        Header,  // a field of the header that all records have
        Element, // of the body
        Summary,
        Title,
        Decision, // read by the decoder's code to find its way
        LeftOut,  // an element that is not shown, since this is zero
        Unread,
    };
    Use use;
    std::uint32_t at; // in the record
    std::uint32_t size;
    std::uint32_t missing; // the last of them, which the record lacks
    Provenance layout;
    std::string form;  // as a printf format; "code" where the decoder's code wrote it
    std::string name;  // of the element or header field
    std::string value; // as the event shows it
};

// In the order of their places; bytes that became several things come several times. Every byte of
// the record is in it.
std::vector<ExplainedBytes> explain(const DecodedEvent& event, const Readings& readings,
                                    bool isPlain);

// Writes explanations of one event after the other.
class ExplanationPrinter {
public:
    virtual ~ExplanationPrinter() = default;
    virtual void begin(mpu::TextWriter&) {}
    virtual void print(const DecodedEvent& event, const std::vector<ExplainedBytes>& explained,
                       mpu::TextWriter& out) = 0;
    virtual void end(mpu::TextWriter&) {}
};

struct ExplanationFormat {
    const char* name;
    const char* description;
    std::unique_ptr<ExplanationPrinter> (*make)(bool colour);
};

std::unique_ptr<ExplanationPrinter> makeTextExplanation(bool colour);
std::unique_ptr<ExplanationPrinter> makeJsonExplanation(bool colour);
std::unique_ptr<ExplanationPrinter> makeHtmlExplanation(bool colour);

inline constexpr ExplanationFormat kExplanationFormats[] = {
    {"text", "a table of 80 columns per event", makeTextExplanation},
    {"json", "a JSON object per line", makeJsonExplanation},
    {"html", "a page that shows a byte's element, and an element's bytes", makeHtmlExplanation},
};

} // namespace Pegasus::formats
