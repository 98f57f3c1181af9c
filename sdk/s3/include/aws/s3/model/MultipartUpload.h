#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

#include <utility>

namespace Mirqos::Xml {
class Element;
}

namespace Aws::S3::Model {

/// An unfinished upload.
class MultipartUpload {
public:
    MultipartUpload() = default;
    /// Inside this layer: the members that `element` has.
    explicit MultipartUpload(const Mirqos::Xml::Element& element);

    const Aws::String& GetKey() const { return m_key; }
    void SetKey(Aws::String value) { m_key = std::move(value); }
    MultipartUpload& WithKey(Aws::String value) {
        SetKey(std::move(value));
        return *this;
    }

    const Aws::String& GetUploadId() const { return m_uploadId; }
    void SetUploadId(Aws::String value) { m_uploadId = std::move(value); }
    MultipartUpload& WithUploadId(Aws::String value) {
        SetUploadId(std::move(value));
        return *this;
    }

private:
    Aws::String m_key;
    Aws::String m_uploadId;
};

}  // namespace Aws::S3::Model
