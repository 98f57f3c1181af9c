#include "sdk/core/client/OutgoingBody.h"

#include <algorithm>
#include <sstream>
#include <vector>

#include "sdk/core/crypto/Hash.h"

namespace Mirqos::Client {
namespace {

constexpr std::size_t kReadBytes = 64 * 1024;

}  // namespace

OutgoingBody::OutgoingBody(const WireRequest& wire) {
    if (wire.body != nullptr) {
        m_stream = wire.body;
    } else if (!wire.xml.empty()) {
        m_stream = std::make_shared<std::istringstream>(wire.xml);
    } else {
        return;
    }
    m_stream->clear();
    m_start = m_stream->tellg();
    m_stream->seekg(0, std::ios_base::end);
    const std::streampos end = m_stream->tellg();
    m_usable =
        m_start != std::streampos(-1) && end != std::streampos(-1) && end >= m_start && Rewind();
    m_length = m_usable ? static_cast<std::uint64_t>(end - m_start) : 0;
}

bool OutgoingBody::Rewind() {
    if (m_stream == nullptr) {
        return true;
    }
    m_stream->clear();
    m_stream->seekg(m_start);
    return m_stream->good();
}

template <typename Hash>
bool OutgoingBody::Feed(Hash& hash) {
    if (!Rewind()) {
        return false;
    }
    std::vector<char> chunk(static_cast<std::size_t>(
        std::min<std::uint64_t>(kReadBytes, std::max<std::uint64_t>(m_length, 1))));
    std::uint64_t left = m_length;
    while (left > 0) {
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(left, chunk.size()));
        m_stream->read(chunk.data(), static_cast<std::streamsize>(wanted));
        if (static_cast<std::size_t>(m_stream->gcount()) != wanted) {
            return false;
        }
        hash.Update(chunk.data(), wanted);
        left -= wanted;
    }
    return true;
}

std::optional<std::string> OutgoingBody::Sha256Hex() {
    Crypto::Sha256 hash;
    if (!Feed(hash)) {
        return std::nullopt;
    }
    return Crypto::ToHex(hash.Finish());
}

std::optional<std::string> OutgoingBody::Md5Base64() {
    Crypto::Md5 hash;
    if (!Feed(hash)) {
        return std::nullopt;
    }
    return Crypto::ToBase64(hash.Finish());
}

}  // namespace Mirqos::Client
