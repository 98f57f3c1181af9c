#pragma once

#include <utility>

#include "log/dbg/win32/WindowsCalls.h"

namespace Mirqos::Test {

/// Puts `call` in the place of one of the logging library's calls to Windows for as long as it
/// lives: `const ReplacedCall refused(&WindowsCalls::createMutex, &RefuseMutex);`. Other threads of
/// the library may run, but none may be inside the call when it is put back.
template <typename Function>
class ReplacedCall {
public:
    ReplacedCall(Function LOGUTILS::WindowsCalls::*place, Function call)
        : m_place(place), m_former(std::exchange(LOGUTILS::Windows().*place, call)) {}
    ~ReplacedCall() { LOGUTILS::Windows().*m_place = m_former; }
    ReplacedCall(const ReplacedCall&) = delete;
    ReplacedCall& operator=(const ReplacedCall&) = delete;

private:
    Function LOGUTILS::WindowsCalls::*m_place;
    Function m_former;
};

}  // namespace Mirqos::Test
