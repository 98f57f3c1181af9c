#pragma once

#include <cstddef>
#include <string_view>

/// The packed text list, the one form in which lists of texts cross the boundary: entries one after
/// another, each followed by a NUL, the list ended by an empty entry.
namespace Mirqos {

/// Reads a packed list front to back. The list has to be ended by its empty entry.
class PackedTextReader {
public:
    explicit PackedTextReader(const char* pszList) : m_pszNext(pszList) {}

    /// Sets `entry` to the next entry and returns true, or returns false at the end of the list.
    /// The entry's text lies in the list and is followed by its NUL.
    bool Next(std::string_view& entry);

private:
    const char* m_pszNext;
};

/// Writes a packed list into a room of fixed size, which it zeroes first, so that the list is ended
/// between entries. An entry that does not fit together with the NULs behind it is refused whole.
class PackedTextWriter {
public:
    PackedTextWriter(char* pRoom, std::size_t nSize);

    /// Appends `text` to the entry in progress. Returns 0, or the code of a bounded copy (34 when
    /// it does not fit, 22 for a missing text); the entry in progress is then erased, the entries
    /// before it stay.
    [[nodiscard]] int Append(std::string_view text);

    /// Ends the entry in progress. Returns 0, or 34 when its NUL and the list's do not fit behind
    /// it; the entry is then erased as well.
    [[nodiscard]] int EndEntry();

private:
    void EraseEntry();

    char* m_pRoom;
    std::size_t m_nSize;
    std::size_t m_nEntry = 0;     // where the entry in progress begins
    std::size_t m_nPosition = 0;  // where its next text goes
};

/// Bytes of a packed list whose entries hold `nTextBytes` bytes in all, terminators included.
constexpr std::size_t PackedSize(std::size_t nTextBytes, std::size_t nEntries) {
    return nTextBytes + nEntries + 1;
}

}  // namespace Mirqos
