#include "tests/support/win32/TraceRecording.h"

#include <algorithm>
#include <mutex>

#include "platform/process.h"

namespace Mirqos::Test {
namespace {

std::mutex g_mutex;
std::vector<std::wstring> g_texts;

void Keep(const wchar_t* pszText) {
    const std::lock_guard<std::mutex> lock(g_mutex);
    g_texts.emplace_back(pszText);
}

}  // namespace

TraceRecording::TraceRecording() : m_former(LOGUTILS::SetTraceSink(&Keep)) {
    const std::lock_guard<std::mutex> lock(g_mutex);
    g_texts.clear();
}

TraceRecording::~TraceRecording() {
    LOGUTILS::SetTraceSink(m_former);
}

std::vector<std::wstring> TraceRecording::Texts() const {
    const std::lock_guard<std::mutex> lock(g_mutex);
    return g_texts;
}

std::size_t TraceRecording::CountContaining(const std::wstring& part) const {
    const std::vector<std::wstring> texts = Texts();
    return static_cast<std::size_t>(std::count_if(
        texts.begin(), texts.end(),
        [&](const std::wstring& text) { return text.find(part) != std::wstring::npos; }));
}

std::wstring TracePrefix() {
    return L"[" + std::to_wstring(CurrentProcessId()) + L":" + std::to_wstring(CurrentThreadId()) +
           L"] ";
}

}  // namespace Mirqos::Test
