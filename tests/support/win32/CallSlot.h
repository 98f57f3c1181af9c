#pragma once

#include <cstddef>
#include <cstring>

namespace Mirqos::Test {

/// Calls an operation by its place in the object's table of virtual functions, as other modules do;
/// slot 1 is the destructor's. GCC's C++ ABI has two entries for that, MSVC's one, and the build
/// says which it is.
template <typename Result, typename Object, typename... Arguments>
Result CallSlot(Object& object, std::size_t nSlot, Arguments... arguments) {
    // A member's: where that returns an object, its arguments are not passed as a function's are.
    class Any {};
    using Operation = Result (Any::*)(Arguments...);
    void* const* pTable = nullptr;
    // as bytes: the object begins with a pointer to the table, and both ABIs begin a pointer to a
    // member function with its address
    std::memcpy(&pTable, static_cast<const void*>(&object), sizeof(pTable));
    Operation operation = nullptr;
    std::memcpy(static_cast<void*>(&operation), &pTable[nSlot - 2 + MIRQOS_DESTRUCTOR_ENTRIES],
                sizeof(void*));
    return (reinterpret_cast<Any*>(&object)->*operation)(arguments...);
}

}  // namespace Mirqos::Test
