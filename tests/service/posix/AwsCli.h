#pragma once

#include <string>

#include "tests/service/Listings.h"

namespace Mirqos::Test {

/// A client that shares no line with the library: the AWS command line interface, run as a process.
/// It is told of the server and of nothing else on this machine.
class AwsCli {
public:
    AwsCli();

    /// Runs `aws s3api ARGUMENTS`, which has to succeed; returns what it printed.
    std::string Run(const std::string& arguments) const;

    /// `text` as one argument of a command.
    static std::string Quoted(const std::string& text);

    Bytes Fetch(const std::string& bucket, const std::string& key) const;
    void Send(const std::string& bucket, const std::string& key, const Bytes& bytes) const;

    Sizes List(const std::string& bucket) const;
};

}  // namespace Mirqos::Test
