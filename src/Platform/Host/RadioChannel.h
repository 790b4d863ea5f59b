#pragma once

#include <cstdint>

/// The host's identifier of one radio channel of the terminal. Any 32-bit value is a channel; modules read it as one
/// unsigned number wherever a name is made from it.
enum class RadioChannel : std::uint32_t {};
