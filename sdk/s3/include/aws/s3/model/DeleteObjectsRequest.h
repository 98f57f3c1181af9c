#pragma once

#include <aws/s3/S3Request.h>
#include <aws/s3/model/Delete.h>

#include <utility>

namespace Aws::S3::Model {

/// Deletes several objects; the service takes 1,000 at most.
class DeleteObjectsRequest : public BucketRequest<DeleteObjectsRequest> {
public:
    const char* GetServiceRequestName() const override { return "DeleteObjects"; }
    Mirqos::Client::WireRequest Describe() const override;

    const Delete& GetDelete() const { return m_delete; }
    void SetDelete(Delete value) { m_delete = std::move(value); }
    DeleteObjectsRequest& WithDelete(Delete value) {
        SetDelete(std::move(value));
        return *this;
    }

private:
    Delete m_delete;
};

}  // namespace Aws::S3::Model
