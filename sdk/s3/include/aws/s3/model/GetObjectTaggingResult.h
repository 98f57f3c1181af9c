#pragma once

#include <aws/core/utils/memory/stl/AWSVector.h>
#include <aws/s3/model/Tag.h>

namespace Mirqos::Client {
struct Answer;
}

namespace Aws::S3::Model {

class GetObjectTaggingResult {
public:
    GetObjectTaggingResult() = default;
    explicit GetObjectTaggingResult(Mirqos::Client::Answer&& answer);

    const Aws::Vector<Tag>& GetTagSet() const { return m_tagSet; }

private:
    Aws::Vector<Tag> m_tagSet;
};

}  // namespace Aws::S3::Model
