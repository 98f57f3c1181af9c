#include "sdk/core/client/OutgoingBody.h"

#include <aws/core/utils/stream/PreallocatedStreamBuf.h>

#include <algorithm>
#include <sstream>
#include <typeinfo>
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

const unsigned char* OutgoingBody::InMemory() const {
    using Aws::Utils::Stream::PreallocatedStreamBuf;
    std::streambuf* const buffer = m_stream != nullptr ? m_stream->rdbuf() : nullptr;
    // exactly this class: one derived from it may read from somewhere else
    if (buffer == nullptr || typeid(*buffer) != typeid(PreallocatedStreamBuf)) {
        return nullptr;
    }
    return static_cast<PreallocatedStreamBuf*>(buffer)->GetBuffer() + std::streamoff(m_start);
}

template <typename Hash>
bool OutgoingBody::Feed(Hash& hash) {
    if (!Rewind()) {
        return false;
    }
    if (const unsigned char* const bytes = InMemory()) {
        hash.Update(bytes, static_cast<std::size_t>(m_length));
        return true;
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
    if (m_length == 0) {
        // that of each request that only asks
        static const std::string none = Crypto::ToHex(Crypto::Sha256().Finish());
        return none;
    }
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
