#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

namespace Mirqos::Client {
struct Answer;
}

namespace Aws::S3::Model {

class UploadPartResult {
public:
    UploadPartResult() = default;
    explicit UploadPartResult(Mirqos::Client::Answer&& answer);

    /// The entity tag with its quotes, as the service sent it.
    const Aws::String& GetETag() const { return m_eTag; }

private:
    Aws::String m_eTag;
};

}  // namespace Aws::S3::Model
