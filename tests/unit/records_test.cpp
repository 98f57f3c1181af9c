#include <gtest/gtest.h>
#include <mirqos/records.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

constexpr unsigned char kFill = 0xA5;

/// A record that was default-constructed in storage full of kFill, so that what its constructor
/// leaves alone can be told from what it sets. Compiled with -fno-lifetime-dse: a compiler may
/// otherwise drop the fill, since nothing may legally read it through the record.
template <class Record>
class OnFilledStorage {
public:
    OnFilledStorage() {
        std::memset(m_storage, kFill, sizeof m_storage);
        m_record = new (m_storage) Record;
    }
    ~OnFilledStorage() { m_record->~Record(); }
    OnFilledStorage(const OnFilledStorage&) = delete;
    OnFilledStorage& operator=(const OnFilledStorage&) = delete;
    Record* operator->() { return m_record; }
    Record& operator*() { return *m_record; }

private:
    alignas(Record) unsigned char m_storage[sizeof(Record)];
    Record* m_record;
};

template <class Member>
bool IsAll(const Member& member, unsigned char value) {
    const auto* first = reinterpret_cast<const unsigned char*>(&member);
    return std::all_of(first, first + sizeof member,
                       [value](unsigned char byte) { return byte == value; });
}

template <class Member>
bool IsUntouched(const Member& member) {
    return IsAll(member, kFill);
}

template <class Member>
bool IsZero(const Member& member) {
    return IsAll(member, 0);
}

TEST(RecordDefaults, ContextAsksForWarnings) {
    OnFilledStorage<CloudStoreContext> record;
    EXPECT_EQ(record->m_nLogLevel, 3);
}

TEST(RecordDefaults, ConfigurationAsksForHttpsAndNothingElse) {
    OnFilledStorage<CloudStoreConfigInfo> record;
    EXPECT_EQ(record->m_pszRegion, nullptr);
    EXPECT_EQ(record->m_pszBucket, nullptr);
    EXPECT_EQ(record->m_pszAccessKeyId, nullptr);
    EXPECT_EQ(record->m_pszSecretKey, nullptr);
    EXPECT_EQ(record->m_pszEndPoint, nullptr);
    EXPECT_EQ(record->m_bUseHttps, 1);
    EXPECT_EQ(record->m_nBufferSize, 0);
    EXPECT_EQ(record->m_nThreadCount, 0);
    EXPECT_EQ(record->m_nProviderType, 0);
}

TEST(RecordDefaults, WriteIsAllZero) {
    OnFilledStorage<CloudStoreWriteObjectContext> record;
    EXPECT_EQ(record->m_pszKey, nullptr);
    EXPECT_EQ(record->m_pszBucket, nullptr);
    EXPECT_EQ(record->m_pBuf, nullptr);
    EXPECT_EQ(record->m_nBufLen, 0u);
    EXPECT_EQ(record->m_nReserved1, 0u);
    EXPECT_EQ(record->m_nReserved2, 0);
}

TEST(RecordDefaults, ReadLeavesItsLengthAndSizeAlone) {
    OnFilledStorage<CloudStoreReadObjectContext> record;
    EXPECT_EQ(record->m_pszKey, nullptr);
    EXPECT_EQ(record->m_pBuf, nullptr);
    EXPECT_EQ(record->m_pszBucket, nullptr);
    EXPECT_TRUE(IsUntouched(record->m_nReadLen));
    EXPECT_TRUE(IsUntouched(record->m_nReadSize));
    EXPECT_EQ(record->m_nRangeStart, 0u);
    EXPECT_EQ(record->m_nRangeEnd, 0u);
}

TEST(RecordDefaults, CopyLeavesItsFlagsAlone) {
    OnFilledStorage<CloudStoreCopyObjectContext> record;
    EXPECT_EQ(record->m_pszSrcBucket, nullptr);
    EXPECT_EQ(record->m_pszDstBucket, nullptr);
    EXPECT_EQ(record->m_pszSrcKey, nullptr);
    EXPECT_EQ(record->m_pszDstKey, nullptr);
    EXPECT_TRUE(IsUntouched(record->m_bIgnoreMissingSource));
    EXPECT_TRUE(IsUntouched(record->m_bSourceMissing));
    EXPECT_EQ(record->m_nSrcSize, 0u);
    EXPECT_EQ(record->m_nPartSize, 0u);
}

TEST(RecordDefaults, ListingBeginsAtTheStartAndChecksTheProvider) {
    OnFilledStorage<CloudStoreListObjectConext> record;
    EXPECT_EQ(record->m_pszBucket, nullptr);
    EXPECT_EQ(record->m_pReserved1, nullptr);
    EXPECT_EQ(record->m_pReserved2, nullptr);
    EXPECT_EQ(record->m_pszPrefix, nullptr);
    EXPECT_EQ(record->m_pObjects, nullptr);
    EXPECT_EQ(record->m_nObjectCount, 0u);
    EXPECT_FALSE(record->m_bTruncated);
    EXPECT_TRUE(IsZero(record->m_szContinuationToken));
    EXPECT_TRUE(record->m_bCheckProviderMarker);
}

TEST(RecordDefaults, ListedObjectLeavesItsKeyAlone) {
    OnFilledStorage<CloudStoreObjInfo> record;
    EXPECT_EQ(record->m_nSize, 0u);
    EXPECT_TRUE(IsUntouched(record->m_szKey));
}

TEST(RecordDefaults, DeletionsAndBucketRecordsAreNull) {
    OnFilledStorage<CloudStoreDeleteObjectContext> deletion;
    EXPECT_EQ(deletion->m_pszBucket, nullptr);
    EXPECT_EQ(deletion->m_pszKey, nullptr);
    OnFilledStorage<CloudStoreDeleteObjectsContextV2> deletions;
    EXPECT_EQ(deletions->m_pszBucket, nullptr);
    EXPECT_EQ(deletions->m_pKeys, nullptr);
    OnFilledStorage<CloudStoreCreateBucketContext> creation;
    EXPECT_EQ(creation->m_pszBucket, nullptr);
    EXPECT_EQ(creation->m_pszRegion, nullptr);
    OnFilledStorage<CloudStoreDeleteBucketContext> bucketDeletion;
    EXPECT_EQ(bucketDeletion->m_pszBucket, nullptr);
    OnFilledStorage<CloudStoreListBucketContext> buckets;
    EXPECT_EQ(buckets->m_pBucketNames, nullptr);
}

TEST(RecordDefaults, QuestionsAnswerNoUntilAsked) {
    OnFilledStorage<CloudStoreHeadBucketConext> bucket;
    EXPECT_EQ(bucket->m_pszBucket, nullptr);
    EXPECT_FALSE(bucket->m_bExists);
    OnFilledStorage<CloudStoreHeadObjectConext> object;
    EXPECT_EQ(object->m_pszBucket, nullptr);
    EXPECT_EQ(object->m_pszKey, nullptr);
    EXPECT_FALSE(object->m_bExists);
    OnFilledStorage<CloudStoreSearchObjectConext> search;
    EXPECT_EQ(search->m_pszBucket, nullptr);
    EXPECT_EQ(search->m_pszKey, nullptr);
    EXPECT_FALSE(search->m_bExists);
}

TEST(RecordDefaults, UnfinishedUploadIsZeroToTheLastByte) {
    OnFilledStorage<MultiPartInfo> record;
    EXPECT_TRUE(IsZero(*record));
}

TEST(RecordDefaults, UploadListingBeginsAtTheStartWithAnEmptyList) {
    OnFilledStorage<CloudStoreListPartContext> record;
    EXPECT_EQ(record->m_pszBucket, nullptr);
    EXPECT_EQ(record->m_pszPrefix, nullptr);
    EXPECT_TRUE(IsZero(record->m_szKeyMarker));
    EXPECT_TRUE(record->m_lstParts.empty());
}

TEST(RecordDefaults, UploadStartIntendsPartsOfFiveMebibytes) {
    OnFilledStorage<CloudStoreInitMultiPartUploadContext> record;
    EXPECT_EQ(record->m_pszBucket, nullptr);
    EXPECT_EQ(record->m_pszKey, nullptr);
    EXPECT_EQ(record->m_nPartSize, 5242880u);
}

TEST(RecordDefaults, UploadStartsAnswerHasNoConstructor) {
    static_assert(std::is_trivially_default_constructible_v<CloudStoreInitMultiPartUploadOutcome>);
    OnFilledStorage<CloudStoreInitMultiPartUploadOutcome> record;
    EXPECT_TRUE(IsUntouched(*record));
}

TEST(RecordDefaults, PartLeavesItsLengthAndLastFlagAlone) {
    OnFilledStorage<CloudStoreMultiPartUploadContext> record;
    EXPECT_EQ(record->m_pszUploadId, nullptr);
    EXPECT_EQ(record->m_pszKey, nullptr);
    EXPECT_EQ(record->m_pszBucket, nullptr);
    EXPECT_EQ(record->m_nPartNumber, 0u);
    EXPECT_EQ(record->m_pBuf, nullptr);
    EXPECT_TRUE(IsUntouched(record->m_nBufLen));
    EXPECT_TRUE(IsUntouched(record->m_bLastPart));
}

TEST(RecordDefaults, PartCopyLeavesItsRangeAlone) {
    OnFilledStorage<CloudStoreMultiPartCopyContext> record;
    EXPECT_EQ(record->m_pszUploadId, nullptr);
    EXPECT_EQ(record->m_pszKey, nullptr);
    EXPECT_EQ(record->m_pszBucket, nullptr);
    EXPECT_EQ(record->m_pszCopySource, nullptr);
    EXPECT_TRUE(IsUntouched(record->m_nRangeStart));
    EXPECT_TRUE(IsUntouched(record->m_nRangeEnd));
    EXPECT_EQ(record->m_nPartNumber, 0u);
    EXPECT_TRUE(IsUntouched(record->m_bReserved));
}

TEST(RecordDefaults, FinishAbortAndLifecycleAreAllZero) {
    OnFilledStorage<CloudStoreFinishMultiPartUploadContext> finish;
    EXPECT_EQ(finish->m_pszUploadId, nullptr);
    EXPECT_EQ(finish->m_pszBucket, nullptr);
    EXPECT_EQ(finish->m_pszKey, nullptr);
    EXPECT_EQ(finish->m_nPartCount, 0);
    OnFilledStorage<CloudStoreAbortMultiPartUploadContext> abort;
    EXPECT_EQ(abort->m_pszUploadId, nullptr);
    EXPECT_EQ(abort->m_pszBucket, nullptr);
    EXPECT_EQ(abort->m_pszKey, nullptr);
    OnFilledStorage<LifecycleConfigContext> lifecycle;
    EXPECT_EQ(lifecycle->m_pszRuleId, nullptr);
    EXPECT_EQ(lifecycle->m_pszBucket, nullptr);
    EXPECT_EQ(lifecycle->m_pszPrefix, nullptr);
    EXPECT_EQ(lifecycle->m_nDays, 0);
}

TEST(RecordDefaults, TaggingIsNullAndTheReadTagsAreLeftAlone) {
    OnFilledStorage<PutObjectTaggingContext> put;
    EXPECT_EQ(put->m_pszBucket, nullptr);
    EXPECT_EQ(put->m_pszKey, nullptr);
    EXPECT_EQ(put->m_pTags, nullptr);
    OnFilledStorage<GetObjectTaggingContext> get;
    EXPECT_EQ(get->m_pszBucket, nullptr);
    EXPECT_EQ(get->m_pszKey, nullptr);
    EXPECT_TRUE(IsUntouched(get->m_szTags));
}

/// The members of a record, so that each can be compared.
template <class Record>
struct MembersOf;

#define MEMBERS_OF(Record, ...)                                         \
    template <>                                                         \
    struct MembersOf<Record> {                                          \
        using R = Record;                                               \
        static auto Pointers() { return std::make_tuple(__VA_ARGS__); } \
    }

MEMBERS_OF(CloudStoreContext, &R::m_nLogLevel);
MEMBERS_OF(CloudStoreConfigInfo, &R::m_pszRegion, &R::m_pszBucket, &R::m_pszAccessKeyId,
           &R::m_pszSecretKey, &R::m_pszEndPoint, &R::m_bUseHttps, &R::m_nBufferSize,
           &R::m_nThreadCount, &R::m_nProviderType);
MEMBERS_OF(CloudStoreWriteObjectContext, &R::m_pszKey, &R::m_pszBucket, &R::m_pBuf, &R::m_nBufLen,
           &R::m_nReserved1, &R::m_nReserved2);
MEMBERS_OF(CloudStoreReadObjectContext, &R::m_pszKey, &R::m_pBuf, &R::m_pszBucket, &R::m_nReadLen,
           &R::m_nReadSize, &R::m_nRangeStart, &R::m_nRangeEnd);
MEMBERS_OF(CloudStoreCopyObjectContext, &R::m_pszSrcBucket, &R::m_pszDstBucket, &R::m_pszSrcKey,
           &R::m_pszDstKey, &R::m_bIgnoreMissingSource, &R::m_bSourceMissing, &R::m_nSrcSize,
           &R::m_nPartSize);
MEMBERS_OF(CloudStoreObjInfo, &R::m_nSize, &R::m_szKey);
MEMBERS_OF(CloudStoreListObjectConext, &R::m_pszBucket, &R::m_pReserved1, &R::m_pReserved2,
           &R::m_pszPrefix, &R::m_pObjects, &R::m_nObjectCount, &R::m_bTruncated,
           &R::m_szContinuationToken, &R::m_bCheckProviderMarker);
MEMBERS_OF(CloudStoreDeleteObjectContext, &R::m_pszBucket, &R::m_pszKey);
MEMBERS_OF(CloudStoreDeleteObjectsContextV2, &R::m_pszBucket, &R::m_pKeys);
MEMBERS_OF(CloudStoreCreateBucketContext, &R::m_pszBucket, &R::m_pszRegion);
MEMBERS_OF(CloudStoreDeleteBucketContext, &R::m_pszBucket);
MEMBERS_OF(CloudStoreListBucketContext, &R::m_pBucketNames);
MEMBERS_OF(CloudStoreHeadBucketConext, &R::m_pszBucket, &R::m_bExists);
MEMBERS_OF(CloudStoreHeadObjectConext, &R::m_pszBucket, &R::m_pszKey, &R::m_bExists);
MEMBERS_OF(CloudStoreSearchObjectConext, &R::m_pszBucket, &R::m_pszKey, &R::m_bExists);
MEMBERS_OF(MultiPartInfo, &R::m_szKey, &R::m_szUploadId);
MEMBERS_OF(CloudStoreInitMultiPartUploadContext, &R::m_pszBucket, &R::m_pszKey, &R::m_nPartSize);
MEMBERS_OF(CloudStoreInitMultiPartUploadOutcome, &R::m_szUploadId);
MEMBERS_OF(CloudStoreMultiPartUploadContext, &R::m_pszUploadId, &R::m_pszKey, &R::m_pszBucket,
           &R::m_nPartNumber, &R::m_pBuf, &R::m_nBufLen, &R::m_bLastPart);
MEMBERS_OF(CloudStoreMultiPartCopyContext, &R::m_pszUploadId, &R::m_pszKey, &R::m_pszBucket,
           &R::m_pszCopySource, &R::m_nRangeStart, &R::m_nRangeEnd, &R::m_nPartNumber,
           &R::m_bReserved);
MEMBERS_OF(CloudStoreFinishMultiPartUploadContext, &R::m_pszUploadId, &R::m_pszBucket, &R::m_pszKey,
           &R::m_nPartCount);
MEMBERS_OF(CloudStoreAbortMultiPartUploadContext, &R::m_pszUploadId, &R::m_pszBucket, &R::m_pszKey);
MEMBERS_OF(LifecycleConfigContext, &R::m_pszRuleId, &R::m_pszBucket, &R::m_pszPrefix, &R::m_nDays);
MEMBERS_OF(PutObjectTaggingContext, &R::m_pszBucket, &R::m_pszKey, &R::m_pTags);
MEMBERS_OF(GetObjectTaggingContext, &R::m_pszBucket, &R::m_pszKey, &R::m_szTags);

/// Whether every byte of every member has the value.
template <class Record>
bool AllMembersAre(const Record& record, unsigned char value) {
    return std::apply([&](auto... members) { return (... && IsAll(record.*members, value)); },
                      MembersOf<Record>::Pointers());
}

template <class Record>
class PlainRecord : public testing::Test {
protected:
    // 1 is a valid value of a bool too, and as a pointer it is never followed.
    static constexpr unsigned char kSource = 1;
    PlainRecord() {
        std::memset(static_cast<void*>(&m_source), kSource, sizeof m_source);
        std::memset(static_cast<void*>(&m_target), 0, sizeof m_target);
    }
    Record m_source;
    Record m_target;
};

using PlainRecords = testing::Types<
    CloudStoreContext, CloudStoreConfigInfo, CloudStoreWriteObjectContext,
    CloudStoreReadObjectContext, CloudStoreCopyObjectContext, CloudStoreObjInfo,
    CloudStoreListObjectConext, CloudStoreDeleteObjectContext, CloudStoreDeleteObjectsContextV2,
    CloudStoreCreateBucketContext, CloudStoreDeleteBucketContext, CloudStoreListBucketContext,
    CloudStoreHeadBucketConext, CloudStoreHeadObjectConext, CloudStoreSearchObjectConext,
    MultiPartInfo, CloudStoreInitMultiPartUploadContext, CloudStoreInitMultiPartUploadOutcome,
    CloudStoreMultiPartUploadContext, CloudStoreMultiPartCopyContext,
    CloudStoreFinishMultiPartUploadContext, CloudStoreAbortMultiPartUploadContext,
    LifecycleConfigContext, PutObjectTaggingContext, GetObjectTaggingContext>;
TYPED_TEST_SUITE(PlainRecord, PlainRecords);

TYPED_TEST(PlainRecord, CopyAssignmentCopiesEveryMember) {
    EXPECT_EQ(&(this->m_target = this->m_source), &this->m_target);
    EXPECT_TRUE(AllMembersAre(this->m_target, this->kSource));
}

TYPED_TEST(PlainRecord, MoveAssignmentCopiesEveryMemberAndLeavesTheSource) {
    EXPECT_EQ(&(this->m_target = std::move(this->m_source)), &this->m_target);
    EXPECT_TRUE(AllMembersAre(this->m_target, this->kSource));
    EXPECT_TRUE(AllMembersAre(this->m_source, this->kSource));
}

TYPED_TEST(PlainRecord, CopyConstructionCopiesEveryMember) {
    const TypeParam copy(this->m_source);
    EXPECT_TRUE(AllMembersAre(copy, this->kSource));
}

TYPED_TEST(PlainRecord, PassesByValueWithoutAnyCodeOfTheLibrary) {
    static_assert(std::is_trivially_copy_constructible_v<TypeParam>);
    static_assert(std::is_trivially_move_constructible_v<TypeParam>);
    static_assert(std::is_trivially_destructible_v<TypeParam>);
    static_assert(std::is_standard_layout_v<TypeParam>);
    bool (*volatile byValue)(TypeParam) = [](TypeParam record) {
        return AllMembersAre(record, PlainRecord<TypeParam>::kSource);
    };
    EXPECT_TRUE(byValue(this->m_source));
}

MultiPartInfo Upload(const std::string& key, const std::string& id) {
    MultiPartInfo info;
    key.copy(info.m_szKey, sizeof info.m_szKey - 1);
    id.copy(info.m_szUploadId, sizeof info.m_szUploadId - 1);
    return info;
}

const char kBucket[] = "bucket";
const char kPrefix[] = "prefix/";

CloudStoreListPartContext ListRecord(const std::string& name, int count) {
    CloudStoreListPartContext record;
    record.m_pszBucket = kBucket;
    record.m_pszPrefix = kPrefix;
    name.copy(record.m_szKeyMarker, sizeof record.m_szKeyMarker - 1);
    for (int i = 0; i < count; ++i) {
        record.m_lstParts.push_back(
            Upload(name + "/key" + std::to_string(i), name + "/id" + std::to_string(i)));
    }
    return record;
}

std::vector<std::string> Entries(const CloudStoreListPartContext& record) {
    std::vector<std::string> entries;
    for (const MultiPartInfo& info : record.m_lstParts) {
        entries.push_back(std::string(info.m_szKey) + " " + info.m_szUploadId);
    }
    return entries;
}

std::vector<const MultiPartInfo*> Nodes(const CloudStoreListPartContext& record) {
    std::vector<const MultiPartInfo*> nodes;
    for (const MultiPartInfo& info : record.m_lstParts) {
        nodes.push_back(&info);
    }
    return nodes;
}

const std::vector<std::string> kThreeEntries = {"new/key0 new/id0", "new/key1 new/id1",
                                                "new/key2 new/id2"};

void ExpectPlainMembers(const CloudStoreListPartContext& record, const std::string& marker) {
    EXPECT_EQ(record.m_pszBucket, kBucket);
    EXPECT_EQ(record.m_pszPrefix, kPrefix);
    EXPECT_EQ(record.m_szKeyMarker, marker);
}

TEST(ListRecord, CopyOfThreeOntoFiveLeavesThreeInTheOldNodes) {
    const CloudStoreListPartContext source = ListRecord("new", 3);
    CloudStoreListPartContext target = ListRecord("old", 5);
    std::vector<const MultiPartInfo*> nodes = Nodes(target);
    EXPECT_EQ(&(target = source), &target);
    ExpectPlainMembers(target, "new");
    EXPECT_EQ(Entries(target), kThreeEntries);
    EXPECT_EQ(target.m_lstParts.size(), 3u);
    nodes.resize(3);
    EXPECT_EQ(Nodes(target), nodes);
    EXPECT_EQ(Entries(source), kThreeEntries);
}

TEST(ListRecord, CopyOfThreeOntoOneKeepsTheOldNodeAndAppendsTwo) {
    const CloudStoreListPartContext source = ListRecord("new", 3);
    CloudStoreListPartContext target = ListRecord("old", 1);
    const MultiPartInfo* node = &target.m_lstParts.front();
    target = source;
    EXPECT_EQ(Entries(target), kThreeEntries);
    EXPECT_EQ(&target.m_lstParts.front(), node);
}

TEST(ListRecord, CopyIsDeep) {
    CloudStoreListPartContext source = ListRecord("new", 3);
    const CloudStoreListPartContext copy(source);
    CloudStoreListPartContext assigned;
    assigned = source;
    source.m_lstParts.clear();
    ExpectPlainMembers(copy, "new");
    EXPECT_EQ(Entries(copy), kThreeEntries);
    EXPECT_EQ(Entries(assigned), kThreeEntries);
}

TEST(ListRecord, CopyOfAnEmptyListEmptiesTheTarget) {
    CloudStoreListPartContext target = ListRecord("old", 5);
    target = ListRecord("new", 0);
    EXPECT_TRUE(target.m_lstParts.empty());
    const CloudStoreListPartContext empty = ListRecord("newer", 0);
    target = ListRecord("old", 5);
    target = empty;
    EXPECT_TRUE(target.m_lstParts.empty());
    ExpectPlainMembers(target, "newer");
}

TEST(ListRecord, MoveConstructionTakesTheNodesAndEmptiesTheSource) {
    CloudStoreListPartContext source = ListRecord("new", 3);
    const std::vector<const MultiPartInfo*> nodes = Nodes(source);
    const CloudStoreListPartContext target(std::move(source));
    ExpectPlainMembers(target, "new");
    EXPECT_EQ(Entries(target), kThreeEntries);
    EXPECT_EQ(Nodes(target), nodes);
    EXPECT_TRUE(source.m_lstParts.empty());
    ExpectPlainMembers(source, "new");
}

TEST(ListRecord, MoveAssignmentTakesTheNodesAndEmptiesTheSource) {
    CloudStoreListPartContext source = ListRecord("new", 3);
    CloudStoreListPartContext target = ListRecord("old", 5);
    const std::vector<const MultiPartInfo*> nodes = Nodes(source);
    EXPECT_EQ(&(target = std::move(source)), &target);
    ExpectPlainMembers(target, "new");
    EXPECT_EQ(Entries(target), kThreeEntries);
    EXPECT_EQ(Nodes(target), nodes);
    EXPECT_TRUE(source.m_lstParts.empty());
    ExpectPlainMembers(source, "new");
}

TEST(ListRecord, AssignmentToItselfKeepsItsEntries) {
    CloudStoreListPartContext record = ListRecord("new", 3);
    CloudStoreListPartContext& same = record;
    record = same;
    EXPECT_EQ(Entries(record), kThreeEntries);
    record = std::move(same);
    EXPECT_EQ(Entries(record), kThreeEntries);
    ExpectPlainMembers(record, "new");
}

TEST(ListRecord, EmptiedSourceCanBeFilledAgain) {
    CloudStoreListPartContext source = ListRecord("old", 2);
    const CloudStoreListPartContext target(std::move(source));
    source = ListRecord("new", 3);
    EXPECT_EQ(Entries(source), kThreeEntries);
    EXPECT_EQ(target.m_lstParts.size(), 2u);
}

}  // namespace
