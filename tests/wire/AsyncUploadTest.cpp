#include "tests/wire/AsyncUploadTest.h"

#include <mutex>
#include <thread>
#include <utility>

namespace Mirqos::Test {

std::string AsyncUpload::PartTarget(int number, const std::string& upload) {
    return "/the-bucket/k?partNumber=" + std::to_string(number) + "&uploadId=" + upload;
}

Answer AsyncUpload::Opened(const std::string& upload) {
    return Answer::Status(200).Body("<InitiateMultipartUploadResult><UploadId>" + upload +
                                    "</UploadId></InitiateMultipartUploadResult>");
}

Answer AsyncUpload::Tagged(const std::string& eTag) {
    return Answer::Status(200).Header("ETag", eTag);
}

Answer AsyncUpload::Completed() {
    return Answer::Status(200).Body(
        "<CompleteMultipartUploadResult></CompleteMultipartUploadResult>");
}

std::string AsyncUpload::Init(MIRQOSInterface& store) {
    CloudStoreInitMultiPartUploadContext init;
    init.m_pszBucket = kBucket;
    init.m_pszKey = "k";
    CloudStoreInitMultiPartUploadOutcome outcome;
    return store.InitMultiPartUpload(&init, &outcome) == 0 ? outcome.m_szUploadId : "";
}

std::int32_t AsyncUpload::Submit(MIRQOSInterface& store, std::int64_t number,
                                 const std::string& bytes, bool last, const std::string& upload) {
    CloudStoreMultiPartUploadContext part;
    part.m_pszBucket = kBucket;
    part.m_pszKey = "k";
    part.m_pszUploadId = upload.c_str();
    part.m_nPartNumber = static_cast<std::uint64_t>(number);
    part.m_pBuf = reinterpret_cast<const unsigned char*>(bytes.data());
    part.m_nBufLen = static_cast<std::int32_t>(bytes.size());
    part.m_bLastPart = last;
    return store.DoMultiPartUploadAsync(&part);
}

std::int32_t AsyncUpload::Finish(MIRQOSInterface& store, std::int32_t parts,
                                 const std::string& upload) {
    CloudStoreFinishMultiPartUploadContext finish;
    finish.m_pszBucket = kBucket;
    finish.m_pszKey = "k";
    finish.m_pszUploadId = upload.c_str();
    finish.m_nPartCount = parts;
    return store.FinishMultiPartUploadAsync(&finish);
}

std::int32_t AsyncUpload::Abort(MIRQOSInterface& store, const std::string& upload) {
    CloudStoreAbortMultiPartUploadContext abort;
    abort.m_pszBucket = kBucket;
    abort.m_pszKey = "k";
    abort.m_pszUploadId = upload.c_str();
    return store.AbortMultiPartUpload(&abort);
}

void AsyncUpload::AwaitAnswers(AwsS3Store& store, std::uint32_t count, const std::string& upload) {
    const auto state = StoreTestAccess::Upload(store, upload.c_str());
    ASSERT_NE(state, nullptr);
    std::unique_lock<std::mutex> lock(state->m_mtxState);
    while (state->m_nPartsDone < count) {
        lock.unlock();
        std::this_thread::yield();
        lock.lock();
    }
}

void AsyncUpload::Open(MIRQOSInterface& store, const std::string& upload) {
    m_server.On("POST", "/the-bucket/k?uploads").Once(Opened(upload));
    ASSERT_EQ(Init(store), upload);
}

ScriptedServer::Rule AsyncUpload::Part(int number, Answer answer, const std::string& upload) {
    return m_server.On("PUT", PartTarget(number, upload)).Once(std::move(answer));
}

void AsyncUpload::CompleteWith(const Answer& answer) {
    m_server.On("POST", "/the-bucket/k?uploadId=").Always(answer);
}

std::vector<RecordedRequest> AsyncUpload::Requests(const std::string& method,
                                                   const std::string& targetPart) const {
    std::vector<RecordedRequest> found;
    for (RecordedRequest& request : m_server.Requests()) {
        if (request.method == method && request.target.find(targetPart) != std::string::npos) {
            found.push_back(std::move(request));
        }
    }
    return found;
}

std::vector<RecordedRequest> AsyncUpload::Sent(int number, const std::string& upload) const {
    return Requests("PUT", PartTarget(number, upload));
}

std::vector<RecordedRequest> AsyncUpload::Completions() const {
    return Requests("POST", "?uploadId=");
}

std::size_t AsyncUpload::Aborts() const {
    return Requests("DELETE", "").size();
}

std::string AsyncUpload::TagsSent() const {
    std::string tags;
    for (const RecordedRequest& completion : Completions()) {
        const std::string& body = completion.body;
        for (std::size_t at = 0; (at = body.find("<ETag>", at)) != std::string::npos;) {
            at += 6;
            tags += body.substr(at, body.find("</ETag>", at) - at) + ";";
        }
    }
    return tags;
}

std::vector<std::string> AsyncUpload::PartLines() const {
    std::vector<std::string> lines;
    for (std::string& line : Lines()) {
        if (line.rfind("Part Upload:[", 0) == 0) {
            lines.push_back(std::move(line));
        }
    }
    return lines;
}

}  // namespace Mirqos::Test
