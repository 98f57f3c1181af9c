// What a host thread does with objects: each function one operation of the interface.

#include <algorithm>
#include <set>

#include "tests/soak/HostThread.h"
#include "tools/mirqos/PackedTexts.h"
#include "tools/mirqos/Statuses.h"
#include "tools/mirqos/Tags.h"

namespace Mirqos::Soak {
namespace {

constexpr unsigned char kUntouched = 0x5C;

bool IsUntouched(const unsigned char* bytes, std::uint64_t size) {
    return std::all_of(bytes, bytes + size, [](unsigned char byte) { return byte == kUntouched; });
}

}  // namespace

CloudStoreReadObjectContext HostThread::ReadOf(const std::string& key, unsigned char* place,
                                               std::uint64_t first, std::uint64_t length) const {
    auto read = For<CloudStoreReadObjectContext>(key);
    read.m_pBuf = place;
    read.m_nReadLen = length;
    read.m_nReadSize = 0;
    read.m_nRangeStart = first;
    read.m_nRangeEnd = first + length - 1;
    return read;
}

CloudStoreCopyObjectContext HostThread::CopyOf(const std::string& source,
                                               const std::string& key) const {
    CloudStoreCopyObjectContext copy;
    copy.m_pszSrcBucket = m_bucket.c_str();
    copy.m_pszDstBucket = m_bucket.c_str();
    copy.m_pszSrcKey = source.c_str();
    copy.m_pszDstKey = key.c_str();
    return copy;
}

void HostThread::Write() {
    const std::string& key = AnyOf(m_keys);
    const Object object{NewContent(RandomSize()), {}};
    const Bytes bytes = object.content.All();
    Begin("WriteObject", key + " " + std::to_string(bytes.size()));
    auto write = For<CloudStoreWriteObjectContext>(key);
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
    auto read = ReadOf(key, bytes.data(), first, asked);
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
        read = ReadOf(key, bytes.data() + first, first, std::min(piece, size - first));
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
    auto read = ReadOf(key, &byte, 0, 1);
    Require(Ended(m_stores->own->ReadObject(&read), true) != 0, "it was read");
    Require(byte == kUntouched, "a byte was delivered");
}

void HostThread::Head() {
    const std::string& key = AnyOf(m_keys);
    const bool exists = m_objects.count(key) != 0;
    MIRQOSInterface& store = AnyStore();
    const std::uint64_t before = store.GetRequestCount();
    Begin("HeadObject", key);
    auto head = For<CloudStoreHeadObjectConext>(key);
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
    auto search = For<CloudStoreSearchObjectConext>(key);
    if (Ended(AnyStore().SearchObject(&search)) == 0) {
        Require(search.m_bExists == (m_objects.count(key) != 0), "it was told wrongly");
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
    auto copy = CopyOf(source, key);
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
    auto copy = CopyOf(source, key);
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
    auto copy = CopyOf(source, key);
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
    auto remove = For<CloudStoreDeleteObjectContext>(key);
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
    auto put = For<PutObjectTaggingContext>(key);
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
    auto get = For<GetObjectTaggingContext>(key);
    if (Ended(AnyStore().GetObjectTagging(&get)) == 0) {
        Require(TagsOf(get) == m_objects[key].tags, "other tags were read");
    }
}

}  // namespace Mirqos::Soak
