#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

#include <utility>

namespace Mirqos::Xml {
class Element;
}

namespace Aws::S3::Model {

/// What became of a copied part.
class CopyPartResult {
public:
    CopyPartResult() = default;
    /// Inside this layer: the members that `element` has.
    explicit CopyPartResult(const Mirqos::Xml::Element& element);

    const Aws::String& GetETag() const { return m_eTag; }
    void SetETag(Aws::String value) { m_eTag = std::move(value); }
    CopyPartResult& WithETag(Aws::String value) {
        SetETag(std::move(value));
        return *this;
    }

private:
    Aws::String m_eTag;
};

}  // namespace Aws::S3::Model
