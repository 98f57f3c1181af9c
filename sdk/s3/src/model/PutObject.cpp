#include <aws/s3/model/PutObjectRequest.h>
#include <aws/s3/model/PutObjectResult.h>

#include "sdk/core/client/Answer.h"
#include "sdk/s3/src/Describe.h"

namespace Aws::S3::Model {

Mirqos::Client::WireRequest PutObjectRequest::Describe() const {
    Mirqos::Client::WireRequest wire = Mirqos::S3::ForObject("PUT", *this);
    wire.body = GetBody();
    wire.contentType = Mirqos::ToStd(GetContentType());
    return wire;
}

PutObjectResult::PutObjectResult(Mirqos::Client::Answer&& answer) : m_eTag(answer.Header("ETag")) {
}

}  // namespace Aws::S3::Model
