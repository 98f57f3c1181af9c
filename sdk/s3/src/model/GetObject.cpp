#include <aws/s3/model/GetObjectRequest.h>
#include <aws/s3/model/GetObjectResult.h>

#include <utility>

#include "sdk/core/client/Answer.h"
#include "sdk/s3/src/Describe.h"

namespace Aws::S3::Model {

Mirqos::Client::WireRequest GetObjectRequest::Describe() const {
    Mirqos::Client::WireRequest wire = Mirqos::S3::ForObject("GET", *this);
    if (RangeHasBeenSet()) {
        wire.headers.emplace_back("Range", Mirqos::ToStd(GetRange()));
    }
    wire.response = Mirqos::Client::ResponseKind::stream;
    return wire;
}

GetObjectResult::GetObjectResult(Mirqos::Client::Answer&& answer)
    : m_body(std::move(answer.stream)),
      m_contentLength(answer.ContentLength()),
      m_contentRange(answer.Header("Content-Range")),
      m_eTag(answer.Header("ETag")) {
}

}  // namespace Aws::S3::Model
