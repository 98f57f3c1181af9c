#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

#include <utility>

namespace Mirqos::Xml {
class Writer;
}

namespace Aws::S3::Model {

/// An object to delete.
class ObjectIdentifier {
public:
    const Aws::String& GetKey() const { return m_key; }
    void SetKey(Aws::String value) { m_key = std::move(value); }
    ObjectIdentifier& WithKey(Aws::String value) {
        SetKey(std::move(value));
        return *this;
    }

    /// Inside this layer: writes the members that have been set.
    void Write(Mirqos::Xml::Writer& writer) const;

private:
    Aws::String m_key;
};

}  // namespace Aws::S3::Model
