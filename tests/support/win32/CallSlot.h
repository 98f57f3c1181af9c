#pragma once

#include <cstddef>
#include <cstring>

namespace Mirqos::Test {

/// Calls an operation by its place in the object's table of virtual functions, as other modules do;
/// slot 1 is the destructor's. GCC's C++ ABI has two entries for that, MSVC's one, and the build
/// says which it is.
template <typename Result, typename Object, typename... Arguments>
Result CallSlot(Object& object, std::size_t nSlot, Arguments... arguments) {
    using Operation = Result (*)(Object*, Arguments...);
    void* const* pTable = nullptr;
    // as bytes: the object begins with a pointer to the table
    std::memcpy(&pTable, static_cast<const void*>(&object), sizeof(pTable));
    return reinterpret_cast<Operation>(pTable[nSlot - 2 + MIRQOS_DESTRUCTOR_ENTRIES])(&object,
                                                                                      arguments...);
}

}  // namespace Mirqos::Test
