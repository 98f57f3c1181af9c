// One measurement of the native benchmarks, in a process of its own, so that its memory is its own
// as well. Prints a line of JSON: the seconds that the row took and the most memory that there was.
//
//     bench.s3 library|floor|copies ROW THREADS BYTES COUNT BUCKET
//     bench.s3 command PROGRAM [ARGUMENT...]         another program, from start to end
//     bench.s3 content BYTES COUNT                   nothing measured: an object, on the output
//
// The service is named by the environment as for the tests (MIRQOS_S3_ENDPOINT and the rest).

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <random>
#include <stdexcept>
#include <string>

#include "bench/s3/Row.h"
#include "tests/service/S3Server.h"

namespace Mirqos::Bench {

Bytes Content(std::size_t size) {
    std::mt19937_64 random;  // NOLINT(cert-msc51-cpp): the same for everybody
    Bytes bytes(size);
    for (std::size_t at = 0; at < size; at += sizeof(std::uint64_t)) {
        const std::uint64_t word = random();
        std::memcpy(&bytes[at], &word, std::min(sizeof word, size - at));
    }
    return bytes;
}

void CheckContent(const Bytes& received) {
    if (received != Content(received.size())) {
        throw std::runtime_error("received other bytes than were stored");
    }
}

namespace {

void Print(const Cost& cost) {
    std::printf("{\"seconds\": %.6f, \"peak_kib\": %ld}\n", cost.seconds, cost.peakKib);
}

void Measure(const std::string& who, const std::string& row, const Order& order,
             const std::string& bucket) {
    const std::map<std::string, Row> rows = {{"upload", &UploadInParts}, {"read", &ReadInRanges},
                                             {"put", &PutObjects},       {"get", &GetObjects},
                                             {"store-keys", &StoreKeys}, {"list", &ListKeys}};
    const Test::S3Server& server = Test::TheS3Server();
    const Service service{server.endpoint, server.region, bucket, server.accessKey,
                          server.secretKey};
    const auto open = [&](int threads) {
        if (who == "library") {
            return OpenLibrary(service, threads, order.bytes);
        }
        return OpenFloor(service, threads, who == "copies");
    };
    Print(rows.at(row)(open, order));
}

void WriteContent(std::size_t size, int count) {
    const Bytes bytes = Content(size);
    for (int n = 0; n < count; ++n) {
        if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size()) {
            throw std::runtime_error("cannot write the content");
        }
    }
}

}  // namespace
}  // namespace Mirqos::Bench

int main(int count, char** arguments) try {
    const std::string who = count > 1 ? arguments[1] : "";
    if (who == "command" && count > 2) {
        Mirqos::Bench::Print(Mirqos::Bench::CostOfProgram(arguments + 2));
    } else if (who == "content" && count == 4) {
        Mirqos::Bench::WriteContent(std::stoul(arguments[2]), std::stoi(arguments[3]));
    } else if ((who == "library" || who == "floor" || who == "copies") && count == 7) {
        Mirqos::Bench::Measure(
            who, arguments[2],
            {std::stoi(arguments[3]), std::stoul(arguments[4]), std::stoi(arguments[5])},
            arguments[6]);
    } else {
        std::fprintf(stderr, "usage: see the head of bench/s3/main.cpp\n");
        return 2;
    }
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "bench.s3: %s\n", error.what());
    return 1;
}
