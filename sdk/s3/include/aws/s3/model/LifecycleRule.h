#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>
#include <aws/s3/model/AbortIncompleteMultipartUpload.h>
#include <aws/s3/model/ExpirationStatus.h>
#include <aws/s3/model/LifecycleRuleFilter.h>

#include <utility>

namespace Mirqos::Xml {
class Writer;
}

namespace Aws::S3::Model {

/// One rule.
class LifecycleRule {
public:
    const Aws::String& GetID() const { return m_id; }
    bool IDHasBeenSet() const { return m_idHasBeenSet; }
    void SetID(Aws::String value) {
        m_id = std::move(value);
        m_idHasBeenSet = true;
    }
    LifecycleRule& WithID(Aws::String value) {
        SetID(std::move(value));
        return *this;
    }

    const LifecycleRuleFilter& GetFilter() const { return m_filter; }
    bool FilterHasBeenSet() const { return m_filterHasBeenSet; }
    void SetFilter(LifecycleRuleFilter value) {
        m_filter = std::move(value);
        m_filterHasBeenSet = true;
    }
    LifecycleRule& WithFilter(LifecycleRuleFilter value) {
        SetFilter(std::move(value));
        return *this;
    }

    ExpirationStatus GetStatus() const { return m_status; }
    void SetStatus(ExpirationStatus value) { m_status = value; }
    LifecycleRule& WithStatus(ExpirationStatus value) {
        SetStatus(value);
        return *this;
    }

    const AbortIncompleteMultipartUpload& GetAbortIncompleteMultipartUpload() const {
        return m_abortIncompleteMultipartUpload;
    }
    bool AbortIncompleteMultipartUploadHasBeenSet() const {
        return m_abortIncompleteMultipartUploadHasBeenSet;
    }
    void SetAbortIncompleteMultipartUpload(AbortIncompleteMultipartUpload value) {
        m_abortIncompleteMultipartUpload = std::move(value);
        m_abortIncompleteMultipartUploadHasBeenSet = true;
    }
    LifecycleRule& WithAbortIncompleteMultipartUpload(AbortIncompleteMultipartUpload value) {
        SetAbortIncompleteMultipartUpload(std::move(value));
        return *this;
    }

    /// Inside this layer: writes the members that have been set.
    void Write(Mirqos::Xml::Writer& writer) const;

private:
    Aws::String m_id;
    bool m_idHasBeenSet = false;
    LifecycleRuleFilter m_filter;
    bool m_filterHasBeenSet = false;
    ExpirationStatus m_status = ExpirationStatus::NOT_SET;
    AbortIncompleteMultipartUpload m_abortIncompleteMultipartUpload;
    bool m_abortIncompleteMultipartUploadHasBeenSet = false;
};

}  // namespace Aws::S3::Model
