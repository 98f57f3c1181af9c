#include "sdk/s3/src/ServiceCodes.h"

#include <aws/s3/S3Errors.h>

#include <algorithm>
#include <iterator>

namespace Mirqos::S3 {
namespace {

using Aws::S3::S3Errors;

struct ServiceCode {
    std::string_view code;
    S3Errors error;
};

/// None of them is worth another attempt.
constexpr ServiceCode kServiceCodes[] = {
    {"BucketAlreadyExists", S3Errors::BUCKET_ALREADY_EXISTS},
    {"BucketAlreadyOwnedByYou", S3Errors::BUCKET_ALREADY_OWNED_BY_YOU},
    {"NoSuchBucket", S3Errors::NO_SUCH_BUCKET},
    {"NoSuchKey", S3Errors::NO_SUCH_KEY},
    {"NoSuchUpload", S3Errors::NO_SUCH_UPLOAD},
    {"ObjectAlreadyInActiveTierError", S3Errors::OBJECT_ALREADY_IN_ACTIVE_TIER},
    {"ObjectNotInActiveTierError", S3Errors::OBJECT_NOT_IN_ACTIVE_TIER},
};

}  // namespace

std::optional<Client::KnownError> FindServiceError(std::string_view code) {
    const auto found =
        std::find_if(std::begin(kServiceCodes), std::end(kServiceCodes),
                     [&](const ServiceCode& candidate) { return candidate.code == code; });
    if (found == std::end(kServiceCodes)) {
        return std::nullopt;
    }
    return Client::KnownError{static_cast<Aws::Client::CoreErrors>(found->error), false};
}

}  // namespace Mirqos::S3
