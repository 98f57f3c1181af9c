#include "tests/soak/Journal.h"

#include <cstddef>
#include <cstdio>

namespace Mirqos::Soak {
namespace {

constexpr std::size_t kKept = 20;

}  // namespace

void Journal::Begin(const std::string& what) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_lines.push_back(Moment() + what);
    if (m_lines.size() > kKept) {
        m_lines.pop_front();
    }
}

void Journal::End(std::int32_t status) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_lines.back() += " = " + std::to_string(status) + Moment();
}

std::string Journal::Moment() const {
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - m_began;
    char text[32];
    std::snprintf(text, sizeof text, "%10.3f s  ", time.count());
    return text;
}

std::string Journal::Text() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::string text;
    for (const std::string& line : m_lines) {
        text += line + "\n";
    }
    return text;
}

}  // namespace Mirqos::Soak
