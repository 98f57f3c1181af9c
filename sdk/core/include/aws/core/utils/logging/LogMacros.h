#pragma once

#include <aws/core/utils/logging/AWSLogging.h>

/// Logs a statement given as `message << parts`, which are evaluated only where it is wanted.
#define AWS_LOGSTREAM(level, tag, streamExpression)                              \
    do {                                                                         \
        const auto awsLogSystem = Aws::Utils::Logging::GetLogSystem();           \
        if (awsLogSystem != nullptr && awsLogSystem->GetLogLevel() >= (level)) { \
            Aws::OStringStream awsLogStream;                                     \
            awsLogStream << streamExpression;                                    \
            awsLogSystem->LogStream((level), (tag), awsLogStream);               \
        }                                                                        \
    } while (false)

#define AWS_LOGSTREAM_FATAL(tag, streamExpression) \
    AWS_LOGSTREAM(Aws::Utils::Logging::LogLevel::Fatal, tag, streamExpression)
#define AWS_LOGSTREAM_ERROR(tag, streamExpression) \
    AWS_LOGSTREAM(Aws::Utils::Logging::LogLevel::Error, tag, streamExpression)
#define AWS_LOGSTREAM_WARN(tag, streamExpression) \
    AWS_LOGSTREAM(Aws::Utils::Logging::LogLevel::Warn, tag, streamExpression)
#define AWS_LOGSTREAM_INFO(tag, streamExpression) \
    AWS_LOGSTREAM(Aws::Utils::Logging::LogLevel::Info, tag, streamExpression)
#define AWS_LOGSTREAM_DEBUG(tag, streamExpression) \
    AWS_LOGSTREAM(Aws::Utils::Logging::LogLevel::Debug, tag, streamExpression)
#define AWS_LOGSTREAM_TRACE(tag, streamExpression) \
    AWS_LOGSTREAM(Aws::Utils::Logging::LogLevel::Trace, tag, streamExpression)
