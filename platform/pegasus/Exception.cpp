#include <Pegasus/Common/Exception.h>
#include <Pegasus/Provider/ProviderException.h>

#include <iterator>

namespace Pegasus {

Exception::Exception(const String& message) : message_(message) {}

Exception::~Exception() = default;

const String& Exception::getMessage() const {
    return message_;
}

IndexOutOfBoundsException::IndexOutOfBoundsException() : Exception("index out of bounds") {}

AlreadyExistsException::AlreadyExistsException(const String& message)
    : Exception("already exists: " + message) {}

TypeMismatchException::TypeMismatchException() : Exception("type mismatch") {}

const char* cimStatusCodeToString(CIMStatusCode code) {
    // clang-format off
    static constexpr const char* names[] = {
        "CIM_ERR_SUCCESS", "CIM_ERR_FAILED", "CIM_ERR_ACCESS_DENIED", "CIM_ERR_INVALID_NAMESPACE",
        "CIM_ERR_INVALID_PARAMETER", "CIM_ERR_INVALID_CLASS", "CIM_ERR_NOT_FOUND",
        "CIM_ERR_NOT_SUPPORTED", "CIM_ERR_CLASS_HAS_CHILDREN", "CIM_ERR_CLASS_HAS_INSTANCES",
        "CIM_ERR_INVALID_SUPERCLASS", "CIM_ERR_ALREADY_EXISTS", "CIM_ERR_NO_SUCH_PROPERTY",
        "CIM_ERR_TYPE_MISMATCH", "CIM_ERR_QUERY_LANGUAGE_NOT_SUPPORTED", "CIM_ERR_INVALID_QUERY",
        "CIM_ERR_METHOD_NOT_AVAILABLE", "CIM_ERR_METHOD_NOT_FOUND", "empty", "empty",
        "CIM_ERR_NAMESPACE_NOT_EMPTY", "CIM_ERR_INVALID_ENUMERATION_CONTEXT",
        "CIM_ERR_INVALID_OPERATION_TIMEOUT", "CIM_ERR_PULL_HAS_BEEN_ABANDONED",
        "CIM_ERR_PULL_CANNOT_BE_ABANDONED", "CIM_ERR_FILTERED_ENUMERATION_NOT_SUPPORTED",
        "CIM_ERR_CONTINUATION_ON_ERROR_NOT_SUPPORTED", "CIM_ERR_SERVER_LIMITS_EXCEEDED",
        "CIM_ERR_SERVER_IS_SHUTTING_DOWN"};
    // clang-format on
    static_assert(std::size(names) == CIM_ERR_SERVER_IS_SHUTTING_DOWN + 1);

    // Unsigned: a negative number is out of range as well.
    const auto index = static_cast<Uint32>(code);
    return index < std::size(names) ? names[index] : "Unrecognized CIM status code";
}

CIMException::CIMException(CIMStatusCode code, const String& message)
    : Exception(message), code_(code) {}

CIMStatusCode CIMException::getCode() const {
    return code_;
}

CIMOperationFailedException::CIMOperationFailedException(const String& message)
    : CIMException(CIM_ERR_FAILED, message) {}

CIMOperationFailedException::CIMOperationFailedException(const CIMStatusCode code,
                                                         const String& message)
    : CIMException(code, message) {}

CIMAccessDeniedException::CIMAccessDeniedException(const String& message)
    : CIMOperationFailedException(CIM_ERR_ACCESS_DENIED, message) {}

CIMInvalidParameterException::CIMInvalidParameterException(const String& message)
    : CIMOperationFailedException(CIM_ERR_INVALID_PARAMETER, message) {}

CIMObjectNotFoundException::CIMObjectNotFoundException(const String& message)
    : CIMOperationFailedException(CIM_ERR_NOT_FOUND, message) {}

CIMNotSupportedException::CIMNotSupportedException(const String& message)
    : CIMOperationFailedException(CIM_ERR_NOT_SUPPORTED, message) {}

CIMObjectAlreadyExistsException::CIMObjectAlreadyExistsException(const String& message)
    : CIMOperationFailedException(CIM_ERR_ALREADY_EXISTS, message) {}

CIMPropertyNotFoundException::CIMPropertyNotFoundException(const String& message)
    : CIMOperationFailedException(CIM_ERR_NO_SUCH_PROPERTY, message) {}

} // namespace Pegasus
