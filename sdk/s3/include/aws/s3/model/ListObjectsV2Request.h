#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>
#include <aws/s3/S3Request.h>
#include <aws/s3/model/EncodingType.h>

#include <utility>

namespace Aws::S3::Model {

/// Lists one page of a bucket, in the order of the keys.
class ListObjectsV2Request : public BucketRequest<ListObjectsV2Request> {
public:
    const char* GetServiceRequestName() const override { return "ListObjectsV2"; }
    Mirqos::Client::WireRequest Describe() const override;

    const Aws::String& GetPrefix() const { return m_prefix; }
    bool PrefixHasBeenSet() const { return m_prefixHasBeenSet; }
    void SetPrefix(Aws::String value) {
        m_prefix = std::move(value);
        m_prefixHasBeenSet = true;
    }
    ListObjectsV2Request& WithPrefix(Aws::String value) {
        SetPrefix(std::move(value));
        return *this;
    }

    /// The former page's next token; unset: from the start.
    const Aws::String& GetContinuationToken() const { return m_continuationToken; }
    bool ContinuationTokenHasBeenSet() const { return m_continuationTokenHasBeenSet; }
    void SetContinuationToken(Aws::String value) {
        m_continuationToken = std::move(value);
        m_continuationTokenHasBeenSet = true;
    }
    ListObjectsV2Request& WithContinuationToken(Aws::String value) {
        SetContinuationToken(std::move(value));
        return *this;
    }

    EncodingType GetEncodingType() const { return m_encodingType; }
    bool EncodingTypeHasBeenSet() const { return m_encodingTypeHasBeenSet; }
    void SetEncodingType(EncodingType value) {
        m_encodingType = value;
        m_encodingTypeHasBeenSet = true;
    }
    ListObjectsV2Request& WithEncodingType(EncodingType value) {
        SetEncodingType(value);
        return *this;
    }

private:
    Aws::String m_prefix;
    bool m_prefixHasBeenSet = false;
    Aws::String m_continuationToken;
    bool m_continuationTokenHasBeenSet = false;
    EncodingType m_encodingType = EncodingType::NOT_SET;
    bool m_encodingTypeHasBeenSet = false;
};

}  // namespace Aws::S3::Model
