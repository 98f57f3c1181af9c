#pragma once

#include <aws/s3/model/CopyPartResult.h>

namespace Mirqos::Client {
struct Answer;
}

namespace Aws::S3::Model {

class UploadPartCopyResult {
public:
    UploadPartCopyResult() = default;
    explicit UploadPartCopyResult(Mirqos::Client::Answer&& answer);

    const CopyPartResult& GetCopyPartResult() const { return m_copyPartResult; }

private:
    CopyPartResult m_copyPartResult;
};

}  // namespace Aws::S3::Model
