// Events as a self-contained HTML page.
#pragma once

#include "formats/Printer.h"
#include "formats/Statistics.h"

namespace Pegasus::formats {

// Prints the events as they come. The overview, which is above them on the page, needs all of them:
// it follows them in the file, and the style sheet moves it.
class ReportPage {
public:
    void begin(mpu::TextWriter& out);
    void add(const DecodedEvent& event, mpu::TextWriter& out);
    // `faults`: damaged places in what the events came from.
    void end(std::uint64_t faults, mpu::TextWriter& out);

    std::uint64_t events() const { return statistics_.events; }

private:
    void facts(mpu::TextWriter& out, std::uint64_t faults) const;
    void chart(mpu::TextWriter& out) const;
    void legend(mpu::TextWriter& out) const;
    void sources(mpu::TextWriter& out) const;

    const std::unique_ptr<Printer> printer_ = makeTextPrinter({});
    Statistics statistics_;
    mpu::BodyWriter block_;
};

} // namespace Pegasus::formats
