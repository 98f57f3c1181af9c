#pragma once

#include <aws/core/utils/memory/stl/AWSVector.h>
#include <aws/s3/model/CompletedPart.h>

#include <utility>

namespace Mirqos::Xml {
class Writer;
}

namespace Aws::S3::Model {

/// All parts of an upload, by ascending number.
class CompletedMultipartUpload {
public:
    const Aws::Vector<CompletedPart>& GetParts() const { return m_parts; }
    void SetParts(Aws::Vector<CompletedPart> value) { m_parts = std::move(value); }
    CompletedMultipartUpload& WithParts(Aws::Vector<CompletedPart> value) {
        SetParts(std::move(value));
        return *this;
    }

    /// Inside this layer: writes the members that have been set.
    void Write(Mirqos::Xml::Writer& writer) const;

private:
    Aws::Vector<CompletedPart> m_parts;
};

}  // namespace Aws::S3::Model
