#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "sdk/core/client/Pipeline.h"

namespace Mirqos::S3 {

/// Whether the name can be a label of a host name: 3 to 63 lower-case letters, digits, hyphens and
/// dots, every part beginning and ending with a letter or digit, and not the form of an IP address.
bool IsDnsCompatible(std::string_view bucket);

/// Finds host and path of requests. Immutable.
class Addressing {
public:
    /// `endpoint` is "[http://|https://]host[:port][/path]", or empty for the service of the
    /// region; its scheme goes before `https`. What stands in the port's place and is no port from
    /// 1 to 65535 makes the endpoint invalid.
    Addressing(const std::string& endpoint, const std::string& region, bool https,
               bool useVirtualAddressing);

    /// Empty: requests can be sent. Otherwise why not, in one line.
    const std::string& Problem() const { return m_problem; }

    /// The bucket goes into the host name where that is wanted and possible, else it is the path's
    /// first part. The key is percent-encoded and nothing else: no slash or dot is merged.
    Client::Destination Locate(const std::optional<std::string>& bucket,
                               const std::optional<std::string>& key) const;

private:
    void ParseEndpoint(std::string_view endpoint);
    bool GoesIntoHost(const std::string& bucket) const;

    bool m_https;
    bool m_useVirtualAddressing;
    std::string m_host;
    std::uint16_t m_port = 0;
    std::string m_pathPrefix;  ///< without a slash at its end
    std::string m_problem;
};

}  // namespace Mirqos::S3
