// The entries of the decoders that derive from AvrelEvent: "<tag>value</tag>", nothing between.
#pragma once

#include "event/AvrelEvent.h"
#include "event/TextWriter.h"

namespace Pegasus::mpu::datapath {

// Adds an entry as AvrelEvent::addEntry() writes it: a backslash that would escape the closing tag
// becomes ".".
void putEntry(TextWriter& body, std::string_view tag, Untrusted text);

// Adds a run of finished entries to an event, one by one through the virtual addEntry(), where a
// subclass sees them. The one tagged `text` holds a text from the record and is the last. Changes
// the run.
void addEntries(AvrelEvent& event, TextWriter& run, std::string_view text);

} // namespace Pegasus::mpu::datapath
