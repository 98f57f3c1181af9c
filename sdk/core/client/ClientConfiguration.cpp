#include <aws/core/client/ClientConfiguration.h>
#include <aws/core/client/DefaultRetryStrategy.h>
#include <aws/core/utils/threading/Executor.h>

#include <cstdlib>

#include "sdk/core/client/DefaultRegion.h"

namespace Aws::Client {
namespace {

constexpr char kTag[] = "ClientConfiguration";

const char* Environment(const char* name) {
    return std::getenv(name);
}

}  // namespace

ClientConfiguration::ClientConfiguration()
    : region(Mirqos::Client::DefaultRegion(&Environment)),
      retryStrategy(Aws::MakeShared<DefaultRetryStrategy>(kTag)),
      executor(Aws::MakeShared<Utils::Threading::DefaultExecutor>(kTag)) {
}

}  // namespace Aws::Client
