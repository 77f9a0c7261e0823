#pragma once

#include <mutex>

// clang checks at compile time (-Wthread-safety) that what a mutex guards is touched only while the mutex is held.
// Other compilers ignore these.
#ifdef __clang__
#define VORRANO_THREAD_SAFETY(attribute) __attribute__((attribute))
#else
#define VORRANO_THREAD_SAFETY(attribute)
#endif

// After a member: touched only while `mutex` is held.
#define VORRANO_GUARDED_BY(mutex) VORRANO_THREAD_SAFETY(guarded_by(mutex))
// After a function's parameters: the caller holds `mutex`.
#define VORRANO_REQUIRES(mutex) VORRANO_THREAD_SAFETY(requires_capability(mutex))

namespace vorrano::platform {

// A mutex that clang's check knows. std::condition_variable_any waits on it.
class VORRANO_THREAD_SAFETY(capability("mutex")) Mutex {
public:
    Mutex() = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;
    ~Mutex() = default;

    void lock() VORRANO_THREAD_SAFETY(acquire_capability()) { m_mutex.lock(); }
    void unlock() VORRANO_THREAD_SAFETY(release_capability()) { m_mutex.unlock(); }

private:
    std::mutex m_mutex;
};

// Holds a mutex for as long as it lives, or until unlock().
class VORRANO_THREAD_SAFETY(scoped_lockable) MutexLock {
public:
    explicit MutexLock(Mutex& mutex) VORRANO_THREAD_SAFETY(acquire_capability(mutex))
        : m_mutex(&mutex)
    {
        m_mutex->lock();
    }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;
    ~MutexLock() VORRANO_THREAD_SAFETY(release_capability())
    {
        if (m_mutex != nullptr) {
            m_mutex->unlock();
        }
    }

    void unlock() VORRANO_THREAD_SAFETY(release_capability())
    {
        m_mutex->unlock();
        m_mutex = nullptr;
    }

private:
    Mutex* m_mutex;
};

} // namespace vorrano::platform
