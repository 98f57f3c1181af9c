#include "log/dbg/win32/ViewerNames.h"

namespace LOGUTILS {
namespace {

constexpr wchar_t kChannel[] = L"CB6AF056-4138-4342-BE43-B4B37843FE36";

WideString NameOf(const wchar_t* pszNamespace, const wchar_t* pszKind, WideView upperChannel) {
    WideString name(pszNamespace);
    name += kChannel;
    name += pszKind;
    name += upperChannel;
    return name;
}

}  // namespace

ChannelNames::ChannelNames(WideView channel) {
    const WideString upper = UpperCase(channel);
    m_event = NameOf(L"Global\\", L"_EVENT_", upper);
    m_mutex = NameOf(L"Global\\", L"_MUTEXT_", upper);  // with this T: other programs know it so
    m_memory = NameOf(L"", L"_SM_", upper);
}

}  // namespace LOGUTILS
