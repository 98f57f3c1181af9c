#include <atomic>
#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>

#include "sdk/core/Seam.h"
#include "sdk/core/http/Transport.h"
#include "tests/wire/AsyncReadTest.h"
#include "tests/wire/AsyncUploadTest.h"

namespace Mirqos::Test {
namespace {

/// A service without a network between, so that threads meet as often as they can: it joins the
/// bodies of parts, refuses those that say so, and checks what an upload is completed with.
class NearService : public Http::Transport {
public:
    Http::Result Exchange(const Http::Request& request, const Http::Limits& /*limits*/,
                          Http::Receiver& receiver) override {
        std::string sent(static_cast<std::size_t>(request.bodyLength), '\0');
        if (request.body != nullptr) {
            request.body->read(sent.data(), static_cast<std::streamsize>(sent.size()));
        }
        if (request.method == "GET") {
            Reply(receiver, 206, "0123456789");
        } else if (request.method == "PUT") {
            TakePart(sent, receiver);
        } else if (request.target.find("?uploads") != std::string::npos) {
            Reply(receiver, 200,
                  "<InitiateMultipartUploadResult><UploadId>u" + std::to_string(++m_uploads) +
                      "</UploadId></InitiateMultipartUploadResult>");
        } else {
            Complete(request.target, sent);
            Reply(receiver, 200, "<CompleteMultipartUploadResult></CompleteMultipartUploadResult>");
        }
        return {};
    }

    /// What each completed upload consists of, by its id.
    std::map<std::string, std::string> Objects() const {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_objects;
    }

private:
    static void Reply(Http::Receiver& receiver, int status, const std::string& body,
                      Http::HeaderList headers = {}) {
        headers.emplace_back("Content-Length", std::to_string(body.size()));
        if (receiver.OnHead({status, headers}) == Http::Receiver::Want::more && !body.empty()) {
            receiver.OnBody(body.data(), body.size());
        }
    }
    static std::string UploadIn(const std::string& target) {
        return target.substr(target.find("uploadId=") + 9);
    }
    /// The tag of a part is its body.
    static void TakePart(const std::string& body, Http::Receiver& receiver) {
        if (body.find("refuse") != std::string::npos) {
            Reply(receiver, 403, "<Error><Code>AccessDenied</Code><Message>No</Message></Error>");
        } else {
            Reply(receiver, 200, "", {{"ETag", body}});
        }
    }
    void Complete(const std::string& target, const std::string& list) {
        std::string object;
        for (std::size_t at = 0; (at = list.find("<ETag>", at)) != std::string::npos;) {
            at += 6;
            object += list.substr(at, list.find("</ETag>", at) - at) + ";";
        }
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_objects[UploadIn(target)] += object;
    }

    std::atomic<int> m_uploads{0};
    mutable std::mutex m_mutex;
    std::map<std::string, std::string> m_objects;
};

/// Lets its threads go on together, each time all of them have come.
class MeetingPoint {
public:
    explicit MeetingPoint(int threads) : m_threads(threads) {}
    void Meet() {
        std::unique_lock<std::mutex> lock(m_mutex);
        const int meeting = m_meeting;
        if (++m_here == m_threads) {
            m_here = 0;
            ++m_meeting;
            m_changed.notify_all();
        } else {
            m_changed.wait(lock, [&] { return m_meeting != meeting; });
        }
    }

private:
    const int m_threads;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_here = 0;
    int m_meeting = 0;
};

class AsyncUploadRace : public AsyncUpload {
protected:
    static constexpr int kRounds = 10000;

    AsyncUploadRace() {
        TheSeam().makeTransport = [this](const Http::TransportOptions&) { return m_service; };
    }

    static std::string BodyOf(const std::string& upload, int number) {
        return upload + "-" + std::to_string(number);
    }
    static std::string ObjectOf(const std::string& upload, int parts) {
        std::string object;
        for (int number = 1; number <= parts; ++number) {
            object += BodyOf(upload, number) + ";";
        }
        return object;
    }

    const std::shared_ptr<NearService> m_service = std::make_shared<NearService>();
};

// Each host opens, submits and finishes on its own, all on one store; reads take part, because
// their handlers hold the store's lock. Some uploads have a part that fails, some mark no last one.
TEST_F(AsyncUploadRace, HostsHandlersFinishesAndReadsOnOneStoreDoNoHarm) {
    constexpr int kHosts = 4;
    const auto store = StoreWithThreads(3);
    std::atomic<bool> done{false};
    std::thread reader([&] {
        std::string buffer(10, '?');
        CloudStoreReadObjectContext read;
        read.m_pszBucket = kBucket;
        read.m_pszKey = "k";
        read.m_pBuf = reinterpret_cast<unsigned char*>(buffer.data());
        read.m_nReadLen = buffer.size();
        read.m_nReadSize = 0;
        read.m_nRangeStart = 0;
        read.m_nRangeEnd = buffer.size() - 1;
        while (!done) {
            buffer.assign(10, '?');
            ASSERT_EQ(store->ReadObjectAsync(&read), 0);
            ASSERT_EQ(store->WaitForReadObjectAsync(&read), 0);
            ASSERT_EQ(buffer, "0123456789");
            m_log.Clear();  // the many lines of reads
        }
    });
    std::vector<std::thread> hosts;
    std::mutex mutex;
    std::map<std::string, std::string> expected;
    for (int host = 0; host < kHosts; ++host) {
        hosts.emplace_back([&, host] {
            for (int round = host; round < kRounds; round += kHosts) {
                const std::string upload = Init(*store);
                const int parts = 1 + round % 4;
                const bool fails = round % 7 == 0;
                for (int number = 1; number <= parts; ++number) {
                    const bool refused = fails && number == 1 + round / 7 % parts;
                    ASSERT_EQ(Submit(*store, number, refused ? "refuse" : BodyOf(upload, number),
                                     number == parts && round % 5 != 0, upload),
                              0);
                }
                ASSERT_EQ(Finish(*store, parts, upload), fails ? 15 : 0);
                if (!fails) {
                    const std::lock_guard<std::mutex> lock(mutex);
                    expected[upload] = ObjectOf(upload, parts);
                }
            }
        });
    }
    for (std::thread& host : hosts) {
        host.join();
    }
    done = true;
    reader.join();
    EXPECT_EQ(m_service->Objects(), expected);
}

TEST_F(AsyncUploadRace, SeveralThreadsSubmitThePartsOfOneUpload) {
    constexpr int kSubmitters = 3;
    constexpr int kParts = 2 * kSubmitters;
    const auto store = StoreWithThreads(2);
    MeetingPoint meeting(kSubmitters);
    std::string upload;
    std::vector<std::thread> submitters;
    std::size_t completed = 0;
    for (int submitter = 0; submitter < kSubmitters; ++submitter) {
        submitters.emplace_back([&, submitter] {
            for (int round = 0; round < kRounds; ++round) {
                if (submitter == 0) {
                    upload = Init(*store);
                }
                meeting.Meet();
                for (const int number : {1 + submitter, 1 + submitter + kSubmitters}) {
                    EXPECT_EQ(
                        Submit(*store, number, BodyOf(upload, number), number == kParts, upload),
                        0);
                }
                meeting.Meet();
                if (submitter == 0) {
                    EXPECT_EQ(Finish(*store, kParts, upload), 0);
                    ++completed;
                }
            }
        });
    }
    for (std::thread& submitter : submitters) {
        submitter.join();
    }
    const auto objects = m_service->Objects();
    EXPECT_EQ(objects.size(), completed);
    for (const auto& [id, object] : objects) {
        ASSERT_EQ(object, ObjectOf(id, kParts));
    }
}

// Each part of a number replaces the body of the one before, while that one is being sent.
TEST_F(AsyncUploadRace, BodiesReplacedWhileTheyAreSentStayWhole) {
    const auto store = StoreWithThreads(3);
    for (int round = 0; round < kRounds; ++round) {
        const std::string upload = Init(*store);
        for (int copy = 1; copy <= 3; ++copy) {
            ASSERT_EQ(Submit(*store, 1, BodyOf(upload, copy), copy == 3, upload), 0);
        }
        ASSERT_EQ(Finish(*store, 1, upload), 0);
    }
    for (const auto& [id, object] : m_service->Objects()) {
        ASSERT_TRUE(object == BodyOf(id, 1) + ";" || object == BodyOf(id, 2) + ";" ||
                    object == BodyOf(id, 3) + ";")
            << object;
    }
}

TEST_F(AsyncUploadRace, SynchronousPartsFromSeveralThreadsAreAllRecorded) {
    constexpr int kSenders = 4;
    constexpr int kParts = kRounds;
    const auto store = MakeStore();
    const std::string upload = Init(*store);
    std::vector<std::thread> senders;
    for (int sender = 0; sender < kSenders; ++sender) {
        senders.emplace_back([&, sender] {
            for (int number = 1 + sender; number <= kParts; number += kSenders) {
                const std::string body = BodyOf(upload, number);
                CloudStoreMultiPartUploadContext part;
                part.m_pszBucket = kBucket;
                part.m_pszKey = "k";
                part.m_pszUploadId = upload.c_str();
                part.m_nPartNumber = static_cast<std::uint64_t>(number);
                part.m_pBuf = reinterpret_cast<const unsigned char*>(body.data());
                part.m_nBufLen = static_cast<std::int32_t>(body.size());
                ASSERT_EQ(store->MultiPartUpload(&part), 0);
            }
        });
    }
    for (std::thread& sender : senders) {
        sender.join();
    }
    CloudStoreFinishMultiPartUploadContext finish;
    finish.m_pszBucket = kBucket;
    finish.m_pszKey = "k";
    finish.m_pszUploadId = upload.c_str();
    finish.m_nPartCount = kParts;
    EXPECT_EQ(store->FinishMultiPartUpload(&finish), 0);
    EXPECT_EQ(m_service->Objects()[upload], ObjectOf(upload, kParts));
}

}  // namespace
}  // namespace Mirqos::Test
