#pragma once

#include <cstdint>

// Result codes of the host, its modules and their peers. 0 is success; what is as much as PLX_RC_FAILED or more, compared
// signed, is a failure.

constexpr std::int32_t PLX_RC_OK = 0;
constexpr std::int32_t PLX_RC_FAILED = 32768;
