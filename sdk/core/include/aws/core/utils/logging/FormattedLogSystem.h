#pragma once

#include <aws/core/utils/logging/LogSystemInterface.h>
#include <aws/core/utils/memory/stl/AWSString.h>

#include <atomic>

namespace Aws::Utils::Logging {

/// Makes each statement a line of text:
/// "[LEVEL] yyyy-mm-dd hh:mm:ss.mmm tag [thread id] message\n", in UTC.
class FormattedLogSystem : public LogSystemInterface {
public:
    explicit FormattedLogSystem(LogLevel logLevel);

    LogLevel GetLogLevel() const override { return m_logLevel; }
    void SetLogLevel(LogLevel logLevel) { m_logLevel = logLevel; }

    /// Both drop statements above the level set.
    void Log(LogLevel logLevel, const char* tag, const char* formatStr, ...) override;
    void LogStream(LogLevel logLevel, const char* tag,
                   const Aws::OStringStream& messageStream) override;

protected:
    /// Called once for each statement, on the thread that logs it, from many threads at once.
    virtual void ProcessFormattedStatement(Aws::String&& statement) = 0;

private:
    bool IsWanted(LogLevel logLevel) const;
    void Pass(LogLevel logLevel, const char* tag, const Aws::String& message);

    std::atomic<LogLevel> m_logLevel;
};

}  // namespace Aws::Utils::Logging
