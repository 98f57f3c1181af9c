#include "tests/faults/Operation.h"

namespace Mirqos::Test {
namespace {

/// Bytes that do not repeat within a few hundred.
std::string Bytes(std::size_t size, int seed) {
    std::string bytes;
    for (std::size_t i = 0; i < size; ++i) {
        bytes += static_cast<char>((i * 31 + i / 251 + static_cast<std::size_t>(seed)) % 256);
    }
    return bytes;
}

}  // namespace

std::int32_t Fate::Next(const Sent& sent) {
    m_requests.push_back(sent);
    const std::int32_t status = StatusOf(sent, m_requests.size() - 1);
    m_failed = m_failed || status != 0;
    return status;
}

std::int32_t Fate::StatusOf(const Sent& sent, std::size_t index) {
    if (sent.takesTags && m_tagLost) {
        return static_cast<std::int32_t>(Aws::S3::S3Errors::UNKNOWN);  // the service refuses them
    }
    if (m_fault == nullptr || index < m_at || (m_once && index > m_at)) {
        return 0;
    }
    const auto effect = m_fault->effect(sent);
    if (!effect) {
        return 0;
    }
    m_tagLost = m_tagLost || (m_fault->losesTag && sent.tagged);
    switch (effect->kind) {
        case Effect::Kind::harmless:
            return 0;
        case Effect::Kind::retried:
            if (m_once) {
                return m_fault->IsDone() ? static_cast<std::int32_t>(sent.repeated) : 0;
            }
            break;
        case Effect::Kind::final:
            break;
    }
    return static_cast<std::int32_t>(effect->error);
}

Effect Fate::First() const {
    return *m_fault->effect(m_requests.at(m_at));
}

const std::string& SourceBytes() {
    static const std::string bytes = Bytes(2000, 1);
    return bytes;
}

const std::string& WrittenBytes() {
    static const std::string bytes = Bytes(20000, 2);
    return bytes;
}

ModelService FilledService() {
    ModelService service;
    for (const std::string bucket : {Operation::kBucket, Operation::kConfigured}) {
        service.buckets.insert(bucket);
        service.objects[bucket + "/" + Operation::kSource] = SourceBytes();
        for (const char* const key : {"list-1", "list-2", "list-3"}) {
            service.objects[bucket + "/" + key] = "listed";
        }
    }
    return service;
}

Operations AllOperations() {
    Operations operations;
    AddObjectOperations(operations);
    AddListingOperations(operations);
    AddBucketOperations(operations);
    AddUploadOperations(operations);
    AddCopyOperations(operations);
    return operations;
}

}  // namespace Mirqos::Test
