#pragma once

#include <mirqos/mirqos.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "tools/mirqos/ObjectUrl.h"

namespace Mirqos::Tool {

class Interruption;

/// One page of a bucket's objects in the library's own memory, which it gives back.
class ObjectPage {
public:
    /// Fetches it. `store` has to be the bucket's own: the library looks there for the name.
    /// `token`: of the page, empty for the first, shorter than the record's room. Throws Failure.
    ObjectPage(MIRQOSInterface& store, const ObjectUrl& prefix, std::int32_t provider,
               const std::string& token);
    ObjectPage(const ObjectPage&) = delete;
    ObjectPage& operator=(const ObjectPage&) = delete;
    ~ObjectPage();

    const CloudStoreObjInfo* begin() const { return m_record.m_pObjects; }
    const CloudStoreObjInfo* end() const { return m_record.m_pObjects + m_record.m_nObjectCount; }
    /// The token of the page behind it; empty for the last. Throws Failure (OperationFailed) where
    /// there is more and the service does not say where.
    std::string Next() const;

    /// Bytes that a token may have.
    static constexpr std::size_t kLongestToken =
        sizeof CloudStoreListObjectConext::m_szContinuationToken - 1;

private:
    MIRQOSInterface& m_store;
    std::string m_prefix;
    CloudStoreListObjectConext m_record;
};

/// The sizes of all objects whose keys begin so, by key as the service has it. Throws Failure.
std::map<std::string, std::uint64_t> ListAll(MIRQOSInterface& store, const ObjectUrl& prefix,
                                             std::int32_t provider,
                                             const Interruption& interruption);

/// The size that the bucket's listing gives for exactly this key. Nothing where the key is not
/// listed or the credentials may not list: neither means that there is no such object.
std::optional<std::uint64_t> ListedSize(MIRQOSInterface& store, const ObjectUrl& url,
                                        std::int32_t provider);

}  // namespace Mirqos::Tool
