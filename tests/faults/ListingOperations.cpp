#include <cstring>
#include <string>

#include "tests/faults/Operation.h"

namespace Mirqos::Test {
namespace {

Promise Listed(const std::string& operation, const std::string& bucket, std::int32_t status,
               std::vector<std::string> before, const std::string& counts) {
    Promise promise{status, std::move(before)};
    if (status != 0) {
        promise.lines.push_back("[" + operation + "]ListObjectsV2 in bucket:[" + bucket +
                                "] failed.");
        promise.lines.push_back("[" + operation + "]The error message:[*], EC:[" +
                                std::to_string(status) + "]");
    }
    promise.lines.push_back(operation + " complete with " + std::to_string(status) + ". bucket:[" +
                            bucket + "] prefix:[list-] " + counts);
    return promise;
}

class Listing : public Operation {
public:
    std::string Problem(bool succeeded, const ModelService&) const override {
        return m_keys == (succeeded ? m_expected : "") ? "" : "listed: " + m_keys;
    }

protected:
    std::int32_t List(MIRQOSInterface& store,
                      std::int32_t (MIRQOSInterface::*operation)(CloudStoreListObjectConext*)) {
        CloudStoreListObjectConext listing;
        listing.m_pszBucket = kBucket;
        listing.m_pszPrefix = "list-";
        const std::int32_t status = (store.*operation)(&listing);
        m_keys.clear();
        for (std::uint64_t i = 0; i < listing.m_nObjectCount; ++i) {
            m_keys.append(listing.m_pObjects[i].m_szKey).append(" ");
        }
        m_keys += listing.m_szContinuationToken;
        m_keys += listing.m_bTruncated ? "+" : "";
        store.ReleaseObjectData(&listing);
        return status;
    }
    std::string m_expected;

private:
    std::string m_keys;
};

class ListObjects : public Listing {
public:
    ListObjects() {
        name = "ListObjects";
        m_expected = "list-1 list-2 list-3 ";
    }
    std::int32_t Call(MIRQOSInterface& store) override {
        return List(store, &MIRQOSInterface::ListObjects);
    }
    Promise Promised(Fate& fate) const override {
        const std::string operation = "AwsS3Store::ListObjects";
        std::int32_t status = fate.Next(ForDocument());
        std::vector<std::string> lines;
        if (status == 0) {
            lines = {"[" + operation +
                     "]Truncated! There are 2 objects returned by ListObjectsV2. "
                     "NextContinuationToken:2."};
            status = fate.Next(ForDocument());
        }
        return Listed(operation, kBucket, status, lines,
                      status == 0 ? "count:[3], Truncated:[0]." : "count:[0], Truncated:[0].");
    }
};

class ListObjectsSegmented : public Listing {
public:
    ListObjectsSegmented() {
        name = "ListObjectsSegmented";
        m_expected = "list-1 list-2 2+";
    }
    std::int32_t Call(MIRQOSInterface& store) override {
        return List(store, &MIRQOSInterface::ListObjectsSegmented);
    }
    Promise Promised(Fate& fate) const override {
        const std::int32_t status = fate.Next(ForDocument());
        return Listed("AwsS3Store::ListObjectsSegmented", kConfigured, status, {},
                      status == 0 ? "count:[2], Truncated:[1]." : "count:[0], Truncated:[0].");
    }
};

class SearchObject : public Operation {
public:
    SearchObject() { name = "SearchObject"; }
    std::int32_t Call(MIRQOSInterface& store) override {
        CloudStoreSearchObjectConext search;
        search.m_pszBucket = kBucket;
        search.m_pszKey = "list-";
        const std::int32_t status = store.SearchObject(&search);
        m_exists = search.m_bExists;
        return status;
    }
    Promise Promised(Fate& fate) const override {
        const std::int32_t status = fate.Next(ForDocument());
        if (status == 0) {
            return {};
        }
        return {status,
                {"search object in bucket:[the-bucket] failed.",
                 "The search error message:[*], EC:[" + std::to_string(status) + "]"}};
    }
    std::string Problem(bool succeeded, const ModelService&) const override {
        return m_exists == succeeded ? "" : "m_bExists is wrong";
    }

private:
    bool m_exists = false;
};

class ListMultipartUploads : public Operation {
public:
    ListMultipartUploads() { name = "ListMultipartUploads"; }
    std::int32_t Call(MIRQOSInterface& store) override {
        CloudStoreListPartContext uploads;
        uploads.m_pszBucket = kBucket;
        uploads.m_pszPrefix = "o";
        std::strcpy(uploads.m_szKeyMarker, "marker");
        const std::int32_t status = store.ListMultipartUploads(&uploads);
        m_found = uploads.m_szKeyMarker;
        for (const MultiPartInfo& upload : uploads.m_lstParts) {
            m_found.append(upload.m_szKey).append(" ").append(upload.m_szUploadId);
        }
        return status;
    }
    Promise Promised(Fate& fate) const override {
        const std::string operation = "AwsS3Store::ListMultipartUploads ";
        const std::int32_t status = fate.Next(ForDocument());
        Promise promise{status, {operation + "enter. bucket:[the-bucket] prefix:[o]."}};
        if (status != 0) {
            promise.lines.push_back("list part in bucket:[the-bucket] failed.");
            promise.lines.push_back("The list error message:[*], EC:[" + std::to_string(status) +
                                    "]");
        }
        promise.lines.push_back(operation + "leave. bucket:[the-bucket] prefix:[o] count:[" +
                                (status == 0 ? "1" : "0") + "].");
        return promise;
    }
    std::string Problem(bool succeeded, const ModelService&) const override {
        return m_found == (succeeded ? "open id-of-open" : "marker") ? "" : "found: " + m_found;
    }

private:
    std::string m_found;
};

}  // namespace

void AddListingOperations(Operations& operations) {
    operations.push_back(std::make_unique<ListObjects>());
    operations.push_back(std::make_unique<ListObjectsSegmented>());
    operations.push_back(std::make_unique<SearchObject>());
    operations.push_back(std::make_unique<ListMultipartUploads>());
}

}  // namespace Mirqos::Test
