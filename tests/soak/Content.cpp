#include "tests/soak/Content.h"

#include <algorithm>
#include <cstddef>

#include "tools/mirqos/Sha256.h"

namespace Mirqos::Soak {
namespace {

constexpr std::uint64_t kWordSize = 8;

/// Word `index` of a seed's bytes: SplitMix64, which gives any of them without those before it.
std::uint64_t Word(std::uint64_t seed, std::uint64_t index) {
    std::uint64_t word = seed + (index + 1) * 0x9E3779B97F4A7C15;
    word = (word ^ (word >> 30)) * 0xBF58476D1CE4E5B9;
    word = (word ^ (word >> 27)) * 0x94D049BB133111EB;
    return word ^ (word >> 31);
}

}  // namespace

Content::Content(std::uint64_t seed, std::uint64_t size) {
    if (size > 0) {
        m_pieces.push_back({seed, 0, size});
    }
}

std::uint64_t Content::Size() const {
    std::uint64_t size = 0;
    for (const Piece& piece : m_pieces) {
        size += piece.size;
    }
    return size;
}

Content Content::Range(std::uint64_t first, std::uint64_t size) const {
    Content range;
    for (const Piece& piece : m_pieces) {
        if (first >= piece.size) {
            first -= piece.size;
            continue;
        }
        const std::uint64_t taken = std::min(size, piece.size - first);
        if (taken > 0) {
            range.m_pieces.push_back({piece.seed, piece.first + first, taken});
        }
        first = 0;
        size -= taken;
    }
    return range;
}

void Content::Append(const Content& other) {
    m_pieces.insert(m_pieces.end(), other.m_pieces.begin(), other.m_pieces.end());
}

Bytes Content::All() const {
    Bytes bytes(static_cast<std::size_t>(Size()));
    unsigned char* next = bytes.data();
    for (const Piece& piece : m_pieces) {
        std::uint64_t place = piece.first;
        const std::uint64_t end = piece.first + piece.size;
        while (place < end) {
            const std::uint64_t word = Word(piece.seed, place / kWordSize);
            const std::uint64_t from = place % kWordSize;
            const std::uint64_t to = std::min(kWordSize, from + (end - place));
            for (std::uint64_t n = from; n < to; ++n) {
                *next++ = static_cast<unsigned char>(word >> (8 * n));
            }
            place += to - from;
        }
    }
    return bytes;
}

bool Content::Is(const unsigned char* bytes, std::uint64_t size) const {
    const Bytes own = All();
    return own.size() == size && std::equal(own.begin(), own.end(), bytes);
}

std::string Content::Digest() const {
    const Bytes bytes = All();
    Tool::Sha256 digest;
    digest.Update(bytes.data(), bytes.size());
    return digest.Finish();
}

}  // namespace Mirqos::Soak
