#pragma once

#include <aws/s3/S3Client.h>
#include <aws/s3/model/GetObjectRequest.h>
#include <aws/s3/model/PutObjectRequest.h>

#include <iterator>
#include <memory>
#include <sstream>
#include <string>

#include "sdk/core/client/Text.h"

/// The usual clients and requests of tests below the store.
namespace Mirqos::Test {

inline const Aws::Auth::AWSCredentials kCredentials("AKID", "very secret");

inline Aws::Client::ClientConfiguration Configuration(
    Aws::Http::Scheme scheme = Aws::Http::Scheme::HTTPS) {
    Aws::Client::ClientConfiguration configuration;
    configuration.scheme = scheme;
    configuration.region = "eu-west-1";
    return configuration;
}

inline std::shared_ptr<Aws::IOStream> Body(const std::string& text) {
    return std::make_shared<std::stringstream>(text);
}

inline Aws::S3::Model::PutObjectRequest Put(const std::shared_ptr<Aws::IOStream>& body) {
    Aws::S3::Model::PutObjectRequest request;
    request.WithBucket("bucket").WithKey("key");
    request.SetBody(body);
    return request;
}

inline Aws::S3::Model::GetObjectRequest Get() {
    Aws::S3::Model::GetObjectRequest request;
    request.WithBucket("bucket").WithKey("key");
    return request;
}

inline std::string TextOf(Aws::IOStream& stream) {
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

}  // namespace Mirqos::Test
