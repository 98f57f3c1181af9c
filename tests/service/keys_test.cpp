#include <algorithm>
#include <atomic>
#include <functional>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "store/AwsSdk.h"
#include "store/ObjectKey.h"
#include "tests/service/Listings.h"
#include "tests/support/KeyCorpus.h"
#include "tests/support/UsedSdk.h"

namespace Mirqos::Test {
namespace {

using testing::IsEmpty;
using testing::PrintToString;

constexpr auto npos = std::string::npos;

constexpr std::int32_t StatusOf(Aws::S3::S3Errors error) {
    return static_cast<std::int32_t>(error);
}

constexpr auto kNoSuchKey = StatusOf(Aws::S3::S3Errors::NO_SUCH_KEY);
constexpr auto kNotFound = StatusOf(Aws::S3::S3Errors::RESOURCE_NOT_FOUND);
/// The service says InvalidObjectName, which the SDK has no number for.
constexpr auto kRefused = StatusOf(Aws::S3::S3Errors::UNKNOWN);
/// It says no more than that the request was bad, which an installed SDK makes nothing of.
constexpr auto kBadRequest =
    StatusOf(kBundledSdk ? Aws::S3::S3Errors::VALIDATION : Aws::S3::S3Errors::UNKNOWN);

/// An object of the corpus. No two have the same size, so a listing tells them apart too.
struct Object {
    std::string key;
    Bytes bytes;
};
using Objects = std::vector<Object>;

Objects ObjectsOf(const std::vector<std::string>& keys) {
    Objects objects;
    for (const std::string& key : keys) {
        objects.push_back({key, SomeBytes(objects.size() + 1, objects.size())});
    }
    return objects;
}

/// Whether a record of a listing has the key, which it holds with its NUL.
bool FitsListing(const Object& object) {
    return object.key.size() < sizeof CloudStoreObjInfo::m_szKey && IsListedBySdk(object.key);
}

/// Whether this server can tell of a completed upload. To a longer key its answer has bytes of its
/// memory, which make no document.
bool FitsCompletion(const Object& object) {
    return object.key.size() <= 900;
}

template <class Condition>
Objects Those(const Objects& objects, Condition&& condition) {
    Objects those;
    std::copy_if(objects.begin(), objects.end(), std::back_inserter(those), condition);
    return those;
}

/// Every operation with every key of the corpus, on a server that takes them all, for a provider
/// type.
class Keys : public ListingTest, public testing::WithParamInterface<std::int32_t> {
protected:
    Keys()
        : m_objects(ObjectsOf(Substitutes() ? DistinctWhenSubstituted(KeyCorpus()) : KeyCorpus())) {
        for (int i = 0; i < kThreads; ++i) {
            m_stores.push_back(NewStoreOfProvider(Bucket()));
        }
    }

    bool Substitutes() const { return SubstitutesKeys(GetParam()); }
    StorePointer NewStoreOfProvider(const std::string& bucket, std::int32_t threads = 0) {
        CloudStoreConfigInfo config = Config(64 * 1024);
        config.m_pszBucket = bucket.c_str();
        config.m_nProviderType = GetParam();
        config.m_nThreadCount = threads;
        return NewStore(config);
    }
    MIRQOSInterface& Store() { return *m_stores.front(); }
    std::string NewBucket() {
        const std::string bucket = NewBucketName();
        CloudStoreCreateBucketContext create;
        create.m_pszBucket = bucket.c_str();
        EXPECT_EQ(Store().CreateBucket(&create), 0);
        return bucket;
    }

    /// Calls `use` for each object on several threads, each with a store of its own.
    void ForEach(const Objects& objects,
                 const std::function<void(MIRQOSInterface& store, const Object& object)>& use) {
        std::atomic<std::size_t> next{0};
        std::vector<std::thread> threads;
        for (const StorePointer& store : m_stores) {
            threads.emplace_back([&] {
                for (std::size_t place; (place = next++) < objects.size();) {
                    use(*store, objects[place]);
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

    void WriteAll(const Objects& objects) {
        ForEach(objects, [&](MIRQOSInterface& store, const Object& object) {
            EXPECT_EQ(Write(store, object.key, object.bytes), 0) << PrintToString(object.key);
        });
    }
    void ExpectContents(const Objects& objects, const std::string& bucket) {
        ForEach(objects, [&](MIRQOSInterface& store, const Object& object) {
            const ReadAttempt read = Read(store, object.key, 0, object.bytes.size() - 1, bucket);
            EXPECT_EQ(read.status, 0) << PrintToString(object.key);
            EXPECT_EQ(read.Delivered(), object.bytes) << PrintToString(object.key);
        });
    }
    std::int32_t CopyTo(MIRQOSInterface& store, const std::string& bucket,
                        const std::string& source, const std::string& target, std::uint64_t size) {
        CloudStoreCopyObjectContext copy;
        copy.m_pszSrcBucket = Bucket().c_str();
        copy.m_pszDstBucket = bucket.c_str();
        copy.m_pszSrcKey = source.c_str();
        copy.m_pszDstKey = target.c_str();
        copy.m_bIgnoreMissingSource = false;
        copy.m_nSrcSize = size;
        return store.CopyObject(&copy);
    }
    std::int32_t Open(MIRQOSInterface& store, const std::string& key, std::string& upload) {
        CloudStoreInitMultiPartUploadContext init;
        init.m_pszBucket = Bucket().c_str();
        init.m_pszKey = key.c_str();
        CloudStoreInitMultiPartUploadOutcome outcome;
        const std::int32_t status = store.InitMultiPartUpload(&init, &outcome);
        upload = status == 0 ? outcome.m_szUploadId : "";
        return status;
    }
    CloudStoreMultiPartUploadContext Part(const std::string& upload, const Object& object) {
        CloudStoreMultiPartUploadContext part;
        part.m_pszUploadId = upload.c_str();
        part.m_pszBucket = Bucket().c_str();
        part.m_pszKey = object.key.c_str();
        part.m_nPartNumber = 1;
        part.m_pBuf = object.bytes.data();
        part.m_nBufLen = static_cast<std::int32_t>(object.bytes.size());
        part.m_bLastPart = true;
        return part;
    }
    CloudStoreFinishMultiPartUploadContext Finish(const std::string& upload, const Object& object) {
        CloudStoreFinishMultiPartUploadContext finish;
        finish.m_pszUploadId = upload.c_str();
        finish.m_pszBucket = Bucket().c_str();
        finish.m_pszKey = object.key.c_str();
        finish.m_nPartCount = 1;
        return finish;
    }

    /// What a listing has to give: the keys as they were written, but for a "+" that comes back as
    /// "@" where keys are substituted.
    Sizes Listed(const Objects& objects) const {
        Sizes sizes;
        for (const Object& object : objects) {
            std::string key = object.key;
            if (Substitutes()) {
                std::replace(key.begin(), key.end(), '+', '@');
            }
            sizes[key] = object.bytes.size();
        }
        return sizes;
    }
    void ExpectListed(const Objects& objects, const std::string& bucket) {
        const Whole whole = ListWhole(Store(), bucket);
        EXPECT_EQ(whole.status, 0);
        EXPECT_EQ(whole.sizes, Listed(objects));
        EXPECT_EQ(WalkPages(*NewStoreOfProvider(bucket)).sizes, Listed(objects));
    }
    static Sizes SizesOf(const Objects& objects) {
        Sizes sizes;
        for (const Object& object : objects) {
            sizes[object.key] = object.bytes.size();
        }
        return sizes;
    }

    const Objects m_objects;

private:
    static constexpr int kThreads = 8;
    std::vector<StorePointer> m_stores;
};

INSTANTIATE_TEST_SUITE_P(Types, Keys,
                         testing::Values(0, ProviderType::kPlusForAt,
                                         ProviderType::kGoogleCloudStorage),
                         [](const auto& info) { return "Type" + std::to_string(info.param); });

/// Writes every key first, so that two keys that fell together on the way would show; then deletes
/// every other one, so that a deletion of another object would.
TEST_P(Keys, AreWrittenReadFoundListedAndDeletedAndNoOtherObjectIsTouched) {
    WriteAll(m_objects);
    ExpectContents(m_objects, Bucket());
    ForEach(m_objects, [&](MIRQOSInterface& store, const Object& object) {
        bool exists = false;
        EXPECT_EQ(Head(store, object.key, exists), 0) << PrintToString(object.key);
        EXPECT_TRUE(exists) << PrintToString(object.key);
    });
    const auto deleteAll = [&](const Objects& objects) {
        ForEach(objects, [&](MIRQOSInterface& store, const Object& object) {
            EXPECT_EQ(Delete(store, object.key), 0) << PrintToString(object.key);
            bool exists = true;
            EXPECT_EQ(Head(store, object.key, exists), kNotFound) << PrintToString(object.key);
            EXPECT_FALSE(exists) << PrintToString(object.key);
            EXPECT_EQ(Read(store, object.key, 0, 0).status, kNoSuchKey)
                << PrintToString(object.key);
        });
    };
    deleteAll(Those(m_objects, [](const Object& object) { return !FitsListing(object); }));
    Objects left = Those(m_objects, FitsListing);
    ExpectListed(left, Bucket());
    const auto isOdd = [](const Object& object) { return object.bytes.size() % 2 != 0; };
    deleteAll(Those(left, isOdd));
    left = Those(left, std::not_fn(isOdd));
    ExpectListed(left, Bucket());
    ExpectContents(left, Bucket());
    deleteAll(left);
    ExpectListed({}, Bucket());
}

TEST_P(Keys, AreReadAsynchronously) {
    WriteAll(m_objects);
    const auto store = NewStoreOfProvider(Bucket(), 4);
    std::vector<Bytes> delivered;
    CloudStoreReadObjectContext read;
    for (const Object& object : m_objects) {
        delivered.emplace_back(object.bytes.size());
        read.m_pszBucket = Bucket().c_str();
        read.m_pszKey = object.key.c_str();
        read.m_pBuf = delivered.back().data();
        read.m_nReadLen = object.bytes.size();
        read.m_nRangeStart = 0;
        read.m_nRangeEnd = object.bytes.size() - 1;
        EXPECT_EQ(store->ReadObjectAsync(&read), 0) << PrintToString(object.key);
    }
    EXPECT_EQ(store->WaitForReadObjectAsync(&read), 0);
    for (std::size_t i = 0; i < m_objects.size(); ++i) {
        EXPECT_EQ(delivered[i], m_objects[i].bytes) << PrintToString(m_objects[i].key);
    }
}

TEST_P(Keys, AreCopiedFromAndTo) {
    WriteAll(m_objects);
    const std::string other = NewBucket();
    ForEach(m_objects, [&](MIRQOSInterface& store, const Object& object) {
        EXPECT_EQ(CopyTo(store, other, object.key, object.key, object.bytes.size()), 0)
            << PrintToString(object.key);
    });
    ExpectContents(m_objects, other);
}

TEST_P(Keys, NameObjectsThatAreSentInParts) {
    const Objects objects = Those(m_objects, FitsCompletion);
    ForEach(objects, [&](MIRQOSInterface& store, const Object& object) {
        std::string upload;
        ASSERT_EQ(Open(store, object.key, upload), 0) << PrintToString(object.key);
        auto part = Part(upload, object);
        EXPECT_EQ(store.MultiPartUpload(&part), 0) << PrintToString(object.key);
        auto finish = Finish(upload, object);
        EXPECT_EQ(store.FinishMultiPartUpload(&finish), 0) << PrintToString(object.key);
    });
    ExpectContents(objects, Bucket());
}

TEST_P(Keys, NameObjectsThatAreSentInPartsAsynchronouslyAndUploadsThatAreAborted) {
    const Objects objects = Those(m_objects, FitsCompletion);
    ForEach(objects, [&](MIRQOSInterface& store, const Object& object) {
        std::string upload;
        ASSERT_EQ(Open(store, object.key, upload), 0) << PrintToString(object.key);
        auto part = Part(upload, object);
        EXPECT_EQ(store.DoMultiPartUploadAsync(&part), 0) << PrintToString(object.key);
        auto finish = Finish(upload, object);
        EXPECT_EQ(store.FinishMultiPartUploadAsync(&finish), 0) << PrintToString(object.key);
    });
    ExpectContents(objects, Bucket());
    ForEach(m_objects, [&](MIRQOSInterface& store, const Object& object) {
        std::string upload;
        ASSERT_EQ(Open(store, object.key, upload), 0) << PrintToString(object.key);
        CloudStoreAbortMultiPartUploadContext abort;
        abort.m_pszUploadId = upload.c_str();
        abort.m_pszBucket = Bucket().c_str();
        abort.m_pszKey = object.key.c_str();
        EXPECT_EQ(store.AbortMultiPartUpload(&abort), 0) << PrintToString(object.key);
    });
    CloudStoreListPartContext open;
    open.m_pszBucket = Bucket().c_str();
    open.m_pszPrefix = "";
    EXPECT_EQ(Store().ListMultipartUploads(&open), 0);
    EXPECT_THAT(open.m_lstParts, IsEmpty());
}

/// Copies of parts name their source as the service does, without a substitution.
TEST_P(Keys, AreSourcesOfCopiedParts) {
    // This server decodes the source of a copied part a second time, looks for a version behind "?"
    // then, and ends when no key is left: a defect of its own.
    const Objects sources = Those(
        m_objects, [](const Object& object) { return object.key.find_first_of("%?") == npos; });
    WriteAll(sources);
    ForEach(sources, [&](MIRQOSInterface& store, const Object& object) {
        const std::string source =
            Bucket() + "/" + (Substitutes() ? WithPlusForAt(object.key) : object.key);
        const Object target{"target " + std::to_string(object.bytes.size()), object.bytes};
        std::string upload;
        ASSERT_EQ(Open(store, target.key, upload), 0);
        CloudStoreMultiPartCopyContext copy;
        copy.m_pszUploadId = upload.c_str();
        copy.m_pszBucket = Bucket().c_str();
        copy.m_pszKey = target.key.c_str();
        copy.m_pszCopySource = source.c_str();
        copy.m_nRangeStart = 0;
        copy.m_nRangeEnd = object.bytes.size() - 1;
        copy.m_nPartNumber = 1;
        EXPECT_EQ(store.MultiPartCopy(&copy), 0) << PrintToString(object.key);
        auto finish = Finish(upload, target);
        EXPECT_EQ(store.FinishMultiPartUpload(&finish), 0) << PrintToString(object.key);
        EXPECT_EQ(Read(store, target.key, 0, target.bytes.size() - 1).Delivered(), object.bytes)
            << PrintToString(object.key);
    });
}

/// One request deletes the keys as they are given, without a substitution; Google Cloud Storage's
/// are deleted one by one, with it.
TEST_P(Keys, AreDeletedWithOneCall) {
    const Objects objects = Those(m_objects, FitsListing);
    WriteAll(objects);
    const bool oneByOne = GetParam() == ProviderType::kGoogleCloudStorage;
    const auto isDeleted = [&](const Object& object) {
        return oneByOne ||
               (FitsXml(object.key) && !(Substitutes() && object.key.find('@') != npos));
    };
    const auto fits = [&](const Object& object) { return oneByOne || FitsXml(object.key); };
    EXPECT_EQ(DeleteMany(Store(), Bucket(), SizesOf(Those(objects, fits))), 0);
    const Objects left = Those(objects, std::not_fn(isDeleted));
    EXPECT_EQ(left.empty(), oneByOne);
    ExpectListed(left, Bucket());
    ExpectContents(left, Bucket());
}

/// A request's document that cannot be read names no key.
TEST_P(Keys, ThatXmlCannotHoldAreRefusedByADeletionWithOneCallAsAWhole) {
    const bool oneByOne = GetParam() == ProviderType::kGoogleCloudStorage;  // in no document
    const Objects objects = ObjectsOf({"first", "control\x01", "second"});
    WriteAll(objects);
    EXPECT_EQ(DeleteMany(Store(), Bucket(), SizesOf(objects)), oneByOne ? 0 : kBadRequest);
    EXPECT_EQ(Log().CountContaining("Failed to delete objects. count:3, "), oneByOne ? 0u : 1u);
    ExpectListed(oneByOne ? Objects() : objects, Bucket());
}

TEST_P(Keys, ThatTheServiceRefusesEndInAStatusAndTouchNothing) {
    const Objects kept = ObjectsOf({"kept", "not UTF-8 ", "cut ", "k"});
    WriteAll(kept);
    ForEach(ObjectsOf(ImproperKeys()), [&](MIRQOSInterface& store, const Object& object) {
        SCOPED_TRACE(PrintToString(object.key));
        const std::string& key = object.key;
        EXPECT_EQ(Write(store, key, object.bytes), kRefused);
        const ReadAttempt read = Read(store, key, 0, 9);
        EXPECT_EQ(read.status, kRefused);
        EXPECT_TRUE(read.LeftAlone());
        bool exists = true;
        EXPECT_EQ(Head(store, key, exists), kBadRequest);
        EXPECT_FALSE(exists);
        EXPECT_EQ(Delete(store, key), kRefused);
        EXPECT_EQ(CopyTo(store, Bucket(), "kept", key, 1), kRefused);
        std::string upload;
        EXPECT_EQ(Open(store, key, upload), kRefused);
    });
    // A line that has room for the key alone does not say it; a read has two lines.
    const std::vector<std::string> keys = ImproperKeys();
    const auto tooLong = std::count_if(
        keys.begin(), keys.end(), [](const std::string& key) { return key.size() > kLongestKey; });
    EXPECT_EQ(Log().CountContaining("InvalidObjectName"),
              5 * keys.size() - static_cast<std::size_t>(tooLong));
    ExpectListed(kept, Bucket());
    ExpectContents(kept, Bucket());
}

class Substitution : public ServiceTest {
protected:
    StorePointer StoreOfProvider(std::int32_t providerType) {
        CloudStoreConfigInfo config = Config();
        config.m_nProviderType = providerType;
        return NewStore(config);
    }
};

TEST_F(Substitution, StoresPlusSignsForAtSignsOnProviderType5) {
    const auto substituting = StoreOfProvider(ProviderType::kPlusForAt);
    const auto plain = StoreOfProvider(0);
    const Bytes bytes = SomeBytes(100);
    ASSERT_EQ(Write(*substituting, "a@b@/c", bytes), 0);
    EXPECT_EQ(Read(*substituting, "a@b@/c", 0, 99).Delivered(), bytes);
    EXPECT_EQ(Read(*plain, "a+b+/c", 0, 99).Delivered(), bytes);
    EXPECT_EQ(Read(*plain, "a@b@/c", 0, 99).status, kNoSuchKey);
    EXPECT_EQ(Delete(*substituting, "a@b@/c"), 0);
    EXPECT_EQ(Read(*plain, "a+b+/c", 0, 99).status, kNoSuchKey);
}

TEST_F(Substitution, LeavesTheKeyOfAFailureAsTheCallerGaveIt) {
    const auto store = StoreOfProvider(ProviderType::kPlusForAt);
    EXPECT_EQ(Read(*store, "not@there", 0, 99).status, kNoSuchKey);
    EXPECT_EQ(Log().CountContaining("read object:[not@there] failed."), 1u);
}

}  // namespace
}  // namespace Mirqos::Test
