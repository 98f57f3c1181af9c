#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/service/ServiceTest.h"

namespace Mirqos::Test {

/// Objects that are sent in parts and read in ranges.
class LargeObjectTest : public ServiceTest {
protected:
    static constexpr std::size_t kMiB = 1024 * 1024;

    /// A store with threads; `endpoint` null: the server itself.
    StorePointer ThreadedStore(std::int32_t threads = 4, const char* endpoint = nullptr);

    /// Opens an upload; its id, or an empty text when that failed.
    std::string Open(MIRQOSInterface& store, const char* key);
    CloudStoreMultiPartUploadContext Part(const std::string& upload, const char* key, int number,
                                          const unsigned char* bytes, std::size_t size,
                                          bool last) const;
    CloudStoreFinishMultiPartUploadContext Finish(const std::string& upload, const char* key,
                                                  int parts) const;
    std::int32_t Abort(MIRQOSInterface& store, const std::string& upload, const char* key);
    /// Submits `bytes` in parts of `partSize`; returns how many they are.
    int SubmitAll(MIRQOSInterface& store, const std::string& upload, const char* key,
                  const Bytes& bytes, std::size_t partSize);
    /// Starts reads of `size` bytes from `first` on, in ranges of `range`, straight into `place`;
    /// the status of their wait.
    std::int32_t ReadRanges(MIRQOSInterface& store, const char* key, std::size_t first,
                            std::size_t size, std::size_t range, unsigned char* place);
    Bytes ReadBack(MIRQOSInterface& store, const char* key, std::size_t size,
                   std::size_t range = 8 * kMiB);
    /// Ids of the uploads of the test's bucket that are open on the server.
    std::vector<std::string> OpenUploads();
    bool Exists(const char* key);
};

}  // namespace Mirqos::Test
