#pragma once

#include <mirqos/mirqos.h>

#include <atomic>
#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "tests/soak/Journal.h"
#include "tests/soak/Model.h"
#include "tests/soak/Tally.h"
#include "tests/support/StorePointer.h"

namespace Mirqos::Soak {

/// What the library and the server say of a request that the relay refused.
inline constexpr std::int32_t kRefused = 15;

inline constexpr std::uint64_t kMiB = 1024 * 1024;
inline constexpr std::uint64_t kPart = 5 * kMiB;  ///< the least that the server joins

/// The stores that one thread works with. All but `direct` reach the server through the relay.
struct Stores {
    Test::StorePointer own;      ///< with threads; nobody else reads with it
    Test::StorePointer copying;  ///< copies large objects through a file
    Test::StorePointer direct;   ///< meets no fault
    MIRQOSInterface* shared;     ///< with threads; all host threads use it
};

/// One thread of a host: does one random operation after the other on objects of its own, and
/// compares all that it gets with what it knows of them. What goes wrong is thrown as
/// std::runtime_error.
class HostThread {
public:
    HostThread(int number, std::uint64_t seed, std::string bucket, Tally& tally);

    /// Works until `stop` is set.
    void Work(Stores& stores, const std::atomic<bool>& stop);
    /// Reads every object back, past the relay, and looks for ones that should not be there.
    void VerifyAll(Stores& stores);

    /// What has to stand on the server.
    const Objects& Expected() const { return m_objects; }
    /// Whether this thread was given an upload of that id since it began to work.
    bool HasBegun(const std::string& upload) const { return m_uploads.count(upload) != 0; }
    std::string LastOperations() const { return m_journal.Text(); }

private:
    struct Operation;
    struct Upload;
    enum class Sent { oneByOne, atOnce };

    // The operations, each of which may end in a refusal.
    void Write();
    void ReadOneRange();
    void ReadInRanges();
    void ReadWhatIsNotThere();
    void Head();
    void Search();
    void List();
    void ListSegment();
    void Copy();
    void CopyWhatIsNotThere();
    void CopyThroughFile();
    void Delete();
    void DeleteMany();
    void UploadOneByOne();
    void UploadAtOnce();
    void UploadFromAnother();
    void GiveUploadUp();
    void GiveUploadUpWhileItIsSent();
    void PutTags();
    void GetTags();
    void BucketLife();
    void ListUploads();

    std::uint64_t Below(std::uint64_t limit) { return m_random() % limit; }
    std::uint64_t RandomSize();
    Content NewContent(std::uint64_t size) { return {m_random(), size}; }
    MIRQOSInterface& AnyStore();
    const std::string& AnyOf(const std::vector<std::string>& keys);
    /// Those of `keys` that hold an object, or that hold none.
    std::vector<std::string> Known(const std::vector<std::string>& keys, bool known = true) const;

    /// Counts the operation that was begun last. Success and refusal are what may happen, and,
    /// where `mayBeOver`, that there is no such thing: a request that is sent again after its
    /// answer was lost may find its work done.
    std::int32_t Ended(std::int32_t status, bool mayBeOver = false);
    static std::string Numbers(std::uint64_t first, std::uint64_t second) {
        return std::to_string(first) + ", " + std::to_string(second);
    }
    void Begin(const char* operation, const std::string& what);
    void Require(bool holds, const std::string& what) const;

    MaybeObject Current(const std::string& key) const;
    void Set(const std::string& key, const MaybeObject& object);
    /// After an operation on `key`: the object is as it should be, or after a failure that or
    /// untouched, which is then looked up.
    void Conclude(const std::string& key, std::int32_t status,
                  const std::vector<MaybeObject>& after);
    void Settle(const std::string& key, const std::vector<MaybeObject>& candidates);

    // Past the relay, where nothing may fail.
    bool FindDirectly(const std::string& key, std::uint64_t& size);
    Bytes ReadDirectly(const std::string& key, std::uint64_t size);
    Tags TagsDirectly(const std::string& key);
    static Tags TagsOf(const GetObjectTaggingContext& record);

    // What operations are called with.
    template <class Context>
    Context For(const std::string& key) const {
        Context context;
        context.m_pszBucket = m_bucket.c_str();
        context.m_pszKey = key.c_str();
        return context;
    }
    /// For a listing of what is this thread's.
    template <class Context>
    Context OfOwn() const {
        Context context;
        context.m_pszBucket = m_bucket.c_str();
        context.m_pszPrefix = m_prefix.c_str();
        return context;
    }
    template <class Context>
    Context OfUpload(const Upload& upload) const;
    CloudStoreReadObjectContext ReadOf(const std::string& key, unsigned char* place,
                                       std::uint64_t first, std::uint64_t length) const;
    CloudStoreCopyObjectContext CopyOf(const std::string& source, const std::string& key) const;

    /// False when it was refused.
    bool BeginUpload(Upload& upload);
    CloudStoreMultiPartUploadContext PartOf(const Upload& upload, int number,
                                            const Bytes& bytes) const;
    /// Sends a further part and waits for its answer; false when it was refused.
    bool SendPart(Upload& upload, const Content& content);
    /// Hands over two or three parts in any order.
    void SubmitParts(Upload& upload);
    std::int32_t Finish(const Upload& upload, Sent sent, int parts);
    std::int32_t Abort(const Upload& upload, MIRQOSInterface& store);
    /// Finishes the upload, or aborts it when that fails.
    void Complete(const Upload& upload, Sent sent);
    /// Gives the upload up: nothing of it may be left anywhere.
    void Abandon(const Upload& upload, Sent sent);
    void UseBucket(MIRQOSInterface& store, const std::string& bucket);
    void CheckListed(const CloudStoreListObjectConext& list) const;

    const int m_number;
    const std::string m_bucket;
    const std::string m_prefix;
    Tally& m_tally;
    std::mt19937_64 m_random;
    Journal m_journal;
    std::string m_operation;
    Objects m_objects;
    std::set<std::string> m_uploads;
    std::vector<std::string> m_keys;       ///< of objects that are sent whole
    std::vector<std::string> m_largeKeys;  ///< of those that are sent in parts
    Stores* m_stores = nullptr;
};

}  // namespace Mirqos::Soak
