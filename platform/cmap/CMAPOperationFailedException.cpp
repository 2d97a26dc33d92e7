#include "platform/cmap/CMAPOperationFailedException.h"

namespace Pegasus {

CMAPOperationFailedException::CMAPOperationFailedException(Uint32 code, const String& text)
    : CIMOperationFailedException(text), code_(code) {}

CMAPOperationFailedException::~CMAPOperationFailedException() = default;

} // namespace Pegasus
