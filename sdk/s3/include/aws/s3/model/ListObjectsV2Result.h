#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>
#include <aws/core/utils/memory/stl/AWSVector.h>
#include <aws/s3/model/Object.h>

namespace Mirqos::Client {
struct Answer;
}

namespace Aws::S3::Model {

class ListObjectsV2Result {
public:
    ListObjectsV2Result() = default;
    explicit ListObjectsV2Result(Mirqos::Client::Answer&& answer);

    const Aws::Vector<Object>& GetContents() const { return m_contents; }

    /// Whether further pages follow.
    bool GetIsTruncated() const { return m_isTruncated; }

    /// Where the next page starts; empty on the last one.
    const Aws::String& GetNextContinuationToken() const { return m_nextContinuationToken; }

private:
    Aws::Vector<Object> m_contents;
    bool m_isTruncated = false;
    Aws::String m_nextContinuationToken;
};

}  // namespace Aws::S3::Model
