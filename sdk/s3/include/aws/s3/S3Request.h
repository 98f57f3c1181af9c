#pragma once

#include <aws/core/AmazonWebServiceRequest.h>
#include <aws/core/utils/memory/stl/AWSString.h>

#include <utility>

namespace Aws::S3 {

/// Gives the request type `Request` the bucket it is sent to.
template <typename Request, typename Base = AmazonWebServiceRequest>
class BucketRequest : public Base {
public:
    const Aws::String& GetBucket() const { return m_bucket; }
    bool BucketHasBeenSet() const { return m_bucketHasBeenSet; }
    void SetBucket(Aws::String bucket) {
        m_bucket = std::move(bucket);
        m_bucketHasBeenSet = true;
    }
    Request& WithBucket(Aws::String bucket) {
        SetBucket(std::move(bucket));
        return static_cast<Request&>(*this);
    }

private:
    Aws::String m_bucket;
    bool m_bucketHasBeenSet = false;
};

/// Gives the request type `Request` bucket and key of the object it is about.
template <typename Request, typename Base = AmazonWebServiceRequest>
class ObjectRequest : public BucketRequest<Request, Base> {
public:
    const Aws::String& GetKey() const { return m_key; }
    bool KeyHasBeenSet() const { return m_keyHasBeenSet; }
    /// Any bytes; they reach the service exactly as they are.
    void SetKey(Aws::String key) {
        m_key = std::move(key);
        m_keyHasBeenSet = true;
    }
    Request& WithKey(Aws::String key) {
        SetKey(std::move(key));
        return static_cast<Request&>(*this);
    }

private:
    Aws::String m_key;
    bool m_keyHasBeenSet = false;
};

}  // namespace Aws::S3
