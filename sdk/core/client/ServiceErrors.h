#pragma once

#include <aws/core/client/AWSError.h>
#include <aws/core/client/CoreErrors.h>

#include <optional>
#include <string>
#include <string_view>

/// From what a service answers to the errors of the SDK.
namespace Mirqos::Client {

using Error = Aws::Client::AWSError<Aws::Client::CoreErrors>;

/// What the SDK makes of an error code. A service's own errors have numbers beyond CoreErrors'
/// names.
struct KnownError {
    Aws::Client::CoreErrors type = Aws::Client::CoreErrors::UNKNOWN;
    bool retryable = false;
};

/// Looks up the error codes of one service; nothing for a code that is not its own.
using ErrorLookup = std::optional<KnownError> (*)(std::string_view code);

/// The error codes that all services share.
std::optional<KnownError> FindCoreError(std::string_view code);

/// Whether a later attempt may fare better, by the status alone.
bool IsRetryableStatus(int status);

/// The error of an answer that is not a success. With an error document, type and message are the
/// document's; a code that neither `service` nor the core knows becomes UNKNOWN with a message that
/// quotes it. Without one (the answer to a HEAD, a proxy's HTML page) the status decides.
Error ErrorFromAnswer(int status, std::string_view body, ErrorLookup service);

/// The error that the document `code`, `message` reports under `status`.
Error ErrorFromCode(int status, std::string_view code, std::string_view message,
                    ErrorLookup service);

/// Errors found on this side. `exceptionName` may be empty.
Error MakeError(Aws::Client::CoreErrors type, std::string_view exceptionName,
                std::string_view message, bool retryable);

}  // namespace Mirqos::Client
