#pragma once

#include <type_traits>
#include <utility>

namespace Aws::Utils {

/// What an operation gave: a result of type R or an error of type E. Both can be read at any time;
/// the one that does not apply is default-constructed.
template <typename R, typename E>
class Outcome {
public:
    Outcome() = default;
    Outcome(const R& result) : m_result(result), m_success(true) {}
    Outcome(R&& result) : m_result(std::move(result)), m_success(true) {}
    Outcome(const E& error) : m_error(error) {}
    Outcome(E&& error) : m_error(std::move(error)) {}

    /// From an outcome whose error converts to E: a service's errors include the core's.
    template <typename OtherE, typename = std::enable_if_t<!std::is_same_v<E, OtherE>>>
    Outcome(Outcome<R, OtherE>&& other)
        : m_result(std::move(other.m_result)),
          m_error(std::move(other.m_error)),
          m_success(other.m_success) {}

    bool IsSuccess() const { return m_success; }

    const R& GetResult() const { return m_result; }
    R& GetResult() { return m_result; }
    /// For moving the result out.
    R&& GetResultWithOwnership() { return std::move(m_result); }
    const E& GetError() const { return m_error; }

private:
    template <typename, typename>
    friend class Outcome;

    R m_result{};
    E m_error{};
    bool m_success = false;
};

}  // namespace Aws::Utils
