#include <aws/core/utils/memory/AWSMemory.h>
#include <aws/core/utils/memory/stl/AWSStringStream.h>
#include <aws/core/utils/threading/Executor.h>
#include <aws/s3/S3Client.h>
#include <aws/s3/model/CreateBucketRequest.h>
#include <aws/s3/model/DeleteObjectRequest.h>
#include <aws/s3/model/GetObjectRequest.h>
#include <aws/s3/model/HeadBucketRequest.h>
#include <aws/s3/model/PutObjectRequest.h>

#include <atomic>
#include <future>
#include <set>
#include <thread>

#include "exec/AwsS3BackupExecutor.h"
#include "store/InstanceMetadata.h"
#include "tests/support/UsedSdk.h"
#include "tests/wire/WireTest.h"

namespace Mirqos::Test {
namespace {

using Aws::Client::AsyncCallerContext;
using Aws::S3::S3Client;
using Aws::S3::S3Errors;
namespace Model = Aws::S3::Model;

class Async : public WireTest {
protected:
    std::unique_ptr<S3Client> MakeClient(int threads) {
        auto configuration =
            ConfigurationWithoutInstanceMetadata<Aws::Client::ClientConfiguration>();
        configuration.region = kRegion;
        configuration.endpointOverride = kEndpoint;
        configuration.scheme = Aws::Http::Scheme::HTTP;
        if (threads > 0) {
            const auto executor = Aws::MakeShared<AwsS3BackupExecutor>("test");
            EXPECT_EQ(executor->Start(threads), 0);
            configuration.executor = executor;
        }
        return std::make_unique<S3Client>(Aws::Auth::AWSCredentials(kKeyId, kSecret), configuration,
                                          Aws::Client::AWSAuthV4Signer::PayloadSigningPolicy::Never,
                                          false);
    }

    static Model::PutObjectRequest Put(const char* key, const char* body) {
        Model::PutObjectRequest request;
        request.SetBucket(kBucket);
        request.SetKey(key);
        request.SetBody(Aws::MakeShared<Aws::StringStream>("test", body));
        return request;
    }

    static Model::GetObjectRequest Get(const char* key) {
        Model::GetObjectRequest request;
        request.SetBucket(kBucket);
        request.SetKey(key);
        return request;
    }

    static std::string TextOf(const Model::GetObjectOutcome& outcome) {
        // Of a constant result, only newer SDKs give the body.
        auto& result = const_cast<Model::GetObjectResult&>(outcome.GetResult());
        Aws::StringStream text;
        text << result.GetBody().rdbuf();
        const Aws::String bytes = text.str();
        return std::string(bytes.begin(), bytes.end());
    }
};

TEST_F(Async, EveryOperationSendsTheSameRequestAsItsSynchronousForm) {
    m_server.On("GET", "/").Always(Answer::Status(200).Body("v"));
    m_server.On("", "/").Always(Answer::Status(200));
    const auto client = MakeClient(2);
    int handled = 0;
    const auto run = [&](auto make, auto sync, auto async) {
        EXPECT_TRUE((client.get()->*sync)(make()).IsSuccess());
        const auto request = make();
        std::promise<bool> done;
        async(request,
              [&](const S3Client* sender, const auto& answered, const auto& outcome, const auto&) {
                  EXPECT_EQ(sender, client.get());
                  EXPECT_EQ(answered.GetBucket(), request.GetBucket());
                  done.set_value(outcome.IsSuccess());
              });
        EXPECT_TRUE(done.get_future().get());
        ++handled;
        const auto requests = m_server.Requests();
        const RecordedRequest& first = requests[requests.size() - 2];
        const RecordedRequest& second = requests.back();
        EXPECT_EQ(first.method, second.method);
        EXPECT_EQ(first.target, second.target);
        EXPECT_EQ(first.body, second.body);
        EXPECT_EQ(SignedHeadersOf(first), SignedHeadersOf(second));
        EXPECT_EQ(SignatureProblem(second, kKeyId, kSecret, kRegion), "");
    };
    run([] { return Put("put key", "body"); }, &S3Client::PutObject,
        [&](const auto& request, const auto& handler) {
            client->PutObjectAsync(request, handler);
        });
    run([] { return Get("get key"); }, &S3Client::GetObject,
        [&](const auto& request, const auto& handler) {
            client->GetObjectAsync(request, handler);
        });
    Model::CreateBucketRequest create;
    create.SetBucket(kBucket);
    run([&] { return create; }, &S3Client::CreateBucket,
        [&](const auto& request, const auto& handler) {
            client->CreateBucketAsync(request, handler);
        });
    Model::DeleteObjectRequest remove;
    remove.SetBucket(kBucket);
    remove.SetKey("delete key");
    run([&] { return remove; }, &S3Client::DeleteObject,
        [&](const auto& request, const auto& handler) {
            client->DeleteObjectAsync(request, handler);
        });
    Model::HeadBucketRequest head;
    head.SetBucket(kBucket);
    run([&] { return head; }, &S3Client::HeadBucket,
        [&](const auto& request, const auto& handler) {
            client->HeadBucketAsync(request, handler);
        });
    EXPECT_EQ(handled, 5);
}

TEST_F(Async, HandlersGetTheirContextTheAnswerAndAThreadOfTheExecutor) {
    m_server.Next(Answer::Status(200).Header("ETag", "\"e\"").Body("the body"));
    const auto client = MakeClient(1);
    struct Seen {
        std::string text;
        std::string uuid;
        std::string tag;
        std::thread::id thread;
    };
    std::promise<Seen> done;
    const auto context = Aws::MakeShared<AsyncCallerContext>("test", "call 17");
    client->GetObjectAsync(
        Get("k"),
        [&](const S3Client*, const Model::GetObjectRequest&, const Model::GetObjectOutcome& outcome,
            const std::shared_ptr<const AsyncCallerContext>& given) {
            done.set_value({TextOf(outcome), given->GetUUID().c_str(),
                            outcome.GetResult().GetETag().c_str(), std::this_thread::get_id()});
        },
        context);
    const Seen seen = done.get_future().get();
    EXPECT_EQ(seen.text, "the body");
    EXPECT_EQ(seen.uuid, "call 17");
    EXPECT_EQ(seen.tag, "\"e\"");
    EXPECT_NE(seen.thread, std::this_thread::get_id());
}

TEST_F(Async, TheCallerDoesNotWaitForTheAnswer) {
    const Gate gate;
    m_server.Next(Answer::Status(200).Wait(Place::AnswerByte(0), gate));
    const auto client = MakeClient(1);
    std::promise<bool> done;
    client->PutObjectAsync(Put("k", "v"), [&](const S3Client*, const Model::PutObjectRequest&,
                                              const Model::PutObjectOutcome& outcome,
                                              const std::shared_ptr<const AsyncCallerContext>&) {
        done.set_value(outcome.IsSuccess());
    });
    auto answered = done.get_future();
    ASSERT_TRUE(gate.WaitUntilReached());
    EXPECT_EQ(answered.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
    gate.Open();
    EXPECT_TRUE(answered.get());
}

TEST_F(Async, SeveralThreadsHaveSeveralRequestsOnTheirWay) {
    const Gate gate;
    m_server.On("PUT", "/").Always(Answer::Status(200).Wait(Place::AnswerByte(0), gate));
    const auto client = MakeClient(4);
    std::vector<std::promise<bool>> done(4);
    for (std::promise<bool>& one : done) {
        client->PutObjectAsync(Put("k", "v"),
                               [&one](const S3Client*, const Model::PutObjectRequest&,
                                      const Model::PutObjectOutcome& outcome,
                                      const std::shared_ptr<const AsyncCallerContext>&) {
                                   one.set_value(outcome.IsSuccess());
                               });
    }
    EXPECT_TRUE(gate.WaitUntilReached(4)) << "none may wait for another";
    gate.Open();
    for (std::promise<bool>& one : done) {
        EXPECT_TRUE(one.get_future().get());
    }
    EXPECT_EQ(m_server.Connections(), 4);
}

TEST_F(Async, FailuresReachTheHandlerAfterAllAttempts) {
    m_server.On("GET", "/").Always(Answer::Status(500));
    const auto client = MakeClient(2);
    std::promise<S3Errors> done;
    client->GetObjectAsync(Get("k"), [&](const S3Client*, const Model::GetObjectRequest&,
                                         const Model::GetObjectOutcome& outcome,
                                         const std::shared_ptr<const AsyncCallerContext>&) {
        done.set_value(outcome.GetError().GetErrorType());
    });
    EXPECT_EQ(done.get_future().get(),
              kBundledSdk ? S3Errors::INTERNAL_FAILURE : S3Errors::UNKNOWN);
    EXPECT_EQ(m_server.Requests().size(), 11u);
    EXPECT_EQ(Waits(), AllWaits());
}

TEST_F(Async, WithoutAnExecutorOfItsOwnAClientUsesTheDefaultOne) {
    m_server.Next(Answer::Status(200).Body("v"));
    const auto client = MakeClient(0);
    std::promise<std::string> done;
    client->GetObjectAsync(
        Get("k"),
        [&](const S3Client*, const Model::GetObjectRequest&, const Model::GetObjectOutcome& outcome,
            const std::shared_ptr<const AsyncCallerContext>&) { done.set_value(TextOf(outcome)); });
    EXPECT_EQ(done.get_future().get(), "v");
}

TEST_F(Async, DestroyingTheClientAnswersEveryCallFirst) {
    const Gate gate;
    m_server.On("PUT", "/").Always(Answer::Status(200).Wait(Place::AnswerByte(0), gate));
    std::atomic<int> answered{0};
    auto client = MakeClient(2);
    for (int i = 0; i < 4; ++i) {
        client->PutObjectAsync(
            Put("k", "v"),
            [&](const S3Client*, const Model::PutObjectRequest&, const Model::PutObjectOutcome&,
                const std::shared_ptr<const AsyncCallerContext>&) { ++answered; });
    }
    ASSERT_TRUE(gate.WaitUntilReached(2));
    std::thread opener([&] { gate.Open(); });
    client.reset();
    EXPECT_EQ(answered, 4);
    opener.join();
}

TEST_F(Async, AHandlerMayIssueAnotherCall) {
    m_server.On("PUT", "/").Always(Answer::Status(200));
    m_server.On("GET", "/").Always(Answer::Status(200).Body("v"));
    const auto client = MakeClient(1);
    std::promise<std::string> done;
    client->PutObjectAsync(
        Put("k", "v"),
        [&](const S3Client* sender, const Model::PutObjectRequest&, const Model::PutObjectOutcome&,
            const std::shared_ptr<const AsyncCallerContext>&) {
            done.set_value(TextOf(sender->GetObject(Get("k"))));
        });
    EXPECT_EQ(done.get_future().get(), "v");
}

TEST_F(Async, ManyCallsFromManyThreadsAreEachAnsweredOnce) {
    m_server.On("PUT", "/").Call([](const RecordedRequest& request) {
        return Answer::Status(200).Header("ETag", request.body);
    });
    const auto client = MakeClient(4);
    constexpr int kThreads = 4;
    constexpr int kEach = 25;
    std::mutex mutex;
    std::multiset<std::string> tags;
    std::promise<void> all;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < kEach; ++i) {
                const std::string body = std::to_string(t * kEach + i);
                client->PutObjectAsync(Put("k", body.c_str()),
                                       [&](const S3Client*, const Model::PutObjectRequest&,
                                           const Model::PutObjectOutcome& outcome,
                                           const std::shared_ptr<const AsyncCallerContext>&) {
                                           const std::lock_guard<std::mutex> lock(mutex);
                                           tags.insert(outcome.GetResult().GetETag().c_str());
                                           if (tags.size() == kThreads * kEach) {
                                               all.set_value();
                                           }
                                       });
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    all.get_future().get();
    const std::lock_guard<std::mutex> lock(mutex);
    for (int i = 0; i < kThreads * kEach; ++i) {
        EXPECT_EQ(tags.count(std::to_string(i)), 1u) << i;
    }
    EXPECT_LE(m_server.Connections(), 4);
}

}  // namespace
}  // namespace Mirqos::Test
