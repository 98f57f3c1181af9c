#pragma once

#include "log/dbg/WideText.h"
#include "log/dbg/win32/Owned.h"

namespace LOGUTILS {

/// A mapping that processes share by its name, backed by the paging file.
struct SharedMemory {
    KernelObject m_mapping;   ///< none when it could not be made or opened
    bool m_bExisted = false;  ///< whether somebody else had made it before
};

/// Creates the mapping `name`, readable and writable and open to everyone, or opens it where it
/// exists: as "Global\" and the name or, when that is refused with access denied, as "Local\" and
/// the name.
SharedMemory CreateSharedMemory(const WideString& name, DWORD dwSize);
/// Opens an existing mapping with full access: the global name first, then the local one.
SharedMemory OpenSharedMemory(const WideString& name);

/// Maps the first `nSize` bytes, for reading and writing.
View MapSharedMemory(const KernelObject& mapping, SIZE_T nSize);

}  // namespace LOGUTILS
