#pragma once

#include <string>
#include <utility>

#include "tests/wire/WireTest.h"

namespace Mirqos::Test {

/// The steps of an upload with the id "u" to one key.
class UploadOfKey {
public:
    UploadOfKey(MIRQOSInterface& store, std::string key) : m_store(store), m_key(std::move(key)) {}

    static Answer Opened() {
        return Answer::Status(200).Body(
            "<InitiateMultipartUploadResult><UploadId>u</UploadId>"
            "</InitiateMultipartUploadResult>");
    }

    std::int32_t Open() const {
        auto init = OfKey<CloudStoreInitMultiPartUploadContext>();
        CloudStoreInitMultiPartUploadOutcome opened;
        return m_store.InitMultiPartUpload(&init, &opened);
    }
    std::int32_t SendPart() const {
        auto part = FirstPart();
        return m_store.MultiPartUpload(&part);
    }
    std::int32_t HandPartOver() const {
        auto part = FirstPart();
        return m_store.DoMultiPartUploadAsync(&part);
    }
    std::int32_t CopySecondPart(const std::string& source) const {
        auto copy = OfUpload<CloudStoreMultiPartCopyContext>();
        copy.m_pszCopySource = source.c_str();
        copy.m_nPartNumber = 2;
        return m_store.MultiPartCopy(&copy);
    }
    std::int32_t Abort() const {
        auto abort = OfUpload<CloudStoreAbortMultiPartUploadContext>();
        return m_store.AbortMultiPartUpload(&abort);
    }
    std::int32_t Finish(std::int32_t parts) const {
        auto finish = Finished(parts);
        return m_store.FinishMultiPartUpload(&finish);
    }
    std::int32_t FinishHandedOver(std::int32_t parts) const {
        auto finish = Finished(parts);
        return m_store.FinishMultiPartUploadAsync(&finish);
    }

private:
    template <class Context>
    Context OfKey() const {
        Context context;
        context.m_pszBucket = WireTest::kBucket;
        context.m_pszKey = m_key.c_str();
        return context;
    }
    template <class Context>
    Context OfUpload() const {
        auto context = OfKey<Context>();
        context.m_pszUploadId = "u";
        return context;
    }
    CloudStoreMultiPartUploadContext FirstPart() const {
        static const unsigned char byte = 'v';
        auto part = OfUpload<CloudStoreMultiPartUploadContext>();
        part.m_nPartNumber = 1;
        part.m_pBuf = &byte;
        part.m_nBufLen = 1;
        return part;
    }
    CloudStoreFinishMultiPartUploadContext Finished(std::int32_t parts) const {
        auto finish = OfUpload<CloudStoreFinishMultiPartUploadContext>();
        finish.m_nPartCount = parts;
        return finish;
    }

    MIRQOSInterface& m_store;
    const std::string m_key;
};

}  // namespace Mirqos::Test
