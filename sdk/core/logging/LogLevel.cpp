#include <aws/core/utils/logging/LogLevel.h>

namespace Aws::Utils::Logging {

const char* GetLogLevelName(LogLevel logLevel) {
    switch (logLevel) {
        case LogLevel::Off:
            return "OFF";
        case LogLevel::Fatal:
            return "FATAL";
        case LogLevel::Error:
            return "ERROR";
        case LogLevel::Warn:
            return "WARN";
        case LogLevel::Info:
            return "INFO";
        case LogLevel::Debug:
            return "DEBUG";
        case LogLevel::Trace:
            return "TRACE";
    }
    return "";
}

}  // namespace Aws::Utils::Logging
