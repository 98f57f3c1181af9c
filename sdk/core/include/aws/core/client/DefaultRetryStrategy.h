#pragma once

#include <aws/core/client/RetryStrategy.h>

namespace Aws::Client {

/// Retries what is retryable: at once, then after 2^n times the scale factor.
class DefaultRetryStrategy : public RetryStrategy {
public:
    /// `scaleFactor` in milliseconds.
    explicit DefaultRetryStrategy(long maxRetries = 10, long scaleFactor = 25)
        : m_maxRetries(maxRetries), m_scaleFactor(scaleFactor) {}

    bool ShouldRetry(const AWSError<CoreErrors>& error, long attemptedRetries) const override;
    long CalculateDelayBeforeNextRetry(const AWSError<CoreErrors>& error,
                                       long attemptedRetries) const override;

private:
    const long m_maxRetries;
    const long m_scaleFactor;
};

}  // namespace Aws::Client
