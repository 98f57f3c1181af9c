#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace Mirqos::Tool {

/// Which ranges of an object to read, and whether what came back is the whole object.
///
/// The size of the object is usually unknown, and a read past the end fails with a status that a
/// real failure can have as well. So no failure is ever taken for the end. Each range but the first
/// begins `overlap` bytes before its own part: the range that follows the last byte still reaches
/// back into the object, succeeds, and is short. A short answer is the only proof of the end, and
/// every object that is not empty gives one. A range that failed is forgiven only when it began at
/// or behind a proven end. The bytes read twice have to agree, which also notices most changes of
/// the object during the read.
///
/// An empty object proves nothing here: its first range fails like any other failure.
///
/// Not safe for use by two threads at once.
class ReadPlan {
public:
    /// `part`: bytes that each range adds, more than `overlap`. `overlap`: at least 1. `size`: what
    /// the object has to have; nothing when it is unknown.
    ReadPlan(std::uint64_t part, std::uint64_t overlap, std::optional<std::uint64_t> size);

    struct Range {
        std::uint64_t index;
        std::uint64_t first;  ///< to ask for
        std::uint64_t last;   ///< to ask for, itself included
        std::uint64_t kept;   ///< bytes at the front that the range before has too

        std::uint64_t Length() const { return last - first + 1; }
    };

    enum class Verdict {
        Complete,  ///< every byte from 0 to Size() was delivered
        Failed,    ///< FailedStatus() of the first range that failed
        Changed,   ///< the answers contradict each other
        WrongSize  ///< all of the object was delivered, but it has not the size given
    };

    /// The next range to ask for, in ascending order; nothing when the end is proven or further
    /// reads are pointless. May be called while earlier ranges are under way.
    std::optional<Range> Next();

    /// A range was read: `count` bytes at `data`.
    void Delivered(const Range& range, const unsigned char* data, std::uint64_t count);
    /// A range was not read.
    void Failed(const Range& range, std::int32_t status);
    /// No further ranges, please.
    void Stop() { m_stopped = true; }

    // To be asked when every range handed out was answered.
    Verdict Judge() const;
    std::uint64_t Size() const { return m_end.value_or(0); }
    std::int32_t FailedStatus() const { return m_failed.begin()->second.status; }
    /// Whether nothing but the first range was tried, and that failed.
    bool FailedAtOnce() const { return m_delivered == 0 && m_failed.size() == 1; }

private:
    void CompareSeam(std::uint64_t index);

    struct Failure {
        std::uint64_t first;
        std::int32_t status;
    };

    std::uint64_t m_part;
    std::uint64_t m_overlap;
    std::optional<std::uint64_t> m_size;
    std::uint64_t m_next = 0;
    std::uint64_t m_delivered = 0;  ///< ranges
    std::uint64_t m_reached = 0;    ///< end of the farthest range that came whole
    std::optional<std::uint64_t> m_end;
    bool m_contradiction = false;
    bool m_stopped = false;
    std::map<std::uint64_t, Failure> m_failed;
    // Bytes on both sides of a border, by the index of the range behind it, until they are compared
    std::map<std::uint64_t, std::string> m_before;
    std::map<std::uint64_t, std::string> m_behind;
};

}  // namespace Mirqos::Tool
