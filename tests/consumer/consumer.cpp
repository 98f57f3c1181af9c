// A host that stores an object, reads it back and removes it again. Where and as whom it reads from
// its environment. Usage: consumer BUCKET, which must not exist.

#include <mirqos/mirqos.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

std::string Setting(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

void Succeed(std::int32_t status, const char* what) {
    if (status != 0) {
        throw std::runtime_error(std::string(what) + ": status " + std::to_string(status));
    }
}

void StoreAndReadBack(MIRQOSInterface& store, const char* bucket) {
    CloudStoreCreateBucketContext creation;
    creation.m_pszBucket = bucket;
    Succeed(store.CreateBucket(&creation), "CreateBucket");

    const std::vector<unsigned char> bytes = {'h', 'e', 'l', 'l', 'o', '\0', 0xFF};
    CloudStoreWriteObjectContext write;
    write.m_pszBucket = bucket;
    write.m_pszKey = "greeting";
    write.m_pBuf = bytes.data();
    write.m_nBufLen = bytes.size();
    Succeed(store.WriteObject(&write), "WriteObject");

    std::vector<unsigned char> back(bytes.size());
    CloudStoreReadObjectContext read;
    read.m_pszBucket = bucket;
    read.m_pszKey = write.m_pszKey;
    read.m_pBuf = back.data();
    read.m_nReadLen = back.size();
    read.m_nRangeStart = 0;
    read.m_nRangeEnd = back.size() - 1;
    Succeed(store.ReadObject(&read), "ReadObject");

    CloudStoreDeleteObjectContext deletion;
    deletion.m_pszBucket = bucket;
    deletion.m_pszKey = write.m_pszKey;
    Succeed(store.DeleteObject(&deletion), "DeleteObject");
    CloudStoreDeleteBucketContext bucketDeletion;
    bucketDeletion.m_pszBucket = bucket;
    Succeed(store.DeleteBucket(&bucketDeletion), "DeleteBucket");

    if (read.m_nReadSize != bytes.size() || back != bytes) {
        throw std::runtime_error("what was read is not what was written");
    }
    // This call stands last in the interface: both sides count its places alike.
    if (store.GetRequestCount() != 2) {
        throw std::runtime_error("the write and the read are what counts as requests");
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: consumer BUCKET\n");
        return 2;
    }
    const MIRQOSEngineStarter engine(true, CloudStoreContext());
    MIRQOSInterface* const store = CreateCloudStoreInterface(nullptr);
    const std::string region = Setting("MIRQOS_S3_REGION");
    const std::string endPoint = Setting("MIRQOS_S3_ENDPOINT");
    const std::string accessKey = Setting("MIRQOS_S3_ACCESS_KEY");
    const std::string secretKey = Setting("MIRQOS_S3_SECRET_KEY");
    CloudStoreConfigInfo config;
    config.m_pszRegion = region.c_str();
    config.m_pszBucket = argv[1];
    config.m_pszAccessKeyId = accessKey.c_str();
    config.m_pszSecretKey = secretKey.c_str();
    config.m_pszEndPoint = endPoint.c_str();
    config.m_bUseHttps = 0;
    config.m_nBufferSize = 4096;
    store->Init(&config);
    int exitCode = 0;
    try {
        StoreAndReadBack(*store, argv[1]);
        std::printf("stored and read back\n");
    } catch (const std::exception& failure) {
        std::printf("%s\n", failure.what());
        exitCode = 1;
    }
    ReleaseCloudStoreInterface(store);
    return exitCode;
}
