#include <string>
#include <utility>

#include "tests/faults/Operation.h"

namespace Mirqos::Test {
namespace {

constexpr char kObject[] = "the-bucket/k";
constexpr char kEnds[] =
    "Copy from [eu-central-1:the-bucket:source] to [eu-central-1:the-bucket:k] ";

std::string Text(std::int32_t status) {
    return std::to_string(status);
}

class CopyObject : public Operation {
public:
    CopyObject() { name = "CopyObject"; }
    void Arrange(ModelService& service) const override { service.objects.erase(kObject); }
    std::int32_t Call(MIRQOSInterface& store) override {
        CloudStoreCopyObjectContext copy;
        copy.m_pszSrcBucket = kBucket;
        copy.m_pszSrcKey = kSource;
        copy.m_pszDstBucket = kBucket;
        copy.m_pszDstKey = kKey;
        copy.m_bIgnoreMissingSource = false;
        copy.m_nSrcSize = m_size;
        copy.m_nPartSize = m_part;
        return store.CopyObject(&copy);
    }
    Promise Promised(Fate& fate) const override {
        const std::int32_t status = fate.Next(ForDocument());
        if (status == 0) {
            return {0, {std::string(kEnds) + "success."}};
        }
        return {status, {std::string(kEnds) + "failed.", "[*],EC:[" + Text(status) + "]"}};
    }
    std::string Problem(bool succeeded, const ModelService& service) const override {
        const auto object = service.objects.find(kObject);
        if (object == service.objects.end()) {
            return succeeded ? "nothing was stored" : "";
        }
        return object->second == SourceBytes() ? "" : "something else was stored";
    }

protected:
    std::uint64_t m_size = 0;
    std::uint64_t m_part = 0;
};

/// A size that cannot be looked up is the result, also of a copy that then succeeds.
class CopyWithLookUp : public CopyObject {
public:
    CopyWithLookUp() {
        name = "CopyObject, size looked up";
        provider = 6;
    }
    Promise Promised(Fate& fate) const override {
        const std::string listing = "AwsS3Store::ListObjects";
        const std::int32_t found = fate.Next(ForDocument());
        Promise promise;
        if (found == 0) {
            promise.lines = {listing +
                             " complete with 0. bucket:[the-configured-bucket] prefix:[source] "
                             "count:[1], Truncated:[0]."};
        } else {
            promise.lines = {
                "[" + listing + "]ListObjectsV2 in bucket:[the-configured-bucket] failed.",
                "[" + listing + "]The error message:[*], EC:[" + Text(found) + "]",
                listing + " complete with " + Text(found) +
                    ". bucket:[the-configured-bucket] prefix:[source] count:[0], Truncated:[0].",
                "[AwsS3Store::GetObjectSize]Failed to list object with prefix source in bucket "
                "the-configured-bucket. EC:" +
                    Text(found) + "."};
        }
        const Promise copy = CopyObject::Promised(fate);
        promise.lines.insert(promise.lines.end(), copy.lines.begin(), copy.lines.end());
        promise.status = copy.status != 0 ? copy.status : found;
        return promise;
    }
};

/// Larger than a part: two reads of 1000 bytes, then parts of 1200 and 800.
class CopyThroughFile : public CopyObject {
public:
    CopyThroughFile() {
        name = "CopyObject, through a file";
        provider = 6;
        buffer = 1000;
        m_size = SourceBytes().size();
        m_part = 1200;
    }
    Promise Promised(Fate& fate) const override {
        Promise promise;
        promise.lines = {
            "[AwsS3Store::CopyObject] Source size for source is [2000], partsize "
            "[1200]",
            "[AwsS3Store::CopyObject]Calling Headobject for source in the-bucket"};
        promise.status = fate.Next(ToObjectHead());
        if (promise.status != 0) {
            promise.lines.push_back("HeadObject [the-bucket source] failed.");
            promise.lines.push_back("The error message:[*], EC:[" + Text(promise.status) + "]");
        } else {
            const std::string name = "[AwsS3Store::GCSMultipartCopyObject] Temporary ";
            promise.lines.push_back(name + "path is *.");
            promise.lines.push_back(name + "file is *.");
            Download(fate, promise);
            if (promise.status == 0) {
                Send(fate, promise);
            }
            promise.lines.push_back(name + "file deleted * ret[" + Text(promise.status) + "]");
        }
        promise.lines.push_back(kEnds + std::string(promise.status == 0 ? "success" : "failed") +
                                " EC:[" + Text(promise.status) + "].");
        return promise;
    }

private:
    static void Download(Fate& fate, Promise& promise) {
        const std::string name = "[AwsS3Store::DownloadFileForCopyObject]";
        promise.lines.push_back(name + "The size of object source is 2000.");
        for (const std::string offset : {"0", "1000"}) {
            promise.status = fate.Next(ForBytes(offset != "0"));
            if (promise.status != 0) {
                promise.lines.push_back(
                    "region:[eu-central-1], bucket:[the-configured-bucket] read object:[source] "
                    "failed.");
                promise.lines.push_back("[*:~],EC:[" + Text(promise.status) + "].");
                promise.lines.push_back(name +
                                        "Failed to read object:[source], bytes2Read:[1000], "
                                        "readed:0, offset:" +
                                        offset + ". EC:" + Text(promise.status) + ".");
                return;
            }
            promise.lines.push_back(name + "Reading object dwToRead=1000");
        }
        promise.lines.push_back(name + " Dwonloaded object source to file [*] success.");
    }
    static void Send(Fate& fate, Promise& promise) {
        const std::string name = "[AwsS3Store::UploadFileForCopyObject]";
        promise.status = fate.Next(ForDocument());
        if (promise.status != 0) {
            promise.lines.push_back(
                "Init multi-part upload for:[eu-central-1:the-bucket:k] failed.EC:[" +
                Text(promise.status) + "].");
            promise.lines.push_back("Init Error Message:[*].");
            promise.lines.push_back(name + ":Initialize multi-part upload for:[k] failed.EC:[" +
                                    Text(promise.status) + "].");
            return;
        }
        promise.lines.push_back(name + " Size of file * is [2000].");
        for (const auto& [number, size] : {std::pair("1", "1200"), std::pair("2", "800")}) {
            promise.status = fate.Next(OfBytes());
            if (promise.status != 0) {
                promise.lines.push_back("Part Upload:[eu-central-1:the-bucket:k:" +
                                        std::string(number) + ":" + size + "] failed.");
                promise.lines.push_back("Part Upload:[*].");
                promise.lines.push_back(name + ":upload part:[" + number +
                                        "] of object:[k] failed.EC:[" + Text(promise.status) +
                                        "].");
                GiveUp(fate, promise);
                return;
            }
        }
        Sent complete = WithBody(ForDocument());
        complete.takesTags = true;
        promise.status = fate.Next(complete);
        if (promise.status != 0) {
            promise.lines.push_back("Complete Multi-Part [eu-central-1:the-bucket:k:*:2] failed.");
            promise.lines.push_back("Reason:[*],EC:[" + Text(promise.status) + "].");
            promise.lines.push_back(name +
                                    ":complete multi-part upload for object:[k] failed.EC:[" +
                                    Text(promise.status) + "].");
            GiveUp(fate, promise);
            return;
        }
        promise.lines.push_back(name +
                                " Uploaded object k to bucket [the-bucket] from file [*] success.");
    }
    static void GiveUp(Fate& fate, Promise& promise) {
        const std::string name = "[AwsS3Store::UploadFileForCopyObject]";
        promise.lines.push_back(name +
                                " Aborting multipart upload from object [k] bucket [the-bucket] ");
        if (const std::int32_t status = fate.Next(ForNothing()); status != 0) {
            promise.lines.push_back("Abort Multi-Upload:[eu-central-1:the-bucket:k:*] failed.");
            promise.lines.push_back("Abort message:[*],");
            promise.lines.push_back(name + ":abort multi-part upload for object:[k] failed.EC:[" +
                                    Text(status) + "].");
        }
    }
};

}  // namespace

void AddCopyOperations(Operations& operations) {
    operations.push_back(std::make_unique<CopyObject>());
    operations.push_back(std::make_unique<CopyWithLookUp>());
    operations.push_back(std::make_unique<CopyThroughFile>());
}

}  // namespace Mirqos::Test
