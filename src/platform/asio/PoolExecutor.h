#pragma once

#include "platform/asio/AsioPool.h"

#include <asio/execution.hpp>
#include <asio/execution_context.hpp>

#include <memory>
#include <utility>

namespace vorrano::asio_platform {

// Asio's view of the pool, for its strand: what the strand hands in gets a thread from the pool, or runs in place where
// that is allowed and the caller is a thread of the pool.
//
// Asio looks for query(), require() and execute() by these names.
class PoolExecutor {
public:
    explicit PoolExecutor(std::shared_ptr<AsioPool> pool)
        : m_pool(std::move(pool))
    {}

    asio::execution_context& query(asio::execution::context_t) const noexcept { return m_pool->context(); }

    asio::execution::blocking_t query(asio::execution::blocking_t) const noexcept
    {
        using asio::execution::blocking_t;
        return m_mayRunInPlace ? blocking_t(blocking_t::possibly) : blocking_t(blocking_t::never);
    }
    PoolExecutor require(asio::execution::blocking_t::possibly_t) const { return {m_pool, true}; }
    PoolExecutor require(asio::execution::blocking_t::never_t) const { return {m_pool, false}; }

    template <class Work>
    void execute(Work work) const
    {
        if (m_mayRunInPlace && m_pool->isOnItsThread()) {
            work();
        } else {
            m_pool->post(std::move(work));
        }
    }

    friend bool operator==(const PoolExecutor& left, const PoolExecutor& right) noexcept
    {
        return left.m_pool == right.m_pool && left.m_mayRunInPlace == right.m_mayRunInPlace;
    }

private:
    PoolExecutor(std::shared_ptr<AsioPool> pool, bool mayRunInPlace)
        : m_pool(std::move(pool))
        , m_mayRunInPlace(mayRunInPlace)
    {}

    std::shared_ptr<AsioPool> m_pool;
    bool m_mayRunInPlace = true;
};

} // namespace vorrano::asio_platform
