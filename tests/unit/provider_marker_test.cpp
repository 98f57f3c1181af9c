#include "store/ProviderMarker.h"

#include <gtest/gtest.h>

namespace {

using Mirqos::HasProviderMarker;

TEST(ProviderMarker, IsFoundAnywhereInAnEndpoint) {
    for (const char* endpoint : {"cloudflare", "account.r2.cloudflarestorage.com", "x.cloudflare",
                                 "cloudflare.x", "cloudflcloudflare:443"}) {
        EXPECT_TRUE(HasProviderMarker(endpoint)) << endpoint;
    }
}

TEST(ProviderMarker, IsFoundInEveryLetterCase) {
    EXPECT_TRUE(HasProviderMarker("ACCOUNT.R2.CLOUDFLARESTORAGE.COM"));
    EXPECT_TRUE(HasProviderMarker("account.r2.CloudFlareStorage.com"));
}

TEST(ProviderMarker, IsNotFoundInAnEndpointShorterThanItself) {
    EXPECT_FALSE(HasProviderMarker(""));
    EXPECT_FALSE(HasProviderMarker("cloudflar"));
    EXPECT_FALSE(HasProviderMarker("loudflare"));
}

TEST(ProviderMarker, IsNotFoundInOtherEndpoints) {
    for (const char* endpoint :
         {"storage.googleapis.com", "cloud-flare.example", "cloudflarcloudflar", "127.0.0.1:9000",
          "\xC3\xBC\xFF.example.com"}) {
        EXPECT_FALSE(HasProviderMarker(endpoint)) << endpoint;
    }
}

}  // namespace
