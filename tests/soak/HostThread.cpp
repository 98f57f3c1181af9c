#include "tests/soak/HostThread.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <utility>

#include "tests/support/KeyCorpus.h"
#include "tools/mirqos/PackedTexts.h"
#include "tools/mirqos/Statuses.h"
#include "tools/mirqos/Tags.h"

namespace Mirqos::Soak {
namespace {

constexpr std::size_t kKeys = 24;
constexpr std::size_t kLargeKeys = 3;
// An upload's key has to fit a record of the library's listing.
constexpr std::size_t kLongestLargeKey = 200;
// A listed key has to fit its record, with its prefix.
constexpr std::size_t kLongestKey = 1000;
// What this server says when an upload is completed that is not there any more.
constexpr std::int32_t kInternalFailure = 1;

/// A log line that has a key with a line feed cannot be told from a torn one.
bool IsOneLine(const std::string& key) {
    return std::none_of(key.begin(), key.end(), [](char c) {
        return (static_cast<unsigned char>(c) < ' ') || c == '\x7F';
    });
}

/// None of the characters that a provider type substitutes, nor of those that this server decodes a
/// second time in the source of a copied part.
bool SuitsUploads(const std::string& key) {
    return key.size() <= kLongestLargeKey && key.find_first_of("@+%?") == std::string::npos;
}

}  // namespace

HostThread::HostThread(int number, std::uint64_t seed, std::string bucket, Tally& tally)
    : m_number(number),
      m_bucket(std::move(bucket)),
      m_prefix("t" + std::to_string(number) + "/"),
      m_tally(tally),
      m_random(seed) {
    std::vector<std::string> shapes;
    for (std::string& key : Test::KeyCorpus()) {
        if (IsOneLine(key) && Test::FitsXml(key) && key.size() <= kLongestKey) {
            shapes.push_back(std::move(key));
        }
    }
    while (m_keys.size() < kKeys) {
        m_keys.push_back(m_prefix + std::to_string(m_keys.size()) + "/" + AnyOf(shapes));
    }
    while (m_largeKeys.size() < kLargeKeys) {
        const std::string& shape = AnyOf(shapes);
        if (SuitsUploads(shape)) {
            m_largeKeys.push_back(m_prefix + "large" + std::to_string(m_largeKeys.size()) + "/" +
                                  shape);
        }
    }
}

std::uint64_t HostThread::RandomSize() {
    // as many around each power of two, up to 1 MiB, and now and then nothing
    const std::uint64_t power = Below(21);
    return power == 0 ? Below(2) : (std::uint64_t{1} << power) - Below(std::uint64_t{1} << power);
}

MIRQOSInterface& HostThread::AnyStore() {
    return Below(2) == 0 ? *m_stores->own : *m_stores->shared;
}

const std::string& HostThread::AnyOf(const std::vector<std::string>& keys) {
    return keys[static_cast<std::size_t>(Below(keys.size()))];
}

std::vector<std::string> HostThread::Known(const std::vector<std::string>& keys, bool known) const {
    std::vector<std::string> found;
    for (const std::string& key : keys) {
        if ((m_objects.count(key) != 0) == known) {
            found.push_back(key);
        }
    }
    return found;
}

void HostThread::Begin(const char* operation, const std::string& what) {
    m_operation = operation;
    m_journal.Begin(m_operation + " " + what);
}

std::int32_t HostThread::Ended(std::int32_t status, bool mayBeOver) {
    m_journal.End(status);
    m_tally.Count(m_operation, status);
    const bool isOver = Tool::IsS3Status(status) || status == kInternalFailure;
    Require(status == 0 || status == kRefused || (mayBeOver && isOver),
            "status " + std::to_string(status));
    return status;
}

void HostThread::Require(bool holds, const std::string& what) const {
    if (!holds) {
        throw std::runtime_error(m_operation + ": " + what);
    }
}

MaybeObject HostThread::Current(const std::string& key) const {
    const auto found = m_objects.find(key);
    return found == m_objects.end() ? MaybeObject() : MaybeObject(found->second);
}

void HostThread::Set(const std::string& key, const MaybeObject& object) {
    if (object) {
        m_objects[key] = *object;
    } else {
        m_objects.erase(key);
    }
}

void HostThread::Conclude(const std::string& key, std::int32_t status,
                          const std::vector<MaybeObject>& after) {
    if (status == 0) {
        Set(key, after.front());
        return;
    }
    std::vector<MaybeObject> candidates = after;
    candidates.push_back(Current(key));
    Settle(key, candidates);
}

void HostThread::Settle(const std::string& key, const std::vector<MaybeObject>& candidates) {
    std::uint64_t size = 0;
    const bool exists = FindDirectly(key, size);
    const Bytes bytes = exists ? ReadDirectly(key, size) : Bytes();
    const Tags tags = exists ? TagsDirectly(key) : Tags();
    for (const MaybeObject& candidate : candidates) {
        const bool stands = candidate
                                ? exists && candidate->content.Is(bytes.data(), bytes.size()) &&
                                      candidate->tags == tags
                                : !exists;
        if (stands) {
            Set(key, candidate);
            return;
        }
    }
    Require(false, key + " is neither as it was nor as it should be: " +
                       (exists ? std::to_string(size) + " bytes" : "nothing"));
}

bool HostThread::FindDirectly(const std::string& key, std::uint64_t& size) {
    CloudStoreListObjectConext list;
    list.m_pszBucket = m_bucket.c_str();
    list.m_pszPrefix = key.c_str();
    Require(m_stores->direct->ListObjects(&list) == 0, "the direct listing failed");
    bool found = false;
    for (std::uint64_t n = 0; n < list.m_nObjectCount; ++n) {
        if (key == list.m_pObjects[n].m_szKey) {
            size = list.m_pObjects[n].m_nSize;
            found = true;
        }
    }
    m_stores->direct->ReleaseObjectData(&list);
    return found;
}

Bytes HostThread::ReadDirectly(const std::string& key, std::uint64_t size) {
    constexpr std::uint64_t kPiece = 1024 * 1024;
    Bytes bytes(static_cast<std::size_t>(size));
    CloudStoreReadObjectContext read;
    read.m_pszBucket = m_bucket.c_str();
    read.m_pszKey = key.c_str();
    for (std::uint64_t first = 0; first < size; first += read.m_nReadLen) {
        read.m_nReadLen = std::min(kPiece, size - first);
        read.m_nReadSize = 0;
        read.m_pBuf = bytes.data() + first;
        read.m_nRangeStart = first;
        read.m_nRangeEnd = first + read.m_nReadLen - 1;
        Require(m_stores->direct->ReadObject(&read) == 0, "the direct read failed");
        Require(read.m_nReadSize == read.m_nReadLen, "the direct read is short");
    }
    return bytes;
}

Tags HostThread::TagsDirectly(const std::string& key) {
    GetObjectTaggingContext get;
    get.m_pszBucket = m_bucket.c_str();
    get.m_pszKey = key.c_str();
    Require(m_stores->direct->GetObjectTagging(&get) == 0, "the direct look at the tags failed");
    return TagsOf(get);
}

Tags HostThread::TagsOf(const GetObjectTaggingContext& record) {
    Tags tags;
    for (const std::string& packed : Tool::UnpackTexts(record.m_szTags)) {
        const Tool::Tag tag = Tool::UnpackTag(packed);
        tags[tag.name] = tag.value;
    }
    return tags;
}

void HostThread::VerifyAll(Stores& stores) {
    m_stores = &stores;
    Begin("verify", "");
    for (const auto& [key, object] : m_objects) {
        Settle(key, {object});
    }
    CloudStoreListObjectConext list;
    list.m_pszBucket = m_bucket.c_str();
    list.m_pszPrefix = m_prefix.c_str();
    Ended(stores.direct->ListObjects(&list));
    CheckListed(list);
    stores.direct->ReleaseObjectData(&list);
}

}  // namespace Mirqos::Soak
