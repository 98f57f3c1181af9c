// Lets sixteen host threads work with the library against a real server while the network between
// them breaks again and again. Every object read is compared, and at the end every object, what the
// process holds, and what was left open at the server.
//
//     soak SECONDS SEED MANIFEST MEMORY_SLACK_MIB
//
// The time is divided into rounds; each starts the library, makes stores, works, releases the
// stores and stops the library. Figures are taken between them: the first round has filled caches.
//
// MANIFEST is where a line for each object goes in the end: key in hexadecimal, size and SHA-256.
// Its first line names the bucket.

#include <mirqos/mirqos.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <memory>
#include <mutex>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/process.h"
#include "tests/host/ProcessFigures.h"
#include "tests/service/S3Server.h"
#include "tests/soak/HostThread.h"
#include "tests/soak/Storm.h"
#include "tests/soak/Tally.h"
#include "tests/support/Relay.h"
#include "tests/support/Watchdog.h"

namespace Mirqos::Soak {
namespace {

constexpr int kThreads = 16;
constexpr int kFewestRounds = 4;
constexpr int kLongestRound = 60;  // seconds
constexpr int kPatience = 240;     // seconds that a run may take beyond its time
constexpr std::chrono::seconds kLongestRest{60};
constexpr std::int64_t kHandleSlack = 16;

class Soak {
public:
    Soak(int seconds, std::uint64_t seed, std::int64_t memorySlack)
        : m_rounds(std::max(kFewestRounds, seconds / kLongestRound)),
          m_length(std::chrono::milliseconds(seconds * 1000 / m_rounds)),
          m_memorySlack(memorySlack),
          m_bucket(Test::NewBucketName()),
          m_random(seed) {
        for (int number = 0; number < kThreads; ++number) {
            m_threads.push_back(
                std::make_unique<HostThread>(number, m_random(), m_bucket, m_tally));
        }
    }

    bool Run() {
        m_threadsAtRest = MeasureProcess().threads;
        ProcessFigures warm = {};
        ProcessFigures end = {};
        for (int round = 1; round <= m_rounds && m_failures == 0; ++round) {
            RunRound(round);
            const bool isWarm = round == m_rounds / 2;
            end = isWarm || round == m_rounds ? MeasureAtRest() : MeasureProcess();
            std::printf("%s\n", Describe(end).c_str());
            std::fflush(stdout);
            if (isWarm) {
                warm = end;
            }
        }
        m_tally.Print();
        if (m_failures == 0) {
            CheckFigures(warm, end);
            Check(m_tally.EndedWith(kRefused) <= m_refusals, "each refusal was the relay's");
            Check(m_faults > 0, "there were faults");
        }
        return m_failures == 0;
    }

    void WriteManifest(const std::string& path) const {
        std::ofstream manifest(path, std::ios::binary);
        manifest << m_bucket << '\n';
        for (const auto& thread : m_threads) {
            for (const auto& [key, object] : thread->Expected()) {
                for (const char c : key) {
                    char digits[3];
                    std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(c));
                    manifest << digits;
                }
                manifest << ' ' << object.content.Size() << ' ' << object.content.Digest() << '\n';
            }
        }
        if (!manifest.flush()) {
            throw std::runtime_error("cannot write " + path);
        }
    }

    std::string LastOperations() const {
        std::string text;
        for (int number = 0; number < kThreads; ++number) {
            text += "thread " + std::to_string(number) + ":\n" +
                    m_threads[static_cast<std::size_t>(number)]->LastOperations();
        }
        return text;
    }

private:
    void RunRound(int round) {
        CloudStoreContext context;
        context.m_nLogLevel = static_cast<std::int32_t>(m_random() % 4);
        const MIRQOSEngineStarter engine(true, context);
        Test::Relay relay(Test::TheS3Server().endpoint);
        PlanStorm(relay, m_random());
        const std::string relayed = relay.Endpoint();
        const Test::StorePointer shared = NewStore(relayed, 8, 0);
        std::vector<Stores> stores;
        for (int number = 0; number < kThreads; ++number) {
            stores.push_back({NewStore(relayed, 2, 0),
                              NewStore(relayed, 0, 6),  // as Google Cloud Storage is used
                              NewStore(Test::TheS3Server().endpoint, 0, 0), shared.get()});
        }
        MIRQOSInterface& direct = *stores.front().direct;
        if (round == 1) {
            MakeBucket(direct);
        }
        LetWork(stores);
        if (m_failures == 0) {
            CheckOpenUploads(direct);
        }
        if (m_failures == 0 && round == m_rounds) {
            for (std::size_t number = 0; number < m_threads.size(); ++number) {
                Attempt(number, [&] { m_threads[number]->VerifyAll(stores[number]); });
            }
        }
        m_faults += relay.Done();
        m_refusals += relay.Done(Test::Relay::Harm::refuse);
        std::printf("round %d of %d: %d operations, faults so far: %d, of them %d refusals; ",
                    round, m_rounds, m_tally.Operations(), m_faults, m_refusals);
    }

    Test::StorePointer NewStore(const std::string& endpoint, std::int32_t threads,
                                std::int32_t provider) const {
        CloudStoreConfigInfo config = Test::ConfigFor(m_bucket);
        config.m_pszEndPoint = endpoint.c_str();
        config.m_nBufferSize = 1024 * 1024;
        config.m_nThreadCount = threads;
        config.m_nProviderType = provider;
        Test::StorePointer store(CreateCloudStoreInterface(nullptr));
        store->Init(&config);
        return store;
    }

    void MakeBucket(MIRQOSInterface& store) {
        CloudStoreCreateBucketContext create;
        create.m_pszBucket = m_bucket.c_str();
        Check(store.CreateBucket(&create) == 0, "the bucket was made");
    }

    void LetWork(std::vector<Stores>& stores) {
        std::atomic<bool> stop{false};
        std::vector<std::thread> threads;
        for (std::size_t number = 0; number < stores.size(); ++number) {
            threads.emplace_back([&, number] {
                Attempt(number, [&] { m_threads[number]->Work(stores[number], stop); });
            });
        }
        {
            std::unique_lock<std::mutex> lock(m_mutex);
            m_failed.wait_for(lock, m_length, [this] { return m_failures > 0; });
        }
        stop = true;
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

    template <class Work>
    void Attempt(std::size_t number, Work work) {
        try {
            work();
        } catch (const std::exception& failure) {
            Check(false, "thread " + std::to_string(number) + ": " + failure.what() +
                             "\nits last operations:\n" + m_threads[number]->LastOperations());
        }
    }

    /// What is open now was begun by a request whose first answer was lost: nobody has its id, and
    /// the host has to look for it.
    void CheckOpenUploads(MIRQOSInterface& store) {
        CloudStoreListPartContext list;
        list.m_pszBucket = m_bucket.c_str();
        list.m_pszPrefix = "";
        do {
            if (!Check(store.ListMultipartUploads(&list) == 0, "the uploads are listed")) {
                return;
            }
        } while (list.m_szKeyMarker[0] != '\0');
        for (const MultiPartInfo& upload : list.m_lstParts) {
            for (const auto& thread : m_threads) {
                Check(!thread->HasBegun(upload.m_szUploadId),
                      std::string("no thread has left an upload open: ") + upload.m_szKey);
            }
            CloudStoreAbortMultiPartUploadContext abort;
            abort.m_pszUploadId = upload.m_szUploadId;
            abort.m_pszBucket = m_bucket.c_str();
            abort.m_pszKey = upload.m_szKey;
            Check(store.AbortMultiPartUpload(&abort) == 0, "an open upload is aborted");
        }
    }

    /// Pools of the system keep idle threads and connections for half a minute; the last thread
    /// goes with the last connection.
    ProcessFigures MeasureAtRest() const {
        const auto limit = std::chrono::steady_clock::now() + kLongestRest;
        ProcessFigures figures = MeasureProcess();
        while (figures.threads > m_threadsAtRest && std::chrono::steady_clock::now() < limit) {
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            figures = MeasureProcess();
        }
        return figures;
    }

    void CheckFigures(const ProcessFigures& warm, const ProcessFigures& end) {
        Check(warm.handles > 0 && warm.memoryBytes > 0 && warm.threads > 0, "figures are known");
        Check(end.handles <= warm.handles + kHandleSlack, "handles are flat");
        Check(end.threads <= m_threadsAtRest, "the threads are gone");
        Check(end.memoryBytes <= warm.memoryBytes + m_memorySlack, "memory is flat");
    }

    bool Check(bool holds, const std::string& what) {
        if (!holds) {
            const std::lock_guard<std::mutex> lock(m_mutex);
            std::printf("FAILED: %s\n", what.c_str());
            ++m_failures;
            m_failed.notify_all();
        }
        return holds;
    }

    const int m_rounds;
    const std::chrono::milliseconds m_length;
    const std::int64_t m_memorySlack;
    const std::string m_bucket;
    std::mt19937_64 m_random;
    Tally m_tally;
    std::vector<std::unique_ptr<HostThread>> m_threads;
    std::int64_t m_threadsAtRest = 0;
    int m_faults = 0;
    int m_refusals = 0;
    std::mutex m_mutex;
    std::condition_variable m_failed;
    std::atomic<int> m_failures{0};
};

}  // namespace
}  // namespace Mirqos::Soak

int main(int argc, char** argv) {
    const int seconds = argc == 5 ? std::atoi(argv[1]) : 0;
    if (seconds <= 0) {
        std::printf("usage: soak SECONDS SEED MANIFEST MEMORY_SLACK_MIB\n");
        return 2;
    }
    std::printf("process %lu, seed %s\n", static_cast<unsigned long>(Mirqos::CurrentProcessId()),
                argv[2]);
    std::fflush(stdout);
    Mirqos::Soak::Soak soak(seconds, std::strtoull(argv[2], nullptr, 10),
                            std::atoll(argv[4]) * 1024 * 1024);
    const Mirqos::Test::Watchdog watchdog(
        std::chrono::seconds(seconds + Mirqos::Soak::kPatience),
        [&] { return "seed " + std::string(argv[2]) + "\n" + soak.LastOperations(); });
    const bool good = soak.Run();
    if (good) {
        soak.WriteManifest(argv[3]);
    }
    std::printf("soak with seed %s: %s\n", argv[2], good ? "as promised" : "FAILED");
    return good ? 0 : 1;
}
