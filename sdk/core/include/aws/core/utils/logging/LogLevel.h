#pragma once

namespace Aws::Utils::Logging {

/// How much is logged: everything up to the level set.
enum class LogLevel : int {
    Off = 0,
    Fatal = 1,
    Error = 2,
    Warn = 3,
    Info = 4,
    Debug = 5,
    Trace = 6
};

/// "OFF", "FATAL" and so on, as statements have it; an empty text for no level.
const char* GetLogLevelName(LogLevel logLevel);

}  // namespace Aws::Utils::Logging
