// The exceptions a CIM provider throws, for builds without an installed framework: one class for
// each status code that has a meaning for a client, each built from its message.

#ifndef Pegasus_ProviderException_h
#define Pegasus_ProviderException_h

#include <Pegasus/Common/Exception.h>

namespace Pegasus {

class PEGASUS_COMMON_LINKAGE CIMOperationFailedException : public CIMException {
public:
    CIMOperationFailedException(const String& message);

protected:
    CIMOperationFailedException(const CIMStatusCode code, const String& message);
};

class PEGASUS_COMMON_LINKAGE CIMAccessDeniedException : public CIMOperationFailedException {
public:
    CIMAccessDeniedException(const String& message);
};

class PEGASUS_COMMON_LINKAGE CIMInvalidParameterException : public CIMOperationFailedException {
public:
    CIMInvalidParameterException(const String& message);
};

class PEGASUS_COMMON_LINKAGE CIMObjectNotFoundException : public CIMOperationFailedException {
public:
    CIMObjectNotFoundException(const String& message);
};

class PEGASUS_COMMON_LINKAGE CIMNotSupportedException : public CIMOperationFailedException {
public:
    CIMNotSupportedException(const String& message);
};

class PEGASUS_COMMON_LINKAGE CIMObjectAlreadyExistsException : public CIMOperationFailedException {
public:
    CIMObjectAlreadyExistsException(const String& message);
};

class PEGASUS_COMMON_LINKAGE CIMPropertyNotFoundException : public CIMOperationFailedException {
public:
    CIMPropertyNotFoundException(const String& message);
};

} // namespace Pegasus

#endif
