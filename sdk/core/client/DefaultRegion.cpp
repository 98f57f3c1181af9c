#include "sdk/core/client/DefaultRegion.h"

namespace Mirqos::Client {

Aws::String DefaultRegion(const char* (*environment)(const char* name)) {
    for (const char* name : {"AWS_DEFAULT_REGION", "AWS_REGION"}) {
        const char* const value = environment(name);
        if (value != nullptr && *value != '\0') {
            return value;
        }
    }
    return "us-east-1";
}

}  // namespace Mirqos::Client
