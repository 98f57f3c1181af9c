#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

namespace Mirqos::Client {
struct Answer;
}

namespace Aws::S3::Model {

class CreateBucketResult {
public:
    CreateBucketResult() = default;
    explicit CreateBucketResult(Mirqos::Client::Answer&& answer);

    /// The Location header: the new bucket's place, as the service names it.
    const Aws::String& GetLocation() const { return m_location; }

private:
    Aws::String m_location;
};

}  // namespace Aws::S3::Model
