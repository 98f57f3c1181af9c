#pragma once

#include <optional>

#include "tools/mirqos/Manifest.h"
#include "tools/mirqos/ObjectUrl.h"
#include "tools/mirqos/Session.h"

namespace Mirqos::Tool {

class Interruption;

/// What is said of a manifest whose run did not end.
constexpr const char* kUnfinishedNote =
    "; the last run of this backup did not end: some files may be missing or old";

/// A backup under a prefix: its objects' addresses and its manifest.
class BackupStore {
public:
    /// `prefix`: as the user gives it.
    BackupStore(const Session& session, const ObjectUrl& prefix);

    const std::string& Bucket() const { return m_bucket; }
    /// What every key begins with.
    const std::string& Base() const { return m_base; }
    ObjectUrl UrlOf(const std::string& path) const { return {m_bucket, m_base + path}; }
    ObjectUrl ManifestUrl() const;

    /// Nothing where there is none. Throws Failure (OperationFailed), also where the bucket is
    /// missing or the manifest is damaged.
    std::optional<Manifest> Load(const Interruption& interruption) const;
    /// The same; nothing also where the manifest is damaged.
    std::optional<Manifest> LoadWhole(const Interruption& interruption) const;
    /// The same; throws Failure (NotFound) where there is no manifest.
    Manifest Require(const Interruption& interruption) const;
    void Save(MIRQOSInterface& store, const Manifest& manifest) const;

private:
    std::optional<std::string> LoadText(const Interruption& interruption) const;
    std::string Fetch(const Interruption& interruption) const;

    const Session& m_session;
    std::string m_bucket;
    std::string m_base;
};

}  // namespace Mirqos::Tool
