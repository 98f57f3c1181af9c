// Whatever a service answers to any operation of the store: its statuses, headers and bodies, from
// the door to the network up to the caller's record.
//
// An input is the operation's number, then an answer for each request: its status, which headers it
// has and their values, the length of its body and the body.
#include <mirqos/mirqos.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <tuple>
#include <utility>

#include "sdk/core/Seam.h"
#include "sdk/core/http/Transport.h"
#include "store/AwsS3Store.h"
#include "tests/faults/Operation.h"
#include "tests/fuzz/Input.h"
#include "tests/fuzz/Require.h"
#include "tests/support/RecordingOutput.h"

namespace {

using Mirqos::Test::Input;
using Mirqos::Test::Operation;
using Mirqos::Test::Require;
namespace Http = Mirqos::Http;

constexpr std::size_t kMostAnswers = 16;
/// Upload ids, tokens and keys that a record has no room for end the process, as they have to.
constexpr std::size_t kLongestText = 259;

struct FuzzedAnswer {
    Http::ResponseHead head;
    std::string body;
};

constexpr int kStatuses[] = {200, 200, 200, 206, 204, 400, 403, 404, 409, 416, 429, 500, 503, 301};
constexpr const char* kHeaders[] = {
    "ETag",           "Content-Range", "x-amz-bucket-region", "Content-Type", "Date",
    "Content-Length", "Location",      "x-amz-request-id"};

FuzzedAnswer TakeAnswer(Input& input) {
    FuzzedAnswer answer;
    answer.head.status = kStatuses[input.Byte() % std::size(kStatuses)];
    const std::uint8_t which = input.Byte();
    for (std::size_t i = 0; i < std::size(kHeaders); ++i) {
        if ((which >> i & 1) != 0) {
            answer.head.headers.emplace_back(kHeaders[i], input.Bytes(input.Byte()));
        }
    }
    answer.body = input.Bytes(input.Number());
    return answer;
}

/// Whether every text of the document, between two tags, has room in every record.
bool FitsRecords(const std::string& body) {
    // comments, instructions and CDATA join what stands around them to one text
    const bool joins = body.find("<!") != body.npos || body.find("<?", 1) != body.npos;
    if (joins && body.size() > kLongestText) {
        return false;
    }
    std::size_t begin = 0;
    for (std::size_t end = 0; end != body.npos; begin = end + 1) {
        end = body.find_first_of("<>", begin);
        if (std::min(end, body.size()) - begin > kLongestText) {
            return false;
        }
    }
    return true;
}

/// Gives the answers in their order, to whichever thread asks; afterwards the objects are gone.
class FuzzedNetwork : public Http::Transport {
public:
    void Set(std::deque<FuzzedAnswer> answers) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_answers = std::move(answers);
    }

    Http::Result Exchange(const Http::Request& request, const Http::Limits& /*limits*/,
                          Http::Receiver& receiver) override {
        Require(!request.method.empty() && request.target.front() == '/', "requests are whole");
        if (request.body != nullptr) {
            request.body->ignore(static_cast<std::streamsize>(request.bodyLength));
        }
        const FuzzedAnswer answer = Next();
        if (receiver.OnHead(answer.head) == Http::Receiver::Want::more &&
            request.method != "HEAD") {
            const std::size_t half = answer.body.size() / 2;
            if (receiver.OnBody(answer.body.data(), half) == Http::Receiver::Want::more) {
                receiver.OnBody(answer.body.data() + half, answer.body.size() - half);
            }
        }
        return {};
    }

private:
    FuzzedAnswer Next() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_answers.empty()) {
            return {{404, {}}, ""};
        }
        FuzzedAnswer answer = std::move(m_answers.front());
        m_answers.pop_front();
        return answer;
    }

    std::mutex m_mutex;
    std::deque<FuzzedAnswer> m_answers;
};

/// The library, started once, with a store for each kind that the operations ask for.
class Library {
public:
    Library() {
        Mirqos::TheSeam().makeTransport = [this](const Http::TransportOptions&) {
            return m_network;
        };
        Mirqos::TheSeam().sleep = [](std::chrono::milliseconds) {};
    }

    void Call(Operation& operation, std::deque<FuzzedAnswer> answers) {
        AwsS3Store& store = StoreFor(operation);
        m_network->Set(
            {{{200, {}},
              "<InitiateMultipartUploadResult><UploadId>upload " + std::to_string(++m_uploads) +
                  "</UploadId></InitiateMultipartUploadResult>"}});
        operation.Prepare(store);
        m_network->Set(std::move(answers));
        operation.Call(store);
        m_log.Clear();
    }

private:
    AwsS3Store& StoreFor(const Operation& operation) {
        auto& store = m_stores[{operation.provider, operation.threads, operation.buffer}];
        if (store == nullptr) {
            CloudStoreConfigInfo config;
            config.m_pszRegion = "eu-central-1";
            config.m_pszBucket = Operation::kConfigured;
            config.m_pszAccessKeyId = "AKID";
            config.m_pszSecretKey = "secret";
            config.m_pszEndPoint = "storage.test";
            config.m_nBufferSize = operation.buffer;
            config.m_nThreadCount = operation.threads;
            config.m_nProviderType = operation.provider;
            store = std::make_unique<AwsS3Store>();
            store->Init(&config);
        }
        return *store;
    }

    Mirqos::Test::LogRecording m_log;
    std::uint64_t m_uploads = 0;
    MIRQOSEngineStarter m_started{true, CloudStoreContext()};
    const std::shared_ptr<FuzzedNetwork> m_network = std::make_shared<FuzzedNetwork>();
    std::map<std::tuple<std::int32_t, std::int32_t, std::int32_t>, std::unique_ptr<AwsS3Store>>
        m_stores;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Library library;
    static const Mirqos::Test::Operations operations = Mirqos::Test::AllOperations();
    Input input(data, size);
    Operation& operation = *operations[input.Byte() % operations.size()];
    std::deque<FuzzedAnswer> answers;
    while (!input.AtEnd() && answers.size() < kMostAnswers) {
        answers.push_back(TakeAnswer(input));
        if (!FitsRecords(answers.back().body)) {
            return 0;
        }
    }
    library.Call(operation, std::move(answers));
    return 0;
}
