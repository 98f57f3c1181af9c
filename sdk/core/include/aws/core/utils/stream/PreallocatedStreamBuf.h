#pragma once

#include <cstdint>
#include <streambuf>

namespace Aws::Utils::Stream {

/// A stream buffer over memory of the caller, for reading and writing. Nothing is ever written past
/// its end: writing then fails. It does not know how far it was written, so its whole length can be
/// read and is reported as available.
class PreallocatedStreamBuf : public std::streambuf {
public:
    /// `buffer` holds `lengthToRead` bytes, stays the caller's and has to outlive this object.
    PreallocatedStreamBuf(unsigned char* buffer, std::uint64_t lengthToRead);
    PreallocatedStreamBuf(const PreallocatedStreamBuf&) = delete;
    PreallocatedStreamBuf& operator=(const PreallocatedStreamBuf&) = delete;

    unsigned char* GetBuffer() { return m_buffer; }

protected:
    pos_type seekoff(off_type off, std::ios_base::seekdir dir,
                     std::ios_base::openmode which) override;
    pos_type seekpos(pos_type pos, std::ios_base::openmode which) override;

private:
    char* Begin() const { return reinterpret_cast<char*>(m_buffer); }

    unsigned char* const m_buffer;
    const std::uint64_t m_length;
};

}  // namespace Aws::Utils::Stream
