#include "tools/mirqos/ReadPlan.h"

#include <algorithm>
#include <cassert>

namespace Mirqos::Tool {

ReadPlan::ReadPlan(std::uint64_t part, std::uint64_t overlap, std::optional<std::uint64_t> size)
    : m_part(part), m_overlap(overlap), m_size(size) {
    assert(overlap >= 1 && part > overlap);
}

std::optional<ReadPlan::Range> ReadPlan::Next() {
    if (m_stopped || m_end || m_contradiction || !m_failed.empty()) {
        return std::nullopt;
    }
    Range range{};
    range.index = m_next;
    range.kept = m_next == 0 ? 0 : m_overlap;
    range.first = m_next * m_part - range.kept;
    range.last = m_next * m_part + m_part - 1;
    // a known size needs no reads behind it, but the one that proves it
    if (m_size && range.index > 0 && range.first >= *m_size) {
        return std::nullopt;
    }
    ++m_next;
    return range;
}

void ReadPlan::Delivered(const Range& range, const unsigned char* data, std::uint64_t count) {
    ++m_delivered;
    const auto text = [data](std::uint64_t from, std::uint64_t to) {
        return std::string(data + from, data + to);
    };
    if (count == range.Length()) {
        m_reached = std::max(m_reached, range.last + 1);
        m_before[range.index + 1] = text(count - m_overlap, count);
        CompareSeam(range.index + 1);
    } else {
        const std::uint64_t end = range.first + count;
        // More bytes than were asked for, a success without any, or another end than a different
        // range met
        const bool emptySuccess = count == 0 && range.index > 0;
        if (count > range.Length() || emptySuccess || (m_end && *m_end != end)) {
            m_contradiction = true;
            return;
        }
        m_end = end;
    }
    if (range.kept > 0 && count >= range.kept) {
        m_behind[range.index] = text(0, range.kept);
        CompareSeam(range.index);
    }
}

void ReadPlan::CompareSeam(std::uint64_t index) {
    const auto before = m_before.find(index);
    const auto behind = m_behind.find(index);
    if (before != m_before.end() && behind != m_behind.end()) {
        m_contradiction = m_contradiction || before->second != behind->second;
        m_before.erase(before);
        m_behind.erase(behind);
    }
}

void ReadPlan::Failed(const Range& range, std::int32_t status) {
    m_failed[range.index] = {range.first, status};
}

ReadPlan::Verdict ReadPlan::Judge() const {
    const bool allForgiven =
        m_end && std::all_of(m_failed.begin(), m_failed.end(),
                             [&](const auto& failed) { return failed.second.first >= *m_end; });
    if (m_contradiction || (m_end && m_reached > *m_end)) {
        return Verdict::Changed;
    }
    if (!m_failed.empty() && !allForgiven) {
        return Verdict::Failed;
    }
    // The range that holds the last byte, and all before it, were handed out before the one that
    // proved the end, and none of them failed.
    if (!m_end || (m_size && *m_size != *m_end)) {
        return Verdict::WrongSize;
    }
    return Verdict::Complete;
}

}  // namespace Mirqos::Tool
