#include <aws/s3/model/DeleteObjectRequest.h>
#include <aws/s3/model/DeleteObjectResult.h>

#include "sdk/core/client/Answer.h"
#include "sdk/s3/src/Describe.h"

namespace Aws::S3::Model {

Mirqos::Client::WireRequest DeleteObjectRequest::Describe() const {
    return Mirqos::S3::ForObject("DELETE", *this);
}

DeleteObjectResult::DeleteObjectResult(Mirqos::Client::Answer&& answer)
    : m_deleteMarker(answer.Header("x-amz-delete-marker") == "true"),
      m_versionId(answer.Header("x-amz-version-id")) {
}

}  // namespace Aws::S3::Model
