#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

namespace Mirqos::Client {
struct Answer;
}

namespace Aws::S3::Model {

class CreateMultipartUploadResult {
public:
    CreateMultipartUploadResult() = default;
    explicit CreateMultipartUploadResult(Mirqos::Client::Answer&& answer);

    /// Names the upload in the calls that follow.
    const Aws::String& GetUploadId() const { return m_uploadId; }

private:
    Aws::String m_uploadId;
};

}  // namespace Aws::S3::Model
