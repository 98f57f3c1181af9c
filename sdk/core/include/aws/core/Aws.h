#pragma once

#include <aws/core/utils/logging/LogLevel.h>
#include <aws/core/utils/logging/LogSystemInterface.h>
#include <aws/core/utils/memory/AWSMemory.h>

#include <functional>
#include <memory>

namespace Aws {

struct LoggingOptions {
    /// Off: no log system is made.
    Utils::Logging::LogLevel logLevel = Utils::Logging::LogLevel::Off;
    /// Makes the log system. Without it there is none, whatever the level.
    std::function<std::shared_ptr<Utils::Logging::LogSystemInterface>()> logger_create_fn;
};

struct SDKOptions {
    LoggingOptions loggingOptions;
};

/// Starts the SDK: makes the log system that `options` ask for. Not to be called while another
/// thread starts or stops the SDK.
void InitAPI(const SDKOptions& options);

/// Stops the SDK: lets go of the log system. Further calls do nothing.
void ShutdownAPI(const SDKOptions& options);

}  // namespace Aws
