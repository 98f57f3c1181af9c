#include "tests/support/win32/ViewerSide.h"

#include <cstring>
#include <cwctype>
#include <stdexcept>
#include <thread>

namespace Mirqos::Test {
namespace {

using LOGUTILS::KernelObject;

constexpr DWORD kPatience = 30000;  // ms

class EveryonesSecurity {
public:
    EveryonesSecurity() {
        InitializeSecurityDescriptor(&m_descriptor, SECURITY_DESCRIPTOR_REVISION);
        SetSecurityDescriptorDacl(&m_descriptor, TRUE, nullptr, FALSE);
    }
    SECURITY_ATTRIBUTES* Attributes() { return &m_attributes; }

private:
    SECURITY_DESCRIPTOR m_descriptor = {};
    SECURITY_ATTRIBUTES m_attributes = {sizeof(SECURITY_ATTRIBUTES), &m_descriptor, FALSE};
};

KernelObject OpenMutexOf(const std::wstring& name) {
    return KernelObject(OpenMutexW(MUTEX_ALL_ACCESS, FALSE, name.c_str()));
}

void Demand(bool holds, const char* pszWhat) {
    if (!holds) {
        throw std::runtime_error(pszWhat);
    }
}

}  // namespace

KernelObject MakeEvent(const std::wstring& name) {
    EveryonesSecurity security;
    KernelObject event(CreateEventW(security.Attributes(), FALSE, FALSE, name.c_str()));
    Demand(static_cast<bool>(event), "no event");
    return event;
}

bool EventExists(const std::wstring& name) {
    return static_cast<bool>(KernelObject(OpenEventW(EVENT_ALL_ACCESS, FALSE, name.c_str())));
}

bool MutexExists(const std::wstring& name) {
    return static_cast<bool>(OpenMutexOf(name));
}

bool MappingExists(const std::wstring& name) {
    return static_cast<bool>(
        KernelObject(OpenFileMappingW(FILE_MAP_ALL_ACCESS, FALSE, name.c_str())));
}

bool IsSignalled(const KernelObject& event) {
    return WaitForSingleObject(event.Get(), 0) == WAIT_OBJECT_0;
}

bool WaitUntilSignalled(const KernelObject& event) {
    return WaitForSingleObject(event.Get(), kPatience) == WAIT_OBJECT_0;
}

void Abandon(const std::wstring& mutexName) {
    const KernelObject mutex = OpenMutexOf(mutexName);
    DWORD dwWait = WAIT_FAILED;
    // not given back: the thread ends with it
    std::thread([&] { dwWait = WaitForSingleObject(mutex.Get(), kPatience); }).join();
    Demand(dwWait == WAIT_OBJECT_0, "no mutex to abandon");
}

bool IsFree(const std::wstring& mutexName) {
    const KernelObject mutex = OpenMutexOf(mutexName);
    DWORD dwWait = WAIT_FAILED;
    std::thread([&] {
        dwWait = WaitForSingleObject(mutex.Get(), 0);
        ReleaseMutex(mutex.Get());
    }).join();
    return dwWait == WAIT_OBJECT_0;
}

AnnouncedViewer::AnnouncedViewer()
    : m_hPresence(MakeEvent(L"Global\\EVENT_9CF42DA4-ACD1-4F3F-8D6F-31023974A079")) {
}

ChannelObjects::ChannelObjects(const std::wstring& executable) {
    const std::wstring id = L"CB6AF056-4138-4342-BE43-B4B37843FE36";
    std::wstring upper;
    for (const wchar_t c : executable) {
        upper += static_cast<wchar_t>(std::towupper(c));
    }
    event = L"Global\\" + id + L"_EVENT_" + upper;
    mutex = L"Global\\" + id + L"_MUTEXT_" + upper;
    globalRing = L"Global\\" + id + L"_SM_" + upper;
    localRing = L"Local\\" + id + L"_SM_" + upper;
}

ListenedChannel::ListenedChannel(const std::wstring& executable)
    : m_names(executable), m_hEvent(MakeEvent(m_names.event)) {
}

RingBytes ListenedChannel::Ring() {
    if (!m_ring) {
        const KernelObject mapping(
            OpenFileMappingW(FILE_MAP_ALL_ACCESS, FALSE, m_names.globalRing.c_str()));
        Demand(static_cast<bool>(mapping), "no ring");
        m_ring.Reset(MapViewOfFile(mapping.Get(), FILE_MAP_ALL_ACCESS, 0, 0, RingBytes::kSize));
        Demand(static_cast<bool>(m_ring), "the ring is too small");
    }
    return RingBytes(static_cast<unsigned char*>(m_ring.Get()));
}

BreakpointBoard::BreakpointBoard(const wchar_t* pszTableName) : m_hHitEvent(MakeEvent(kHitEvent)) {
    EveryonesSecurity security;
    m_hMutex.Reset(CreateMutexW(security.Attributes(), FALSE, kTableMutex));
    m_hMapping.Reset(CreateFileMappingW(INVALID_HANDLE_VALUE, security.Attributes(), PAGE_READWRITE,
                                        0, BreakpointBytes::kSize, pszTableName));
    m_table.Reset(MapViewOfFile(m_hMapping.Get(), FILE_MAP_ALL_ACCESS, 0, 0, 0));
    Demand(m_hMutex && m_table, "no breakpoint table");
    std::memset(m_table.Get(), 0, BreakpointBytes::kSize);
}

BreakpointBytes BreakpointBoard::Table() {
    return BreakpointBytes(static_cast<unsigned char*>(m_table.Get()));
}

bool BreakpointBoard::Release(std::size_t hit) {
    const std::string id = Table().HitName(hit);
    std::wstring name = L"Global\\BPHIT_EVENT_";
    name.append(id.begin(), id.end());
    std::memset(static_cast<unsigned char*>(m_table.Get()) + BreakpointBytes::HitAt(hit), 0,
                BreakpointBytes::kHitSize);
    const KernelObject event(OpenEventW(EVENT_ALL_ACCESS, FALSE, name.c_str()));
    return event && SetEvent(event.Get()) != 0;
}

}  // namespace Mirqos::Test
