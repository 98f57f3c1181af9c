#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>
#include <aws/core/utils/memory/stl/AWSVector.h>
#include <aws/s3/model/MultipartUpload.h>

namespace Mirqos::Client {
struct Answer;
}

namespace Aws::S3::Model {

class ListMultipartUploadsResult {
public:
    ListMultipartUploadsResult() = default;
    explicit ListMultipartUploadsResult(Mirqos::Client::Answer&& answer);

    const Aws::Vector<MultipartUpload>& GetUploads() const { return m_uploads; }

    /// Whether further pages follow.
    bool GetIsTruncated() const { return m_isTruncated; }

    /// Where the next page starts; empty on the last one.
    const Aws::String& GetNextKeyMarker() const { return m_nextKeyMarker; }

private:
    Aws::Vector<MultipartUpload> m_uploads;
    bool m_isTruncated = false;
    Aws::String m_nextKeyMarker;
};

}  // namespace Aws::S3::Model
