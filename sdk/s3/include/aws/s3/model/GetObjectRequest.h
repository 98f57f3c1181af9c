#pragma once

#include <aws/s3/S3Request.h>

#include <utility>

namespace Aws::S3::Model {

/// Reads an object or one range of its bytes into the stream of the response stream factory.
class GetObjectRequest : public ObjectRequest<GetObjectRequest> {
public:
    const char* GetServiceRequestName() const override { return "GetObject"; }
    Mirqos::Client::WireRequest Describe() const override;

    /// "bytes=FIRST-LAST", both counted from 0 and included.
    const Aws::String& GetRange() const { return m_range; }
    bool RangeHasBeenSet() const { return m_rangeHasBeenSet; }
    void SetRange(Aws::String range) {
        m_range = std::move(range);
        m_rangeHasBeenSet = true;
    }
    GetObjectRequest& WithRange(Aws::String range) {
        SetRange(std::move(range));
        return *this;
    }

private:
    Aws::String m_range;
    bool m_rangeHasBeenSet = false;
};

}  // namespace Aws::S3::Model
