#pragma once

#include <aws/core/http/HttpResponse.h>
#include <aws/core/platform/UndoWindowsMacros.h>
#include <aws/core/utils/memory/stl/AWSString.h>

#include <utility>

namespace Aws::Client {

/// Why an operation failed. ErrorType is a service's enumeration, which shares the numbers of
/// CoreErrors.
template <typename ErrorType>
class AWSError {
public:
    AWSError() = default;
    AWSError(ErrorType errorType, Aws::String exceptionName, Aws::String message, bool isRetryable)
        : m_errorType(errorType),
          m_exceptionName(std::move(exceptionName)),
          m_message(std::move(message)),
          m_isRetryable(isRetryable) {}
    AWSError(ErrorType errorType, bool isRetryable)
        : m_errorType(errorType), m_isRetryable(isRetryable) {}

    /// From an error of another enumeration; the number stays.
    template <typename OtherErrorType>
    AWSError(const AWSError<OtherErrorType>& other)
        : m_errorType(static_cast<ErrorType>(other.m_errorType)),
          m_exceptionName(other.m_exceptionName),
          m_message(other.m_message),
          m_responseCode(other.m_responseCode),
          m_isRetryable(other.m_isRetryable) {}

    ErrorType GetErrorType() const { return m_errorType; }
    /// The service's own name of the error; empty where the answer had none.
    const Aws::String& GetExceptionName() const { return m_exceptionName; }
    void SetExceptionName(const Aws::String& exceptionName) { m_exceptionName = exceptionName; }
    const Aws::String& GetMessage() const { return m_message; }
    void SetMessage(const Aws::String& message) { m_message = message; }
    /// Whether the same request may fare better later.
    bool ShouldRetry() const { return m_isRetryable; }
    /// The answer's status; REQUEST_NOT_MADE where there was no answer.
    Http::HttpResponseCode GetResponseCode() const { return m_responseCode; }
    void SetResponseCode(Http::HttpResponseCode responseCode) { m_responseCode = responseCode; }

private:
    template <typename>
    friend class AWSError;

    ErrorType m_errorType{};
    Aws::String m_exceptionName;
    Aws::String m_message;
    Http::HttpResponseCode m_responseCode = Http::HttpResponseCode::REQUEST_NOT_MADE;
    bool m_isRetryable = false;
};

}  // namespace Aws::Client
