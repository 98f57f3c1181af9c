#include <aws/core/utils/threading/Executor.h>
#include <aws/s3/model/AbortMultipartUploadRequest.h>
#include <aws/s3/model/CompleteMultipartUploadRequest.h>
#include <aws/s3/model/CopyObjectRequest.h>
#include <aws/s3/model/CreateBucketRequest.h>
#include <aws/s3/model/CreateMultipartUploadRequest.h>
#include <aws/s3/model/DeleteBucketRequest.h>
#include <aws/s3/model/DeleteObjectRequest.h>
#include <aws/s3/model/DeleteObjectsRequest.h>
#include <aws/s3/model/GetBucketLocationRequest.h>
#include <aws/s3/model/GetObjectTaggingRequest.h>
#include <aws/s3/model/HeadBucketRequest.h>
#include <aws/s3/model/HeadObjectRequest.h>
#include <aws/s3/model/ListMultipartUploadsRequest.h>
#include <aws/s3/model/ListObjectsV2Request.h>
#include <aws/s3/model/PutBucketLifecycleConfigurationRequest.h>
#include <aws/s3/model/PutObjectTaggingRequest.h>
#include <aws/s3/model/UploadPartCopyRequest.h>
#include <gmock/gmock.h>

#include <atomic>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/S3Calls.h"
#include "tests/support/ScriptedTransport.h"

namespace {

using Aws::Client::AsyncCallerContext;
using Aws::Client::ClientConfiguration;
using Aws::S3::S3Client;
using Aws::S3::S3Errors;
using Aws::S3::Model::GetObjectOutcome;
using Aws::S3::Model::GetObjectRequest;
using Aws::S3::Model::PutObjectOutcome;
using Aws::S3::Model::PutObjectRequest;
using Aws::Utils::Threading::Executor;
using Mirqos::ToStd;
using testing::ElementsAre;
using testing::SizeIs;
using namespace Mirqos::Test;

using ContextPtr = std::shared_ptr<const AsyncCallerContext>;

/// Keeps its work until told to run it; what is left runs on a thread that the destructor joins.
class QueueExecutor : public Executor {
public:
    ~QueueExecutor() override {
        std::thread worker([this] { RunAll(); });
        worker.join();
    }
    void RunAll() {
        while (!m_work.empty()) {
            const std::function<void()> work = std::move(m_work.front());
            m_work.pop_front();
            work();
        }
    }
    void Refuse() { m_refuses = true; }

protected:
    bool SubmitToThread(std::function<void()>&& work) override {
        if (m_refuses) {
            return false;
        }
        m_work.push_back(std::move(work));
        return true;
    }

private:
    std::deque<std::function<void()>> m_work;
    bool m_refuses = false;
};

ClientConfiguration With(std::shared_ptr<Executor> executor) {
    ClientConfiguration configuration = Configuration(Aws::Http::Scheme::HTTP);
    configuration.executor = std::move(executor);
    return configuration;
}

TEST(S3Async, HandlerGetsClientRequestOutcomeAndContext) {
    ScriptedNetwork network({Reply(200, "some bytes")});
    const S3Client client(kCredentials, Configuration());
    const auto context = std::make_shared<const AsyncCallerContext>("mine");
    std::promise<std::thread::id> handled;

    client.GetObjectAsync(
        Get().WithRange("bytes=0-9"),
        [&](const S3Client* caller, const GetObjectRequest& request,
            const GetObjectOutcome& outcome, const ContextPtr& given) {
            EXPECT_EQ(&client, caller);
            EXPECT_EQ("bytes=0-9", ToStd(request.GetRange()));
            EXPECT_TRUE(outcome.IsSuccess());
            EXPECT_EQ("some bytes", TextOf(outcome.GetResult().GetBody()));
            EXPECT_EQ(context, given);
            handled.set_value(std::this_thread::get_id());
        },
        context);

    EXPECT_NE(std::this_thread::get_id(), handled.get_future().get());
}

TEST(S3Async, EveryOperationAnswersOnceAmongManyThreads) {
    ScriptedNetwork network({Reply(500), Reply(200)});
    constexpr int kRounds = 25;
    std::atomic<int> successes{0};
    const auto count = [&successes](const S3Client*, const auto&, const auto& outcome,
                                    const ContextPtr&) {
        successes += outcome.IsSuccess() ? 1 : 0;
    };
    {
        // Its destructor waits for all of them.
        const S3Client client(kCredentials,
                              With(std::make_shared<Aws::Utils::Threading::DefaultExecutor>()));
        for (int i = 0; i < kRounds; ++i) {
            client.PutObjectAsync(Put(Body("hello")), count);
            client.GetObjectAsync(Get(), count);
            client.CreateBucketAsync(Aws::S3::Model::CreateBucketRequest().WithBucket("bucket"),
                                     count);
            client.HeadBucketAsync(Aws::S3::Model::HeadBucketRequest().WithBucket("bucket"), count);
            Aws::S3::Model::DeleteObjectRequest remove;
            client.DeleteObjectAsync(remove.WithBucket("bucket").WithKey("key"), count);
        }
    }
    EXPECT_EQ(5 * kRounds, successes.load());
    EXPECT_THAT(network.Requests(), SizeIs(5 * kRounds + 1));
}

template <typename Request>
Request OfBucket() {
    Request request;
    request.SetBucket("bucket");
    return request;
}

template <typename Request>
Request OfKey() {
    auto request = OfBucket<Request>();
    request.SetKey("key");
    return request;
}

template <typename Request>
Request OfUpload() {
    auto request = OfKey<Request>();
    request.SetUploadId("id");
    return request;
}

TEST(S3Async, EveryOperationHasAFormThatIsAnsweredLater) {
    namespace Model = Aws::S3::Model;
    ScriptedNetwork network({ErrorReply(403, "AccessDenied", "no")});
    const auto executor = std::make_shared<QueueExecutor>();
    const S3Client client(kCredentials, With(executor));
    int refused = 0;
    const auto handler = [&](const S3Client* caller, const auto&, const auto& outcome,
                             const ContextPtr&) {
        EXPECT_EQ(&client, caller);
        EXPECT_FALSE(outcome.IsSuccess());
        refused += outcome.GetError().GetErrorType() == S3Errors::ACCESS_DENIED ? 1 : 0;
    };
    auto copy = OfKey<Model::CopyObjectRequest>();
    copy.SetCopySource("other/source");
    auto partCopy = OfUpload<Model::UploadPartCopyRequest>();
    partCopy.SetCopySource("other/source");
    partCopy.SetPartNumber(7);

    client.AbortMultipartUploadAsync(OfUpload<Model::AbortMultipartUploadRequest>(), handler);
    client.CompleteMultipartUploadAsync(OfUpload<Model::CompleteMultipartUploadRequest>(), handler);
    client.CopyObjectAsync(copy, handler);
    client.CreateMultipartUploadAsync(OfKey<Model::CreateMultipartUploadRequest>(), handler);
    client.DeleteBucketAsync(OfBucket<Model::DeleteBucketRequest>(), handler);
    client.DeleteObjectsAsync(OfBucket<Model::DeleteObjectsRequest>(), handler);
    client.GetBucketLocationAsync(OfBucket<Model::GetBucketLocationRequest>(), handler);
    client.GetObjectTaggingAsync(OfKey<Model::GetObjectTaggingRequest>(), handler);
    client.HeadObjectAsync(OfKey<Model::HeadObjectRequest>(), handler);
    client.ListMultipartUploadsAsync(OfBucket<Model::ListMultipartUploadsRequest>(), handler);
    client.ListObjectsV2Async(OfBucket<Model::ListObjectsV2Request>(), handler);
    client.PutBucketLifecycleConfigurationAsync(
        OfBucket<Model::PutBucketLifecycleConfigurationRequest>(), handler);
    client.PutObjectTaggingAsync(OfKey<Model::PutObjectTaggingRequest>(), handler);
    client.UploadPartCopyAsync(partCopy, handler);
    EXPECT_EQ(0, refused);
    executor->RunAll();

    std::vector<std::string> sent;
    for (const auto& message : network.Requests()) {
        sent.push_back(message.request.method + " " + message.request.target);
    }
    EXPECT_THAT(sent, ElementsAre("DELETE /key?uploadId=id", "POST /key?uploadId=id", "PUT /key",
                                  "POST /key?uploads", "DELETE /", "POST /?delete",
                                  "GET /?location", "GET /key?tagging", "HEAD /key",
                                  "GET /?uploads", "GET /?list-type=2", "PUT /?lifecycle",
                                  "PUT /key?tagging", "PUT /key?partNumber=7&uploadId=id"));
    EXPECT_EQ(14, refused);
}

TEST(S3Async, RequestIsCopiedAtTheCall) {
    ScriptedNetwork network({Reply(200)});
    const auto executor = std::make_shared<QueueExecutor>();
    const S3Client client(kCredentials, With(executor));
    PutObjectRequest request = Put(Body("first"));
    client.PutObjectAsync(request, [](auto&&...) {});
    request.WithKey("other");
    request.SetBody(Body("second"));

    executor->RunAll();

    ASSERT_THAT(network.Requests(), SizeIs(1));
    EXPECT_EQ("/key", network.Requests()[0].request.target);
    EXPECT_EQ("first", network.Requests()[0].body);
}

TEST(S3Async, DestructorOfTheClientEndsQueuedCalls) {
    ScriptedNetwork network({Reply(200)});
    int handled = 0;
    {
        const S3Client client(kCredentials, With(std::make_shared<QueueExecutor>()));
        for (int i = 0; i < 3; ++i) {
            client.PutObjectAsync(Put(Body("hello")),
                                  [&](const S3Client* caller, const PutObjectRequest&,
                                      const PutObjectOutcome& outcome, const ContextPtr&) {
                                      EXPECT_EQ(&client, caller);
                                      handled += outcome.IsSuccess() ? 1 : 0;
                                  });
        }
        EXPECT_EQ(0, handled);
    }
    EXPECT_EQ(3, handled);
}

TEST(S3Async, CallOutlivesItsClientOnASharedExecutor) {
    ScriptedNetwork network({Reply(200)});
    const auto executor = std::make_shared<QueueExecutor>();
    auto client = std::make_unique<S3Client>(kCredentials, With(executor));
    bool succeeded = false;
    client->PutObjectAsync(
        Put(Body("hello")),
        [&](const S3Client*, const PutObjectRequest&, const PutObjectOutcome& outcome,
            const ContextPtr&) { succeeded = outcome.IsSuccess(); });
    client.reset();

    executor->RunAll();

    EXPECT_TRUE(succeeded);
}

TEST(S3Async, RefusedCallIsAnsweredOnTheCallingThread) {
    ScriptedNetwork network({Reply(200)});
    const auto refusing = std::make_shared<QueueExecutor>();
    refusing->Refuse();
    for (const std::shared_ptr<Executor>& executor :
         {std::shared_ptr<Executor>(refusing), std::shared_ptr<Executor>()}) {
        const S3Client client(kCredentials, With(executor));
        int handled = 0;
        client.PutObjectAsync(
            Put(Body("hello")), [&](const S3Client*, const PutObjectRequest&,
                                    const PutObjectOutcome& outcome, const ContextPtr&) {
                ++handled;
                EXPECT_FALSE(outcome.IsSuccess());
                EXPECT_EQ(S3Errors::INTERNAL_FAILURE, outcome.GetError().GetErrorType());
            });
        EXPECT_EQ(1, handled);
    }
    EXPECT_THAT(network.Requests(), SizeIs(0));
}

TEST(S3Async, ExceptionOfTheStreamFactoryBecomesAnError) {
    ScriptedNetwork network({Reply(200, "bytes")});
    const auto executor = std::make_shared<QueueExecutor>();
    const S3Client client(kCredentials, With(executor));
    GetObjectRequest request = Get();
    request.SetResponseStreamFactory([]() -> Aws::IOStream* { throw std::bad_alloc(); });
    int handled = 0;
    client.GetObjectAsync(request, [&](const S3Client*, const GetObjectRequest&,
                                       const GetObjectOutcome& outcome, const ContextPtr&) {
        ++handled;
        EXPECT_FALSE(outcome.IsSuccess());
        EXPECT_EQ(S3Errors::INTERNAL_FAILURE, outcome.GetError().GetErrorType());
    });

    executor->RunAll();

    EXPECT_EQ(1, handled);
}

}  // namespace
