#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Mirqos::Bench {

using Bytes = std::vector<unsigned char>;

/// The service that is measured against, and who asks.
struct Service {
    std::string endpoint;  ///< "host:port", plain HTTP
    std::string region;
    std::string bucket;
    std::string accessKey;
    std::string secretKey;
};

/// One client of a service. A thread uses it at a time; for uploads and ranged reads it has threads
/// of its own. Every failure leaves as std::runtime_error.
class Session {
public:
    Session() = default;
    virtual ~Session() = default;
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// `into` has the size of the object.
    virtual void Put(const std::string& key, const Bytes& object) = 0;
    virtual void Get(const std::string& key, Bytes& into) = 0;
    /// One object in `count` parts, each of them the bytes of `part`.
    virtual void Upload(const std::string& key, const Bytes& part, int count) = 0;
    /// The object that Upload makes, in `count` ranges, each of the size of a buffer, received into
    /// `buffers` over and over. Returns the one that has the last range.
    virtual const Bytes& ReadRanges(const std::string& key, std::vector<Bytes>& buffers,
                                    int count) = 0;
    /// The keys of all objects under the prefix, a page after another. Returns their number.
    virtual std::size_t List(const std::string& prefix) = 0;
};

/// What is measured: the library, as a host calls it.
std::unique_ptr<Session> OpenLibrary(const Service& service, int threads, std::size_t largestGet);
/// What it is measured against: see Floor.cpp. With `copies` it makes those copies of the bytes
/// that the library's interface promises to its hosts.
std::unique_ptr<Session> OpenFloor(const Service& service, int threads, bool copies);

}  // namespace Mirqos::Bench
