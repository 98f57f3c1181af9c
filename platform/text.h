#pragma once

#include <string>

/// Narrow and wide text. Narrow text is in the system's ANSI code page on Windows and UTF-8
/// elsewhere. What has no counterpart becomes the system's replacement character.
namespace Mirqos {

/// `text` as wide text; a null text gives L"(null)", as it would print.
std::wstring WidenText(const char* text);
/// `text` as narrow text; a null text gives "(null)".
std::string NarrowText(const wchar_t* text);

}  // namespace Mirqos
