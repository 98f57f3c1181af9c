#pragma once

#include <cstdio>
#include <string>
#include <type_traits>

/// A host program's own bookkeeping: each failed check is reported, and the program's exit code is
/// 1 when there was one.
class Checks {
public:
    bool Expect(bool holds, const std::string& what) {
        if (!holds) {
            std::printf("FAILED: %s\n", what.c_str());
            ++m_failed;
        }
        ++m_done;
        return holds;
    }

    template <class Actual, class Expected>
    bool ExpectEqual(const Actual& actual, const Expected& expected, const std::string& what) {
        return Expect(actual == expected,
                      what + ": " + Text(actual) + ", expected " + Text(expected));
    }

    int ExitCode(const char* program) const {
        std::printf("%s: %d checks, %d failed\n", program, m_done, m_failed);
        return m_failed == 0 ? 0 : 1;
    }

private:
    template <class Value>
    static std::string Text(const Value& value) {
        if constexpr (std::is_arithmetic_v<Value>) {
            return std::to_string(value);
        } else {
            return std::string("\"") + value + "\"";
        }
    }

    int m_done = 0;
    int m_failed = 0;
};
