#pragma once

#include <aws/core/utils/memory/stl/AWSVector.h>
#include <aws/s3/model/ObjectIdentifier.h>

#include <utility>

namespace Mirqos::Xml {
class Writer;
}

namespace Aws::S3::Model {

/// The objects of one multi-object delete.
class Delete {
public:
    const Aws::Vector<ObjectIdentifier>& GetObjects() const { return m_objects; }
    Delete& AddObjects(ObjectIdentifier value) {
        m_objects.push_back(std::move(value));
        return *this;
    }

    /// Inside this layer: writes the members that have been set.
    void Write(Mirqos::Xml::Writer& writer) const;

private:
    Aws::Vector<ObjectIdentifier> m_objects;
};

}  // namespace Aws::S3::Model
