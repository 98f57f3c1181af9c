#include <aws/core/Aws.h>
#include <aws/core/utils/logging/AWSLogging.h>

#include "sdk/core/Seam.h"

namespace Aws {

void InitAPI(const SDKOptions& options) {
    if (Mirqos::TheSeam().onInitApi) {
        Mirqos::TheSeam().onInitApi();
    }
    const LoggingOptions& logging = options.loggingOptions;
    if (logging.logLevel != Utils::Logging::LogLevel::Off && logging.logger_create_fn) {
        Utils::Logging::InitializeAWSLogging(logging.logger_create_fn());
    }
}

void ShutdownAPI(const SDKOptions& /*options*/) {
    if (Mirqos::TheSeam().onShutdownApi) {
        Mirqos::TheSeam().onShutdownApi();
    }
    Utils::Logging::ShutdownAWSLogging();
}

}  // namespace Aws
