// A decoder for a module that the library does not know, kept outside of it.
//
// Prints: Pump 3 runs at 1450 rpm <Pump>3</Pump><Speed>1450</Speed><Note>bearing?dry</Note>
#include "event/AvrelEvent.h"
#include "event/MPUEvent.h"
#include "event/RecordView.h"
#include "platform/trace/ProviderTraceServices.h"

#include <iostream>
#include <string>

using namespace Pegasus;

namespace {

constexpr unsigned char kCooling = 200; // the module's id: the record's source byte

// Payload: pump u16 at 0, speed u16 at 2 (rpm), note at 4 up to its NUL.
class Cooling_Event : public AvrelEvent {
public:
    Cooling_Event(const EmpEvLogMsg_s* record, int length)
        : AvrelEvent(record, static_cast<unsigned>(length)) {
        // Bounded: past the end of the record numbers are 0 and texts end.
        const mpu::RecordView payload =
            mpu::RecordView::of(record, static_cast<unsigned>(length)).subview(sizeof *record);
        const unsigned pump = payload.u16(0);
        const unsigned speed = payload.u16(2);
        const std::string_view note = payload.text(4).raw();

        // Whatever comes from a record may be anything, invalid UTF-8 too, which a String refuses
        // with an exception: make it safe first.
        const std::string safe(makeSafeString(std::string(note).c_str(), 0).getCString());
        setEventID("Cooling");
        setSummary(("Pump " + std::to_string(pump) + " runs at " + std::to_string(speed) + " rpm")
                       .c_str());
        entry("Pump", std::to_string(pump));
        entry("Speed", std::to_string(speed));
        entry("Note", safe);
    }

private:
    void entry(std::string tag, const std::string& value) {
        char format[] = "%s";
        AvrelEvent::addEntry(tag.data(), format, value.c_str());
    }
};

Avrel_Event* make(const EmpEvLogMsg_s* record, int length) {
    return new Cooling_Event(record, length);
}

} // namespace

int main() {
    ProviderTraceServices::ptsSetTraceSuppressForPid(1); // it would note the unknown source
    if (!MPUEvent::registerDecoder(kCooling, make))
        return 1;

    struct {
        EmpEvLogMsg_s header{};
        char payload[16] = {0,   3,   1450 >> 8, static_cast<char>(1450 & 0xFF),
                            'b', 'e', 'a',       'r',
                            'i', 'n', 'g',       '\xFF',
                            'd', 'r', 'y'};
    } record;
    record.header.source = kCooling;
    record.header.evStructLength = sizeof record.payload;

    CMAPMessageHeader header;
    header.setMessageLength(64 + sizeof record);
    Avrel_memory_istream stream(&record, sizeof record);
    const std::unique_ptr<Avrel_Event> event(MPUEvent(header, stream).create_Avrel_Event());
    std::cout << event->getSummary().getCString() << ' ' << event->getBody().getCString() << '\n';
}
