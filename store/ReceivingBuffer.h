#pragma once

#include <aws/core/utils/stream/PreallocatedStreamBuf.h>

#include <cstddef>
#include <cstdint>
#include <ios>
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
    /// The reading side is set to, and counted among, the received bytes. Both sides at once are
    /// not.
    pos_type seekoff(off_type off, std::ios_base::seekdir dir,
                     std::ios_base::openmode which) override;
    pos_type seekpos(pos_type pos, std::ios_base::openmode which) override;

private:
    char* Begin() { return reinterpret_cast<char*>(GetBuffer()); }
    /// Bytes received, without those beyond what was asked for.
    off_type Received() { return pptr() - Begin(); }

    bool m_bReadsExcess = false;
    std::string m_strExcess;
};

}  // namespace Mirqos
