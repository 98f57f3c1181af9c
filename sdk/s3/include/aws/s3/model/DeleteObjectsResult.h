#pragma once

#include <aws/core/utils/memory/stl/AWSVector.h>
#include <aws/s3/model/DeletedObject.h>

namespace Mirqos::Client {
struct Answer;
}

namespace Aws::S3::Model {

class DeleteObjectsResult {
public:
    DeleteObjectsResult() = default;
    explicit DeleteObjectsResult(Mirqos::Client::Answer&& answer);

    /// In the service's order; objects that it could not delete are missing.
    const Aws::Vector<DeletedObject>& GetDeleted() const { return m_deleted; }

private:
    Aws::Vector<DeletedObject> m_deleted;
};

}  // namespace Aws::S3::Model
