#pragma once

#include <string>

namespace Mirqos {

/// Whether an endpoint names the one S3-compatible provider whose listings are asked for with
/// URL-encoded keys. Letter case does not matter.
bool HasProviderMarker(const std::string& strEndPoint);

}  // namespace Mirqos
