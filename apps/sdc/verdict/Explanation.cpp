#include "apps/sdc/verdict/Explanation.h"

#include "apps/sdc/result/Floor.h"
#include "apps/sdc/verdict/EmitterSearch.h"
#include "apps/sdc/verdict/Profile.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace sdc {

namespace {

/// Right beside the channel on one side of it alone.
void addAnythingBeside(const OwnChannel& own, const ShapeMaker& make, double side, std::vector<Shape>& shapes)
{
    constexpr double nearest = 0.6;
    constexpr double near = 0.8;
    constexpr double narrowest = 0.1;
    const double width_kHz = make.channelWidth_kHz();
    for (const double here : {side, -side}) {
        double from_kHz = width_kHz * (here == side ? nearest : near);
        std::vector<double> ends_kHz;
        for (const OwnReading& reading : own.readings()) {
            ends_kHz.push_back(here * reading.offset_kHz + make.filterWidth_kHz() / 2.0);
        }
        std::ranges::sort(ends_kHz);
        for (const double end_kHz : ends_kHz) {
            if (end_kHz > from_kHz + narrowest * width_kHz) {
                shapes.push_back(here > 0.0 ? make.band(from_kHz, end_kHz) : make.band(-end_kHz, -from_kHz));
                from_kHz = end_kHz;
            }
        }
    }
}

Explained explainBy(const OwnChannel& own, const Profile& profile, const std::vector<Shape>& shapes)
{
    const Fit best = fit(profile, own.noise_mW(), shapes);
    Explained explained{.misfit = best.misfit / static_cast<double>(profile.size())};
    for (std::size_t index = 0; index < profile.size(); ++index) {
        if (own.readings()[index].isOwn) {
            explained.over = std::max(explained.over, profile[index].level - readingOf(best.explained_mW[index]));
        }
    }
    return explained;
}

Explained explain(const OwnChannel& own, const Profile& profile, OwnLevel level, const Assumed& assumed)
{
    const ShapeMaker make(profile, own.width_kHz(), own.filterWidth_kHz());
    const std::vector<Shape> known = knownShapes(own, make, level, assumed);
    if (!assumed.hasOwnCarrier || !hasEdges(own)) {
        return explainBy(own, profile, known);
    }
    const auto withAnything = [&](double side) {
        std::vector<Shape> shapes = known;
        addAnythingBeside(own, make, side, shapes);
        return explainBy(own, profile, shapes);
    };
    return std::min(withAnything(-1.0), withAnything(1.0),
        [](const Explained& left, const Explained& right) { return left.misfit < right.misfit; });
}

} // namespace

Explained explain(const OwnChannel& own, OwnLevel level, const Assumed& assumed)
{
    std::vector<Explained> explanations;
    for (const double lag : own.lags()) {
        explanations.push_back(explain(own, own.profileOf(level, lag), level, assumed));
    }
    return *std::ranges::min_element(explanations, {}, &Explained::misfit);
}

double raisedInside(const OwnChannel& own, const EmitterSearch& search)
{
    double over = 0.0;
    for (std::size_t index = 0; index < own.readings().size(); ++index) {
        if (own.readings()[index].isOwn) {
            over = std::max(over, readingOf(search.all_mW[index]) - readingOf(search.outside_mW[index]));
        }
    }
    return over;
}

} // namespace sdc
