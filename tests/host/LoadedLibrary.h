#pragma once

#include <mirqos/mirqos.h>

#include <cstdint>
#include <new>
#include <string>

/// The library, found by its path and its functions' plain names, for a host that is not linked to
/// it. win32/ uses LoadLibrary, posix/ uses dlopen.
class LoadedLibrary {
public:
    explicit LoadedLibrary(const std::string& path);
    ~LoadedLibrary();
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;

    /// Whether this process has the library loaded, whoever loaded it.
    static bool IsInProcess(const std::string& path);

    /// Null when the library could not be loaded.
    void* Handle() const { return m_handle; }
    /// Null when the library exports no such name.
    void* Find(const char* name) const;

    template <class Function>
    Function* Get(const char* name) const {
        return reinterpret_cast<Function*>(Find(name));
    }

private:
    void* m_handle;
};

/// The library's four functions, null where it has no such name.
struct LibraryFunctions {
    explicit LibraryFunctions(const LoadedLibrary& library)
        : init(library.Get<std::int32_t(CloudStoreContext*)>("InitCloudStoreContext")),
          unInit(library.Get<std::int32_t()>("UnInitCloudStoreContext")),
          create(library.Get<MIRQOSInterface*(CloudStoreContext*)>("CreateCloudStoreInterface")),
          release(library.Get<void(MIRQOSInterface*)>("ReleaseCloudStoreInterface")) {}

    bool Complete() const {
        return init != nullptr && unInit != nullptr && create != nullptr && release != nullptr;
    }

    std::int32_t (*init)(CloudStoreContext*);
    std::int32_t (*unInit)();
    MIRQOSInterface* (*create)(CloudStoreContext*);
    void (*release)(MIRQOSInterface*);
};

/// A record of zeros. A host that is not linked to the library has no constructors of the records,
/// so it lays one out by itself and sets what it needs.
template <class Record>
class ZeroRecord {
public:
    Record* Get() { return std::launder(reinterpret_cast<Record*>(m_bytes)); }
    Record* operator->() { return Get(); }

private:
    alignas(Record) unsigned char m_bytes[sizeof(Record)] = {};
};
