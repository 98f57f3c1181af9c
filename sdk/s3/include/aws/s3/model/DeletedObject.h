#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

#include <utility>

namespace Mirqos::Xml {
class Element;
}

namespace Aws::S3::Model {

/// An object that the service deleted.
class DeletedObject {
public:
    DeletedObject() = default;
    /// Inside this layer: the members that `element` has.
    explicit DeletedObject(const Mirqos::Xml::Element& element);

    const Aws::String& GetKey() const { return m_key; }
    void SetKey(Aws::String value) { m_key = std::move(value); }
    DeletedObject& WithKey(Aws::String value) {
        SetKey(std::move(value));
        return *this;
    }

private:
    Aws::String m_key;
};

}  // namespace Aws::S3::Model
