#include <string>
#include <vector>

#include "store/AwsSdk.h"
#include "store/PackedTextList.h"
#include "tests/service/ServiceTest.h"

namespace {

using Aws::S3::S3Errors;
using Mirqos::Test::NewBucketName;
using Mirqos::Test::ServiceTest;
using Mirqos::Test::SomeBytes;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class BucketAdmin : public ServiceTest {
protected:
    static std::int32_t Remove(MIRQOSInterface& store, const std::string& bucket) {
        CloudStoreDeleteBucketContext remove;
        remove.m_pszBucket = bucket.c_str();
        return store.DeleteBucket(&remove);
    }
    static std::vector<std::string> Names(MIRQOSInterface& store) {
        CloudStoreListBucketContext list;
        EXPECT_EQ(store.ListBucket(&list), 0);
        std::vector<std::string> names;
        Mirqos::PackedTextReader reader(list.m_pBucketNames);
        for (std::string_view name; reader.Next(name);) {
            names.emplace_back(name);
        }
        store.ReleaseBucketList(&list);
        EXPECT_EQ(list.m_pBucketNames, nullptr);
        return names;
    }
    static bool Exists(MIRQOSInterface& store, const std::string& bucket) {
        CloudStoreHeadBucketConext head;
        head.m_pszBucket = bucket.c_str();
        EXPECT_EQ(store.HeadBucket(&head), 0);
        return head.m_bExists;
    }
};

TEST_F(BucketAdmin, BucketsAreListedFromTheirCreationToTheirDeletion) {
    const auto store = NewStore(Config());
    const std::string bucket = NewBucketName();
    EXPECT_THAT(Names(*store), Contains(Bucket()));
    EXPECT_THAT(Names(*store), Not(Contains(bucket)));
    CloudStoreCreateBucketContext create;
    create.m_pszBucket = bucket.c_str();
    ASSERT_EQ(store->CreateBucket(&create), 0);
    EXPECT_THAT(Names(*store), Contains(bucket).Times(1));
    EXPECT_TRUE(Exists(*store, bucket));
    ForgetLog();
    EXPECT_EQ(Remove(*store, bucket), 0);
    EXPECT_THAT(Log().Texts(), ElementsAre("delete bucket:[" + bucket + "] successful!"));
    EXPECT_THAT(Names(*store), Not(Contains(bucket)));
    EXPECT_FALSE(Exists(*store, bucket));
}

TEST_F(BucketAdmin, ABucketIsDeletedOnlyWhenItIsEmpty) {
    const auto store = NewStore(Config());
    ASSERT_EQ(Write(*store, "object", SomeBytes(10)), 0);
    EXPECT_EQ(Remove(*store, Bucket()), static_cast<std::int32_t>(S3Errors::UNKNOWN));
    EXPECT_THAT(Log().Texts(),
                ElementsAre(testing::AllOf(StartsWith("delete bucket:[" + Bucket() + "] failed.["),
                                           HasSubstr("BucketNotEmpty"))));
    ASSERT_EQ(Delete(*store, "object"), 0);
    EXPECT_EQ(Remove(*store, Bucket()), 0);
    EXPECT_EQ(Remove(*store, Bucket()), static_cast<std::int32_t>(S3Errors::NO_SUCH_BUCKET));
}

TEST_F(BucketAdmin, TheLocationIsWhatThisKindOfServerCallsItsOwn) {
    const auto store = NewStore(Config());
    char location[32];
    EXPECT_EQ(store->GetBucketLocation(Bucket().c_str(), location, sizeof location), 0);
    EXPECT_STREQ(location, "default");
    EXPECT_THAT(Log().Texts(), IsEmpty());
}

TEST_F(BucketAdmin, TheLocationOfAMissingBucketIsRefused) {
    const auto store = NewStore(Config());
    char location[32] = "before";
    const auto status = static_cast<std::int32_t>(S3Errors::NO_SUCH_BUCKET);
    EXPECT_EQ(store->GetBucketLocation(NewBucketName().c_str(), location, sizeof location), status);
    EXPECT_STREQ(location, "before");
    EXPECT_THAT(Log().Texts(), ElementsAre(StartsWith("GetBucketLocation error(" +
                                                      std::to_string(status) + "): ")));
}

TEST_F(BucketAdmin, WithoutUnfinishedUploadsTheListStaysEmpty) {
    const auto store = NewStore(Config());
    CloudStoreListPartContext list;
    list.m_pszPrefix = "";
    EXPECT_EQ(store->ListMultipartUploads(&list), 0);
    EXPECT_TRUE(list.m_lstParts.empty());
    EXPECT_STREQ(list.m_szKeyMarker, "");
    const std::string missing = NewBucketName();
    list.m_pszBucket = missing.c_str();
    EXPECT_EQ(store->ListMultipartUploads(&list),
              static_cast<std::int32_t>(S3Errors::NO_SUCH_BUCKET));
}

}  // namespace
