#include "LoadedLibrary.h"

#include <windows.h>

LoadedLibrary::LoadedLibrary(const std::string& path) : m_handle(LoadLibraryA(path.c_str())) {
}

LoadedLibrary::~LoadedLibrary() {
    if (m_handle != nullptr) {
        FreeLibrary(static_cast<HMODULE>(m_handle));
    }
}

bool LoadedLibrary::IsInProcess(const std::string& path) {
    return GetModuleHandleA(path.c_str()) != nullptr;
}

void* LoadedLibrary::Find(const char* name) const {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(m_handle), name));
}
