#pragma once

#include <type_traits>

namespace Mirqos {

/// Turns into the initial values that newer SDKs' configurations take, and into nothing else.
struct NoInstanceMetadata {
    template <class Values, class = decltype(Values::shouldDisableIMDS)>
    operator Values() const {
        Values values;
        values.shouldDisableIMDS = true;
        return values;
    }
};

/// A configuration with the SDK's defaults. To find a default region, newer SDKs ask a web service
/// that only the provider's own machines have, and wait for it everywhere else: where they can be
/// told not to, they are.
template <class Configuration>
Configuration ConfigurationWithoutInstanceMetadata() {
    if constexpr (std::is_constructible_v<Configuration, NoInstanceMetadata>) {
        return Configuration(NoInstanceMetadata());
    } else {
        return Configuration();
    }
}

}  // namespace Mirqos
