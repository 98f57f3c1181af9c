#include "store/ReceivingBuffer.h"

namespace Mirqos {

ReceivingBuffer::ReceivingBuffer(unsigned char* pBytes, uint64_t nLength)
    : PreallocatedStreamBuf(pBytes, static_cast<size_t>(nLength)) {
    setg(pbase(), pbase(), pbase());
}

std::streamsize ReceivingBuffer::showmanyc() {
    return m_bReadsExcess ? 0 : pptr() - gptr();
}

ReceivingBuffer::int_type ReceivingBuffer::underflow() {
    char* pBegin = eback();
    char* pNext = gptr();
    if (!m_bReadsExcess && pNext == pptr() && !m_strExcess.empty()) {
        m_bReadsExcess = true;
        pBegin = pNext = m_strExcess.data();
    }
    setg(pBegin, pNext, m_bReadsExcess ? m_strExcess.data() + m_strExcess.size() : pptr());
    return gptr() == egptr() ? traits_type::eof() : traits_type::to_int_type(*gptr());
}

ReceivingBuffer::int_type ReceivingBuffer::overflow(int_type c) {
    if (traits_type::eq_int_type(c, traits_type::eof()) || m_strExcess.size() == kMostExcess) {
        return traits_type::eof();
    }
    m_strExcess.reserve(kMostExcess);  // nothing that is being read moves
    m_strExcess.push_back(traits_type::to_char_type(c));
    return c;
}

// An installed SDK asks for the position before it reads a document.
ReceivingBuffer::pos_type ReceivingBuffer::seekoff(off_type off, std::ios_base::seekdir dir,
                                                   std::ios_base::openmode which) {
    if (which != std::ios_base::in) {
        return PreallocatedStreamBuf::seekoff(off, dir, which);
    }
    off_type nFrom = 0;
    if (dir == std::ios_base::end) {
        nFrom = Received() + static_cast<off_type>(m_strExcess.size());
    } else if (dir == std::ios_base::cur) {
        nFrom = gptr() - eback() + (m_bReadsExcess ? Received() : 0);
    }
    return seekpos(pos_type(nFrom + off), which);
}

ReceivingBuffer::pos_type ReceivingBuffer::seekpos(pos_type pos, std::ios_base::openmode which) {
    if (which == std::ios_base::out) {
        return PreallocatedStreamBuf::seekpos(pos, which);
    }
    const off_type nBeyond = off_type(pos) - Received();
    if (which != std::ios_base::in || off_type(pos) < 0 ||
        nBeyond > static_cast<off_type>(m_strExcess.size())) {
        return pos_type(off_type(-1));
    }
    m_bReadsExcess = nBeyond > 0;
    if (m_bReadsExcess) {
        char* const pExcess = m_strExcess.data();
        setg(pExcess, pExcess + nBeyond, pExcess + m_strExcess.size());
    } else {
        setg(Begin(), Begin() + off_type(pos), pptr());
    }
    return pos;
}

}  // namespace Mirqos
