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

}  // namespace Mirqos
