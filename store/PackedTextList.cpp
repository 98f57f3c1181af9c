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
    const int nCode =
        CopyBytesOrClear(m_pRoom + m_nPosition, m_nSize - m_nPosition, text.data(), text.size());
    if (nCode != kCopyDone) {
        EraseEntry();
        return nCode;
    }
    m_nPosition += text.size();
    return kCopyDone;
}

int PackedTextWriter::EndEntry() {
    // The entry's NUL and the list's, which the zeroed room already holds.
    constexpr std::size_t kTerminators = 2;
    if (m_nSize - m_nPosition < kTerminators) {
        EraseEntry();
        return kCopyDoesNotFit;
    }
    ++m_nPosition;
    m_nEntry = m_nPosition;
    return kCopyDone;
}

void PackedTextWriter::EraseEntry() {
    std::memset(m_pRoom + m_nEntry, 0, m_nSize - m_nEntry);
    m_nPosition = m_nEntry;
}

}  // namespace Mirqos
