#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tests/service/ServiceTest.h"

namespace Mirqos::Test {

/// The size in bytes of each object, by its key.
using Sizes = std::map<std::string, std::uint64_t>;

/// Base of the tests that list objects.
class ListingTest : public ServiceTest {
protected:
    /// 1,000 keys under "a/", 600 under "b/" and 900 under "c/", with sizes from 0 to 250 bytes.
    static Sizes ManyObjects();
    /// The objects of `sizes` whose keys begin with `prefix`.
    static Sizes Under(const std::string& prefix, const Sizes& sizes);

    /// Writes the objects into the test's bucket with several threads at once.
    void WriteAll(MIRQOSInterface& store, const Sizes& sizes);
    /// A bucket with the many objects. It is filled once for all tests of a program, which must
    /// not change it.
    const std::string& FilledBucket(MIRQOSInterface& store);

    /// One whole listing.
    struct Whole {
        std::int32_t status;
        bool truncated;
        Sizes sizes;
    };
    static Whole ListWhole(MIRQOSInterface& store, const std::string& bucket,
                           const char* prefix = nullptr);

    /// A walk through all pages of the store's own bucket.
    struct Walk {
        std::vector<std::size_t> pages;  ///< how many objects each held
        Sizes sizes;
    };
    static Walk WalkPages(MIRQOSInterface& store, const char* prefix = nullptr);

    /// Deletes the keys of `sizes` with one request.
    static std::int32_t DeleteMany(MIRQOSInterface& store, const std::string& bucket,
                                   const Sizes& sizes);

private:
    static void Take(MIRQOSInterface& store, CloudStoreListObjectConext& listing, Sizes& sizes);
};

}  // namespace Mirqos::Test
