#include "sdk/core/http/HeadReader.h"

#include <algorithm>
#include <utility>

#include "sdk/core/http/Ascii.h"
#include "sdk/core/http/BodyLedger.h"

namespace Mirqos::Http {

HeadReader::State HeadReader::Refuse(std::string why) {
    m_state = State::refused;
    m_error = std::move(why);
    return m_state;
}

HeadReader::State HeadReader::AddLine(std::string_view line) {
    if (m_state != State::reading) {
        return m_state;
    }
    m_bytes += line.size();
    if (m_bytes > kMaxHeadBytes) {
        return Refuse("the answer's head is longer than " + std::to_string(kMaxHeadBytes) +
                      " bytes");
    }
    if (!line.empty() && line.back() == '\n') {
        line.remove_suffix(1);
    }
    if (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    if (HasLineBreak(line)) {
        return Refuse("the answer's head holds a control character");
    }
    if (!m_statusRead) {
        return AddStatusLine(line);
    }
    return line.empty() ? Finish() : AddHeader(line);
}

HeadReader::State HeadReader::AddHead(std::string_view head) {
    while (m_state == State::reading && !head.empty()) {
        const std::size_t end = head.find("\r\n");
        const std::size_t size = end == std::string_view::npos ? head.size() : end + 2;
        AddLine(head.substr(0, size));
        head.remove_prefix(size);
    }
    return m_state == State::reading && m_statusRead ? Refuse("the answer's head is cut off")
                                                     : m_state;
}

HeadReader::State HeadReader::AddStatusLine(std::string_view line) {
    // "HTTP/1.x NNN", then nothing or a blank and any text
    const bool valid = line.size() >= 12 &&
                       (line.substr(0, 9) == "HTTP/1.1 " || line.substr(0, 9) == "HTTP/1.0 ") &&
                       line[9] >= '1' && line[9] <= '9' && IsDigit(line[10]) && IsDigit(line[11]) &&
                       (line.size() == 12 || line[12] == ' ');
    if (!valid) {
        return Refuse("the answer does not begin with an HTTP/1.1 status line");
    }
    m_head = ResponseHead{};
    m_head.status = (line[9] - '0') * 100 + (line[10] - '0') * 10 + (line[11] - '0');
    m_statusRead = true;
    return m_state;
}

HeadReader::State HeadReader::AddHeader(std::string_view line) {
    const std::size_t colon = line.find(':');
    // folded lines and a blank before the colon end up here too: both are known ways to make
    // two readers of the same head see different headers
    if (colon == std::string_view::npos || !IsToken(line.substr(0, colon))) {
        return Refuse("the answer's head holds a line that is not a header");
    }
    m_head.headers.emplace_back(line.substr(0, colon), TrimBlanks(line.substr(colon + 1)));
    return m_state;
}

HeadReader::State HeadReader::Finish() {
    if (m_head.status == 101) {
        return Refuse("the answer changes to a protocol that was not asked for");
    }
    if (m_head.status < 200) {
        m_statusRead = false;
        return m_state;
    }
    const auto count = [this](std::string_view name) {
        return std::count_if(m_head.headers.begin(), m_head.headers.end(),
                             [&](const auto& header) { return EqualNoCase(header.first, name); });
    };
    std::uint64_t length = 0;
    if (count("Content-Length") > 1) {
        return Refuse("the answer has more than one Content-Length");
    }
    if (const std::string* text = FindHeader(m_head.headers, "Content-Length");
        text != nullptr && !ParseLength(*text, length)) {
        return Refuse("the answer's Content-Length is not a number");
    }
    if (const std::string* coding = FindHeader(m_head.headers, "Transfer-Encoding");
        coding != nullptr && (count("Transfer-Encoding") > 1 || !EqualNoCase(*coding, "chunked"))) {
        return Refuse("the answer has a transfer coding other than chunked");
    }
    m_state = State::complete;
    return m_state;
}

}  // namespace Mirqos::Http
