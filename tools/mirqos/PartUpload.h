#pragma once

#include <mirqos/mirqos.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "tools/mirqos/Interruption.h"
#include "tools/mirqos/ObjectUrl.h"

namespace Mirqos::Tool {

/// An object on its way to the service in parts, numbered from 1. What is not completed is aborted,
/// also when the user ends the program, so that no part stays behind. Failures of the service throw
/// Failure (OperationFailed).
class PartUpload {
public:
    /// Begins it. `store` has to outlive it.
    PartUpload(MIRQOSInterface& store, const ObjectUrl& url, std::uint64_t partSize,
               Interruption& interruption);
    PartUpload(const PartUpload&) = delete;
    PartUpload& operator=(const PartUpload&) = delete;
    ~PartUpload();

    // Either asynchronously, from one thread: a part's failure shows in CompleteHandedOver.
    void HandOver(std::int32_t number, const unsigned char* data, std::size_t size, bool last);
    void CompleteHandedOver(std::int32_t parts);

    // Or with threads of one's own, several at once.
    void Send(std::int32_t number, const unsigned char* data, std::size_t size);
    /// Makes a part of the bytes `first` to `last` of an object; `source`: BUCKET/KEY as the
    /// service knows it.
    void Copy(std::int32_t number, const std::string& source, std::uint64_t first,
              std::uint64_t last);
    void Complete(std::int32_t parts);

private:
    using FinishCall = std::int32_t (MIRQOSInterface::*)(CloudStoreFinishMultiPartUploadContext*);

    void Check(std::int32_t status, const char* operation) const;
    std::int32_t Finish(FinishCall call, std::int32_t parts);
    CloudStoreMultiPartUploadContext Part(std::int32_t number, const unsigned char* data,
                                          std::size_t size) const;
    std::int32_t Abort() const;
    void AbortAtOnce() const;

    MIRQOSInterface& m_store;
    const ObjectUrl m_url;
    CloudStoreInitMultiPartUploadOutcome m_upload{};
    /// The library has forgotten the upload, as it does after every finish.
    bool m_finished = false;
    bool m_completed = false;
    FinishCall m_finish = &MIRQOSInterface::FinishMultiPartUpload;
    /// Last, so that it goes first.
    Interruption::Cleanup m_cleanup;
};

}  // namespace Mirqos::Tool
