#include "store/PackedTextList.h"

#include <cstring>

#include "platform/bounded_copy.h"

namespace Mirqos {

bool PackedTextReader::Next(std::string_view& entry) {
    if (*m_pszNext == '\0') {
        return false;
    }
    entry = m_pszNext;
    m_pszNext += entry.size() + 1;
    return true;
}

PackedTextWriter::PackedTextWriter(char* pRoom, std::size_t nSize)
    : m_pRoom(pRoom), m_nSize(nSize) {
    std::memset(pRoom, 0, nSize);
}

int PackedTextWriter::Append(std::string_view text) {
    // Two bytes stay free: the entry's NUL and the list's.
    constexpr std::size_t kTerminators = 2;
    const std::size_t nTaken = m_nPosition + kTerminators;
    const std::size_t nRoom = m_nSize > nTaken ? m_nSize - nTaken : 0;
    const int nCode = CopyBytesOrClear(m_pRoom + m_nPosition, nRoom, text.data(), text.size());
    if (nCode != kCopyDone) {
        std::memset(m_pRoom + m_nEntry, 0, m_nSize - m_nEntry);
        m_nPosition = m_nEntry;
        return nCode;
    }
    m_nPosition += text.size();
    return kCopyDone;
}

void PackedTextWriter::EndEntry() {
    ++m_nPosition;
    m_nEntry = m_nPosition;
}

}  // namespace Mirqos
