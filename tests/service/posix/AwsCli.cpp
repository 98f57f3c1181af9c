#include "tests/service/posix/AwsCli.h"

#include <sys/wait.h>

#include <boost/property_tree/json_parser.hpp>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

namespace Mirqos::Test {

AwsCli::AwsCli() {
    const S3Server& server = TheS3Server();
    setenv("AWS_ACCESS_KEY_ID", server.accessKey.c_str(), 1);
    setenv("AWS_SECRET_ACCESS_KEY", server.secretKey.c_str(), 1);
    setenv("AWS_DEFAULT_REGION", server.region.c_str(), 1);
    setenv("AWS_CONFIG_FILE", "/dev/null", 1);
    setenv("AWS_SHARED_CREDENTIALS_FILE", "/dev/null", 1);
    setenv("AWS_EC2_METADATA_DISABLED", "true", 1);
    setenv("LC_ALL", "C.UTF-8", 1);
    // its own libraries are not built with the sanitizer of this process
    unsetenv("LD_PRELOAD");
}

std::string AwsCli::Run(const std::string& arguments) const {
    const std::string command =
        "timeout 120 aws --endpoint-url http://" + TheS3Server().endpoint + " s3api " + arguments;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        ADD_FAILURE() << "cannot run: " << command;
        return {};
    }
    std::string printed;
    char piece[4096];
    for (std::size_t size; (size = fread(piece, 1, sizeof piece, pipe)) > 0;) {
        printed.append(piece, size);
    }
    const int status = pclose(pipe);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << command << '\n' << printed;
    return printed;
}

std::string AwsCli::Quoted(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text) {
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return quoted + "'";
}

Bytes AwsCli::Fetch(const std::string& bucket, const std::string& key) const {
    const std::string file = testing::TempDir() + bucket;
    Run("get-object --bucket " + bucket + " --key " + Quoted(key) + " " + Quoted(file));
    std::ifstream stream(file, std::ios::binary);
    Bytes bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    std::remove(file.c_str());
    return bytes;
}

void AwsCli::Send(const std::string& bucket, const std::string& key, const Bytes& bytes) const {
    const std::string file = testing::TempDir() + bucket;
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    Run("put-object --bucket " + bucket + " --key " + Quoted(key) + " --body " + Quoted(file));
    std::remove(file.c_str());
}

Sizes AwsCli::List(const std::string& bucket) const {
    // it follows the pages by itself and prints one document
    std::istringstream printed(Run("list-objects-v2 --output json --bucket " + bucket));
    boost::property_tree::ptree document;
    if (!printed.str().empty()) {
        boost::property_tree::read_json(printed, document);
    }
    const boost::property_tree::ptree nothing;  // an empty bucket's document has no "Contents"
    Sizes sizes;
    for (const auto& [place, object] : document.get_child("Contents", nothing)) {
        const auto key = object.get<std::string>("Key");
        EXPECT_TRUE(sizes.emplace(key, object.get<std::uint64_t>("Size")).second)
            << key << " is listed twice";
    }
    return sizes;
}

}  // namespace Mirqos::Test
