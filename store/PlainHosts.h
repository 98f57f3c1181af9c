#pragma once

#include "store/AwsSdk.h"

namespace Mirqos {

/// Newer SDKs take the provider's own hosts from rules that know HTTPS alone: give them the host of
/// the region, to be reached over HTTP. Others do as the configuration's scheme says. The int and
/// long arguments rank the overloads: the first is taken where it compiles.
template <class Client>
auto ReachOwnHostsOverHttp(Client& client, const Aws::String& region, int)
    -> decltype(void(client.accessEndpointProvider())) {
    const char* const pszDomain =
        region.compare(0, 3, "cn-") == 0 ? ".amazonaws.com.cn" : ".amazonaws.com";
    client.accessEndpointProvider()->OverrideEndpoint("http://s3." + region + pszDomain);
}

template <class Client>
void ReachOwnHostsOverHttp(Client&, const Aws::String&, long) {
}

}  // namespace Mirqos
