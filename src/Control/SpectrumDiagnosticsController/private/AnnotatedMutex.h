#pragma once

/// A mutex and its lock that clang's -Wthread-safety knows, unlike those of the standard library here: a member declared
/// with SDC_GUARDED_BY is then touched only where the lock is held. For other compilers they are plain.

#include <mutex>

#ifdef __clang__
#define SDC_THREAD_SAFETY(...) __attribute__((__VA_ARGS__))
#else
#define SDC_THREAD_SAFETY(...)
#endif
#define SDC_GUARDED_BY(mutex) SDC_THREAD_SAFETY(guarded_by(mutex))

class SDC_THREAD_SAFETY(capability("mutex")) AnnotatedMutex : public std::mutex {};

class SDC_THREAD_SAFETY(scoped_lockable) AnnotatedLock {
public:
    explicit AnnotatedLock(AnnotatedMutex& mutex) SDC_THREAD_SAFETY(acquire_capability(mutex))
        : m_lock(mutex)
    {
    }
    ~AnnotatedLock() SDC_THREAD_SAFETY(release_capability()) = default;
    AnnotatedLock(const AnnotatedLock&) = delete;
    AnnotatedLock& operator=(const AnnotatedLock&) = delete;

private:
    std::lock_guard<std::mutex> m_lock;
};
