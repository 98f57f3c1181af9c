// What a host thread does: each function one operation of the interface, or one use of several.

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

#include "tests/soak/HostThread.h"
#include "tools/mirqos/PackedTexts.h"
#include "tools/mirqos/Statuses.h"
#include "tools/mirqos/Tags.h"

namespace Mirqos::Soak {
namespace {

constexpr std::uint64_t kMiB = 1024 * 1024;
constexpr std::uint64_t kPart = 5 * kMiB;  // the least that the server joins
constexpr unsigned char kUntouched = 0x5C;

std::string Numbers(std::uint64_t first, std::uint64_t second) {
    return std::to_string(first) + ", " + std::to_string(second);
}

bool IsUntouched(const unsigned char* bytes, std::uint64_t size) {
    return std::all_of(bytes, bytes + size, [](unsigned char byte) { return byte == kUntouched; });
}

}  // namespace

struct HostThread::Operation {
    int weight;
    void (HostThread::*run)();
};

/// An open multipart upload of `content` to `key`.
struct HostThread::Upload {
    MIRQOSInterface& store;
    std::string key;
    std::string id{};
    int parts = 0;
    Content content{};
};

void HostThread::Work(Stores& stores, const std::atomic<bool>& stop) {
    static const std::vector<Operation> kOperations = {
        {20, &HostThread::Write},
        {20, &HostThread::ReadOneRange},
        {14, &HostThread::ReadInRanges},
        {2, &HostThread::ReadWhatIsNotThere},
        {6, &HostThread::Head},
        {3, &HostThread::Search},
        {3, &HostThread::List},
        {2, &HostThread::ListSegment},
        {8, &HostThread::Copy},
        {2, &HostThread::CopyWhatIsNotThere},
        {1, &HostThread::CopyThroughFile},
        {5, &HostThread::Delete},
        {2, &HostThread::DeleteMany},
        {2, &HostThread::UploadOneByOne},
        {3, &HostThread::UploadAtOnce},
        {1, &HostThread::UploadFromAnother},
        {1, &HostThread::GiveUploadUp},
        {1, &HostThread::GiveUploadUpWhileItIsSent},
        {5, &HostThread::PutTags},
        {5, &HostThread::GetTags},
        {1, &HostThread::BucketLife},
        {1, &HostThread::ListUploads},
    };
    static const int kWeights =
        std::accumulate(kOperations.begin(), kOperations.end(), 0,
                        [](int sum, const Operation& each) { return sum + each.weight; });
    m_stores = &stores;
    m_uploads.clear();
    while (!stop) {
        auto place = static_cast<int>(Below(static_cast<std::uint64_t>(kWeights)));
        const auto chosen =
            std::find_if(kOperations.begin(), kOperations.end(),
                         [&](const Operation& each) { return (place -= each.weight) < 0; });
        (this->*chosen->run)();
    }
}

void HostThread::Write() {
    const std::string& key = AnyOf(m_keys);
    const Object object{NewContent(RandomSize()), {}};
    const Bytes bytes = object.content.All();
    Begin("WriteObject", key + " " + std::to_string(bytes.size()));
    CloudStoreWriteObjectContext write;
    write.m_pszBucket = m_bucket.c_str();
    write.m_pszKey = key.c_str();
    write.m_pBuf = bytes.data();
    write.m_nBufLen = bytes.size();
    Conclude(key, Ended(AnyStore().WriteObject(&write)), {object});
}

void HostThread::ReadOneRange() {
    const std::vector<std::string> keys = Known(m_keys);
    if (keys.empty()) {
        return;
    }
    const std::string& key = AnyOf(keys);
    const Content& content = m_objects[key].content;
    if (content.Size() == 0) {
        return;  // it has no byte that a range could begin with
    }
    const bool whole = Below(3) == 0;
    const std::uint64_t first = whole ? 0 : Below(content.Size());
    // a range may end behind the object
    const std::uint64_t asked = whole ? content.Size() : 1 + Below(kMiB);
    const std::uint64_t there = std::min(asked, content.Size() - first);
    Bytes bytes(static_cast<std::size_t>(asked), kUntouched);
    Begin("ReadObject", key + " " + Numbers(first, asked));
    CloudStoreReadObjectContext read;
    read.m_pszBucket = m_bucket.c_str();
    read.m_pszKey = key.c_str();
    read.m_pBuf = bytes.data();
    read.m_nReadLen = asked;
    read.m_nReadSize = 0;
    read.m_nRangeStart = first;
    read.m_nRangeEnd = first + asked - 1;
    if (Ended(m_stores->own->ReadObject(&read)) != 0) {
        Require(IsUntouched(bytes.data(), asked), "a failed read delivered bytes");
        return;
    }
    Require(read.m_nReadSize == there, std::to_string(read.m_nReadSize) + " bytes were read");
    Require(content.Range(first, there).Is(bytes.data(), there), "other bytes were read");
    Require(IsUntouched(bytes.data() + there, asked - there), "bytes behind the end were written");
}

void HostThread::ReadInRanges() {
    const std::vector<std::string> keys = Known(Below(4) == 0 ? m_largeKeys : m_keys);
    if (keys.empty()) {
        return;
    }
    const std::string& key = AnyOf(keys);
    const Content& content = m_objects[key].content;
    const std::uint64_t size = content.Size();
    if (size == 0) {
        return;
    }
    const std::uint64_t piece = 1 + size / (1 + Below(16));
    Bytes bytes(static_cast<std::size_t>(size), kUntouched);
    Begin("ReadObjectAsync", key + " " + Numbers(size, piece));
    CloudStoreReadObjectContext read;
    for (std::uint64_t first = 0; first < size; first += piece) {
        read.m_pszBucket = m_bucket.c_str();
        read.m_pszKey = key.c_str();
        read.m_pBuf = bytes.data() + first;
        read.m_nReadLen = std::min(piece, size - first);
        read.m_nReadSize = 0;
        read.m_nRangeStart = first;
        read.m_nRangeEnd = first + read.m_nReadLen - 1;
        Require(m_stores->own->ReadObjectAsync(&read) == 0, "a read was not begun");
    }
    const bool done = Ended(m_stores->own->WaitForReadObjectAsync(&read)) == 0;
    for (std::uint64_t first = 0; first < size; first += piece) {
        const std::uint64_t length = std::min(piece, size - first);
        const unsigned char* const place = bytes.data() + first;
        const bool right = content.Range(first, length).Is(place, length);
        Require(right || (!done && IsUntouched(place, length)),
                "other bytes were read at " + std::to_string(first));
    }
}

void HostThread::ReadWhatIsNotThere() {
    const std::vector<std::string> keys = Known(m_keys, false);
    if (keys.empty()) {
        return;
    }
    const std::string& key = AnyOf(keys);
    unsigned char byte = kUntouched;
    Begin("ReadObject (missing)", key);
    CloudStoreReadObjectContext read;
    read.m_pszBucket = m_bucket.c_str();
    read.m_pszKey = key.c_str();
    read.m_pBuf = &byte;
    read.m_nReadLen = 1;
    read.m_nReadSize = 0;
    Require(Ended(m_stores->own->ReadObject(&read), true) != 0, "it was read");
    Require(byte == kUntouched, "a byte was delivered");
}

void HostThread::Head() {
    const std::string& key = AnyOf(m_keys);
    const bool exists = m_objects.count(key) != 0;
    MIRQOSInterface& store = AnyStore();
    const std::uint64_t before = store.GetRequestCount();
    Begin("HeadObject", key);
    CloudStoreHeadObjectConext head;
    head.m_pszBucket = m_bucket.c_str();
    head.m_pszKey = key.c_str();
    const std::int32_t status = store.HeadObject(&head);
    // the one answer that says by its status that there is no such object
    const bool missing = !exists && status == Tool::kStatusNotFound;
    const bool answered = Ended(missing ? 0 : status) == 0;
    Require(head.m_bExists == (answered && exists), "that it exists was told wrongly");
    Require(exists || !answered || missing, "nothing was found, without a status");
    Require(store.GetRequestCount() > before, "it was not counted");
}

void HostThread::Search() {
    const std::string& key = AnyOf(m_keys);
    Begin("SearchObject", key);
    CloudStoreSearchObjectConext search;
    search.m_pszBucket = m_bucket.c_str();
    search.m_pszKey = key.c_str();
    if (Ended(AnyStore().SearchObject(&search)) == 0) {
        Require(search.m_bExists == (m_objects.count(key) != 0), "it was told wrongly");
    }
}

void HostThread::List() {
    Begin("ListObjects", m_prefix);
    CloudStoreListObjectConext list;
    list.m_pszBucket = m_bucket.c_str();
    list.m_pszPrefix = m_prefix.c_str();
    MIRQOSInterface& store = AnyStore();
    if (Ended(store.ListObjects(&list)) == 0) {
        CheckListed(list);
    }
    store.ReleaseObjectData(&list);
}

void HostThread::ListSegment() {
    Begin("ListObjectsSegmented", m_prefix);
    CloudStoreListObjectConext list;
    list.m_pszBucket = m_bucket.c_str();
    list.m_pszPrefix = m_prefix.c_str();
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

void HostThread::Copy() {
    const std::vector<std::string> sources = Known(m_keys);
    if (sources.empty()) {
        return;
    }
    const std::string& source = AnyOf(sources);
    const std::string& key = AnyOf(m_keys);
    if (key == source) {
        return;  // the service refuses it
    }
    Begin("CopyObject", source + " to " + key);
    CloudStoreCopyObjectContext copy;
    copy.m_pszSrcBucket = m_bucket.c_str();
    copy.m_pszDstBucket = m_bucket.c_str();
    copy.m_pszSrcKey = source.c_str();
    copy.m_pszDstKey = key.c_str();
    copy.m_bIgnoreMissingSource = Below(2) == 0;
    copy.m_bSourceMissing = true;
    const std::int32_t status = Ended(AnyStore().CopyObject(&copy));
    Require(!copy.m_bSourceMissing, "the source was called missing");
    Conclude(key, status, {m_objects[source]});
}

void HostThread::CopyWhatIsNotThere() {
    const std::vector<std::string> missing = Known(m_keys, false);
    if (missing.empty()) {
        return;
    }
    const std::string& source = AnyOf(missing);
    const std::string& key = AnyOf(m_largeKeys);
    Begin("CopyObject (missing)", source + " to " + key);
    CloudStoreCopyObjectContext copy;
    copy.m_pszSrcBucket = m_bucket.c_str();
    copy.m_pszDstBucket = m_bucket.c_str();
    copy.m_pszSrcKey = source.c_str();
    copy.m_pszDstKey = key.c_str();
    copy.m_bIgnoreMissingSource = Below(2) == 0;
    copy.m_bSourceMissing = false;
    const std::int32_t status = Ended(AnyStore().CopyObject(&copy), true);
    Require(status != 0 || copy.m_bIgnoreMissingSource, "it was copied");
    Require(copy.m_bSourceMissing == (status == 0), "that it is missing was told wrongly");
}

void HostThread::CopyThroughFile() {
    const std::vector<std::string> sources = Known(m_largeKeys);
    if (sources.empty()) {
        return;
    }
    const std::string& source = AnyOf(sources);
    const std::string& key = AnyOf(m_largeKeys);
    const Object object = m_objects[source];
    if (key == source) {
        return;
    }
    Begin("CopyObject (by file)", source + " to " + key);
    CloudStoreCopyObjectContext copy;
    copy.m_pszSrcBucket = m_bucket.c_str();
    copy.m_pszDstBucket = m_bucket.c_str();
    copy.m_pszSrcKey = source.c_str();
    copy.m_pszDstKey = key.c_str();
    copy.m_bIgnoreMissingSource = false;
    copy.m_bSourceMissing = true;
    copy.m_nSrcSize = Below(2) == 0 ? 0 : object.content.Size();
    copy.m_nPartSize = kPart;
    const std::int32_t status = Ended(m_stores->copying->CopyObject(&copy), true);
    Require(!copy.m_bSourceMissing, "the source was called missing");
    // The file takes the bytes alone along; without the size, which a refused listing leaves open,
    // the service copies it all.
    Conclude(key, status, {Object{object.content, {}}, object});
}

void HostThread::Delete() {
    const std::string& key = AnyOf(Below(8) == 0 ? m_largeKeys : m_keys);
    Begin("DeleteObject", key);
    CloudStoreDeleteObjectContext remove;
    remove.m_pszBucket = m_bucket.c_str();
    remove.m_pszKey = key.c_str();
    Conclude(key, Ended(AnyStore().DeleteObject(&remove)), {MaybeObject()});
}

void HostThread::DeleteMany() {
    std::set<std::string> keys;
    for (std::uint64_t n = 1 + Below(6); n > 0; --n) {
        keys.insert(AnyOf(m_keys));
    }
    const std::string packed = Tool::PackTexts({keys.begin(), keys.end()});
    Begin("DeleteObjectsV2", std::to_string(keys.size()) + " from " + *keys.begin());
    CloudStoreDeleteObjectsContextV2 remove;
    remove.m_pszBucket = m_bucket.c_str();
    remove.m_pKeys = packed.c_str();
    const std::int32_t status = Ended(AnyStore().DeleteObjectsV2(&remove));
    for (const std::string& key : keys) {
        Conclude(key, status, {MaybeObject()});
    }
}

bool HostThread::BeginUpload(Upload& upload) {
    Begin("InitMultiPartUpload", upload.key);
    CloudStoreInitMultiPartUploadContext init;
    init.m_pszBucket = m_bucket.c_str();
    init.m_pszKey = upload.key.c_str();
    init.m_nPartSize = kPart;
    CloudStoreInitMultiPartUploadOutcome outcome;
    if (Ended(upload.store.InitMultiPartUpload(&init, &outcome)) != 0) {
        return false;
    }
    upload.id = outcome.m_szUploadId;
    Require(m_uploads.insert(upload.id).second, "the id has been given before");
    return true;
}

CloudStoreMultiPartUploadContext HostThread::PartOf(const Upload& upload, int number,
                                                    const Bytes& bytes) const {
    CloudStoreMultiPartUploadContext part;
    part.m_pszUploadId = upload.id.c_str();
    part.m_pszKey = upload.key.c_str();
    part.m_pszBucket = m_bucket.c_str();
    part.m_nPartNumber = static_cast<std::uint64_t>(number);
    part.m_pBuf = bytes.data();
    part.m_nBufLen = static_cast<std::int32_t>(bytes.size());
    part.m_bLastPart = false;
    return part;
}

bool HostThread::SendPart(Upload& upload, const Content& content) {
    const Bytes bytes = content.All();
    auto part = PartOf(upload, ++upload.parts, bytes);
    Begin("MultiPartUpload", upload.key + " " + Numbers(part.m_nPartNumber, bytes.size()));
    upload.content.Append(content);
    return Ended(upload.store.MultiPartUpload(&part)) == 0;
}

void HostThread::SubmitParts(Upload& upload) {
    std::vector<Content> parts;
    for (std::uint64_t whole = 1 + Below(2); whole > 0; --whole) {
        parts.push_back(NewContent(kPart));
    }
    parts.push_back(NewContent(1 + Below(kPart)));
    std::vector<std::size_t> order(parts.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::shuffle(order.begin(), order.end(), m_random);
    for (const std::size_t place : order) {
        // the library keeps a copy
        const Bytes bytes = parts[place].All();
        auto part = PartOf(upload, static_cast<int>(place) + 1, bytes);
        part.m_bLastPart = place == order.back();
        Require(upload.store.DoMultiPartUploadAsync(&part) == 0, "a part was not taken");
    }
    for (const Content& part : parts) {
        upload.content.Append(part);
    }
    upload.parts = static_cast<int>(parts.size());
}

std::int32_t HostThread::Finish(const Upload& upload, Sent sent, int parts) {
    Begin(sent == Sent::oneByOne ? "FinishMultiPartUpload" : "FinishMultiPartUploadAsync",
          upload.key + " " + std::to_string(parts));
    CloudStoreFinishMultiPartUploadContext finish;
    finish.m_pszUploadId = upload.id.c_str();
    finish.m_pszBucket = m_bucket.c_str();
    finish.m_pszKey = upload.key.c_str();
    finish.m_nPartCount = parts;
    const std::int32_t status = sent == Sent::oneByOne
                                    ? upload.store.FinishMultiPartUpload(&finish)
                                    : upload.store.FinishMultiPartUploadAsync(&finish);
    // The server knows no upload of nothing, in words that the SDK does not know.
    Ended(parts == 0 && status == Tool::kStatusUnknown ? 0 : status, true);
    return status;
}

std::int32_t HostThread::Abort(const Upload& upload, MIRQOSInterface& store) {
    Begin("AbortMultiPartUpload", upload.key);
    CloudStoreAbortMultiPartUploadContext abort;
    abort.m_pszUploadId = upload.id.c_str();
    abort.m_pszBucket = m_bucket.c_str();
    abort.m_pszKey = upload.key.c_str();
    return Ended(store.AbortMultiPartUpload(&abort), true);
}

void HostThread::Complete(const Upload& upload, Sent sent) {
    const std::int32_t status = Finish(upload, sent, upload.parts);
    if (status != 0) {
        Abort(upload, *m_stores->direct);
    }
    Conclude(upload.key, status, {Object{upload.content, {}}});
}

void HostThread::Abandon(const Upload& upload, Sent sent) {
    Abort(upload, *m_stores->direct);
    // The finish waits for the parts that are on their way, and lets the library forget the upload.
    // Of no parts, because this server is asked again and again for one that is gone.
    Require(Finish(upload, sent, 0) != 0, "an upload that was given up was completed");
    Settle(upload.key, {Current(upload.key)});
}

void HostThread::UploadOneByOne() {
    Upload upload{AnyStore(), AnyOf(m_largeKeys)};
    if (!BeginUpload(upload)) {
        return;
    }
    if (!SendPart(upload, NewContent(kPart)) || !SendPart(upload, NewContent(RandomSize() + 1))) {
        Abandon(upload, Sent::oneByOne);
        return;
    }
    Complete(upload, Sent::oneByOne);
}

void HostThread::UploadAtOnce() {
    Upload upload{AnyStore(), AnyOf(m_largeKeys)};
    if (!BeginUpload(upload)) {
        return;
    }
    SubmitParts(upload);
    Complete(upload, Sent::atOnce);
}

void HostThread::UploadFromAnother() {
    const std::vector<std::string> sources = Known(m_largeKeys);
    if (sources.empty()) {
        return;
    }
    const std::string& source = AnyOf(sources);
    const Content& content = m_objects[source].content;
    Upload upload{AnyStore(), AnyOf(m_largeKeys)};
    if (!BeginUpload(upload)) {
        return;
    }
    const std::uint64_t first = Below(content.Size() - kPart + 1);
    const std::string place = m_bucket + "/" + source;
    Begin("MultiPartCopy", source + " " + Numbers(first, kPart) + " to " + upload.key);
    CloudStoreMultiPartCopyContext copy;
    copy.m_pszUploadId = upload.id.c_str();
    copy.m_pszKey = upload.key.c_str();
    copy.m_pszBucket = m_bucket.c_str();
    copy.m_pszCopySource = place.c_str();
    copy.m_nRangeStart = first;
    copy.m_nRangeEnd = first + kPart - 1;
    copy.m_nPartNumber = 1;
    copy.m_bReserved = false;
    upload.parts = 1;
    upload.content = content.Range(first, kPart);
    if (Ended(upload.store.MultiPartCopy(&copy)) != 0 ||
        !SendPart(upload, NewContent(RandomSize() + 1))) {
        Abandon(upload, Sent::oneByOne);
        return;
    }
    Complete(upload, Sent::oneByOne);
}

void HostThread::GiveUploadUp() {
    Upload upload{AnyStore(), AnyOf(m_largeKeys)};
    if (BeginUpload(upload)) {
        SendPart(upload, NewContent(RandomSize()));
        Abandon(upload, Sent::oneByOne);
    }
}

void HostThread::GiveUploadUpWhileItIsSent() {
    Upload upload{AnyStore(), AnyOf(m_largeKeys)};
    if (BeginUpload(upload)) {
        SubmitParts(upload);
        Abandon(upload, Sent::atOnce);
    }
}

void HostThread::PutTags() {
    const std::vector<std::string> keys = Known(m_keys);
    if (keys.empty()) {
        return;
    }
    const std::string& key = AnyOf(keys);
    Object object = m_objects[key];
    object.tags.clear();
    std::vector<std::string> packed;
    for (std::uint64_t n = Below(5); n > 0; --n) {
        const Tool::Tag tag{"tag " + std::to_string(n), "v:" + std::to_string(Below(1000))};
        object.tags[tag.name] = tag.value;
        packed.push_back(tag.Packed());
    }
    const std::string text = Tool::PackTexts(packed);
    Begin("PutObjectTagging", key + " " + std::to_string(packed.size()));
    PutObjectTaggingContext put;
    put.m_pszBucket = m_bucket.c_str();
    put.m_pszKey = key.c_str();
    put.m_pTags = text.c_str();
    Conclude(key, Ended(AnyStore().PutObjectTagging(&put)), {object});
}

void HostThread::GetTags() {
    const std::vector<std::string> keys = Known(m_keys);
    if (keys.empty()) {
        return;
    }
    const std::string& key = AnyOf(keys);
    Begin("GetObjectTagging", key);
    GetObjectTaggingContext get;
    get.m_pszBucket = m_bucket.c_str();
    get.m_pszKey = key.c_str();
    if (Ended(AnyStore().GetObjectTagging(&get)) == 0) {
        Require(TagsOf(get) == m_objects[key].tags, "other tags were read");
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

void HostThread::ListUploads() {
    Begin("ListMultipartUploads", m_prefix);
    CloudStoreListPartContext list;
    list.m_pszBucket = m_bucket.c_str();
    list.m_pszPrefix = m_prefix.c_str();
    if (Ended(AnyStore().ListMultipartUploads(&list)) != 0) {
        return;
    }
    // There can be some whose ids nobody was told, because their first answers were lost.
    for (const MultiPartInfo& upload : list.m_lstParts) {
        Require(!HasBegun(upload.m_szUploadId),
                std::string("an upload was left open: ") + upload.m_szUploadId);
    }
}

}  // namespace Mirqos::Soak
