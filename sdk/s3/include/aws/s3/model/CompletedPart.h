#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

#include <utility>

namespace Mirqos::Xml {
class Writer;
}

namespace Aws::S3::Model {

/// A part as it is joined.
class CompletedPart {
public:
    const Aws::String& GetETag() const { return m_eTag; }
    bool ETagHasBeenSet() const { return m_eTagHasBeenSet; }
    void SetETag(Aws::String value) {
        m_eTag = std::move(value);
        m_eTagHasBeenSet = true;
    }
    CompletedPart& WithETag(Aws::String value) {
        SetETag(std::move(value));
        return *this;
    }

    int GetPartNumber() const { return m_partNumber; }
    void SetPartNumber(int value) { m_partNumber = value; }
    CompletedPart& WithPartNumber(int value) {
        SetPartNumber(value);
        return *this;
    }

    /// Inside this layer: writes the members that have been set.
    void Write(Mirqos::Xml::Writer& writer) const;

private:
    Aws::String m_eTag;
    bool m_eTagHasBeenSet = false;
    int m_partNumber = 0;
};

}  // namespace Aws::S3::Model
