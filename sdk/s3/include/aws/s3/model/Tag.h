#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

#include <utility>

namespace Mirqos::Xml {
class Writer;
class Element;
}  // namespace Mirqos::Xml

namespace Aws::S3::Model {

class Tag {
public:
    Tag() = default;
    /// Inside this layer: the members that `element` has.
    explicit Tag(const Mirqos::Xml::Element& element);

    const Aws::String& GetKey() const { return m_key; }
    void SetKey(Aws::String value) { m_key = std::move(value); }
    Tag& WithKey(Aws::String value) {
        SetKey(std::move(value));
        return *this;
    }

    const Aws::String& GetValue() const { return m_value; }
    void SetValue(Aws::String value) { m_value = std::move(value); }
    Tag& WithValue(Aws::String value) {
        SetValue(std::move(value));
        return *this;
    }

    /// Inside this layer: writes the members that have been set.
    void Write(Mirqos::Xml::Writer& writer) const;

private:
    Aws::String m_key;
    Aws::String m_value;
};

}  // namespace Aws::S3::Model
