#include "platform/bounded_copy.h"

#include <cstring>

#include "platform/process.h"

namespace Mirqos {

void CopyTextOrEndProcess(char* room, std::size_t size, const char* text) {
    if (room == nullptr || text == nullptr) {
        EndProcess("MIRQOS: a bounded copy was given a null pointer");
    }
    const std::size_t length = std::strlen(text);
    if (length >= size) {
        EndProcess("MIRQOS: a text does not fit into the room that it was promised");
    }
    std::memcpy(room, text, length + 1);
}

int CopyBytesOrClear(void* room, std::size_t size, const void* bytes, std::size_t length) {
    if (length == 0) {
        return kCopyDone;
    }
    if (room == nullptr) {
        return kCopyInvalid;
    }
    if (bytes == nullptr || length > size) {
        std::memset(room, 0, size);
        return bytes == nullptr ? kCopyInvalid : kCopyDoesNotFit;
    }
    std::memcpy(room, bytes, length);
    return kCopyDone;
}

}  // namespace Mirqos
