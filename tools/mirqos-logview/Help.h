#pragma once

namespace Mirqos::LogView {

extern const char* const kHelp;

}  // namespace Mirqos::LogView
