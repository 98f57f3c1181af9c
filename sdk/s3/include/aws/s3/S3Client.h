#pragma once

#include <aws/core/NoResult.h>
#include <aws/core/auth/AWSAuthSigner.h>
#include <aws/core/auth/AWSCredentials.h>
#include <aws/core/client/AsyncCallerContext.h>
#include <aws/core/client/ClientConfiguration.h>
#include <aws/core/utils/Outcome.h>
#include <aws/s3/S3Errors.h>
#include <aws/s3/model/CreateBucketResult.h>
#include <aws/s3/model/DeleteObjectResult.h>
#include <aws/s3/model/GetObjectResult.h>
#include <aws/s3/model/PutObjectResult.h>

#include <functional>
#include <memory>

// Last, for the members below.
#include <aws/core/platform/UndoWindowsMacros.h>

namespace Aws::S3 {

class S3Client;

namespace Model {

class CreateBucketRequest;
class DeleteObjectRequest;
class GetObjectRequest;
class HeadBucketRequest;
class PutObjectRequest;

using CreateBucketOutcome = Aws::Utils::Outcome<CreateBucketResult, S3Error>;
using DeleteObjectOutcome = Aws::Utils::Outcome<DeleteObjectResult, S3Error>;
using GetObjectOutcome = Aws::Utils::Outcome<GetObjectResult, S3Error>;
using HeadBucketOutcome = Aws::Utils::Outcome<Aws::NoResult, S3Error>;
using PutObjectOutcome = Aws::Utils::Outcome<PutObjectResult, S3Error>;

}  // namespace Model

/// Receives the outcome of an asynchronous call, on a thread of the configured executor. The client
/// may be gone by then where others hold the executor too.
template <typename Request, typename Outcome>
using ResponseReceivedHandler =
    std::function<void(const S3Client*, const Request&, const Outcome&,
                       const std::shared_ptr<const Aws::Client::AsyncCallerContext>&)>;

using CreateBucketResponseReceivedHandler =
    ResponseReceivedHandler<Model::CreateBucketRequest, Model::CreateBucketOutcome>;
using DeleteObjectResponseReceivedHandler =
    ResponseReceivedHandler<Model::DeleteObjectRequest, Model::DeleteObjectOutcome>;
using GetObjectResponseReceivedHandler =
    ResponseReceivedHandler<Model::GetObjectRequest, Model::GetObjectOutcome>;
using HeadBucketResponseReceivedHandler =
    ResponseReceivedHandler<Model::HeadBucketRequest, Model::HeadBucketOutcome>;
using PutObjectResponseReceivedHandler =
    ResponseReceivedHandler<Model::PutObjectRequest, Model::PutObjectOutcome>;

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

    virtual Model::CreateBucketOutcome CreateBucket(
        const Model::CreateBucketRequest& request) const;
    virtual void CreateBucketAsync(
        const Model::CreateBucketRequest& request,
        const CreateBucketResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::DeleteObjectOutcome DeleteObject(
        const Model::DeleteObjectRequest& request) const;
    virtual void DeleteObjectAsync(
        const Model::DeleteObjectRequest& request,
        const DeleteObjectResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::GetObjectOutcome GetObject(const Model::GetObjectRequest& request) const;
    virtual void GetObjectAsync(
        const Model::GetObjectRequest& request, const GetObjectResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::HeadBucketOutcome HeadBucket(const Model::HeadBucketRequest& request) const;
    virtual void HeadBucketAsync(
        const Model::HeadBucketRequest& request, const HeadBucketResponseReceivedHandler& handler,
        const std::shared_ptr<const Aws::Client::AsyncCallerContext>& context = nullptr) const;

    virtual Model::PutObjectOutcome PutObject(const Model::PutObjectRequest& request) const;
    virtual void PutObjectAsync(
        const Model::PutObjectRequest& request, const PutObjectResponseReceivedHandler& handler,
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
