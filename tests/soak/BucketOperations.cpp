// What a host thread does with buckets: what is in its own, and a short life of another.

#include <algorithm>

#include "tests/soak/HostThread.h"
#include "tools/mirqos/PackedTexts.h"

namespace Mirqos::Soak {

void HostThread::List() {
    Begin("ListObjects", m_prefix);
    auto list = OfOwn<CloudStoreListObjectConext>();
    MIRQOSInterface& store = AnyStore();
    if (Ended(store.ListObjects(&list)) == 0) {
        CheckListed(list);
    }
    store.ReleaseObjectData(&list);
}

void HostThread::ListSegment() {
    Begin("ListObjectsSegmented", m_prefix);
    auto list = OfOwn<CloudStoreListObjectConext>();
    MIRQOSInterface& store = AnyStore();
    if (Ended(store.ListObjectsSegmented(&list)) == 0) {
        CheckListed(list);
        Require(list.m_szContinuationToken[0] == '\0', "there is a further segment");
    }
    store.ReleaseObjectData(&list);
}

void HostThread::CheckListed(const CloudStoreListObjectConext& list) const {
    Require(list.m_nObjectCount == m_objects.size(),
            std::to_string(list.m_nObjectCount) + " objects are listed, " +
                std::to_string(m_objects.size()) + " are there");
    Require(!list.m_bTruncated, "the listing is cut");
    for (std::uint64_t n = 0; n < list.m_nObjectCount; ++n) {
        const CloudStoreObjInfo& listed = list.m_pObjects[n];
        const auto found = m_objects.find(listed.m_szKey);
        Require(found != m_objects.end(), std::string("listed, but not there: ") + listed.m_szKey);
        Require(found->second.content.Size() == listed.m_nSize,
                std::string("listed with another size: ") + listed.m_szKey);
    }
}

void HostThread::BucketLife() {
    const std::string bucket = m_bucket + "-" + std::to_string(m_number);
    MIRQOSInterface& store = AnyStore();
    Begin("CreateBucket", bucket);
    CloudStoreCreateBucketContext create;
    create.m_pszBucket = bucket.c_str();
    if (Ended(store.CreateBucket(&create), true) != kRefused) {
        UseBucket(store, bucket);
    }
    // also after a refusal: a first attempt, whose answer was lost, may have made it
    for (MIRQOSInterface* const each : {&store, m_stores->direct.get()}) {
        Begin("DeleteBucket", bucket);
        CloudStoreDeleteBucketContext remove;
        remove.m_pszBucket = bucket.c_str();
        Ended(each->DeleteBucket(&remove), true);
    }
    Begin("HeadBucket (missing)", bucket);
    CloudStoreHeadBucketConext head;
    head.m_pszBucket = bucket.c_str();
    Ended(m_stores->direct->HeadBucket(&head));
    Require(!head.m_bExists, "the bucket is still there");
}

void HostThread::UseBucket(MIRQOSInterface& store, const std::string& bucket) {
    Begin("HeadBucket", bucket);
    CloudStoreHeadBucketConext head;
    head.m_pszBucket = bucket.c_str();
    // a refusal shows in the answer alone
    const std::int32_t status = store.HeadBucket(&head);
    Ended(status == 0 && !head.m_bExists ? kRefused : status);

    Begin("PutBucketLifecycle", bucket);
    LifecycleConfigContext lifecycle;
    lifecycle.m_pszRuleId = "soak";
    lifecycle.m_pszBucket = bucket.c_str();
    lifecycle.m_pszPrefix = "unfinished/";
    lifecycle.m_nDays = static_cast<std::int32_t>(1 + Below(30));
    Ended(store.PutBucketLifecycleConfiguration(&lifecycle));

    Begin("GetBucketLocation", bucket);
    char location[260] = "untouched";
    if (Ended(store.GetBucketLocation(bucket.c_str(), location, sizeof location)) == 0) {
        Require(std::string(location) != "untouched", "no location was written");
    }

    Begin("ListBucket", bucket);
    CloudStoreListBucketContext list;
    if (Ended(store.ListBucket(&list)) == 0) {
        const std::vector<std::string> names = Tool::UnpackTexts(list.m_pBucketNames);
        for (const std::string& name : {m_bucket, bucket}) {
            Require(std::count(names.begin(), names.end(), name) == 1, name + " is not listed");
        }
    }
    store.ReleaseBucketList(&list);
}

}  // namespace Mirqos::Soak
