#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

namespace Mirqos::Client {
struct Answer;
}

namespace Aws::S3::Model {

class PutObjectTaggingResult {
public:
    PutObjectTaggingResult() = default;
    explicit PutObjectTaggingResult(Mirqos::Client::Answer&& answer);

    /// The version that was tagged; empty in buckets without versions.
    const Aws::String& GetVersionId() const { return m_versionId; }

private:
    Aws::String m_versionId;
};

}  // namespace Aws::S3::Model
