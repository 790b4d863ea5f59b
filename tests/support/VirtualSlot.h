#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace support {

/// Slots that a virtual destructor takes in the table of virtual functions.
constexpr std::size_t slotsOfADestructor = 2;

/// Which slot of its class a virtual member function has, counted from 0, destructor included. Reads the pointer's
/// representation as the Itanium ABI lays it down for x86: an odd first word is 1 + the slot's offset in bytes.
/// A function that is not virtual gives noSlot.
constexpr std::size_t noSlot = SIZE_MAX;

template <typename MemberFunction>
std::size_t virtualSlot(MemberFunction function)
{
    const auto words = std::bit_cast<std::array<std::uintptr_t, 2>>(function);
#if defined(__aarch64__) || defined(__arm__)
    return words[1] % 2 == 1 ? words[0] / sizeof(void*) : noSlot;
#else
    return words[0] % 2 == 1 ? words[0] / sizeof(void*) : noSlot;
#endif
}

} // namespace support
