#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

namespace Mirqos::Client {
struct Answer;
}

namespace Aws::S3::Model {

class DeleteObjectResult {
public:
    DeleteObjectResult() = default;
    explicit DeleteObjectResult(Mirqos::Client::Answer&& answer);

    /// Whether the service laid a delete marker over the object (versioned buckets).
    bool GetDeleteMarker() const { return m_deleteMarker; }
    /// The version deleted or the marker's; empty in buckets without versions.
    const Aws::String& GetVersionId() const { return m_versionId; }

private:
    bool m_deleteMarker = false;
    Aws::String m_versionId;
};

}  // namespace Aws::S3::Model
