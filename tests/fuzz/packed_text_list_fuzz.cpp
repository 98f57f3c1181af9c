// The packed text list: its reader on any bytes that end as a list has to, and its writer against a
// plain model of it.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "store/PackedTextList.h"
#include "tests/fuzz/Require.h"

namespace {

using Mirqos::Test::Require;

constexpr int kDoesNotFit = 34;

std::vector<std::string_view> EntriesOf(const char* list) {
    std::vector<std::string_view> entries;
    Mirqos::PackedTextReader reader(list);
    for (std::string_view entry; reader.Next(entry);) {
        entries.push_back(entry);
    }
    std::string_view none;
    Require(!reader.Next(none), "the end of a list stays its end");
    return entries;
}

void ReadAnyBytes(const std::uint8_t* data, std::size_t size) {
    std::vector<char> list(size + 2, '\0');
    if (size > 0) {
        std::memcpy(list.data(), data, size);
    }
    const char* expected = list.data();
    for (const std::string_view entry : EntriesOf(list.data())) {
        Require(entry.data() == expected, "entries follow each other");
        Require(!entry.empty() && entry.find('\0') == entry.npos, "an entry is a text");
        Require(entry.data()[entry.size()] == '\0', "an entry ends with its NUL");
        expected += entry.size() + 1;
        Require(expected < list.data() + list.size(), "an entry lies in the list");
    }
    Require(*expected == '\0', "nothing is left unread");
}

/// What the writer promises, said with strings.
class Model {
public:
    explicit Model(std::size_t size) : m_room(size, '#'), m_writer(m_room.data(), size) { Check(); }

    void Append(const std::string& text) {
        const bool fits = m_ended.size() + m_entry.size() + text.size() <= m_room.size();
        m_entry = fits ? m_entry + text : std::string();
        Require(m_writer.Append(text) == (fits ? 0 : kDoesNotFit), "a text that fits is taken");
        Check();
    }

    void EndEntry() {
        if (m_entry.empty()) {
            return;  // it would end the list
        }
        const bool fits = m_ended.size() + m_entry.size() + 2 <= m_room.size();
        if (fits) {
            m_entries.push_back(m_entry);
            m_ended += m_entry + '\0';
        }
        m_entry.clear();
        Require(m_writer.EndEntry() == (fits ? 0 : kDoesNotFit), "an entry needs both its NULs");
        Check();
    }

    void ReadBack() {
        EndEntry();
        const auto read = EntriesOf(m_room.data());
        Require(std::vector<std::string>(read.begin(), read.end()) == m_entries,
                "what was written is read back");
    }

private:
    void Check() const {
        std::string expected = m_ended + m_entry;
        expected.resize(m_room.size(), '\0');
        Require(std::string(m_room.begin(), m_room.end()) == expected,
                "the room holds the entries, the one in progress and zeros");
    }

    std::vector<char> m_room;  // a block of exactly its size, unlike a string
    Mirqos::PackedTextWriter m_writer;
    std::vector<std::string> m_entries;
    std::string m_ended;
    std::string m_entry;
};

/// Two bytes give the room's size less one; then each byte ends an entry or tells how long the next
/// text is.
void WriteAndReadBack(const std::uint8_t* data, std::size_t size) {
    if (size < 2) {
        return;
    }
    Model model(1 + (std::size_t{data[0]} << 4 | data[1] >> 4) % 2700);
    for (std::size_t place = 2; place < size;) {
        const std::size_t told = data[place++];
        if (told % 4 == 0) {
            model.EndEntry();
            continue;
        }
        std::string text;
        for (std::size_t i = 0; i < told && place < size; ++i, ++place) {
            text += data[place] == 0 ? 'n' : static_cast<char>(data[place]);
        }
        model.Append(text);
    }
    model.ReadBack();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ReadAnyBytes(data, size);
    WriteAndReadBack(data, size);
    return 0;
}
