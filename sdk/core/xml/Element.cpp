#include <algorithm>

#include "sdk/core/xml/Xml.h"

namespace Mirqos::Xml {

const Element* Element::Child(std::string_view childName) const {
    const auto found = std::find_if(children.begin(), children.end(),
                                    [&](const Element& child) { return child.name == childName; });
    return found == children.end() ? nullptr : &*found;
}

const std::string& Element::TextOf(std::string_view childName) const {
    static const std::string none;
    const Element* const child = Child(childName);
    return child != nullptr ? child->text : none;
}

}  // namespace Mirqos::Xml
