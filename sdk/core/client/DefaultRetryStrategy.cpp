#include <aws/core/client/DefaultRetryStrategy.h>

#include <limits>

namespace Aws::Client {

bool DefaultRetryStrategy::ShouldRetry(const AWSError<CoreErrors>& error,
                                       long attemptedRetries) const {
    return attemptedRetries < m_maxRetries && error.ShouldRetry();
}

long DefaultRetryStrategy::CalculateDelayBeforeNextRetry(const AWSError<CoreErrors>& /*error*/,
                                                         long attemptedRetries) const {
    if (attemptedRetries <= 0) {
        return 0;
    }
    long delay = m_scaleFactor;
    for (long i = 0; i < attemptedRetries; ++i) {
        if (delay > std::numeric_limits<long>::max() / 2) {
            return std::numeric_limits<long>::max();
        }
        delay *= 2;
    }
    return delay;
}

}  // namespace Aws::Client
