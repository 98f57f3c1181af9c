#pragma once

#include <aws/core/utils/logging/LogSystemInterface.h>

#include <memory>

/// The one log system of the process. All functions may be called from any number of threads at
/// once, also while others log.
namespace Aws::Utils::Logging {

/// Replaces the log system.
void InitializeAWSLogging(const std::shared_ptr<LogSystemInterface>& logSystem);
/// Lets go of the log system. It is destroyed once the last statement under way has been logged.
void ShutdownAWSLogging();
/// The log system, kept alive as long as the caller needs it; null where there is none.
std::shared_ptr<LogSystemInterface> GetLogSystem();

}  // namespace Aws::Utils::Logging
