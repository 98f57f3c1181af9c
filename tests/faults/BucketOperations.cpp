#include <string>

#include "tests/faults/Operation.h"

namespace Mirqos::Test {
namespace {

using Aws::S3::S3Errors;

class CreateBucket : public Operation {
public:
    CreateBucket() { name = "CreateBucket"; }
    void Arrange(ModelService& service) const override { service.buckets.erase("new-bucket"); }
    std::int32_t Call(MIRQOSInterface& store) override {
        CloudStoreCreateBucketContext creation;
        creation.m_pszBucket = "new-bucket";
        creation.m_pszRegion = "eu-west-1";
        return store.CreateBucket(&creation);
    }
    Promise Promised(Fate& fate) const override {
        const std::int32_t status =
            fate.Next(Repeated(WithBody(ForNothing()), S3Errors::BUCKET_ALREADY_OWNED_BY_YOU));
        if (status == 0) {
            return {0, {"Create bucket:[new-bucket] successful!"}};
        }
        return {status,
                {"Create bucket:[new-bucket] failed! [*], EC:[" + std::to_string(status) + "]"}};
    }
    std::string Problem(bool succeeded, const ModelService& service) const override {
        return succeeded && service.buckets.count("new-bucket") == 0 ? "there is none" : "";
    }
};

class DeleteBucket : public Operation {
public:
    DeleteBucket() { name = "DeleteBucket"; }
    void Arrange(ModelService& service) const override { service.buckets.insert("old-bucket"); }
    std::int32_t Call(MIRQOSInterface& store) override {
        CloudStoreDeleteBucketContext deletion;
        deletion.m_pszBucket = "old-bucket";
        return store.DeleteBucket(&deletion);
    }
    Promise Promised(Fate& fate) const override {
        const std::int32_t status = fate.Next(Repeated(ForNothing(), S3Errors::NO_SUCH_BUCKET));
        if (status == 0) {
            return {0, {"delete bucket:[old-bucket] successful!"}};
        }
        return {status,
                {"delete bucket:[old-bucket] failed.[*]:[" + std::to_string(status) + "]."}};
    }
    std::string Problem(bool succeeded, const ModelService& service) const override {
        return succeeded && service.buckets.count("old-bucket") != 0 ? "it is still there" : "";
    }
};

class ListBucket : public Operation {
public:
    ListBucket() { name = "ListBucket"; }
    std::int32_t Call(MIRQOSInterface& store) override {
        CloudStoreListBucketContext buckets;
        const std::int32_t status = store.ListBucket(&buckets);
        m_first = buckets.m_pBucketNames == nullptr ? "" : buckets.m_pBucketNames;
        store.ReleaseBucketList(&buckets);
        return status;
    }
    Promise Promised(Fate& fate) const override {
        const std::int32_t status = fate.Next(ForDocument());
        if (status == 0) {
            return {};
        }
        return {status, {"list bucket failed:[*]. EC:[" + std::to_string(status) + "]."}};
    }
    std::string Problem(bool succeeded, const ModelService&) const override {
        return m_first == (succeeded ? kBucket : "") ? "" : "the first is " + m_first;
    }

private:
    std::string m_first;
};

/// The one operation whose status tells nothing.
class HeadBucket : public Operation {
public:
    HeadBucket() { name = "HeadBucket"; }
    std::int32_t Call(MIRQOSInterface& store) override {
        CloudStoreHeadBucketConext head;
        head.m_pszBucket = kBucket;
        const std::int32_t status = store.HeadBucket(&head);
        m_exists = head.m_bExists;
        return status;
    }
    Promise Promised(Fate& fate) const override {
        m_expected = fate.Next(ToHead()) == 0;
        return {0,
                {m_expected ? "AwsS3Store::HeadBucket the bucket exists[the-bucket]!"
                            : "AwsS3Store::HeadBucket, Error: ~, Err Msg: *, bucket: the-bucket "}};
    }
    std::string Problem(bool, const ModelService&) const override {
        return m_exists == m_expected ? "" : "m_bExists is wrong";
    }

private:
    bool m_exists = false;
    mutable bool m_expected = false;
};

class PutLifecycle : public Operation {
public:
    PutLifecycle() { name = "PutBucketLifecycleConfiguration"; }
    std::int32_t Call(MIRQOSInterface& store) override {
        LifecycleConfigContext lifecycle;
        lifecycle.m_pszBucket = kBucket;
        lifecycle.m_pszPrefix = "p";
        lifecycle.m_pszRuleId = "rule";
        lifecycle.m_nDays = 7;
        return store.PutBucketLifecycleConfiguration(&lifecycle);
    }
    Promise Promised(Fate& fate) const override {
        const std::int32_t status = fate.Next(WithBody(ForNothing()));
        if (status == 0) {
            return {0,
                    {"AwsS3Store::PutBucketLifecycleConfiguration success. Bucket[the-bucket] "
                     "Prefix[p] ID[rule] Days[7]"}};
        }
        return {status,
                {"Failed to PutBucketLifecycleConfiguration. ret[" + std::to_string(status) +
                 "] Error:[*]."}};
    }
    std::string Problem(bool, const ModelService&) const override { return ""; }
};

class GetBucketLocation : public Operation {
public:
    GetBucketLocation() { name = "GetBucketLocation"; }
    std::int32_t Call(MIRQOSInterface& store) override {
        char location[32] = "untouched";
        const std::int32_t status = store.GetBucketLocation(kBucket, location, sizeof location);
        m_location = location;
        return status;
    }
    Promise Promised(Fate& fate) const override {
        const std::int32_t status = fate.Next(ForDocument());
        if (status == 0) {
            return {};
        }
        return {status, {"GetBucketLocation error(" + std::to_string(status) + "): ~ - *."}};
    }
    std::string Problem(bool succeeded, const ModelService&) const override {
        return m_location == (succeeded ? "eu-west-1" : "untouched") ? "" : "it is " + m_location;
    }

private:
    std::string m_location;
};

}  // namespace

void AddBucketOperations(Operations& operations) {
    operations.push_back(std::make_unique<CreateBucket>());
    operations.push_back(std::make_unique<DeleteBucket>());
    operations.push_back(std::make_unique<ListBucket>());
    operations.push_back(std::make_unique<HeadBucket>());
    operations.push_back(std::make_unique<PutLifecycle>());
    operations.push_back(std::make_unique<GetBucketLocation>());
}

}  // namespace Mirqos::Test
