// The library through its public interface: nothing but what a host sees of it.

#include <mirqos/mirqos.h>

#include <stdexcept>

#include "bench/s3/Session.h"

namespace Mirqos::Bench {
namespace {

void Check(std::int32_t status, const char* what) {
    if (status != 0) {
        throw std::runtime_error(std::string("library: ") + what + " ended with " +
                                 std::to_string(status));
    }
}

class LibrarySession final : public Session {
public:
    LibrarySession(const Service& service, int threads, std::size_t largestGet)
        : m_service(service), m_store(CreateCloudStoreInterface(nullptr)) {
        CloudStoreConfigInfo config;
        config.m_pszRegion = m_service.region.c_str();
        config.m_pszBucket = m_service.bucket.c_str();
        config.m_pszAccessKeyId = m_service.accessKey.c_str();
        config.m_pszSecretKey = m_service.secretKey.c_str();
        config.m_pszEndPoint = m_service.endpoint.c_str();
        config.m_bUseHttps = 0;
        config.m_nBufferSize = static_cast<std::int32_t>(largestGet);
        config.m_nThreadCount = threads;
        m_store->Init(&config);
    }
    ~LibrarySession() override { ReleaseCloudStoreInterface(m_store); }

    void Put(const std::string& key, const Bytes& object) override {
        CloudStoreWriteObjectContext write;
        write.m_pszBucket = m_service.bucket.c_str();
        write.m_pszKey = key.c_str();
        write.m_pBuf = object.data();
        write.m_nBufLen = object.size();
        Check(m_store->WriteObject(&write), "WriteObject");
    }

    void Get(const std::string& key, Bytes& into) override {
        CloudStoreReadObjectContext read = Reading(key, 0, into.data(), into.size());
        Check(m_store->ReadObject(&read), "ReadObject");
        if (read.m_nReadSize != into.size()) {
            throw std::runtime_error("library: the object is shorter than asked for");
        }
    }

    void Upload(const std::string& key, const Bytes& part, int count) override {
        CloudStoreInitMultiPartUploadContext begin;
        begin.m_pszBucket = m_service.bucket.c_str();
        begin.m_pszKey = key.c_str();
        begin.m_nPartSize = part.size();
        CloudStoreInitMultiPartUploadOutcome upload;
        Check(m_store->InitMultiPartUpload(&begin, &upload), "InitMultiPartUpload");
        for (int number = 1; number <= count; ++number) {
            CloudStoreMultiPartUploadContext send;
            send.m_pszUploadId = upload.m_szUploadId;
            send.m_pszBucket = m_service.bucket.c_str();
            send.m_pszKey = key.c_str();
            send.m_nPartNumber = static_cast<std::uint64_t>(number);
            send.m_pBuf = part.data();
            send.m_nBufLen = static_cast<std::int32_t>(part.size());
            send.m_bLastPart = number == count;
            Check(m_store->DoMultiPartUploadAsync(&send), "DoMultiPartUploadAsync");
        }
        CloudStoreFinishMultiPartUploadContext finish;
        finish.m_pszUploadId = upload.m_szUploadId;
        finish.m_pszBucket = m_service.bucket.c_str();
        finish.m_pszKey = key.c_str();
        finish.m_nPartCount = count;
        Check(m_store->FinishMultiPartUploadAsync(&finish), "FinishMultiPartUploadAsync");
    }

    const Bytes& ReadRanges(const std::string& key, std::vector<Bytes>& buffers,
                            int count) override {
        const Bytes* last = nullptr;
        CloudStoreReadObjectContext read;
        for (int begun = 0; begun < count;) {
            for (Bytes& buffer : buffers) {
                if (begun == count) {
                    break;
                }
                read = Reading(key, static_cast<std::uint64_t>(begun) * buffer.size(),
                               buffer.data(), buffer.size());
                m_store->ReadObjectAsync(&read);
                last = &buffer;
                ++begun;
            }
            Check(m_store->WaitForReadObjectAsync(&read), "WaitForReadObjectAsync");
        }
        return *last;
    }

    std::size_t List(const std::string& prefix) override {
        std::size_t count = 0;
        CloudStoreListObjectConext list;
        list.m_pszBucket = m_service.bucket.c_str();
        list.m_pszPrefix = prefix.c_str();
        do {
            Check(m_store->ListObjectsSegmented(&list), "ListObjectsSegmented");
            count += list.m_nObjectCount;
            m_store->ReleaseObjectData(&list);
        } while (list.m_bTruncated);
        return count;
    }

private:
    CloudStoreReadObjectContext Reading(const std::string& key, std::uint64_t first,
                                        unsigned char* into, std::size_t size) const {
        CloudStoreReadObjectContext read;
        read.m_pszBucket = m_service.bucket.c_str();
        read.m_pszKey = key.c_str();
        read.m_pBuf = into;
        read.m_nReadLen = size;
        read.m_nRangeStart = first;
        read.m_nRangeEnd = first + size - 1;
        return read;
    }

    const Service m_service;
    MIRQOSInterface* const m_store;
};

}  // namespace

std::unique_ptr<Session> OpenLibrary(const Service& service, int threads, std::size_t largestGet) {
    static const MIRQOSEngineStarter started(true, CloudStoreContext());
    return std::make_unique<LibrarySession>(service, threads, largestGet);
}

}  // namespace Mirqos::Bench
