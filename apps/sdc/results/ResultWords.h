#pragma once

#include "apps/sdc/results/ScanResult.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace sdc {

inline constexpr std::array<std::string_view, 2> scanKinds{"channel", "sub-band"};
inline constexpr std::array<std::string_view, 3> endings{"complete", "stopped", "failed"};

constexpr std::string_view toText(ScanKind kind)
{
    return scanKinds.at(static_cast<std::size_t>(kind));
}

constexpr std::string_view toText(Ending ending)
{
    return endings.at(static_cast<std::size_t>(ending));
}

} // namespace sdc
