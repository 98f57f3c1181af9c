#include <mirqos/lifecycle.h>

#include <memory>

#include "boundary/lifecycle.h"
#include "log/CMIRQOSLog.h"
#include "log/ModuleLog.h"
#include "store/AwsS3Store.h"

std::int32_t g_nInitCount = 0;
Aws::SDKOptions g_SDKOptions;

namespace {

constexpr std::int32_t kDefaultLogLevel = 3;
constexpr std::uint32_t kHighestLogLevel = 6;

Aws::Utils::Logging::LogLevel LogLevelOf(const CloudStoreContext* context) {
    std::int32_t level = kDefaultLogLevel;
    // Unsigned, so that a negative level counts as too high.
    if (context != nullptr &&
        static_cast<std::uint32_t>(context->m_nLogLevel) <= kHighestLogLevel) {
        level = context->m_nLogLevel;
    }
    return static_cast<Aws::Utils::Logging::LogLevel>(level);
}

std::shared_ptr<Aws::Utils::Logging::LogSystemInterface> MakeLogSystem() {
    return Aws::MakeShared<CMIRQOSLog>(Mirqos::kAllocationTag,
                                       g_SDKOptions.loggingOptions.logLevel);
}

}  // namespace

std::int32_t InitCloudStoreContext(CloudStoreContext* context) {
    const Aws::Utils::Logging::LogLevel level = LogLevelOf(context);
    g_SDKOptions.loggingOptions.logLevel = level;
    ModuleLog(&g_ModuleLog, 1, "%s aws sdk log level = %d", "AwsS3Store::InitCloudStoreContext",
              static_cast<int>(level));
    g_SDKOptions.loggingOptions.logger_create_fn = MakeLogSystem;
    if (g_nInitCount == 0) {
        Aws::InitAPI(g_SDKOptions);
    }
    ++g_nInitCount;
    return 0;
}

std::int32_t UnInitCloudStoreContext() {
    ModuleLog(&g_ModuleLog, 1, "%s ", "AwsS3Store::DeInitCloudStoreContext");
    if (g_nInitCount > 0) {
        --g_nInitCount;
        if (g_nInitCount == 0) {
            Aws::ShutdownAPI(g_SDKOptions);
        }
    } else if (g_nInitCount == 0) {
        // Hosts rely on an unbalanced stop to shut the SDK down, whoever started it.
        Aws::ShutdownAPI(g_SDKOptions);
    }
    return 0;
}

MIRQOSInterface* CreateCloudStoreInterface(CloudStoreContext* /*context*/) {
    return new AwsS3Store;
}

void ReleaseCloudStoreInterface(MIRQOSInterface* store) {
    delete store;
}

MIRQOSEngineStarter::MIRQOSEngineStarter(bool start, CloudStoreContext context)
    : m_bStarted(start) {
    if (m_bStarted) {
        InitCloudStoreContext(&context);
    }
}

MIRQOSEngineStarter& MIRQOSEngineStarter::operator=(const MIRQOSEngineStarter&) = default;

MIRQOSEngineStarter::~MIRQOSEngineStarter() {
    if (m_bStarted) {
        UnInitCloudStoreContext();
    }
}
