#pragma once

#include <string>
#include <string_view>

namespace Mirqos::Http {

std::wstring Widen(std::string_view utf8);
std::string Narrow(std::wstring_view wide);
/// The system's words for an error of WinHTTP or of the sockets below it, and its number.
std::string ErrorWords(unsigned long error);

}  // namespace Mirqos::Http
