#include <windows.h>

// Keeps the DLL in the process once it is loaded. FreeLibrary would otherwise take the code away
// from under what outlives a host's reference by design: the client, threads included, that a
// second Init of a store leaves running, and the process-long view of the log configuration. It
// also keeps a host that loads and frees the DLL again and again from losing a TLS index of the
// runtime with each load.
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID /*reserved*/) {
    if (reason != DLL_PROCESS_ATTACH) {
        return TRUE;
    }
    // Only takes a reference to what is being loaded, which is safe under the loader's lock. Where
    // that is refused, so is the load.
    HMODULE pinned = nullptr;
    return GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
        reinterpret_cast<LPCWSTR>(module), &pinned);
}
