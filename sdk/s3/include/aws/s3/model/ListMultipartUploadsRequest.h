#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>
#include <aws/s3/S3Request.h>

#include <utility>

namespace Aws::S3::Model {

/// Lists one page of a bucket's unfinished multipart uploads.
class ListMultipartUploadsRequest : public BucketRequest<ListMultipartUploadsRequest> {
public:
    const char* GetServiceRequestName() const override { return "ListMultipartUploads"; }
    Mirqos::Client::WireRequest Describe() const override;

    const Aws::String& GetPrefix() const { return m_prefix; }
    bool PrefixHasBeenSet() const { return m_prefixHasBeenSet; }
    void SetPrefix(Aws::String value) {
        m_prefix = std::move(value);
        m_prefixHasBeenSet = true;
    }
    ListMultipartUploadsRequest& WithPrefix(Aws::String value) {
        SetPrefix(std::move(value));
        return *this;
    }

    /// The listing starts behind this key.
    const Aws::String& GetKeyMarker() const { return m_keyMarker; }
    bool KeyMarkerHasBeenSet() const { return m_keyMarkerHasBeenSet; }
    void SetKeyMarker(Aws::String value) {
        m_keyMarker = std::move(value);
        m_keyMarkerHasBeenSet = true;
    }
    ListMultipartUploadsRequest& WithKeyMarker(Aws::String value) {
        SetKeyMarker(std::move(value));
        return *this;
    }

private:
    Aws::String m_prefix;
    bool m_prefixHasBeenSet = false;
    Aws::String m_keyMarker;
    bool m_keyMarkerHasBeenSet = false;
};

}  // namespace Aws::S3::Model
