#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "bench/s3/Cost.h"
#include "bench/s3/Session.h"

namespace Mirqos::Bench {

/// A row of the table: how much is moved, and by how many threads.
struct Order {
    int threads;
    std::size_t bytes;  ///< of an object, or of a part
    int count;          ///< objects, parts or keys
};

/// Opens a client of what is measured, with so many threads of its own.
using Opener = std::function<std::unique_ptr<Session>(int threads)>;

/// A row's work. Returns its cost, without the time that it takes to start.
using Row = Cost (*)(const Opener& open, const Order& order);

// One object in parts: the session's own threads move them.
Cost UploadInParts(const Opener& open, const Order& order);
Cost ReadInRanges(const Opener& open, const Order& order);
// Many whole objects: each thread has a session.
Cost PutObjects(const Opener& open, const Order& order);
Cost GetObjects(const Opener& open, const Order& order);
// All keys below a prefix, and what puts them there.
Cost StoreKeys(const Opener& open, const Order& order);
Cost ListKeys(const Opener& open, const Order& order);

/// What every object begins with: the same bytes each time, which no compression makes smaller.
Bytes Content(std::size_t size);
/// Throws when these are not the bytes of an object, or of one of its parts.
void CheckContent(const Bytes& received);

}  // namespace Mirqos::Bench
