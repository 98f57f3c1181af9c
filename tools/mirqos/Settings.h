#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/mirqos/Arguments.h"

namespace Mirqos::Tool {

/// Looks an environment variable up; an empty one counts as absent.
using Environment = std::function<std::optional<std::string>(const std::string& name)>;

/// Which service, as whom, and how much to say.
struct Settings {
    std::string region;    ///< empty: the library's default
    std::string endpoint;  ///< "host[:port]"; empty: the provider's own
    bool https = true;
    std::string accessKey;
    std::string secretKey;  ///< goes to the library and nowhere else
    std::int32_t provider = 0;
    unsigned threads = 4;
    std::int32_t logLevel = 3;
    bool quiet = false;
    bool progress = true;
};

/// The options that every command takes.
const std::vector<Option>& CommonOptions();

/// A flag wins over its variable, a variable over the default. The AWS_ variables are looked at
/// only where neither flag nor MIRQOS_ variable gives a key, so that two accounts never mix.
/// Throws Failure (Usage); no message holds a value of a key.
Settings ResolveSettings(const Arguments& arguments, const Environment& environment);

}  // namespace Mirqos::Tool
