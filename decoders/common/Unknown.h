// What every decoder does with an event it doesn't know.
#pragma once

#include "event/EmpEvLogMsg_s.h"

#include <Pegasus/Common/String.h>

namespace Pegasus::mpu {

// "<Hex>" and the evStructLength bytes of the payload in upper-case digits, "</Hex>".
void assignHexBody(String& body, const EmpEvLogMsg_s* record);

// Traces `what` and the record's event id in decimal.
void traceUnknown(const char* source, int line, const char* what, const EmpEvLogMsg_s* record);

} // namespace Pegasus::mpu
