#include "sdk/core/xml/Xml.h"

namespace Mirqos::Xml {

Writer::Writer() : m_document(R"(<?xml version="1.0" encoding="UTF-8"?>)") {
}

void Writer::Open(std::string_view name, std::initializer_list<Attribute> attributes) {
    m_document.append("<").append(name);
    for (const auto& [attribute, value] : attributes) {
        m_document.append(" ").append(attribute).append("=\"");
        Escape(value);
        m_document += '"';
    }
    m_document += '>';
    m_open.emplace_back(name);
}

void Writer::Leaf(std::string_view name, std::string_view text) {
    m_document.append("<").append(name).append(">");
    Escape(text);
    m_document.append("</").append(name).append(">");
}

void Writer::Close() {
    m_document.append("</").append(m_open.back()).append(">");
    m_open.pop_back();
}

std::string Writer::Take() {
    while (!m_open.empty()) {
        Close();
    }
    return std::move(m_document);
}

void Writer::Escape(std::string_view text) {
    for (const char c : text) {
        switch (c) {
            case '&':
                m_document += "&amp;";
                break;
            case '<':
                m_document += "&lt;";
                break;
            case '>':
                m_document += "&gt;";
                break;
            case '"':
                m_document += "&quot;";
                break;
            default:
                // A reader turns a bare CR into LF, and blanks of an attribute into spaces. Other
                // control characters are names' problem: services take them as references only.
                if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
                    m_document.append("&#").append(std::to_string(c)).append(";");
                } else {
                    m_document += c;
                }
        }
    }
}

}  // namespace Mirqos::Xml
