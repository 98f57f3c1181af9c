#include "sdk/core/client/ServiceErrors.h"

#include <algorithm>
#include <iterator>

#include "sdk/core/client/Text.h"
#include "sdk/core/xml/Xml.h"

namespace Mirqos::Client {
namespace {

using Aws::Client::CoreErrors;

struct CoreCode {
    std::string_view code;
    KnownError error;
};

constexpr CoreCode kCoreCodes[] = {
    {"IncompleteSignature", {CoreErrors::INCOMPLETE_SIGNATURE, false}},
    {"InternalFailure", {CoreErrors::INTERNAL_FAILURE, true}},
    {"InternalError", {CoreErrors::INTERNAL_FAILURE, true}},
    {"InternalServerError", {CoreErrors::INTERNAL_FAILURE, true}},
    {"InvalidAction", {CoreErrors::INVALID_ACTION, false}},
    {"InvalidClientTokenId", {CoreErrors::INVALID_CLIENT_TOKEN_ID, false}},
    {"InvalidParameterCombination", {CoreErrors::INVALID_PARAMETER_COMBINATION, false}},
    {"InvalidQueryParameter", {CoreErrors::INVALID_QUERY_PARAMETER, false}},
    {"InvalidParameterValue", {CoreErrors::INVALID_PARAMETER_VALUE, false}},
    {"MissingAction", {CoreErrors::MISSING_ACTION, false}},
    {"MissingAuthenticationToken", {CoreErrors::MISSING_AUTHENTICATION_TOKEN, false}},
    {"MissingParameter", {CoreErrors::MISSING_PARAMETER, false}},
    {"OptInRequired", {CoreErrors::OPT_IN_REQUIRED, false}},
    {"RequestExpired", {CoreErrors::REQUEST_EXPIRED, true}},
    {"ServiceUnavailable", {CoreErrors::SERVICE_UNAVAILABLE, true}},
    {"ServiceUnavailableError", {CoreErrors::SERVICE_UNAVAILABLE, true}},
    {"Throttling", {CoreErrors::THROTTLING, true}},
    {"Throttled", {CoreErrors::THROTTLING, true}},
    {"RequestThrottled", {CoreErrors::THROTTLING, true}},
    {"ValidationError", {CoreErrors::VALIDATION, false}},
    {"Validation", {CoreErrors::VALIDATION, false}},
    {"AccessDenied", {CoreErrors::ACCESS_DENIED, false}},
    {"ResourceNotFound", {CoreErrors::RESOURCE_NOT_FOUND, false}},
    {"UnrecognizedClient", {CoreErrors::UNRECOGNIZED_CLIENT, false}},
    {"MalformedQueryString", {CoreErrors::MALFORMED_QUERY_STRING, false}},
    {"SlowDown", {CoreErrors::SLOW_DOWN, true}},
    {"RequestTimeTooSkewed", {CoreErrors::REQUEST_TIME_TOO_SKEWED, true}},
    {"InvalidSignature", {CoreErrors::INVALID_SIGNATURE, false}},
    {"SignatureDoesNotMatch", {CoreErrors::SIGNATURE_DOES_NOT_MATCH, false}},
    {"InvalidAccessKeyId", {CoreErrors::INVALID_ACCESS_KEY_ID, false}},
    {"RequestTimeout", {CoreErrors::REQUEST_TIMEOUT, true}},
};

CoreErrors TypeFromStatus(int status) {
    switch (status) {
        case 400:
            return CoreErrors::VALIDATION;
        case 401:
        case 403:
        case 407:
            return CoreErrors::ACCESS_DENIED;
        case 404:
            return CoreErrors::RESOURCE_NOT_FOUND;
        case 408:
            return CoreErrors::REQUEST_TIMEOUT;
        case 429:
            return CoreErrors::THROTTLING;
        case 503:
            return CoreErrors::SERVICE_UNAVAILABLE;
        default:
            return status >= 500 && status <= 599 ? CoreErrors::INTERNAL_FAILURE
                                                  : CoreErrors::UNKNOWN;
    }
}

/// Some services wrap the error and keep a list of them.
Xml::Element FindErrorElement(const Xml::Element& root) {
    if (root.Name() == "Error") {
        return root;
    }
    const Xml::Element list = root.Child("Errors");
    return list ? list.Child("Error") : root.Child("Error");
}

}  // namespace

std::optional<KnownError> FindCoreError(std::string_view code) {
    // Each code is also in use with this ending.
    constexpr std::string_view ending = "Exception";
    if (code.size() > ending.size() && code.substr(code.size() - ending.size()) == ending) {
        code.remove_suffix(ending.size());
    }
    const auto found =
        std::find_if(std::begin(kCoreCodes), std::end(kCoreCodes),
                     [&](const CoreCode& candidate) { return candidate.code == code; });
    return found != std::end(kCoreCodes) ? std::optional<KnownError>(found->error) : std::nullopt;
}

bool IsRetryableStatus(int status) {
    // 501 and 505 say that the service will never do it.
    return status == 408 || status == 429 ||
           (status >= 500 && status <= 599 && status != 501 && status != 505);
}

Error ErrorFromAnswer(int status, std::string_view body, ErrorLookup service) {
    const std::string statusText = std::to_string(status);
    const std::string_view document = WithoutLeadingBlanks(body);
    if (document.empty()) {
        return MakeError(TypeFromStatus(status), "",
                         "No response body. Response code: " + statusText,
                         IsRetryableStatus(status));
    }
    std::string parseError;
    const std::optional<Xml::Document> parsed =
        Xml::Parse(document.data(), document.size(), parseError);
    const Xml::Element error = parsed ? FindErrorElement(parsed->Root()) : Xml::Element();
    if (error.TextOf("Code").empty()) {
        return MakeError(TypeFromStatus(status), "",
                         "The response body is not an error document" +
                             (parsed ? std::string() : " (" + parseError + ")") +
                             ". Response code: " + statusText,
                         IsRetryableStatus(status));
    }
    return ErrorFromCode(status, error.TextOf("Code"), error.TextOf("Message"), service);
}

Error ErrorFromCode(int status, std::string_view code, std::string_view message,
                    ErrorLookup service) {
    std::optional<KnownError> known = service(code);
    if (!known) {
        known = FindCoreError(code);
    }
    if (!known) {
        return MakeError(CoreErrors::UNKNOWN, code,
                         "Unable to parse ExceptionName: " + std::string(code) +
                             " Message: " + std::string(message),
                         IsRetryableStatus(status));
    }
    return MakeError(known->type, code, message, known->retryable || IsRetryableStatus(status));
}

Error MakeError(CoreErrors type, std::string_view exceptionName, std::string_view message,
                bool retryable) {
    return Error(type, ToAws(exceptionName), ToAws(message), retryable);
}

}  // namespace Mirqos::Client
