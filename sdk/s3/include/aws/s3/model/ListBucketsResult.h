#pragma once

#include <aws/core/utils/memory/stl/AWSVector.h>
#include <aws/s3/model/Bucket.h>

namespace Mirqos::Client {
struct Answer;
}

namespace Aws::S3::Model {

class ListBucketsResult {
public:
    ListBucketsResult() = default;
    explicit ListBucketsResult(Mirqos::Client::Answer&& answer);

    const Aws::Vector<Bucket>& GetBuckets() const { return m_buckets; }

private:
    Aws::Vector<Bucket> m_buckets;
};

}  // namespace Aws::S3::Model
