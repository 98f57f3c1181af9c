#pragma once

#include <cstdint>
#include <string>

#include "tests/wire/WireTest.h"

namespace Mirqos::Test {

/// Asynchronous reads of objects whose bytes are the last digits of their places.
class AsyncRead : public WireTest {
protected:
    static constexpr char kUntouched = '\xA5';

    /// A read into a buffer of its own, which has to outlive the batch's wait.
    struct OneRead {
        OneRead(std::uint64_t start, std::uint64_t length, const char* key = "k");
        OneRead(OneRead&& other) noexcept;
        OneRead(const OneRead&) = delete;
        OneRead& operator=(const OneRead&) = delete;
        /// Neither the buffer nor what lies beyond has been written.
        bool Untouched() const;
        /// The buffer holds the digits asked for, and nothing lies beyond.
        bool Delivered() const;

        std::string buffer;
        CloudStoreReadObjectContext context;
    };

    /// `body` as the bytes of an object from `first` on.
    static Answer Bytes(const std::string& body, std::uint64_t first = 0);
    static std::string Digits(std::uint64_t first, std::uint64_t count);
    /// What is in a read's buffer after `text` was delivered.
    static std::string Filled(const std::string& text) { return text + std::string(4, kUntouched); }
    /// Answers with the digits that a request's range asks for.
    static Answer DigitsFor(const RecordedRequest& request);
    /// Answers every read of `key` with its digits.
    void ServeDigits(const char* key = "k");
};

}  // namespace Mirqos::Test
