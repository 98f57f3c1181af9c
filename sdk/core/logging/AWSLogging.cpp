#include <aws/core/utils/logging/AWSLogging.h>

#include <mutex>
#include <utility>

namespace Aws::Utils::Logging {
namespace {

struct Current {
    std::mutex mutex;
    std::shared_ptr<LogSystemInterface> logSystem;
};

// Never destroyed: threads of a client may still log while statics are torn down.
Current& TheCurrent() {
    static Current& current = *new Current;
    return current;
}

void Exchange(std::shared_ptr<LogSystemInterface> logSystem) {
    {
        const std::lock_guard lock(TheCurrent().mutex);
        TheCurrent().logSystem.swap(logSystem);
    }
    // The former one ends here, outside the lock: its end may log.
}

}  // namespace

void InitializeAWSLogging(const std::shared_ptr<LogSystemInterface>& logSystem) {
    Exchange(logSystem);
}

void ShutdownAWSLogging() {
    Exchange(nullptr);
}

std::shared_ptr<LogSystemInterface> GetLogSystem() {
    const std::lock_guard lock(TheCurrent().mutex);
    return TheCurrent().logSystem;
}

}  // namespace Aws::Utils::Logging
