#include <string>

#include "tests/faults/Operation.h"

namespace Mirqos::Test {
namespace {

constexpr char kPlace[] = "region:[eu-central-1], bucket:[the-configured-bucket]";

class WriteObject : public Operation {
public:
    WriteObject() { name = "WriteObject"; }
    void Arrange(ModelService& service) const override { service.objects.erase(Object()); }
    std::int32_t Call(MIRQOSInterface& store) override {
        CloudStoreWriteObjectContext write;
        write.m_pszBucket = kBucket;
        write.m_pszKey = kKey;
        write.m_pBuf = reinterpret_cast<const unsigned char*>(WrittenBytes().data());
        write.m_nBufLen = WrittenBytes().size();
        return store.WriteObject(&write);
    }
    Promise Promised(Fate& fate) const override {
        const std::int32_t status = fate.Next(OfBytes());
        if (status == 0) {
            return {};
        }
        return {status,
                {"AwsS3Store::WriteObject failed. EC:[" + std::to_string(status) + "], " + kPlace +
                 ", OID:[k], ErrMsg[*]."}};
    }
    std::string Problem(bool succeeded, const ModelService& service) const override {
        const auto object = service.objects.find(Object());
        if (object == service.objects.end()) {
            return succeeded ? "nothing was stored" : "";
        }
        return object->second == WrittenBytes() ? "" : "something else was stored";
    }

private:
    static std::string Object() { return std::string(kBucket) + "/" + kKey; }
};

/// Both reads ask for the same range, and both leave the buffer alone when they fail.
class Reading : public Operation {
public:
    static constexpr std::size_t kFirst = 100;
    static constexpr std::size_t kLength = 1000;

    std::string Problem(bool succeeded, const ModelService& /*service*/) const override {
        const std::string expected = succeeded
                                         ? SourceBytes().substr(kFirst, kLength) + Untouched(16)
                                         : Untouched(kLength + 16);
        return m_buffer == expected ? "" : "the buffer does not hold what it should";
    }

protected:
    static std::string Untouched(std::size_t size) { return std::string(size, '\xA5'); }
    CloudStoreReadObjectContext Fresh() {
        m_buffer = Untouched(kLength + 16);
        CloudStoreReadObjectContext read;
        read.m_pszBucket = kBucket;
        read.m_pszKey = kSource;
        read.m_pBuf = reinterpret_cast<unsigned char*>(m_buffer.data());
        read.m_nReadLen = kLength;
        read.m_nReadSize = 0;
        read.m_nRangeStart = kFirst;
        read.m_nRangeEnd = kFirst + kLength - 1;
        return read;
    }
    std::string m_buffer;
};

class ReadObject : public Reading {
public:
    ReadObject() { name = "ReadObject"; }
    std::int32_t Call(MIRQOSInterface& store) override {
        CloudStoreReadObjectContext read = Fresh();
        const std::int32_t status = store.ReadObject(&read);
        m_size = read.m_nReadSize;
        return status;
    }
    Promise Promised(Fate& fate) const override {
        const std::int32_t status = fate.Next(ForBytes(true));
        if (status == 0) {
            return {};
        }
        return {status,
                {std::string(kPlace) + " read object:[source] failed.",
                 "[*:~],EC:[" + std::to_string(status) + "]."}};
    }
    std::string Problem(bool succeeded, const ModelService& service) const override {
        return m_size == (succeeded ? kLength : 0) ? Reading::Problem(succeeded, service)
                                                   : "another size than delivered";
    }

private:
    std::uint64_t m_size = 0;
};

class AsyncRead : public Reading {
public:
    AsyncRead() {
        name = "ReadObjectAsync, WaitForReadObjectAsync";
        threads = 1;
    }
    std::int32_t Call(MIRQOSInterface& store) override {
        CloudStoreReadObjectContext read = Fresh();
        const std::int32_t started = store.ReadObjectAsync(&read);
        const std::int32_t status = store.WaitForReadObjectAsync(&read);
        return started != 0 ? started : status;
    }
    Promise Promised(Fate& fate) const override {
        Promise promise;
        promise.status = fate.Next(ForBytes(true));
        promise.lines = {"AwsS3Store::ReadObjectAsync enter.",
                         "AwsS3Store::ReadObjectAsync Leave. GetRange = [bytes=100-1099], read len "
                         "= [1000]",
                         "AwsS3Store::WaitForReadObjectAsync enter. key = [source], read len = "
                         "[1000]",
                         "[AwsS3Store::HandleAsyncReadFunc]. leave. Total Request= 1 , complete = "
                         "1, EC = " +
                             std::to_string(promise.status)};
        if (promise.status == 0) {
            promise.lines.push_back(
                "[AwsS3Store::HandleAsyncReadFunc]. pBuf:[*] len:[1000] contentLen:[1000] "
                "availSize=[1000].");
        }
        return promise;
    }
    bool IsUnordered() const override { return true; }
    bool IsOpen(int level, const std::string& line) const override {
        return (level == 2 && line.find("leave. Total") == std::string::npos) ||
               line.find("no need wait.") != std::string::npos ||
               line.find("other bytes than the range") != std::string::npos;
    }
};

class DeleteObject : public Operation {
public:
    DeleteObject() { name = "DeleteObject"; }
    void Arrange(ModelService& service) const override { service.objects["the-bucket/k"] = "x"; }
    std::int32_t Call(MIRQOSInterface& store) override {
        CloudStoreDeleteObjectContext deletion;
        deletion.m_pszBucket = kBucket;
        deletion.m_pszKey = kKey;
        return store.DeleteObject(&deletion);
    }
    Promise Promised(Fate& fate) const override { return Deleted(fate.Next(ForNothing()), kKey); }
    std::string Problem(bool succeeded, const ModelService& service) const override {
        return succeeded && service.objects.count("the-bucket/k") != 0 ? "it is still there" : "";
    }
    static Promise Deleted(std::int32_t status, const std::string& key) {
        if (status == 0) {
            return {0, {"Succeed to delete object " + key + " in bucket the-bucket."}};
        }
        return {status,
                {"Failed to delete object " + key +
                     " in bucket the-bucket. EC:" + std::to_string(status) + ".",
                 "*"}};
    }
};

class DeleteObjects : public Operation {
public:
    DeleteObjects() { name = "DeleteObjectsV2"; }
    void Arrange(ModelService& service) const override {
        service.objects["the-bucket/k1"] = "x";
        service.objects["the-bucket/k2"] = "x";
    }
    std::int32_t Call(MIRQOSInterface& store) override {
        CloudStoreDeleteObjectsContextV2 deletion;
        deletion.m_pszBucket = kBucket;
        deletion.m_pKeys = "k1\0k2\0";
        return store.DeleteObjectsV2(&deletion);
    }
    Promise Promised(Fate& fate) const override {
        const std::int32_t status = fate.Next(WithBody(ForDocument()));
        if (status == 0) {
            return {0, {"[AwsS3Store::DeleteObjectsV2 Success. Count:2 bucket: the-bucket k1 k2]"}};
        }
        return {status,
                {"Failed to delete objects. count:2, bucket:the-bucket, EC:" +
                     std::to_string(status) + ".",
                 "*"}};
    }
    std::string Problem(bool succeeded, const ModelService& service) const override {
        const std::size_t left =
            service.objects.count("the-bucket/k1") + service.objects.count("the-bucket/k2");
        return succeeded && left != 0 ? "they are still there" : "";
    }
};

/// Where the service has no request for several objects. One that cannot be asked for is passed
/// over, so the status does not tell what is left.
class DeleteOneByOne : public DeleteObjects {
public:
    DeleteOneByOne() {
        name = "DeleteObjectsV2, one by one";
        provider = 6;
    }
    Promise Promised(Fate& fate) const override {
        const std::string operation = "AwsS3Store::DeleteObjectsV2 ";
        Promise promise;
        for (const std::string key : {"k1", "k2"}) {
            promise.lines.push_back(operation + "Checking object avilable " + key + ".");
            if (const std::int32_t status = fate.Next(ToObjectHead()); status != 0) {
                promise.lines.push_back("HeadObject [the-bucket " + key + "] failed.");
                promise.lines.push_back("The error message:[*], EC:[" + std::to_string(status) +
                                        "]");
                promise.lines.push_back(operation + "object is not available " + key +
                                        ". result = " + std::to_string(status));
                continue;
            }
            promise.lines.push_back(operation + "Calling DeleteObject for Google Cloud storage " +
                                    key + ".");
            const Promise single = DeleteObject::Deleted(fate.Next(ForNothing()), key);
            promise.lines.insert(promise.lines.end(), single.lines.begin(), single.lines.end());
            promise.status = single.status;
            if (promise.status != 0) {
                break;
            }
        }
        return promise;
    }
    std::string Problem(bool, const ModelService&) const override { return ""; }
};

class HeadObject : public Operation {
public:
    HeadObject() { name = "HeadObject"; }
    std::int32_t Call(MIRQOSInterface& store) override {
        CloudStoreHeadObjectConext head;
        head.m_pszBucket = kBucket;
        head.m_pszKey = kSource;
        const std::int32_t status = store.HeadObject(&head);
        m_exists = head.m_bExists;
        return status;
    }
    Promise Promised(Fate& fate) const override {
        const std::int32_t status = fate.Next(ToObjectHead());
        if (status == 0) {
            return {};
        }
        return {status,
                {"HeadObject [the-bucket source] failed.",
                 "The error message:[*], EC:[" + std::to_string(status) + "]"}};
    }
    std::string Problem(bool succeeded, const ModelService&) const override {
        return m_exists == succeeded ? "" : "m_bExists is wrong";
    }

private:
    bool m_exists = false;
};

class PutObjectTagging : public Operation {
public:
    PutObjectTagging() { name = "PutObjectTagging"; }
    std::int32_t Call(MIRQOSInterface& store) override {
        PutObjectTaggingContext tagging;
        tagging.m_pszBucket = kBucket;
        tagging.m_pszKey = kSource;
        tagging.m_pTags = "kind:test\0";
        return store.PutObjectTagging(&tagging);
    }
    Promise Promised(Fate& fate) const override {
        const std::int32_t status = fate.Next(WithBody(ForNothing()));
        if (status == 0) {
            return {0, {"Success to PutObjectTagging. Tag Count = 1 [kind:test]"}};
        }
        return {status,
                {"Failed to PutObjectTagging. ret[" + std::to_string(status) + "], Error:[*]."}};
    }
    std::string Problem(bool, const ModelService&) const override { return ""; }
};

class GetObjectTagging : public Operation {
public:
    GetObjectTagging() { name = "GetObjectTagging"; }
    std::int32_t Call(MIRQOSInterface& store) override {
        GetObjectTaggingContext tagging;
        tagging.m_pszBucket = kBucket;
        tagging.m_pszKey = kSource;
        const std::int32_t status = store.GetObjectTagging(&tagging);
        m_tags.assign(tagging.m_szTags, sizeof tagging.m_szTags);
        return status;
    }
    Promise Promised(Fate& fate) const override {
        const std::int32_t status = fate.Next(ForDocument());
        if (status == 0) {
            return {0, {"Success to GetObjectTagging. Tag Count = 1 [kind:test]"}};
        }
        return {status,
                {"Failed to GetObjectTagging. ret[" + std::to_string(status) + "] Error:[*]"}};
    }
    std::string Problem(bool succeeded, const ModelService&) const override {
        std::string expected = succeeded ? "kind:test" : "";
        expected.resize(m_tags.size());
        return m_tags == expected ? "" : "other tags than the object's";
    }

private:
    std::string m_tags;
};

}  // namespace

void AddObjectOperations(Operations& operations) {
    operations.push_back(std::make_unique<WriteObject>());
    operations.push_back(std::make_unique<ReadObject>());
    operations.push_back(std::make_unique<AsyncRead>());
    operations.push_back(std::make_unique<DeleteObject>());
    operations.push_back(std::make_unique<DeleteObjects>());
    operations.push_back(std::make_unique<DeleteOneByOne>());
    operations.push_back(std::make_unique<HeadObject>());
    operations.push_back(std::make_unique<PutObjectTagging>());
    operations.push_back(std::make_unique<GetObjectTagging>());
}

}  // namespace Mirqos::Test
