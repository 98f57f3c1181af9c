#pragma once

#include <aws/core/utils/stream/PreallocatedStreamBuf.h>

#include <cstddef>
#include <cstdint>
#include <streambuf>
#include <string>

namespace Mirqos {

/// What the answer to a read is received into: memory of the caller, as much as was asked for.
/// Unlike its base it can be read only as far as it was written, so no byte that the service did
/// not send reaches anybody. Some more is taken than asked for, and follows when the stream is read
/// on: an installed SDK receives the document of an error here, which is often longer than the
/// bytes asked for, and where it cannot be written takes another error's number for it.
class ReceivingBuffer : public Aws::Utils::Stream::PreallocatedStreamBuf {
public:
    /// Bytes taken beyond what was asked for; the longest error document is far shorter.
    static constexpr std::size_t kMostExcess = std::size_t{64} * 1024;

    /// `pBytes` holds `nLength` bytes and has to outlive this object.
    ReceivingBuffer(unsigned char* pBytes, uint64_t nLength);

protected:
    /// Bytes received and not yet read, without those beyond what was asked for.
    std::streamsize showmanyc() override;
    int_type underflow() override;
    int_type overflow(int_type c) override;

private:
    bool m_bReadsExcess = false;
    std::string m_strExcess;
};

}  // namespace Mirqos
