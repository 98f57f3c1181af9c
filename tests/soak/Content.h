#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Mirqos::Soak {

using Bytes = std::vector<unsigned char>;

/// The bytes of an object, described instead of kept: any range of them can be made again.
class Content {
public:
    Content() = default;
    /// `size` bytes that look random and differ from those of any other seed.
    Content(std::uint64_t seed, std::uint64_t size);

    std::uint64_t Size() const;
    Content Range(std::uint64_t first, std::uint64_t size) const;
    void Append(const Content& other);

    Bytes All() const;
    bool Is(const unsigned char* bytes, std::uint64_t size) const;
    /// SHA-256 in lower-case hexadecimal.
    std::string Digest() const;

private:
    struct Piece {
        std::uint64_t seed;
        std::uint64_t first;  ///< of the seed's endless bytes
        std::uint64_t size;
    };
    std::vector<Piece> m_pieces;
};

}  // namespace Mirqos::Soak
