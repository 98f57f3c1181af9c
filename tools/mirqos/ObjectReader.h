#pragma once

#include <mirqos/mirqos.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tools/mirqos/Interruption.h"
#include "tools/mirqos/ObjectUrl.h"

namespace Mirqos::Tool {

/// Reads objects of known size from front to end, several ranges at a time where one is large. For
/// one thread.
class ObjectReader {
public:
    /// The most that one read asks for; what the store needs as room.
    static constexpr std::size_t kRange = std::size_t{8} << 20U;
    /// What ranges that are read together have at most: there are two such buffers, and the
    /// library's own.
    static constexpr std::size_t kBatch = std::size_t{64} << 20U;

    /// Takes the bytes, in their order.
    using Sink =
        std::function<void(std::uint64_t offset, const unsigned char* from, std::size_t size)>;

    /// `store`: this reader's own, with kRange as room. `ranges`: read at a time, up to 64; more
    /// than one needs that many threads of the store's.
    ObjectReader(MIRQOSInterface& store, unsigned ranges, const Interruption& interruption);

    /// Where the object is shorter, other bytes than its own reach `take` in place of the missing:
    /// the digest tells. Returns the status of the read that failed, 0 where none did; what `take`
    /// throws comes out of here, and Failure (Interrupted).
    std::int32_t Read(const ObjectUrl& url, std::uint64_t size, const Sink& take);

private:
    /// Ranges of an object that are read together.
    struct Batch {
        std::uint64_t begin = 0;
        std::uint64_t end = 0;
        std::vector<unsigned char> bytes;
    };

    std::int32_t ReadOne(const ObjectUrl& url, std::uint64_t size, const Sink& take);
    std::int32_t ReadMany(const ObjectUrl& url, std::uint64_t size, const Sink& take);
    void Start(const ObjectUrl& url, Batch& batch);
    std::int32_t Wait(const ObjectUrl& url, Batch& batch);

    MIRQOSInterface& m_store;
    const unsigned m_ranges;
    const std::size_t m_range;  ///< bytes of one that is read together with others
    const Interruption& m_interruption;
    Batch m_now;
    Batch m_next;
};

}  // namespace Mirqos::Tool
