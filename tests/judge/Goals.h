#pragma once

#include "tests/judge/Answer.h"
#include "tests/judge/Outcome.h"
#include "tests/judge/truth/RasterTruth.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <variant>
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

/// A share of links.
struct OfLinks {
    std::function<bool(const Outcome&)> belongs;
    std::function<bool(const Outcome&)> counts; ///< of those that belong
};

/// A share of channels of the raster, without those of dead receivers.
struct OfChannels {
    std::function<bool(const RasterTruth&)> belongs;
    std::function<bool(sdc::RasterState)> counts; ///< what was said of one that belongs
};

Share shareOf(const std::vector<Outcome>& outcomes, const OfLinks& asked);
Share shareOf(const std::vector<Outcome>& outcomes, const OfChannels& asked);

/// What is asked of the verdicts.
struct Goal {
    enum class Side : std::uint8_t { atLeast, atMost };

    std::string what;
    Side side{};
    double percent = 0.0;
    std::variant<OfLinks, OfChannels> of;
};

/// In the order in which they are shown.
const std::vector<Goal>& goals();

Share measure(const Goal& goal, const std::vector<Outcome>& outcomes);

/// A goal of which nothing was measured is missed.
bool isMet(const Goal& goal, const Share& measured);

/// Whether one that belongs to a goal's share is one too few or one too many.
bool isWrong(const Goal& goal, bool counts);

} // namespace judge
