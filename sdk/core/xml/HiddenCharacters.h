#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// A key may hold characters that XML 1.0 has no way to write: control characters, U+FFFE, U+FFFF.
/// Services write them all the same, most as character references, and one such key must not make
/// its whole listing unreadable. So readers get them in hiding, as ordinary characters, and every
/// other character reference with them, because some readers change those.
namespace Mirqos::Xml {

/// The document with these characters hidden: itself where there are none, else a copy in `room`.
std::string_view HideCharacters(std::string_view document, std::string& room);

/// Puts the hidden characters back into an element's whole text, which begins at `from`.
void RestoreCharacters(std::string& text, std::size_t from);

}  // namespace Mirqos::Xml
