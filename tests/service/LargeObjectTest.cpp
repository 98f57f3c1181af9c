#include "tests/service/LargeObjectTest.h"

#include <algorithm>

namespace Mirqos::Test {

StorePointer LargeObjectTest::ThreadedStore(std::int32_t threads, const char* endpoint) {
    CloudStoreConfigInfo config = Config();
    config.m_nThreadCount = threads;
    if (endpoint != nullptr) {
        config.m_pszEndPoint = endpoint;
    }
    return NewStore(config);
}

std::string LargeObjectTest::Open(MIRQOSInterface& store, const char* key) {
    CloudStoreInitMultiPartUploadContext init;
    init.m_pszBucket = Bucket().c_str();
    init.m_pszKey = key;
    CloudStoreInitMultiPartUploadOutcome outcome;
    const std::int32_t status = store.InitMultiPartUpload(&init, &outcome);
    EXPECT_EQ(status, 0);
    return status == 0 ? outcome.m_szUploadId : "";
}

CloudStoreMultiPartUploadContext LargeObjectTest::Part(const std::string& upload, const char* key,
                                                       int number, const unsigned char* bytes,
                                                       std::size_t size, bool last) const {
    CloudStoreMultiPartUploadContext part;
    part.m_pszUploadId = upload.c_str();
    part.m_pszKey = key;
    part.m_pszBucket = Bucket().c_str();
    part.m_nPartNumber = static_cast<std::uint64_t>(number);
    part.m_pBuf = bytes;
    part.m_nBufLen = static_cast<std::int32_t>(size);
    part.m_bLastPart = last;
    return part;
}

CloudStoreFinishMultiPartUploadContext LargeObjectTest::Finish(const std::string& upload,
                                                               const char* key, int parts) const {
    CloudStoreFinishMultiPartUploadContext finish;
    finish.m_pszUploadId = upload.c_str();
    finish.m_pszBucket = Bucket().c_str();
    finish.m_pszKey = key;
    finish.m_nPartCount = parts;
    return finish;
}

std::int32_t LargeObjectTest::Abort(MIRQOSInterface& store, const std::string& upload,
                                    const char* key) {
    CloudStoreAbortMultiPartUploadContext abort;
    abort.m_pszUploadId = upload.c_str();
    abort.m_pszBucket = Bucket().c_str();
    abort.m_pszKey = key;
    return store.AbortMultiPartUpload(&abort);
}

int LargeObjectTest::SubmitAll(MIRQOSInterface& store, const std::string& upload, const char* key,
                               const Bytes& bytes, std::size_t partSize) {
    int number = 0;
    for (std::size_t first = 0; first < bytes.size(); first += partSize) {
        const std::size_t length = std::min(partSize, bytes.size() - first);
        auto part = Part(upload, key, ++number, bytes.data() + first, length,
                         first + length == bytes.size());
        EXPECT_EQ(store.DoMultiPartUploadAsync(&part), 0);
    }
    return number;
}

std::int32_t LargeObjectTest::ReadRanges(MIRQOSInterface& store, const char* key, std::size_t first,
                                         std::size_t size, std::size_t range,
                                         unsigned char* place) {
    CloudStoreReadObjectContext read;
    for (std::size_t done = 0; done < size; done += range) {
        const std::size_t length = std::min(range, size - done);
        read.m_pszKey = key;
        read.m_pszBucket = Bucket().c_str();
        read.m_pBuf = place + done;
        read.m_nReadLen = length;
        read.m_nReadSize = 0;
        read.m_nRangeStart = first + done;
        read.m_nRangeEnd = first + done + length - 1;
        EXPECT_EQ(store.ReadObjectAsync(&read), 0);
    }
    return store.WaitForReadObjectAsync(&read);
}

Bytes LargeObjectTest::ReadBack(MIRQOSInterface& store, const char* key, std::size_t size,
                                std::size_t range) {
    Bytes back(size);
    EXPECT_EQ(ReadRanges(store, key, 0, size, range, back.data()), 0);
    return back;
}

std::vector<std::string> LargeObjectTest::OpenUploads() {
    const auto store = NewStore(Config());
    CloudStoreListPartContext list;
    list.m_pszBucket = Bucket().c_str();
    list.m_pszPrefix = "";
    EXPECT_EQ(store->ListMultipartUploads(&list), 0);
    std::vector<std::string> ids;
    for (const MultiPartInfo& upload : list.m_lstParts) {
        ids.emplace_back(upload.m_szUploadId);
    }
    return ids;
}

bool LargeObjectTest::Exists(const char* key) {
    const auto store = NewStore(Config());
    CloudStoreHeadObjectConext head;
    head.m_pszBucket = Bucket().c_str();
    head.m_pszKey = key;
    return store->HeadObject(&head) == 0 && head.m_bExists;
}

}  // namespace Mirqos::Test
