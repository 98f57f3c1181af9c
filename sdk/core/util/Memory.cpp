#include <aws/core/utils/memory/AWSMemory.h>

#include <cstdlib>

namespace Aws {

void* Malloc(const char* /*allocationTag*/, std::size_t allocationSize) {
    // malloc(0) may answer null, which would look like a failure.
    return std::malloc(allocationSize > 0 ? allocationSize : 1);
}

void Free(void* memoryPtr) {
    std::free(memoryPtr);
}

}  // namespace Aws
