#include "tools/mirqos/PartUpload.h"

#include <chrono>
#include <future>
#include <memory>
#include <thread>

#include "tools/mirqos/Session.h"

namespace Mirqos::Tool {

namespace {

// what the user waits at most for a service that does not answer any more
constexpr std::chrono::seconds kPatience{5};

CloudStoreInitMultiPartUploadOutcome Begin(MIRQOSInterface& store, const ObjectUrl& url,
                                           std::uint64_t partSize) {
    CloudStoreInitMultiPartUploadContext init;
    init.m_pszBucket = url.bucket.c_str();
    init.m_pszKey = url.key.c_str();
    init.m_nPartSize = partSize;
    CloudStoreInitMultiPartUploadOutcome outcome{};
    CheckStatus(store.InitMultiPartUpload(&init, &outcome), "InitMultiPartUpload", url, store);
    return outcome;
}

}  // namespace

PartUpload::PartUpload(MIRQOSInterface& store, const ObjectUrl& url, std::uint64_t partSize,
                       Interruption& interruption)
    : m_store(store),
      m_url(url),
      m_upload(Begin(store, url, partSize)),
      m_cleanup(interruption.OnAbruptEnd([this] { AbortAtOnce(); })) {
}

PartUpload::~PartUpload() {
    if (m_completed) {
        return;
    }
    // Gone for the service first, so that the finish can complete nothing: it waits for the parts
    // that are under way and lets the library forget them. Then what came in meanwhile goes too.
    if (Abort() == 0 && !m_finished) {
        Finish(m_finish, 1);
        Abort();
    }
}

CloudStoreMultiPartUploadContext PartUpload::Part(std::int32_t number, const unsigned char* data,
                                                  std::size_t size) const {
    CloudStoreMultiPartUploadContext part;
    part.m_pszUploadId = m_upload.m_szUploadId;
    part.m_pszBucket = m_url.bucket.c_str();
    part.m_pszKey = m_url.key.c_str();
    part.m_nPartNumber = static_cast<std::uint64_t>(number);
    part.m_pBuf = data;
    part.m_nBufLen = static_cast<std::int32_t>(size);
    part.m_bLastPart = false;
    return part;
}

void PartUpload::HandOver(std::int32_t number, const unsigned char* data, std::size_t size,
                          bool last) {
    m_finish = &MIRQOSInterface::FinishMultiPartUploadAsync;
    CloudStoreMultiPartUploadContext part = Part(number, data, size);
    part.m_bLastPart = last;
    Check(m_store.DoMultiPartUploadAsync(&part), "DoMultiPartUploadAsync");
}

void PartUpload::CompleteHandedOver(std::int32_t parts) {
    Check(Finish(&MIRQOSInterface::FinishMultiPartUploadAsync, parts),
          "FinishMultiPartUploadAsync");
    m_completed = true;
}

void PartUpload::Send(std::int32_t number, const unsigned char* data, std::size_t size) {
    CloudStoreMultiPartUploadContext part = Part(number, data, size);
    Check(m_store.MultiPartUpload(&part), "MultiPartUpload");
}

void PartUpload::Copy(std::int32_t number, const std::string& source, std::uint64_t first,
                      std::uint64_t last) {
    CloudStoreMultiPartCopyContext part;
    part.m_pszUploadId = m_upload.m_szUploadId;
    part.m_pszBucket = m_url.bucket.c_str();
    part.m_pszKey = m_url.key.c_str();
    part.m_pszCopySource = source.c_str();
    part.m_nRangeStart = first;
    part.m_nRangeEnd = last;
    part.m_nPartNumber = static_cast<std::uint64_t>(number);
    Check(m_store.MultiPartCopy(&part), "MultiPartCopy");
}

void PartUpload::Complete(std::int32_t parts) {
    Check(Finish(&MIRQOSInterface::FinishMultiPartUpload, parts), "FinishMultiPartUpload");
    m_completed = true;
}

void PartUpload::Check(std::int32_t status, const char* operation) const {
    CheckStatus(status, operation, m_url, m_store);
}

std::int32_t PartUpload::Finish(FinishCall call, std::int32_t parts) {
    CloudStoreFinishMultiPartUploadContext finish;
    finish.m_pszUploadId = m_upload.m_szUploadId;
    finish.m_pszBucket = m_url.bucket.c_str();
    finish.m_pszKey = m_url.key.c_str();
    finish.m_nPartCount = parts;
    m_finished = true;
    return (m_store.*call)(&finish);
}

std::int32_t PartUpload::Abort() const {
    CloudStoreAbortMultiPartUploadContext abort;
    abort.m_pszUploadId = m_upload.m_szUploadId;
    abort.m_pszBucket = m_url.bucket.c_str();
    abort.m_pszKey = m_url.key.c_str();
    return m_store.AbortMultiPartUpload(&abort);
}

/// The process ends whether or not the service answers.
void PartUpload::AbortAtOnce() const {
    auto done = std::make_shared<std::promise<void>>();
    auto ended = done->get_future();
    std::thread([this, done] {
        Abort();
        done->set_value();
    }).detach();
    ended.wait_for(kPatience);
}

}  // namespace Mirqos::Tool
