#include <string>

#include "tests/faults/Operation.h"

namespace Mirqos::Test {
namespace {

using Aws::S3::S3Errors;

constexpr char kObject[] = "the-bucket/k";

/// What opens an upload of one part and joins it.
class Upload : public Operation {
public:
    void Arrange(ModelService& service) const override { service.objects.erase(kObject); }
    void Prepare(MIRQOSInterface& store) override { Open(store); }
    std::int32_t Call(MIRQOSInterface& store) override {
        const std::int32_t status = Part(store);
        return status == 0 ? Finish(store) : status;
    }
    Promise Promised(Fate& fate) const override {
        Promise promise = PartPromised(fate);
        if (promise.status != 0) {
            return promise;
        }
        Sent complete = WithBody(ForDocument());
        complete.takesTags = m_sendsTags;
        promise.status = fate.Next(complete);
        if (promise.status != 0) {
            promise.lines = {"Complete Multi-Part [eu-central-1:the-bucket:k:*:1] failed.",
                             "Reason:[*],EC:[" + std::to_string(promise.status) + "]."};
        }
        return promise;
    }
    std::string Problem(bool succeeded, const ModelService& service) const override {
        const auto object = service.objects.find(kObject);
        if (object == service.objects.end()) {
            return succeeded ? "nothing was stored" : "";
        }
        return object->second == Whole() ? "" : "something else was stored";
    }

protected:
    std::int32_t Open(MIRQOSInterface& store) {
        CloudStoreInitMultiPartUploadContext init;
        init.m_pszBucket = kBucket;
        init.m_pszKey = kKey;
        CloudStoreInitMultiPartUploadOutcome upload;
        upload.m_szUploadId[0] = '\0';
        const std::int32_t status = store.InitMultiPartUpload(&init, &upload);
        m_id = upload.m_szUploadId;
        return status;
    }
    virtual std::int32_t Part(MIRQOSInterface& store) = 0;
    virtual Promise PartPromised(Fate& fate) const = 0;
    virtual std::string Whole() const { return WrittenBytes(); }
    virtual std::int32_t Finish(MIRQOSInterface& store) {
        CloudStoreFinishMultiPartUploadContext finish = FinishContext();
        return store.FinishMultiPartUpload(&finish);
    }
    CloudStoreMultiPartUploadContext PartContext() const {
        CloudStoreMultiPartUploadContext part;
        part.m_pszBucket = kBucket;
        part.m_pszKey = kKey;
        part.m_pszUploadId = m_id.c_str();
        part.m_nPartNumber = 1;
        part.m_pBuf = reinterpret_cast<const unsigned char*>(WrittenBytes().data());
        part.m_nBufLen = static_cast<std::int32_t>(WrittenBytes().size());
        part.m_bLastPart = true;
        return part;
    }
    CloudStoreFinishMultiPartUploadContext FinishContext() const {
        CloudStoreFinishMultiPartUploadContext finish;
        finish.m_pszBucket = kBucket;
        finish.m_pszKey = kKey;
        finish.m_pszUploadId = m_id.c_str();
        finish.m_nPartCount = 1;
        return finish;
    }
    static Promise PartFailed(std::int32_t status, const std::string& line) {
        return status == 0 ? Promise() : Promise{status, {line, "Part Upload:[*]."}};
    }

    std::string m_id;
    bool m_sendsTags = true;  ///< those that came in headers
};

class MultiPartUpload : public Upload {
public:
    MultiPartUpload() { name = "MultiPartUpload, FinishMultiPartUpload"; }

protected:
    std::int32_t Part(MIRQOSInterface& store) override {
        CloudStoreMultiPartUploadContext part = PartContext();
        return store.MultiPartUpload(&part);
    }
    Promise PartPromised(Fate& fate) const override {
        return PartFailed(fate.Next(OfBytes()),
                          "Part Upload:[eu-central-1:the-bucket:k:1:20000] failed.");
    }
};

class MultiPartCopy : public Upload {
public:
    MultiPartCopy() {
        name = "MultiPartCopy, FinishMultiPartUpload";
        m_sendsTags = false;
    }

protected:
    std::int32_t Part(MIRQOSInterface& store) override {
        CloudStoreMultiPartCopyContext part;
        part.m_pszBucket = kBucket;
        part.m_pszKey = kKey;
        part.m_pszUploadId = m_id.c_str();
        part.m_pszCopySource = "the-bucket/source";
        part.m_nPartNumber = 1;
        part.m_nRangeStart = 10;
        part.m_nRangeEnd = 1509;
        return store.MultiPartCopy(&part);
    }
    Promise PartPromised(Fate& fate) const override {
        return PartFailed(fate.Next(ForDocument()),
                          "Part Upload:[eu-central-1:the-bucket:k:1] Src[the-bucket/source] "
                          "Range[bytes=10-1509] failed.");
    }
    std::string Whole() const override { return SourceBytes().substr(10, 1500); }
};

class AsyncUpload : public Upload {
public:
    AsyncUpload() {
        name = "DoMultiPartUploadAsync, FinishMultiPartUploadAsync";
        threads = 1;
    }

protected:
    std::int32_t Part(MIRQOSInterface& store) override {
        CloudStoreMultiPartUploadContext part = PartContext();
        return store.DoMultiPartUploadAsync(&part);
    }
    Promise PartPromised(Fate& fate) const override {
        return PartFailed(fate.Next(OfBytes()),
                          "Part Upload:[eu-central-1:the-bucket:k:1] failed.");
    }
    std::int32_t Finish(MIRQOSInterface& store) override {
        CloudStoreFinishMultiPartUploadContext finish = FinishContext();
        return store.FinishMultiPartUploadAsync(&finish);
    }
};

class InitMultiPartUpload : public Upload {
public:
    InitMultiPartUpload() { name = "InitMultiPartUpload"; }
    void Prepare(MIRQOSInterface&) override {}
    std::int32_t Call(MIRQOSInterface& store) override { return Open(store); }
    Promise Promised(Fate& fate) const override {
        const std::int32_t status = fate.Next(ForDocument());
        if (status == 0) {
            return {};
        }
        return {status,
                {"Init multi-part upload for:[eu-central-1:the-bucket:k] failed.EC:[" +
                     std::to_string(status) + "].",
                 "Init Error Message:[*]."}};
    }
    std::string Problem(bool succeeded, const ModelService&) const override {
        return m_id.empty() == succeeded ? "the id is \"" + m_id + "\"" : "";
    }

protected:
    std::int32_t Part(MIRQOSInterface&) override { return 0; }
    Promise PartPromised(Fate&) const override { return {}; }
};

class AbortMultiPartUpload : public Upload {
public:
    AbortMultiPartUpload() { name = "AbortMultiPartUpload"; }
    std::int32_t Call(MIRQOSInterface& store) override {
        CloudStoreAbortMultiPartUploadContext abort;
        abort.m_pszBucket = kBucket;
        abort.m_pszKey = kKey;
        abort.m_pszUploadId = m_id.c_str();
        return store.AbortMultiPartUpload(&abort);
    }
    Promise Promised(Fate& fate) const override {
        const std::int32_t status = fate.Next(Repeated(ForNothing(), S3Errors::NO_SUCH_UPLOAD));
        if (status == 0) {
            return {};
        }
        return {status,
                {"Abort Multi-Upload:[eu-central-1:the-bucket:k:" + m_id + "] failed.",
                 "Abort message:[*],"}};
    }
    std::string Problem(bool, const ModelService& service) const override {
        return service.objects.count(kObject) == 0 ? "" : "an object was stored";
    }

protected:
    std::int32_t Part(MIRQOSInterface&) override { return 0; }
    Promise PartPromised(Fate&) const override { return {}; }
};

}  // namespace

void AddUploadOperations(Operations& operations) {
    operations.push_back(std::make_unique<InitMultiPartUpload>());
    operations.push_back(std::make_unique<MultiPartUpload>());
    operations.push_back(std::make_unique<MultiPartCopy>());
    operations.push_back(std::make_unique<AsyncUpload>());
    operations.push_back(std::make_unique<AbortMultiPartUpload>());
}

}  // namespace Mirqos::Test
