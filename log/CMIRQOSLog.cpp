#include "log/CMIRQOSLog.h"

#include "log/LogOutputs.h"
#include "log/ModuleLog.h"

CMIRQOSLog::CMIRQOSLog(Aws::Utils::Logging::LogLevel level)
    : FormattedLogSystem(level),
      m_pFileOutput(Mirqos::CreateFileLogOutput()),
      m_pSMOutput(Mirqos::CreateChannelLogOutput()) {
}

// The pointers stay null: what is destroyed after g_ModuleLog may still log, and is not heard.
CMIRQOSLog::~CMIRQOSLog() {
    m_pFileOutput.reset();
    m_pSMOutput.reset();
}

void CMIRQOSLog::Flush() {
}

void CMIRQOSLog::ProcessFormattedStatement(Aws::String&& statement) {
    ModuleLog(&g_ModuleLog, 1, "[AWS_SDK] %s", statement.c_str());
}
