#pragma once

#include <aws/core/utils/logging/FormattedLogSystem.h>

#include <memory>

#include "log/IDBGLogOutput.h"

/// The module log, and at the same time the log system that the SDK writes its statements to. Each
/// instance has outputs of its own; whatever the SDK says, to whichever instance, goes to those of
/// g_ModuleLog with the prefix "[AWS_SDK] " and at level 1.
///
/// `override` is left out throughout: Flush overrides only where the SDK has one, and a class is to
/// use the word for all of its members or for none.
class CMIRQOSLog : public Aws::Utils::Logging::FormattedLogSystem {
public:
    explicit CMIRQOSLog(Aws::Utils::Logging::LogLevel level);
    ~CMIRQOSLog();
    CMIRQOSLog(const CMIRQOSLog&) = delete;
    CMIRQOSLog& operator=(const CMIRQOSLog&) = delete;

    /// Outputs write every line at once, so there is never anything to flush. Pure virtual in the
    /// SDKs from late 1.7 on, unknown to earlier ones.
    void Flush();

    /// The outputs may be replaced while no other thread logs. Without a file output nothing is
    /// written at all.
    std::unique_ptr<IDBGLogOutput> m_pFileOutput;
    std::unique_ptr<IDBGLogOutput> m_pSMOutput;
    int m_nLevel = 2;  ///< lines above it are dropped unformatted

protected:
    void ProcessFormattedStatement(Aws::String&& statement);
};
