// What MPUEvent::deserialize throws when a message cannot be read whole.
#pragma once

#include "event/Export.h"

#include <Pegasus/Provider/ProviderException.h>

namespace Pegasus {

class MPUEVENT_EXPORT CMAPOperationFailedException : public CIMOperationFailedException {
public:
    // `code` is one of CMAPErrorCodes; the CIM status code of the base is CIM_ERR_FAILED.
    CMAPOperationFailedException(Uint32 code, const String& text);
    ~CMAPOperationFailedException() override;

    Uint32 getErrorCode() const { return code_; }

private:
    Uint32 code_;
};

} // namespace Pegasus
