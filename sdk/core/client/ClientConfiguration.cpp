#include <aws/core/client/ClientConfiguration.h>
#include <aws/core/client/DefaultRetryStrategy.h>
#include <aws/core/utils/threading/Executor.h>

#include <cstdlib>

namespace Aws::Client {
namespace {

constexpr char kTag[] = "ClientConfiguration";

}  // namespace

ClientConfiguration::ClientConfiguration()
    : retryStrategy(Aws::MakeShared<DefaultRetryStrategy>(kTag)),
      executor(Aws::MakeShared<Utils::Threading::DefaultExecutor>(kTag)) {
    for (const char* name : {"AWS_DEFAULT_REGION", "AWS_REGION"}) {
        const char* const value = std::getenv(name);
        if (value != nullptr && *value != '\0') {
            region = value;
            break;
        }
    }
}

}  // namespace Aws::Client
