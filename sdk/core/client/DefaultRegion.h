#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

namespace Mirqos::Client {

/// The region of a client that is told none: AWS_DEFAULT_REGION, else AWS_REGION, else us-east-1.
/// `environment` answers a variable's value or null, as std::getenv does.
Aws::String DefaultRegion(const char* (*environment)(const char* name));

}  // namespace Mirqos::Client
