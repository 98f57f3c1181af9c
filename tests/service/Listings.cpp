#include "tests/service/Listings.h"

#include <atomic>
#include <thread>
#include <utility>

namespace Mirqos::Test {

Sizes ListingTest::ManyObjects() {
    Sizes sizes;
    std::uint64_t number = 0;
    for (const auto& [folder, count] : {std::pair("a/", 1000), {"b/", 600}, {"c/", 900}}) {
        for (int i = 0; i < count; ++i, ++number) {
            sizes[folder + std::string("object-") + std::to_string(i)] = number * 7 % 251;
        }
    }
    return sizes;
}

Sizes ListingTest::Under(const std::string& prefix, const Sizes& sizes) {
    Sizes found;
    for (const auto& [key, size] : sizes) {
        if (key.compare(0, prefix.size(), prefix) == 0) {
            found[key] = size;
        }
    }
    return found;
}

void ListingTest::WriteAll(MIRQOSInterface& store, const Sizes& sizes) {
    constexpr int kThreads = 8;
    const std::vector<std::pair<std::string, std::uint64_t>> objects(sizes.begin(), sizes.end());
    std::atomic<std::size_t> next{0};
    std::vector<std::thread> writers;
    for (int i = 0; i < kThreads; ++i) {
        writers.emplace_back([&] {
            for (std::size_t place; (place = next++) < objects.size();) {
                const auto& [key, size] = objects[place];
                EXPECT_EQ(Write(store, key, Bytes(static_cast<std::size_t>(size), 'x')), 0) << key;
            }
        });
    }
    for (std::thread& writer : writers) {
        writer.join();
    }
}

const std::string& ListingTest::FilledBucket(MIRQOSInterface& store) {
    static const std::string bucket = [&] {
        WriteAll(store, ManyObjects());
        return Bucket();
    }();
    return bucket;
}

void ListingTest::Take(MIRQOSInterface& store, CloudStoreListObjectConext& listing, Sizes& sizes) {
    for (std::uint64_t i = 0; i < listing.m_nObjectCount; ++i) {
        const CloudStoreObjInfo& object = listing.m_pObjects[i];
        EXPECT_TRUE(sizes.emplace(object.m_szKey, object.m_nSize).second)
            << object.m_szKey << " is listed twice";
    }
    EXPECT_EQ(store.ReleaseObjectData(&listing), 0);
}

ListingTest::Whole ListingTest::ListWhole(MIRQOSInterface& store, const std::string& bucket,
                                          const char* prefix) {
    CloudStoreListObjectConext listing;
    listing.m_pszBucket = bucket.c_str();
    listing.m_pszPrefix = prefix;
    Whole whole;
    whole.status = store.ListObjects(&listing);
    whole.truncated = listing.m_bTruncated;
    Take(store, listing, whole.sizes);
    return whole;
}

ListingTest::Walk ListingTest::WalkPages(MIRQOSInterface& store, const char* prefix) {
    CloudStoreListObjectConext listing;
    listing.m_pszBucket = "any text stands for the store's own bucket";
    listing.m_pszPrefix = prefix;
    Walk walk;
    do {
        const std::int32_t status = store.ListObjectsSegmented(&listing);
        EXPECT_EQ(status, 0);
        if (status != 0) {
            break;
        }
        EXPECT_EQ(listing.m_bTruncated, listing.m_szContinuationToken[0] != '\0');
        walk.pages.push_back(static_cast<std::size_t>(listing.m_nObjectCount));
        Take(store, listing, walk.sizes);
    } while (listing.m_bTruncated);
    return walk;
}

std::int32_t ListingTest::DeleteMany(MIRQOSInterface& store, const std::string& bucket,
                                     const Sizes& sizes) {
    std::string packed;
    for (const auto& [key, size] : sizes) {
        packed.append(key).push_back('\0');
    }
    CloudStoreDeleteObjectsContextV2 remove;
    remove.m_pszBucket = bucket.c_str();
    remove.m_pKeys = packed.c_str();
    return store.DeleteObjectsV2(&remove);
}

}  // namespace Mirqos::Test
