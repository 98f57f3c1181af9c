#include <aws/s3/model/HeadObjectRequest.h>
#include <aws/s3/model/HeadObjectResult.h>

#include "sdk/core/client/Answer.h"
#include "sdk/s3/src/Describe.h"

namespace Aws::S3::Model {

Mirqos::Client::WireRequest HeadObjectRequest::Describe() const {
    return Mirqos::S3::ForObject("HEAD", *this);
}

HeadObjectResult::HeadObjectResult(Mirqos::Client::Answer&& answer)
    : m_contentLength(answer.ContentLength()), m_eTag(answer.Header("ETag")) {
}

}  // namespace Aws::S3::Model
