#pragma once

#include <aws/core/utils/logging/LogLevel.h>
#include <aws/core/utils/memory/stl/AWSStringStream.h>

namespace Aws::Utils::Logging {

/// Where the SDK's statements go. Called from many threads at once.
class LogSystemInterface {
public:
    virtual ~LogSystemInterface() = default;

    virtual LogLevel GetLogLevel() const = 0;
    /// `formatStr` and what follows are as for printf.
    virtual void Log(LogLevel logLevel, const char* tag, const char* formatStr, ...) = 0;
    virtual void LogStream(LogLevel logLevel, const char* tag,
                           const Aws::OStringStream& messageStream) = 0;
};

}  // namespace Aws::Utils::Logging
