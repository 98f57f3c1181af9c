#pragma once

#include <mirqos/mirqos.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "store/AwsSdk.h"
#include "store/CallsInFlight.h"

struct MultiPartUploadState;
struct AsyncReadStatus;

/// The object store over the AWS SDK's S3 client; mirqos/store.h holds the contract of each
/// operation. Operations may run on several threads at once, but for Init and destruction; those
/// that read synchronously take turns at the store's one work buffer.
class AwsS3Store : public MIRQOSInterface {
public:
    AwsS3Store();
    ~AwsS3Store() override;
    AwsS3Store(const AwsS3Store&) = delete;
    AwsS3Store& operator=(const AwsS3Store&) = delete;

    int32_t Init(CloudStoreConfigInfo* pConfig) override;
    const char* GetRegion() override;
    const char* GetBucketName() override;
    const char* GetAccessKeyId() override;
    const char* GetSecretKey() override;
    int32_t WriteObject(CloudStoreWriteObjectContext* pContext) override;
    int32_t ReadObject(CloudStoreReadObjectContext* pContext) override;
    int32_t ReadObjectAsync(CloudStoreReadObjectContext* pContext) override;
    int32_t WaitForReadObjectAsync(CloudStoreReadObjectContext* pContext) override;
    int32_t CopyObject(CloudStoreCopyObjectContext* pContext) override;
    int32_t ListObjects(CloudStoreListObjectConext* pContext) override;
    int32_t ListObjectsSegmented(CloudStoreListObjectConext* pContext) override;
    int32_t ReleaseObjectData(CloudStoreListObjectConext* pContext) override;
    int32_t DeleteObject(CloudStoreDeleteObjectContext* pContext) override;
    int32_t DeleteObjectsV2(CloudStoreDeleteObjectsContextV2* pContext) override;
    int32_t CreateBucket(CloudStoreCreateBucketContext* pContext) override;
    int32_t DeleteBucket(CloudStoreDeleteBucketContext* pContext) override;
    int32_t ListBucket(CloudStoreListBucketContext* pContext) override;
    void ReleaseBucketList(CloudStoreListBucketContext* pContext) override;
    int32_t HeadBucket(CloudStoreHeadBucketConext* pContext) override;
    int32_t HeadObject(CloudStoreHeadObjectConext* pContext) override;
    int32_t SearchObject(CloudStoreSearchObjectConext* pContext) override;
    int32_t ListMultipartUploads(CloudStoreListPartContext* pContext) override;
    int32_t PutBucketLifecycleConfiguration(LifecycleConfigContext* pContext) override;
    int32_t PutObjectTagging(PutObjectTaggingContext* pContext) override;
    int32_t GetObjectTagging(GetObjectTaggingContext* pContext) override;
    int32_t GetBucketLocation(const char* pszBucket, char* pszDestination,
                              uint64_t nDestinationSize) override;
    int32_t InitMultiPartUpload(CloudStoreInitMultiPartUploadContext* pContext,
                                CloudStoreInitMultiPartUploadOutcome* pOutcome) override;
    int32_t MultiPartUpload(CloudStoreMultiPartUploadContext* pContext) override;
    int32_t MultiPartCopy(CloudStoreMultiPartCopyContext* pContext) override;
    int32_t FinishMultiPartUpload(CloudStoreFinishMultiPartUploadContext* pContext) override;
    int32_t DoMultiPartUploadAsync(CloudStoreMultiPartUploadContext* pContext) override;
    int32_t FinishMultiPartUploadAsync(CloudStoreFinishMultiPartUploadContext* pContext) override;
    int32_t AbortMultiPartUpload(CloudStoreAbortMultiPartUploadContext* pContext) override;
    uint64_t GetRequestCount() override;

private:
    int32_t BuildClient();
    void StartExecutor(Aws::Client::ClientConfiguration& configuration) const;
    /// The caller's key as it goes to the service: a copy, with the key substitution of the
    /// provider types that need it.
    Aws::String KeyForService(const char* pszKey) const;
    /// Asks for URL-encoded keys where the endpoint names the provider that needs it.
    void EncodeListingForMarkedProvider(const char* pszOperation,
                                        Aws::S3::Model::ListObjectsV2Request& request) const;
    int32_t DeleteInOneRequest(CloudStoreDeleteObjectsContextV2* pContext);
    int32_t DeleteOneByOne(CloudStoreDeleteObjectsContextV2* pContext);

    /// The state of an upload that is open in this store, or null.
    std::shared_ptr<MultiPartUploadState> FindUpload(const char* pszUploadId);
    bool IsOpen(const MultiPartUploadState& state);
    void ForgetUpload(const char* pszUploadId);
    /// Writes the line about an upload id that is not open here; returns the status that says so.
    static int32_t UnknownUpload(const char* pszOperation);
    Aws::S3::Model::UploadPartRequest PartRequest(
        const CloudStoreMultiPartUploadContext& context) const;
    /// Joins the recorded parts on the service, with the log lines of a failure.
    int32_t CompleteUpload(const CloudStoreFinishMultiPartUploadContext& context,
                           MultiPartUploadState& state);
    /// `nStatus` is what an earlier look-up of the size left; a success keeps it.
    int32_t CopyInOneRequest(CloudStoreCopyObjectContext& context, int32_t nStatus);
    int32_t CopyLargeObject(CloudStoreCopyObjectContext& context, bool bFound);
    int32_t CopyThroughFile(CloudStoreCopyObjectContext& context);
    /// Looks an object of the configured bucket up in a listing. On a failure the results stay.
    int32_t GetObjectSize(const char* pszKey, bool& bFound, uint64_t& nSize);
    int32_t DownloadFileForCopyObject(const CloudStoreCopyObjectContext& context,
                                      const std::wstring& strFile);
    int32_t UploadFileForCopyObject(const CloudStoreCopyObjectContext& context,
                                    const std::wstring& strFile);
    int32_t UploadParts(const CloudStoreCopyObjectContext& context, const std::wstring& strFile,
                        const char* pszUploadId, unsigned char* pBuffer, uint32_t nPartSize,
                        uint64_t& nPartsTried);
    /// What each asynchronous call brings back, on a thread of the executor. Neither throws.
    void HandleUploadPartAsync(MultiPartUploadState& state, const std::string& strRegion,
                               const Aws::S3::Model::UploadPartRequest& request,
                               const Aws::S3::Model::UploadPartOutcome& outcome);
    struct TransferHandleAsyncContext;
    void HandleAsyncReadFunc(const Aws::S3::Model::GetObjectRequest& request,
                             const Aws::S3::Model::GetObjectOutcome& outcome,
                             const TransferHandleAsyncContext& transfer);
    friend struct StoreTestAccess;

    // Raw on purpose: a second Init replaces the client and leaves the earlier one running, since
    // requests of it may still be in progress.
    Aws::S3::S3Client* m_pClient = nullptr;
    std::string m_strAccessKeyId;
    std::string m_strSecretKey;
    std::string m_strBucket;
    std::string m_strRegion;
    std::string m_strEndPoint;
    int32_t m_bUseHttps = 1;
    int32_t m_nProviderType = 0;
    CloudStoreConfigInfo m_ConfigInfo;
    // Open uploads by their id, guarded by m_mtxStore like m_pReadStatus. A state holds itself
    // while its upload is open, so that of an upload never finished outlives the store.
    std::unordered_map<std::string, std::shared_ptr<MultiPartUploadState>> m_mapUploads;
    std::mutex m_mtxStore;
    std::shared_ptr<AsyncReadStatus> m_pReadStatus;
    const std::shared_ptr<Mirqos::CallsInFlight> m_pCalls =
        std::make_shared<Mirqos::CallsInFlight>();
    int32_t m_nBufferSize = 0;
    // Every ReadObject receives into it, those of copies through a file as well: one at a time.
    std::unique_ptr<Aws::Utils::Array<unsigned char>> m_pWorkBuffer;
    std::mutex m_mtxWorkBuffer;
    std::atomic<uint64_t> m_nRequestCount{0};
    std::atomic<uint64_t> m_nInitMultiPartCount{0};
    std::atomic<uint64_t> m_nFinishMultiPartCount{0};
};
