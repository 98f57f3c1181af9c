#include "LoadedLibrary.h"

#include <dlfcn.h>

LoadedLibrary::LoadedLibrary(const std::string& path)
    : m_handle(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
}

LoadedLibrary::~LoadedLibrary() {
    if (m_handle != nullptr) {
        dlclose(m_handle);
    }
}

bool LoadedLibrary::IsInProcess(const std::string& path) {
    void* const handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr) {
        dlclose(handle);
    }
    return handle != nullptr;
}

void* LoadedLibrary::Find(const char* name) const {
    return dlsym(m_handle, name);
}
