#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "tests/wire/WireTest.h"

namespace Mirqos::Test {

/// Copies from one bucket to another; the source's key is "a folder/s+1" unless a test sets it.
class Copy : public WireTest {
protected:
    Copy() {
        m_copy.m_pszSrcBucket = "source-bucket";
        m_copy.m_pszSrcKey = "a folder/s+1";
        m_copy.m_pszDstBucket = "target-bucket";
        m_copy.m_pszDstKey = "t";
        m_copy.m_bIgnoreMissingSource = false;
        m_copy.m_bSourceMissing = true;
    }
    std::unique_ptr<AwsS3Store> StoreOfProvider(std::int32_t provider,
                                                std::int32_t buffer = 64 * 1024) {
        Setup setup;
        setup.provider = provider;
        setup.buffer = buffer;
        return MakeStore(setup);
    }
    static Answer Copied() {
        return Answer::Status(200).Body("<CopyObjectResult><ETag>e</ETag></CopyObjectResult>");
    }
    static std::string Ends(const std::string& from, const std::string& to) {
        return "[eu-central-1:source-bucket:" + from + "] to [eu-central-1:target-bucket:" + to +
               "]";
    }

    CloudStoreCopyObjectContext m_copy;
};

}  // namespace Mirqos::Test
