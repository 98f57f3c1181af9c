#pragma once

#include <string_view>

namespace Mirqos::Xml {

/// Whether the document ends inside an element, a tag, a comment or the like, so that more would
/// have to follow. Says nothing about other errors.
///
/// XmlLite refuses such a document by itself. Wine's (8.0) closes the open elements instead,
/// repeats the last node for ever or ends the process, so it is not to see one. To be dropped with
/// that Wine.
bool IsCut(std::string_view document);

}  // namespace Mirqos::Xml
