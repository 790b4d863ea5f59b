#pragma once

// Takes the place of the global operator new and delete. Include it in one source of a program.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace support::memory {

inline std::atomic<std::size_t> nrOfAllocations{0};
inline std::atomic<std::int64_t> nrOfBlocks{0};   ///< allocated and not yet freed
inline std::atomic<std::int64_t> lettingPass{-1}; ///< so many allocations more succeed, then one fails; below 0: all do
inline thread_local bool isExempt = false;        ///< this thread's allocations neither fail nor count down

/// @return whether this allocation is the one to fail
inline bool isTurn()
{
    return !isExempt && lettingPass.load() >= 0 && lettingPass.fetch_sub(1) == 0;
}

} // namespace support::memory

// Not inlined: the compiler would take the pairs apart and find them mismatched.
[[gnu::noinline]] void* operator new(std::size_t size)
{
    ++support::memory::nrOfAllocations;
    void* const block = support::memory::isTurn() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    ++support::memory::nrOfBlocks;
    return block;
}

void* operator new[](std::size_t size)
{
    return operator new(size);
}

[[gnu::noinline]] void operator delete(void* block) noexcept
{
    if (block != nullptr) {
        --support::memory::nrOfBlocks;
        std::free(block);
    }
}

[[gnu::noinline]] void operator delete[](void* block) noexcept
{
    operator delete(block);
}

[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept
{
    operator delete(block);
}

[[gnu::noinline]] void operator delete[](void* block, std::size_t) noexcept
{
    operator delete(block);
}
