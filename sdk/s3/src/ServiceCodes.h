#pragma once

#include <optional>
#include <string_view>

#include "sdk/core/client/ServiceErrors.h"

namespace Mirqos::S3 {

/// The error codes that S3 has beyond those of all services.
std::optional<Client::KnownError> FindServiceError(std::string_view code);

}  // namespace Mirqos::S3
