#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>

#include "store/ObjectKey.h"
#include "tests/service/KeyShapes.h"
#include "tests/service/ServiceTest.h"

namespace {

using Mirqos::Test::Bytes;
using Mirqos::Test::KeyShapes;
using Mirqos::Test::ReadAttempt;
using Mirqos::Test::S3Server;
using Mirqos::Test::ServiceTest;
using Mirqos::Test::SomeBytes;

/// A client that shares no line with the library looks at what the library wrote, and the other way
/// round. It is the AWS command line interface, run as a process.
class OtherClient : public ServiceTest {
protected:
    OtherClient() {
        const S3Server& server = Mirqos::Test::TheS3Server();
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

    /// Runs `aws s3api ARGUMENTS`, which has to succeed; returns what it printed.
    static std::string Run(const std::string& arguments) {
        const std::string command = "timeout 120 aws --endpoint-url http://" +
                                    Mirqos::Test::TheS3Server().endpoint + " s3api " + arguments;
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

    static std::string Quoted(const std::string& text) {
        std::string quoted = "'";
        for (const char c : text) {
            quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
        }
        return quoted + "'";
    }

    Bytes Fetch(const std::string& key) {
        const std::string file = testing::TempDir() + Bucket();
        Run("get-object --bucket " + Bucket() + " --key " + Quoted(key) + " " + Quoted(file));
        std::ifstream stream(file, std::ios::binary);
        Bytes bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
        std::remove(file.c_str());
        return bytes;
    }

    void Send(const std::string& key, const Bytes& bytes) {
        const std::string file = testing::TempDir() + Bucket();
        std::ofstream(file, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        Run("put-object --bucket " + Bucket() + " --key " + Quoted(key) + " --body " +
            Quoted(file));
        std::remove(file.c_str());
    }

    /// The keys that it lists, one a line.
    std::set<std::string> List() {
        std::istringstream lines(Run("list-objects-v2 --bucket " + Bucket() +
                                     " --query 'Contents[].[Key]' --output text"));
        std::set<std::string> keys;
        for (std::string line; std::getline(lines, line);) {
            keys.insert(line);
        }
        return keys;
    }
};

TEST_F(OtherClient, ReadsWhatTheLibraryWrote) {
    const auto store = NewStore(Config());
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{5} << 20}) {
        const Bytes bytes = SomeBytes(size);
        ASSERT_EQ(Write(*store, "object", bytes), 0);
        EXPECT_TRUE(Fetch("object") == bytes) << size;
    }
}

TEST_F(OtherClient, WritesWhatTheLibraryReads) {
    const auto store = NewStore(Config());
    const Bytes bytes = SomeBytes(100'000);
    Send("a @ b+c//d", bytes);
    const ReadAttempt read = Read(*store, "a @ b+c//d", 0, bytes.size() - 1);
    EXPECT_EQ(read.status, 0);
    EXPECT_TRUE(read.Delivered() == bytes);
}

TEST_F(OtherClient, ListsEveryKeyAsTheLibraryWasGivenIt) {
    const auto store = NewStore(Config());
    std::set<std::string> written;
    for (const std::string& key : KeyShapes()) {
        EXPECT_EQ(Write(*store, key, SomeBytes(10)), 0) << key;
        written.insert(key);
    }
    EXPECT_EQ(List(), written);
}

TEST_F(OtherClient, ListsPlusSignsForAtSignsOnProviderType5) {
    CloudStoreConfigInfo config = Config();
    config.m_nProviderType = Mirqos::ProviderType::kPlusForAt;
    const auto store = NewStore(config);
    std::set<std::string> expected;
    for (std::string key : KeyShapes()) {
        EXPECT_EQ(Write(*store, key, SomeBytes(10)), 0) << key;
        std::replace(key.begin(), key.end(), '@', '+');
        expected.insert(key);
    }
    EXPECT_EQ(List(), expected);
}

}  // namespace
