#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

namespace Mirqos::Client {
struct Answer;
}

namespace Aws::S3::Model {

class CompleteMultipartUploadResult {
public:
    CompleteMultipartUploadResult() = default;
    explicit CompleteMultipartUploadResult(Mirqos::Client::Answer&& answer);

    const Aws::String& GetETag() const { return m_eTag; }

private:
    Aws::String m_eTag;
};

}  // namespace Aws::S3::Model
