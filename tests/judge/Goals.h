#pragma once

#include "tests/judge/Outcome.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace judge {

/// So many of so many.
struct Share {
    std::size_t count = 0;
    std::size_t all = 0;

    void add(bool counts)
    {
        count += counts ? 1 : 0;
        ++all;
    }
    double percent() const { return all == 0 ? 0.0 : 100.0 * static_cast<double>(count) / static_cast<double>(all); }
};

/// What is asked of a share.
struct Goal {
    enum class Side : std::uint8_t { atLeast, atMost };

    std::string what;
    Side side{};
    double percent = 0.0;
    Share (*measure)(const std::vector<Outcome>&) = nullptr;
};

/// In the order in which they are shown.
const std::vector<Goal>& goals();

/// A goal of which nothing was measured is missed.
bool isMet(const Goal& goal, const Share& measured);

} // namespace judge
