// What a host thread does with multipart uploads.

#include <algorithm>
#include <cstddef>
#include <numeric>

#include "tests/soak/HostThread.h"
#include "tools/mirqos/Statuses.h"

namespace Mirqos::Soak {

/// An open multipart upload of `content` to `key`.
struct HostThread::Upload {
    MIRQOSInterface& store;
    std::string key;
    std::string id{};
    int parts = 0;
    Content content{};
};

template <class Context>
Context HostThread::OfUpload(const Upload& upload) const {
    auto context = For<Context>(upload.key);
    context.m_pszUploadId = upload.id.c_str();
    return context;
}

bool HostThread::BeginUpload(Upload& upload) {
    Begin("InitMultiPartUpload", upload.key);
    auto init = For<CloudStoreInitMultiPartUploadContext>(upload.key);
    init.m_nPartSize = kPart;
    CloudStoreInitMultiPartUploadOutcome outcome;
    if (Ended(upload.store.InitMultiPartUpload(&init, &outcome)) != 0) {
        return false;
    }
    upload.id = outcome.m_szUploadId;
    Require(m_uploads.insert(upload.id).second, "the id has been given before");
    return true;
}

CloudStoreMultiPartUploadContext HostThread::PartOf(const Upload& upload, int number,
                                                    const Bytes& bytes) const {
    auto part = OfUpload<CloudStoreMultiPartUploadContext>(upload);
    part.m_nPartNumber = static_cast<std::uint64_t>(number);
    part.m_pBuf = bytes.data();
    part.m_nBufLen = static_cast<std::int32_t>(bytes.size());
    part.m_bLastPart = false;
    return part;
}

bool HostThread::SendPart(Upload& upload, const Content& content) {
    const Bytes bytes = content.All();
    auto part = PartOf(upload, ++upload.parts, bytes);
    Begin("MultiPartUpload", upload.key + " " + Numbers(part.m_nPartNumber, bytes.size()));
    upload.content.Append(content);
    return Ended(upload.store.MultiPartUpload(&part)) == 0;
}

void HostThread::SubmitParts(Upload& upload) {
    std::vector<Content> parts;
    for (std::uint64_t whole = 1 + Below(2); whole > 0; --whole) {
        parts.push_back(NewContent(kPart));
    }
    parts.push_back(NewContent(1 + Below(kPart)));
    std::vector<std::size_t> order(parts.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::shuffle(order.begin(), order.end(), m_random);
    for (const std::size_t place : order) {
        // the library keeps a copy
        const Bytes bytes = parts[place].All();
        auto part = PartOf(upload, static_cast<int>(place) + 1, bytes);
        part.m_bLastPart = place == order.back();
        Require(upload.store.DoMultiPartUploadAsync(&part) == 0, "a part was not taken");
    }
    for (const Content& part : parts) {
        upload.content.Append(part);
    }
    upload.parts = static_cast<int>(parts.size());
}

std::int32_t HostThread::Finish(const Upload& upload, Sent sent, int parts) {
    Begin(sent == Sent::oneByOne ? "FinishMultiPartUpload" : "FinishMultiPartUploadAsync",
          upload.key + " " + std::to_string(parts));
    auto finish = OfUpload<CloudStoreFinishMultiPartUploadContext>(upload);
    finish.m_nPartCount = parts;
    const std::int32_t status = sent == Sent::oneByOne
                                    ? upload.store.FinishMultiPartUpload(&finish)
                                    : upload.store.FinishMultiPartUploadAsync(&finish);
    // The server knows no upload of nothing, in words that the SDK does not know.
    Ended(parts == 0 && status == Tool::kStatusUnknown ? 0 : status, true);
    return status;
}

std::int32_t HostThread::Abort(const Upload& upload, MIRQOSInterface& store) {
    Begin("AbortMultiPartUpload", upload.key);
    auto abort = OfUpload<CloudStoreAbortMultiPartUploadContext>(upload);
    return Ended(store.AbortMultiPartUpload(&abort), true);
}

void HostThread::Complete(const Upload& upload, Sent sent) {
    const std::int32_t status = Finish(upload, sent, upload.parts);
    if (status != 0) {
        Abort(upload, *m_stores->direct);
    }
    Conclude(upload.key, status, {Object{upload.content, {}}});
}

void HostThread::Abandon(const Upload& upload, Sent sent) {
    Abort(upload, *m_stores->direct);
    // The finish waits for the parts that are on their way, and lets the library forget the upload.
    // Of no parts, because this server is asked again and again for one that is gone.
    Require(Finish(upload, sent, 0) != 0, "an upload that was given up was completed");
    Settle(upload.key, {Current(upload.key)});
}

void HostThread::UploadOneByOne() {
    Upload upload{AnyStore(), AnyOf(m_largeKeys)};
    if (!BeginUpload(upload)) {
        return;
    }
    if (!SendPart(upload, NewContent(kPart)) || !SendPart(upload, NewContent(RandomSize() + 1))) {
        Abandon(upload, Sent::oneByOne);
        return;
    }
    Complete(upload, Sent::oneByOne);
}

void HostThread::UploadAtOnce() {
    Upload upload{AnyStore(), AnyOf(m_largeKeys)};
    if (!BeginUpload(upload)) {
        return;
    }
    SubmitParts(upload);
    Complete(upload, Sent::atOnce);
}

void HostThread::UploadFromAnother() {
    const std::vector<std::string> sources = Known(m_largeKeys);
    if (sources.empty()) {
        return;
    }
    const std::string& source = AnyOf(sources);
    const Content& content = m_objects[source].content;
    Upload upload{AnyStore(), AnyOf(m_largeKeys)};
    if (!BeginUpload(upload)) {
        return;
    }
    const std::uint64_t first = Below(content.Size() - kPart + 1);
    const std::string place = m_bucket + "/" + source;
    Begin("MultiPartCopy", source + " " + Numbers(first, kPart) + " to " + upload.key);
    auto copy = OfUpload<CloudStoreMultiPartCopyContext>(upload);
    copy.m_pszCopySource = place.c_str();
    copy.m_nRangeStart = first;
    copy.m_nRangeEnd = first + kPart - 1;
    copy.m_nPartNumber = 1;
    copy.m_bReserved = false;
    upload.parts = 1;
    upload.content = content.Range(first, kPart);
    if (Ended(upload.store.MultiPartCopy(&copy)) != 0 ||
        !SendPart(upload, NewContent(RandomSize() + 1))) {
        Abandon(upload, Sent::oneByOne);
        return;
    }
    Complete(upload, Sent::oneByOne);
}

void HostThread::GiveUploadUp() {
    Upload upload{AnyStore(), AnyOf(m_largeKeys)};
    if (BeginUpload(upload)) {
        SendPart(upload, NewContent(RandomSize()));
        Abandon(upload, Sent::oneByOne);
    }
}

void HostThread::GiveUploadUpWhileItIsSent() {
    Upload upload{AnyStore(), AnyOf(m_largeKeys)};
    if (BeginUpload(upload)) {
        SubmitParts(upload);
        Abandon(upload, Sent::atOnce);
    }
}

void HostThread::ListUploads() {
    Begin("ListMultipartUploads", m_prefix);
    auto list = OfOwn<CloudStoreListPartContext>();
    if (Ended(AnyStore().ListMultipartUploads(&list)) != 0) {
        return;
    }
    // There can be some whose ids nobody was told, because their first answers were lost.
    for (const MultiPartInfo& upload : list.m_lstParts) {
        Require(!HasBegun(upload.m_szUploadId),
                std::string("an upload was left open: ") + upload.m_szUploadId);
    }
}

}  // namespace Mirqos::Soak
