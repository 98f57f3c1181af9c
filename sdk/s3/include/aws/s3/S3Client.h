#pragma once

#include <aws/core/NoResult.h>
#include <aws/core/auth/AWSAuthSigner.h>
#include <aws/core/auth/AWSCredentials.h>
#include <aws/core/client/AsyncCallerContext.h>
#include <aws/core/client/ClientConfiguration.h>
#include <aws/core/utils/Outcome.h>
#include <aws/s3/S3Errors.h>
#include <aws/s3/model/CompleteMultipartUploadResult.h>
#include <aws/s3/model/CopyObjectResult.h>
#include <aws/s3/model/CreateBucketResult.h>
#include <aws/s3/model/CreateMultipartUploadResult.h>
#include <aws/s3/model/DeleteObjectResult.h>
#include <aws/s3/model/DeleteObjectsResult.h>
#include <aws/s3/model/GetBucketLocationResult.h>
#include <aws/s3/model/GetObjectResult.h>
#include <aws/s3/model/GetObjectTaggingResult.h>
#include <aws/s3/model/HeadObjectResult.h>
#include <aws/s3/model/ListBucketsResult.h>
#include <aws/s3/model/ListMultipartUploadsResult.h>
#include <aws/s3/model/ListObjectsV2Result.h>
#include <aws/s3/model/PutObjectResult.h>
#include <aws/s3/model/PutObjectTaggingResult.h>
#include <aws/s3/model/UploadPartCopyResult.h>
#include <aws/s3/model/UploadPartResult.h>

#include <functional>
#include <memory>

// Last, for the members below.
#include <aws/core/platform/UndoWindowsMacros.h>

namespace Aws::S3 {

class S3Client;

namespace Model {

class AbortMultipartUploadRequest;
class CompleteMultipartUploadRequest;
class CopyObjectRequest;
class CreateBucketRequest;
class CreateMultipartUploadRequest;
class DeleteBucketRequest;
class DeleteObjectRequest;
class DeleteObjectsRequest;
class GetBucketLocationRequest;
class GetObjectRequest;
class GetObjectTaggingRequest;
class HeadBucketRequest;
class HeadObjectRequest;
class ListMultipartUploadsRequest;
class ListObjectsV2Request;
class PutBucketLifecycleConfigurationRequest;
class PutObjectRequest;
class PutObjectTaggingRequest;
class UploadPartRequest;
class UploadPartCopyRequest;

using AbortMultipartUploadOutcome = Aws::Utils::Outcome<Aws::NoResult, S3Error>;
using CompleteMultipartUploadOutcome = Aws::Utils::Outcome<CompleteMultipartUploadResult, S3Error>;
using CopyObjectOutcome = Aws::Utils::Outcome<CopyObjectResult, S3Error>;
using CreateBucketOutcome = Aws::Utils::Outcome<CreateBucketResult, S3Error>;
using CreateMultipartUploadOutcome = Aws::Utils::Outcome<CreateMultipartUploadResult, S3Error>;
using DeleteBucketOutcome = Aws::Utils::Outcome<Aws::NoResult, S3Error>;
using DeleteObjectOutcome = Aws::Utils::Outcome<DeleteObjectResult, S3Error>;
using DeleteObjectsOutcome = Aws::Utils::Outcome<DeleteObjectsResult, S3Error>;
using GetBucketLocationOutcome = Aws::Utils::Outcome<GetBucketLocationResult, S3Error>;
using GetObjectOutcome = Aws::Utils::Outcome<GetObjectResult, S3Error>;
using GetObjectTaggingOutcome = Aws::Utils::Outcome<GetObjectTaggingResult, S3Error>;
using HeadBucketOutcome = Aws::Utils::Outcome<Aws::NoResult, S3Error>;
using HeadObjectOutcome = Aws::Utils::Outcome<HeadObjectResult, S3Error>;
using ListBucketsOutcome = Aws::Utils::Outcome<ListBucketsResult, S3Error>;
using ListMultipartUploadsOutcome = Aws::Utils::Outcome<ListMultipartUploadsResult, S3Error>;
using ListObjectsV2Outcome = Aws::Utils::Outcome<ListObjectsV2Result, S3Error>;
using PutBucketLifecycleConfigurationOutcome = Aws::Utils::Outcome<Aws::NoResult, S3Error>;
using PutObjectOutcome = Aws::Utils::Outcome<PutObjectResult, S3Error>;
using PutObjectTaggingOutcome = Aws::Utils::Outcome<PutObjectTaggingResult, S3Error>;
using UploadPartOutcome = Aws::Utils::Outcome<UploadPartResult, S3Error>;
using UploadPartCopyOutcome = Aws::Utils::Outcome<UploadPartCopyResult, S3Error>;

}  // namespace Model

/// Receives the outcome of an asynchronous call, on a thread of the configured executor. The client
/// may be gone by then where others hold the executor too.
template <typename Request, typename Outcome>
using ResponseReceivedHandler =
    std::function<void(const S3Client*, const Request&, const Outcome&,
                       const std::shared_ptr<const Aws::Client::AsyncCallerContext>&)>;

using AbortMultipartUploadResponseReceivedHandler =
    ResponseReceivedHandler<Model::AbortMultipartUploadRequest, Model::AbortMultipartUploadOutcome>;
using CompleteMultipartUploadResponseReceivedHandler =
    ResponseReceivedHandler<Model::CompleteMultipartUploadRequest,
                            Model::CompleteMultipartUploadOutcome>;
using CopyObjectResponseReceivedHandler =
    ResponseReceivedHandler<Model::CopyObjectRequest, Model::CopyObjectOutcome>;
using CreateBucketResponseReceivedHandler =
    ResponseReceivedHandler<Model::CreateBucketRequest, Model::CreateBucketOutcome>;
using CreateMultipartUploadResponseReceivedHandler =
    ResponseReceivedHandler<Model::CreateMultipartUploadRequest,
                            Model::CreateMultipartUploadOutcome>;
using DeleteBucketResponseReceivedHandler =
    ResponseReceivedHandler<Model::DeleteBucketRequest, Model::DeleteBucketOutcome>;
using DeleteObjectResponseReceivedHandler =
    ResponseReceivedHandler<Model::DeleteObjectRequest, Model::DeleteObjectOutcome>;
using DeleteObjectsResponseReceivedHandler =
    ResponseReceivedHandler<Model::DeleteObjectsRequest, Model::DeleteObjectsOutcome>;
using GetBucketLocationResponseReceivedHandler =
    ResponseReceivedHandler<Model::GetBucketLocationRequest, Model::GetBucketLocationOutcome>;
using GetObjectResponseReceivedHandler =
    ResponseReceivedHandler<Model::GetObjectRequest, Model::GetObjectOutcome>;
using GetObjectTaggingResponseReceivedHandler =
    ResponseReceivedHandler<Model::GetObjectTaggingRequest, Model::GetObjectTaggingOutcome>;
using HeadBucketResponseReceivedHandler =
    ResponseReceivedHandler<Model::HeadBucketRequest, Model::HeadBucketOutcome>;
using HeadObjectResponseReceivedHandler =
    ResponseReceivedHandler<Model::HeadObjectRequest, Model::HeadObjectOutcome>;
using ListMultipartUploadsResponseReceivedHandler =
    ResponseReceivedHandler<Model::ListMultipartUploadsRequest, Model::ListMultipartUploadsOutcome>;
using ListObjectsV2ResponseReceivedHandler =
    ResponseReceivedHandler<Model::ListObjectsV2Request, Model::ListObjectsV2Outcome>;
using PutBucketLifecycleConfigurationResponseReceivedHandler =
    ResponseReceivedHandler<Model::PutBucketLifecycleConfigurationRequest,
                            Model::PutBucketLifecycleConfigurationOutcome>;
using PutObjectResponseReceivedHandler =
    ResponseReceivedHandler<Model::PutObjectRequest, Model::PutObjectOutcome>;
using PutObjectTaggingResponseReceivedHandler =
    ResponseReceivedHandler<Model::PutObjectTaggingRequest, Model::PutObjectTaggingOutcome>;
using UploadPartResponseReceivedHandler =
    ResponseReceivedHandler<Model::UploadPartRequest, Model::UploadPartOutcome>;
using UploadPartCopyResponseReceivedHandler =
    ResponseReceivedHandler<Model::UploadPartCopyRequest, Model::UploadPartCopyOutcome>;

/// A client of one account and one service address. Every call may run on any number of threads at
/// once; failures are outcomes, never exceptions (but std::bad_alloc and those of response stream
/// factories).
///
/// A call takes at most the retry strategy's attempts, each within the configuration's time limits,
/// plus the waits between them.
///
/// XxxAsync copies the request, hands the call to the configuration's executor and returns. If the
/// executor refuses, the handler is called at once on the calling thread, with
/// S3Errors::INTERNAL_FAILURE, so that every call is answered exactly once. Exceptions on the way
/// to the outcome (memory, the response stream factory) become that error too; what a handler
/// throws goes to the executor.
class S3Client {
public:
    /// `useVirtualAddressing` puts the bucket into the host name, where its name allows it;
    /// otherwise it is the first part of the path. Empty credentials send requests unsigned.
    explicit S3Client(const Aws::Auth::AWSCredentials& credentials,
                      const Aws::Client::ClientConfiguration& clientConfiguration =
                          Aws::Client::ClientConfiguration(),
                      Aws::Client::AWSAuthV4Signer::PayloadSigningPolicy signPayloads =
                          Aws::Client::AWSAuthV4Signer::PayloadSigningPolicy::Never,
                      bool useVirtualAddressing = true);
    /// Lets go of the executor first: one that nobody else holds ends its queued calls and joins,
    /// while everything they need is still alive. No other thread may be inside a method.
    virtual ~S3Client();
    S3Client(const S3Client&) = delete;
    S3Client& operator=(const S3Client&) = delete;

    virtual Model::AbortMultipartUploadOutcome AbortMultipartUpload(
        const Model::AbortMultipartUploadRequest& request) const;
    virtual void AbortMultipartUploadAsync(
        const Model::AbortMultipartUploadRequest& request,
        const AbortMultipartUploadResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::CompleteMultipartUploadOutcome CompleteMultipartUpload(
        const Model::CompleteMultipartUploadRequest& request) const;
    virtual void CompleteMultipartUploadAsync(
        const Model::CompleteMultipartUploadRequest& request,
        const CompleteMultipartUploadResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::CopyObjectOutcome CopyObject(const Model::CopyObjectRequest& request) const;
    virtual void CopyObjectAsync(
        const Model::CopyObjectRequest& request, const CopyObjectResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::CreateBucketOutcome CreateBucket(
        const Model::CreateBucketRequest& request) const;
    virtual void CreateBucketAsync(
        const Model::CreateBucketRequest& request,
        const CreateBucketResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::CreateMultipartUploadOutcome CreateMultipartUpload(
        const Model::CreateMultipartUploadRequest& request) const;
    virtual void CreateMultipartUploadAsync(
        const Model::CreateMultipartUploadRequest& request,
        const CreateMultipartUploadResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::DeleteBucketOutcome DeleteBucket(
        const Model::DeleteBucketRequest& request) const;
    virtual void DeleteBucketAsync(
        const Model::DeleteBucketRequest& request,
        const DeleteBucketResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::DeleteObjectOutcome DeleteObject(
        const Model::DeleteObjectRequest& request) const;
    virtual void DeleteObjectAsync(
        const Model::DeleteObjectRequest& request,
        const DeleteObjectResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::DeleteObjectsOutcome DeleteObjects(
        const Model::DeleteObjectsRequest& request) const;
    virtual void DeleteObjectsAsync(
        const Model::DeleteObjectsRequest& request,
        const DeleteObjectsResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::GetBucketLocationOutcome GetBucketLocation(
        const Model::GetBucketLocationRequest& request) const;
    virtual void GetBucketLocationAsync(
        const Model::GetBucketLocationRequest& request,
        const GetBucketLocationResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::GetObjectOutcome GetObject(const Model::GetObjectRequest& request) const;
    virtual void GetObjectAsync(
        const Model::GetObjectRequest& request, const GetObjectResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::GetObjectTaggingOutcome GetObjectTagging(
        const Model::GetObjectTaggingRequest& request) const;
    virtual void GetObjectTaggingAsync(
        const Model::GetObjectTaggingRequest& request,
        const GetObjectTaggingResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::HeadBucketOutcome HeadBucket(const Model::HeadBucketRequest& request) const;
    virtual void HeadBucketAsync(
        const Model::HeadBucketRequest& request, const HeadBucketResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::HeadObjectOutcome HeadObject(const Model::HeadObjectRequest& request) const;
    virtual void HeadObjectAsync(
        const Model::HeadObjectRequest& request, const HeadObjectResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::ListBucketsOutcome ListBuckets() const;

    virtual Model::ListMultipartUploadsOutcome ListMultipartUploads(
        const Model::ListMultipartUploadsRequest& request) const;
    virtual void ListMultipartUploadsAsync(
        const Model::ListMultipartUploadsRequest& request,
        const ListMultipartUploadsResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::ListObjectsV2Outcome ListObjectsV2(
        const Model::ListObjectsV2Request& request) const;
    virtual void ListObjectsV2Async(
        const Model::ListObjectsV2Request& request,
        const ListObjectsV2ResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::PutBucketLifecycleConfigurationOutcome PutBucketLifecycleConfiguration(
        const Model::PutBucketLifecycleConfigurationRequest& request) const;
    virtual void PutBucketLifecycleConfigurationAsync(
        const Model::PutBucketLifecycleConfigurationRequest& request,
        const PutBucketLifecycleConfigurationResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::PutObjectOutcome PutObject(const Model::PutObjectRequest& request) const;
    virtual void PutObjectAsync(
        const Model::PutObjectRequest& request, const PutObjectResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::PutObjectTaggingOutcome PutObjectTagging(
        const Model::PutObjectTaggingRequest& request) const;
    virtual void PutObjectTaggingAsync(
        const Model::PutObjectTaggingRequest& request,
        const PutObjectTaggingResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::UploadPartOutcome UploadPart(const Model::UploadPartRequest& request) const;
    virtual void UploadPartAsync(
        const Model::UploadPartRequest& request, const UploadPartResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::UploadPartCopyOutcome UploadPartCopy(
        const Model::UploadPartCopyRequest& request) const;
    virtual void UploadPartCopyAsync(
        const Model::UploadPartCopyRequest& request,
        const UploadPartCopyResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

private:
    class Impl;

    template <typename Outcome, typename Request>
    void Submit(const Request& request, const ResponseReceivedHandler<Request, Outcome>& handler,
                const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context) const;

    std::shared_ptr<Aws::Utils::Threading::Executor> m_executor;
    std::shared_ptr<const Impl> m_impl;
};

}  // namespace Aws::S3
