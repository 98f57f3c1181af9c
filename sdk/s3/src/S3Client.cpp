#include <aws/core/utils/threading/Executor.h>
#include <aws/s3/S3Client.h>
#include <aws/s3/model/AbortMultipartUploadRequest.h>
#include <aws/s3/model/CompleteMultipartUploadRequest.h>
#include <aws/s3/model/CopyObjectRequest.h>
#include <aws/s3/model/CreateBucketRequest.h>
#include <aws/s3/model/CreateMultipartUploadRequest.h>
#include <aws/s3/model/DeleteBucketRequest.h>
#include <aws/s3/model/DeleteObjectRequest.h>
#include <aws/s3/model/DeleteObjectsRequest.h>
#include <aws/s3/model/GetBucketLocationRequest.h>
#include <aws/s3/model/GetObjectRequest.h>
#include <aws/s3/model/GetObjectTaggingRequest.h>
#include <aws/s3/model/HeadBucketRequest.h>
#include <aws/s3/model/HeadObjectRequest.h>
#include <aws/s3/model/ListBucketsRequest.h>
#include <aws/s3/model/ListMultipartUploadsRequest.h>
#include <aws/s3/model/ListObjectsV2Request.h>
#include <aws/s3/model/PutBucketLifecycleConfigurationRequest.h>
#include <aws/s3/model/PutObjectRequest.h>
#include <aws/s3/model/PutObjectTaggingRequest.h>
#include <aws/s3/model/UploadPartCopyRequest.h>
#include <aws/s3/model/UploadPartRequest.h>

#include <exception>
#include <type_traits>
#include <utility>

#include "sdk/core/client/Pipeline.h"
#include "sdk/core/client/Text.h"
#include "sdk/s3/src/Addressing.h"
#include "sdk/s3/src/ServiceCodes.h"

namespace Aws::S3 {
namespace {

constexpr char kSigningName[] = "s3";
constexpr char kUserAgent[] = "MIRQOS/" MIRQOS_VERSION;

S3Error MissingField(const char* field) {
    return S3Error(S3Errors::MISSING_PARAMETER, "MISSING_PARAMETER",
                   Aws::String("Missing required field [") + field + "]", false);
}

}  // namespace

/// What calls need. Tasks on the executor share it and it never holds the executor: the last task
/// would else destroy the pool whose thread it runs on.
class S3Client::Impl {
public:
    Impl(const Auth::AWSCredentials& credentials, const Client::ClientConfiguration& configuration,
         Client::AWSAuthV4Signer::PayloadSigningPolicy signPayloads, bool useVirtualAddressing)
        : m_addressing(Mirqos::ToStd(configuration.endpointOverride),
                       Mirqos::ToStd(configuration.region),
                       configuration.scheme == Http::Scheme::HTTPS, useVirtualAddressing),
          m_pipeline(credentials, configuration, signPayloads,
                     {kSigningName, kUserAgent, Mirqos::S3::FindServiceError}) {}

    template <typename Outcome>
    Outcome Call(const AmazonWebServiceRequest& request) const {
        const Mirqos::Client::WireRequest wire = request.Describe();
        if (wire.missingField != nullptr) {
            return Outcome(MissingField(wire.missingField));
        }
        if (!m_addressing.Problem().empty()) {
            return Outcome(S3Error(S3Errors::INVALID_PARAMETER_VALUE, "",
                                   Mirqos::ToAws(m_addressing.Problem()), false));
        }
        Mirqos::Client::Pipeline::Outcome answer =
            m_pipeline.Run(request, wire, m_addressing.Locate(wire.bucket, wire.key));
        if (!answer.IsSuccess()) {
            return Outcome(S3Error(answer.GetError()));
        }
        using Result = std::decay_t<decltype(std::declval<Outcome>().GetResult())>;
        if constexpr (std::is_same_v<Result, NoResult>) {
            return Outcome(NoResult());
        } else {
            return Outcome(Result(answer.GetResultWithOwnership()));
        }
    }

    /// For calls whose caller is out of reach of an exception.
    template <typename Outcome>
    Outcome CallWithoutThrowing(const AmazonWebServiceRequest& request) const {
        try {
            return Call<Outcome>(request);
        } catch (const std::exception& failure) {
            return Outcome(S3Error(S3Errors::INTERNAL_FAILURE, "", failure.what(), false));
        }
    }

private:
    const Mirqos::S3::Addressing m_addressing;
    const Mirqos::Client::Pipeline m_pipeline;
};

S3Client::S3Client(const Auth::AWSCredentials& credentials,
                   const Client::ClientConfiguration& clientConfiguration,
                   Client::AWSAuthV4Signer::PayloadSigningPolicy signPayloads,
                   bool useVirtualAddressing)
    : m_executor(clientConfiguration.executor),
      m_impl(std::make_shared<const Impl>(credentials, clientConfiguration, signPayloads,
                                          useVirtualAddressing)) {
}

S3Client::~S3Client() {
    m_executor.reset();
}

template <typename Outcome, typename Request>
void S3Client::Submit(const Request& request,
                      const ResponseReceivedHandler<Request, Outcome>& handler,
                      const std::shared_ptr<const Client::AsyncCallerContext>& context) const {
    // Executors copy tasks; the request is copied once.
    const auto owned = std::make_shared<const Request>(request);
    const auto task = [impl = m_impl, client = this, owned, handler, context] {
        const Outcome outcome = impl->CallWithoutThrowing<Outcome>(*owned);
        handler(client, *owned, outcome, context);
    };
    if (m_executor == nullptr || !m_executor->Submit(task)) {
        const Outcome outcome(S3Error(S3Errors::INTERNAL_FAILURE, "",
                                      "The executor did not take the request.", false));
        handler(this, request, outcome, context);
    }
}

// Each operation: what it is called with, and the outcome that says what becomes of the answer.

Model::AbortMultipartUploadOutcome S3Client::AbortMultipartUpload(
    const Model::AbortMultipartUploadRequest& request) const {
    return m_impl->Call<Model::AbortMultipartUploadOutcome>(request);
}

void S3Client::AbortMultipartUploadAsync(
    const Model::AbortMultipartUploadRequest& request,
    const AbortMultipartUploadResponseReceivedHandler& handler,
    const std::shared_ptr<const Client::AsyncCallerContext>& context) const {
    Submit<Model::AbortMultipartUploadOutcome>(request, handler, context);
}

Model::CompleteMultipartUploadOutcome S3Client::CompleteMultipartUpload(
    const Model::CompleteMultipartUploadRequest& request) const {
    return m_impl->Call<Model::CompleteMultipartUploadOutcome>(request);
}

void S3Client::CompleteMultipartUploadAsync(
    const Model::CompleteMultipartUploadRequest& request,
    const CompleteMultipartUploadResponseReceivedHandler& handler,
    const std::shared_ptr<const Client::AsyncCallerContext>& context) const {
    Submit<Model::CompleteMultipartUploadOutcome>(request, handler, context);
}

Model::CopyObjectOutcome S3Client::CopyObject(const Model::CopyObjectRequest& request) const {
    return m_impl->Call<Model::CopyObjectOutcome>(request);
}

void S3Client::CopyObjectAsync(
    const Model::CopyObjectRequest& request, const CopyObjectResponseReceivedHandler& handler,
    const std::shared_ptr<const Client::AsyncCallerContext>& context) const {
    Submit<Model::CopyObjectOutcome>(request, handler, context);
}

Model::CreateBucketOutcome S3Client::CreateBucket(const Model::CreateBucketRequest& request) const {
    return m_impl->Call<Model::CreateBucketOutcome>(request);
}

void S3Client::CreateBucketAsync(
    const Model::CreateBucketRequest& request, const CreateBucketResponseReceivedHandler& handler,
    const std::shared_ptr<const Client::AsyncCallerContext>& context) const {
    Submit<Model::CreateBucketOutcome>(request, handler, context);
}

Model::CreateMultipartUploadOutcome S3Client::CreateMultipartUpload(
    const Model::CreateMultipartUploadRequest& request) const {
    return m_impl->Call<Model::CreateMultipartUploadOutcome>(request);
}

void S3Client::CreateMultipartUploadAsync(
    const Model::CreateMultipartUploadRequest& request,
    const CreateMultipartUploadResponseReceivedHandler& handler,
    const std::shared_ptr<const Client::AsyncCallerContext>& context) const {
    Submit<Model::CreateMultipartUploadOutcome>(request, handler, context);
}

Model::DeleteBucketOutcome S3Client::DeleteBucket(const Model::DeleteBucketRequest& request) const {
    return m_impl->Call<Model::DeleteBucketOutcome>(request);
}

void S3Client::DeleteBucketAsync(
    const Model::DeleteBucketRequest& request, const DeleteBucketResponseReceivedHandler& handler,
    const std::shared_ptr<const Client::AsyncCallerContext>& context) const {
    Submit<Model::DeleteBucketOutcome>(request, handler, context);
}

Model::DeleteObjectOutcome S3Client::DeleteObject(const Model::DeleteObjectRequest& request) const {
    return m_impl->Call<Model::DeleteObjectOutcome>(request);
}

void S3Client::DeleteObjectAsync(
    const Model::DeleteObjectRequest& request, const DeleteObjectResponseReceivedHandler& handler,
    const std::shared_ptr<const Client::AsyncCallerContext>& context) const {
    Submit<Model::DeleteObjectOutcome>(request, handler, context);
}

Model::DeleteObjectsOutcome S3Client::DeleteObjects(
    const Model::DeleteObjectsRequest& request) const {
    return m_impl->Call<Model::DeleteObjectsOutcome>(request);
}

void S3Client::DeleteObjectsAsync(
    const Model::DeleteObjectsRequest& request, const DeleteObjectsResponseReceivedHandler& handler,
    const std::shared_ptr<const Client::AsyncCallerContext>& context) const {
    Submit<Model::DeleteObjectsOutcome>(request, handler, context);
}

Model::GetBucketLocationOutcome S3Client::GetBucketLocation(
    const Model::GetBucketLocationRequest& request) const {
    return m_impl->Call<Model::GetBucketLocationOutcome>(request);
}

void S3Client::GetBucketLocationAsync(
    const Model::GetBucketLocationRequest& request,
    const GetBucketLocationResponseReceivedHandler& handler,
    const std::shared_ptr<const Client::AsyncCallerContext>& context) const {
    Submit<Model::GetBucketLocationOutcome>(request, handler, context);
}

Model::GetObjectOutcome S3Client::GetObject(const Model::GetObjectRequest& request) const {
    return m_impl->Call<Model::GetObjectOutcome>(request);
}

void S3Client::GetObjectAsync(
    const Model::GetObjectRequest& request, const GetObjectResponseReceivedHandler& handler,
    const std::shared_ptr<const Client::AsyncCallerContext>& context) const {
    Submit<Model::GetObjectOutcome>(request, handler, context);
}

Model::GetObjectTaggingOutcome S3Client::GetObjectTagging(
    const Model::GetObjectTaggingRequest& request) const {
    return m_impl->Call<Model::GetObjectTaggingOutcome>(request);
}

void S3Client::GetObjectTaggingAsync(
    const Model::GetObjectTaggingRequest& request,
    const GetObjectTaggingResponseReceivedHandler& handler,
    const std::shared_ptr<const Client::AsyncCallerContext>& context) const {
    Submit<Model::GetObjectTaggingOutcome>(request, handler, context);
}

Model::HeadBucketOutcome S3Client::HeadBucket(const Model::HeadBucketRequest& request) const {
    return m_impl->Call<Model::HeadBucketOutcome>(request);
}

void S3Client::HeadBucketAsync(
    const Model::HeadBucketRequest& request, const HeadBucketResponseReceivedHandler& handler,
    const std::shared_ptr<const Client::AsyncCallerContext>& context) const {
    Submit<Model::HeadBucketOutcome>(request, handler, context);
}

Model::HeadObjectOutcome S3Client::HeadObject(const Model::HeadObjectRequest& request) const {
    return m_impl->Call<Model::HeadObjectOutcome>(request);
}

void S3Client::HeadObjectAsync(
    const Model::HeadObjectRequest& request, const HeadObjectResponseReceivedHandler& handler,
    const std::shared_ptr<const Client::AsyncCallerContext>& context) const {
    Submit<Model::HeadObjectOutcome>(request, handler, context);
}

Model::ListBucketsOutcome S3Client::ListBuckets() const {
    return m_impl->Call<Model::ListBucketsOutcome>(Model::ListBucketsRequest());
}

Model::ListMultipartUploadsOutcome S3Client::ListMultipartUploads(
    const Model::ListMultipartUploadsRequest& request) const {
    return m_impl->Call<Model::ListMultipartUploadsOutcome>(request);
}

void S3Client::ListMultipartUploadsAsync(
    const Model::ListMultipartUploadsRequest& request,
    const ListMultipartUploadsResponseReceivedHandler& handler,
    const std::shared_ptr<const Client::AsyncCallerContext>& context) const {
    Submit<Model::ListMultipartUploadsOutcome>(request, handler, context);
}

Model::ListObjectsV2Outcome S3Client::ListObjectsV2(
    const Model::ListObjectsV2Request& request) const {
    return m_impl->Call<Model::ListObjectsV2Outcome>(request);
}

void S3Client::ListObjectsV2Async(
    const Model::ListObjectsV2Request& request, const ListObjectsV2ResponseReceivedHandler& handler,
    const std::shared_ptr<const Client::AsyncCallerContext>& context) const {
    Submit<Model::ListObjectsV2Outcome>(request, handler, context);
}

Model::PutBucketLifecycleConfigurationOutcome S3Client::PutBucketLifecycleConfiguration(
    const Model::PutBucketLifecycleConfigurationRequest& request) const {
    return m_impl->Call<Model::PutBucketLifecycleConfigurationOutcome>(request);
}

void S3Client::PutBucketLifecycleConfigurationAsync(
    const Model::PutBucketLifecycleConfigurationRequest& request,
    const PutBucketLifecycleConfigurationResponseReceivedHandler& handler,
    const std::shared_ptr<const Client::AsyncCallerContext>& context) const {
    Submit<Model::PutBucketLifecycleConfigurationOutcome>(request, handler, context);
}

Model::PutObjectOutcome S3Client::PutObject(const Model::PutObjectRequest& request) const {
    return m_impl->Call<Model::PutObjectOutcome>(request);
}

void S3Client::PutObjectAsync(
    const Model::PutObjectRequest& request, const PutObjectResponseReceivedHandler& handler,
    const std::shared_ptr<const Client::AsyncCallerContext>& context) const {
    Submit<Model::PutObjectOutcome>(request, handler, context);
}

Model::PutObjectTaggingOutcome S3Client::PutObjectTagging(
    const Model::PutObjectTaggingRequest& request) const {
    return m_impl->Call<Model::PutObjectTaggingOutcome>(request);
}

void S3Client::PutObjectTaggingAsync(
    const Model::PutObjectTaggingRequest& request,
    const PutObjectTaggingResponseReceivedHandler& handler,
    const std::shared_ptr<const Client::AsyncCallerContext>& context) const {
    Submit<Model::PutObjectTaggingOutcome>(request, handler, context);
}

Model::UploadPartOutcome S3Client::UploadPart(const Model::UploadPartRequest& request) const {
    return m_impl->Call<Model::UploadPartOutcome>(request);
}

void S3Client::UploadPartAsync(
    const Model::UploadPartRequest& request, const UploadPartResponseReceivedHandler& handler,
    const std::shared_ptr<const Client::AsyncCallerContext>& context) const {
    Submit<Model::UploadPartOutcome>(request, handler, context);
}

Model::UploadPartCopyOutcome S3Client::UploadPartCopy(
    const Model::UploadPartCopyRequest& request) const {
    return m_impl->Call<Model::UploadPartCopyOutcome>(request);
}

void S3Client::UploadPartCopyAsync(
    const Model::UploadPartCopyRequest& request,
    const UploadPartCopyResponseReceivedHandler& handler,
    const std::shared_ptr<const Client::AsyncCallerContext>& context) const {
    Submit<Model::UploadPartCopyOutcome>(request, handler, context);
}

}  // namespace Aws::S3
