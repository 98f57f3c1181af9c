#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

namespace Mirqos::Client {
struct Answer;
}

namespace Aws::S3::Model {

class HeadObjectResult {
public:
    HeadObjectResult() = default;
    explicit HeadObjectResult(Mirqos::Client::Answer&& answer);

    /// The object's size in bytes.
    long long GetContentLength() const { return m_contentLength; }

    const Aws::String& GetETag() const { return m_eTag; }

private:
    long long m_contentLength = 0;
    Aws::String m_eTag;
};

}  // namespace Aws::S3::Model
