#pragma once

#include <aws/core/client/AWSError.h>
#include <aws/core/client/CoreErrors.h>

namespace Aws::Client {

/// Decides about further attempts of a failed request. Used by many threads at once.
class RetryStrategy {
public:
    virtual ~RetryStrategy() = default;

    /// `attemptedRetries` is 0 after the first attempt.
    virtual bool ShouldRetry(const AWSError<CoreErrors>& error, long attemptedRetries) const = 0;
    /// Milliseconds to wait before the next attempt.
    virtual long CalculateDelayBeforeNextRetry(const AWSError<CoreErrors>& error,
                                               long attemptedRetries) const = 0;
};

}  // namespace Aws::Client
