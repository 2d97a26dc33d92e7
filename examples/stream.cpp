// A loop that turns the messages of a stream into log entries: example_stream [CAPTURE]
//
// Prints: #2 ESA Error: Power AC Redundancy OK
#include "event/MPUEvent.h"
#include "platform/cmap/CMAPOperationFailedException.h"
#include "platform/trace/ProviderTraceServices.h"

#include <fstream>
#include <iostream>
#include <sstream>

using namespace Pegasus;

namespace {

// The library reads from files and memory by itself; anything else is a class like this.
class StandardStream : public Avrel_istream {
public:
    explicit StandardStream(std::istream& in) : in_(in) {}
    void read(char* buffer, unsigned int count) override { in_.read(buffer, count); }
    int gcount() const override { return static_cast<int>(in_.gcount()); }

private:
    std::istream& in_;
};

// The next message, null when there is none. The 64 bytes of its header say how long it is.
std::unique_ptr<MPUEvent> next(Avrel_istream& in) {
    char wire[64];
    in.read(wire, sizeof wire);
    if (in.gcount() != sizeof wire)
        return nullptr;
    return std::make_unique<MPUEvent>(CMAPMessageHeader(wire), in);
}

void log(Avrel_Event& event) {
    // operator<< of a String writes one byte a character; getCString() is UTF-8.
    std::cout << '#' << event.getSequenceID() << ' ' << event.getSource().getCString() << ' '
              << event.getEventType().getCString() << ": " << event.getSummary().getCString()
              << '\n';
}

// Two messages, the second with its end cut off.
std::string demonstration() {
    std::string bytes;
    for (const std::uint32_t sequence : {2u, 3u}) {
        EmpEvLogMsg_s record{};
        record.source = 33;
        record.eventType = 3;
        record.category = 2;
        record.eventId = 6;
        record.sequenceId = sequence;
        CMAPMessageHeader header;
        header.setMessageLength(64 + sizeof record);
        bytes.append(reinterpret_cast<const char*>(header.wireBytes()), 64);
        bytes.append(reinterpret_cast<const char*>(&record), sizeof record);
    }
    return bytes.substr(0, bytes.size() - 10);
}

} // namespace

int main(int argc, char** argv) {
    ProviderTraceServices::ptsSetTraceStream(stderr); // standard output is ours
    std::ifstream file;
    std::istringstream sample(demonstration());
    if (argc > 1)
        file.open(argv[1], std::ios::binary);
    StandardStream in(argc > 1 ? static_cast<std::istream&>(file) : sample);
    try {
        while (const std::unique_ptr<MPUEvent> message = next(in))
            if (const std::unique_ptr<Avrel_Event> event{message->create_Avrel_Event()})
                log(*event);
    } catch (const CMAPOperationFailedException& error) {
        std::cout << "the stream broke off: " << error.getMessage().getCString() << '\n';
    }
}
