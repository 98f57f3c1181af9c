#include <aws/core/utils/stream/PreallocatedStreamBuf.h>

namespace Aws::Utils::Stream {

PreallocatedStreamBuf::PreallocatedStreamBuf(unsigned char* buffer, std::uint64_t lengthToRead)
    : m_buffer(buffer), m_length(lengthToRead) {
    setg(Begin(), Begin(), Begin() + m_length);
    setp(Begin(), Begin() + m_length);
}

PreallocatedStreamBuf::pos_type PreallocatedStreamBuf::seekoff(off_type off,
                                                               std::ios_base::seekdir dir,
                                                               std::ios_base::openmode which) {
    off_type from = 0;
    if (dir == std::ios_base::end) {
        from = static_cast<off_type>(m_length);
    } else if (dir == std::ios_base::cur) {
        if (which == std::ios_base::in) {
            from = gptr() - Begin();
        } else if (which == std::ios_base::out) {
            from = pptr() - Begin();
        } else {
            // Two positions: there is no one place to count from.
            return pos_type(off_type(-1));
        }
    }
    return seekpos(pos_type(from + off), which);
}

PreallocatedStreamBuf::pos_type PreallocatedStreamBuf::seekpos(pos_type pos,
                                                               std::ios_base::openmode which) {
    const off_type at = off_type(pos);
    if (at < 0 || static_cast<std::uint64_t>(at) > m_length) {
        return pos_type(off_type(-1));
    }
    if ((which & std::ios_base::in) != 0) {
        setg(Begin(), Begin() + at, Begin() + m_length);
    }
    if ((which & std::ios_base::out) != 0) {
        // Not pbump: it counts in int.
        setp(Begin() + at, Begin() + m_length);
    }
    return pos;
}

}  // namespace Aws::Utils::Stream
