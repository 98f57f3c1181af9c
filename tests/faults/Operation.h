#pragma once

#include <mirqos/mirqos.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tests/faults/Mishap.h"
#include "tests/faults/ModelService.h"

namespace Mirqos::Test {

/// What becomes of each request of one call, in their order, when a fault strikes one of them.
class Fate {
public:
    /// Every request succeeds.
    Fate() = default;
    /// `fault` strikes request `at`, counted from 0: once, or that one and all that follow.
    Fate(const Mishap& fault, std::size_t at, bool once)
        : m_fault(&fault), m_at(at), m_once(once) {}

    /// The status with which the next request ends, the attempts of the SDK included.
    std::int32_t Next(const Sent& sent);
    /// The requests so far.
    const std::vector<Sent>& Requests() const { return m_requests; }
    /// Whether one of them ended with a status other than 0.
    bool HasFailure() const { return m_failed; }
    /// The effect on the request it strikes first; it has to go with that request.
    Effect First() const;

private:
    std::int32_t StatusOf(const Sent& sent, std::size_t index);

    const Mishap* m_fault = nullptr;
    std::size_t m_at = 0;
    bool m_once = false;
    bool m_tagLost = false;
    bool m_failed = false;
    std::vector<Sent> m_requests;
};

/// What an operation promises. In lines, '*' stands for one or more characters and '~' for any
/// number of them.
struct Promise {
    std::int32_t status = 0;
    std::vector<std::string> lines;
};

/// One operation of the store's interface, or two that only work together.
class Operation {
public:
    static constexpr char kBucket[] = "the-bucket";
    static constexpr char kConfigured[] = "the-configured-bucket";
    static constexpr char kKey[] = "k";
    static constexpr char kSource[] = "source";

    virtual ~Operation() = default;
    /// Puts there what a call needs, on the service and by calls that nothing disturbs.
    virtual void Arrange(ModelService& /*service*/) const {}
    virtual void Prepare(MIRQOSInterface& /*store*/) {}
    virtual std::int32_t Call(MIRQOSInterface& store) = 0;
    virtual Promise Promised(Fate& fate) const = 0;
    /// What is wrong with what a call has handed out, or left at the service; empty: nothing.
    virtual std::string Problem(bool succeeded, const ModelService& service) const = 0;
    /// Whether a line, of that level, is one of which the order or the presence is open.
    virtual bool IsOpen(int /*level*/, const std::string& /*line*/) const { return false; }
    /// Whether lines come from several threads, in no promised order.
    virtual bool IsUnordered() const { return false; }

    std::string name;
    std::int32_t provider = 0;
    std::int32_t threads = 0;
    std::int32_t buffer = 64 * 1024;
};

/// Requests by what answers them.
inline Sent ToHead() {
    Sent sent;
    sent.answered = Sent::Answered::head;
    return sent;
}
inline Sent ToObjectHead() {
    Sent sent = ToHead();
    sent.tagged = true;
    return sent;
}
inline Sent ForDocument() {
    Sent sent;
    sent.answered = Sent::Answered::document;
    return sent;
}
inline Sent ForNothing() {
    return Sent();
}
inline Sent ForBytes(bool inside) {
    Sent sent;
    sent.answered = Sent::Answered::bytes;
    sent.tagged = true;
    sent.inside = inside;
    return sent;
}
inline Sent WithBody(Sent sent) {
    sent.body = true;
    return sent;
}
/// Of bytes, which the service answers with their tag.
inline Sent OfBytes() {
    Sent sent = WithBody(ForNothing());
    sent.tagged = true;
    return sent;
}
inline Sent Repeated(Sent sent, Aws::S3::S3Errors error) {
    sent.repeated = error;
    return sent;
}

/// The bytes of the object kSource, and of what is sent.
const std::string& SourceBytes();
const std::string& WrittenBytes();

/// What every call finds at the service.
ModelService FilledService();

using Operations = std::vector<std::unique_ptr<Operation>>;
void AddObjectOperations(Operations& operations);
void AddListingOperations(Operations& operations);
void AddBucketOperations(Operations& operations);
void AddUploadOperations(Operations& operations);
void AddCopyOperations(Operations& operations);
/// Every operation that sends something.
Operations AllOperations();

}  // namespace Mirqos::Test
