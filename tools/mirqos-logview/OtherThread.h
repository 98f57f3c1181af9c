#pragma once

#include <cstdint>

#include "log/dbg/win32/Owned.h"

/// Threads of other processes.
namespace Mirqos::LogView {

/// None when there is no such thread or it may not be opened.
LOGUTILS::KernelObject OpenThreadById(std::uint32_t id);

/// `thread` is what OpenThreadById gave. A thread that may not be opened is taken to be there.
bool HasEnded(const LOGUTILS::KernelObject& thread, std::uint32_t id);

}  // namespace Mirqos::LogView
