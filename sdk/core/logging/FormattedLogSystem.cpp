#include <aws/core/utils/logging/FormattedLogSystem.h>

#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <iomanip>
#include <thread>
#include <utility>

#include "sdk/core/signer/UtcTime.h"

namespace Aws::Utils::Logging {
namespace {

/// "yyyy-mm-dd hh:mm:ss.mmm"
void WriteTime(Aws::OStringStream& to, Mirqos::UtcTime time) {
    using std::chrono::milliseconds;
    const std::string compact = Mirqos::FormatAmzDate(time);  // YYYYMMDDTHHMMSSZ
    const auto sinceEpoch = std::chrono::duration_cast<milliseconds>(time.time_since_epoch());
    to << compact.substr(0, 4) << '-' << compact.substr(4, 2) << '-' << compact.substr(6, 2) << ' '
       << compact.substr(9, 2) << ':' << compact.substr(11, 2) << ':' << compact.substr(13, 2)
       << '.' << std::setw(3) << std::setfill('0') << sinceEpoch.count() % 1000;
}

}  // namespace

FormattedLogSystem::FormattedLogSystem(LogLevel logLevel) : m_logLevel(logLevel) {
}

void FormattedLogSystem::Log(LogLevel logLevel, const char* tag, const char* formatStr, ...) {
    if (!IsWanted(logLevel)) {
        return;
    }
    std::va_list arguments;
    va_start(arguments, formatStr);
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, formatStr, arguments);
    va_end(arguments);
    Aws::String message;
    if (length > 0) {
        // vsnprintf ends with a NUL, for which every string has room.
        message.resize(static_cast<std::size_t>(length));
        std::vsnprintf(message.data(), message.size() + 1, formatStr, again);
    }
    va_end(again);
    Pass(logLevel, tag, message);
}

void FormattedLogSystem::LogStream(LogLevel logLevel, const char* tag,
                                   const Aws::OStringStream& messageStream) {
    if (IsWanted(logLevel)) {
        Pass(logLevel, tag, messageStream.str());
    }
}

bool FormattedLogSystem::IsWanted(LogLevel logLevel) const {
    return logLevel != LogLevel::Off && logLevel <= GetLogLevel();
}

void FormattedLogSystem::Pass(LogLevel logLevel, const char* tag, const Aws::String& message) {
    Aws::OStringStream statement;
    statement.imbue(std::locale::classic());
    statement << '[' << GetLogLevelName(logLevel) << "] ";
    WriteTime(statement, std::chrono::system_clock::now());
    statement << ' ' << tag << " [" << std::this_thread::get_id() << "] " << message << '\n';
    ProcessFormattedStatement(statement.str());
}

}  // namespace Aws::Utils::Logging
