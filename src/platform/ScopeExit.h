#pragma once

#include <utility>

namespace vorrano::platform {

// Runs a function at the end of its scope, also when the scope is left by an exception. The function must not throw.
template <class Function>
class [[nodiscard]] ScopeExit {
public:
    explicit ScopeExit(Function function)
        : m_function(std::move(function))
    {}
    ScopeExit(const ScopeExit&) = delete;
    ScopeExit& operator=(const ScopeExit&) = delete;
    ~ScopeExit() { m_function(); }

private:
    const Function m_function;
};

} // namespace vorrano::platform
