#pragma once

#include <mirqos/mirqos.h>

#include <string>

namespace Mirqos::Test {

/// The S3 server that tests run against, reached over plain HTTP.
struct S3Server {
    std::string endpoint;  ///< "host:port"
    std::string region;
    std::string accessKey;
    std::string secretKey;
};

/// The server that the variables MIRQOS_S3_ENDPOINT, _REGION, _ACCESS_KEY and _SECRET_KEY name, or
/// without them the file of such lines that MIRQOS_S3_ENV names, which the ctest fixture's server
/// writes. Throws std::runtime_error when neither says where it is.
const S3Server& TheS3Server();

/// A store's configuration for that server and `bucket`, which has to live until Init.
CloudStoreConfigInfo ConfigFor(const std::string& bucket);

/// A bucket name that no other test, process or run uses.
std::string NewBucketName();

}  // namespace Mirqos::Test
