#include "apps/sdc/verdict/WithoutCarrier.h"

#include "apps/sdc/result/Floor.h"
#include "apps/sdc/verdict/EmitterSearch.h"
#include "apps/sdc/verdict/Explanation.h"
#include "apps/sdc/verdict/KnownShapes.h"
#include "apps/sdc/verdict/Profile.h"
#include "apps/sdc/verdict/Rules.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace sdc {

namespace {

bool isOver(const OwnChannel& own, const Explained& explained, OwnLevel level)
{
    constexpr double anotherShape = 4.0;
    constexpr double leastOver = 150.0;
    const bool isMean = level == &OwnReading::mean;
    return explained.over > (isMean ? own.marginOfMean(own.sweeps()) : own.marginOfMax())
        || (isMean && explained.misfit > anotherShape && explained.over > leastOver);
}

bool isHigherThanUnseen(const OwnChannel& own)
{
    constexpr double fewDeviations = 0.5;
    constexpr double highestOfFew = 1.5;
    constexpr double unlike = 50.0;
    return std::ranges::any_of(own.readings(), [&own](const OwnReading& reading) {
        const double level = readingOf(own.noise_mW() + unseen_mW(own, reading) + masksSeen_mW(own));
        const double ofMean = fewDeviations * own.scatter() / std::sqrt(static_cast<double>(reading.readings));
        return reading.isOwn
            && (reading.mean > level + ofMean || reading.max > level + unlike + highestOfFew * own.scatter());
    });
}

/// In a scan that shows nothing else.
Verdict orLeak(const OwnChannel& own)
{
    constexpr double faint = 320.0;
    const double quiet = levelOf(own.noise_mW());
    const bool isFaint = std::ranges::none_of(own.readings(), [&](const OwnReading& reading) {
        return reading.isOwn && (reading.mean > quiet + faint || reading.max > quiet + faint + own.marginOfMax());
    });
    Verdict verdict = verdictBy(isFaint ? Rule::quiet : Rule::maybeLeak);
    if (own.isBeyond()) {
        std::ranges::replace(verdict.wouldHelp, Help::subBandScan, Help::channelScan);
    }
    return verdict;
}

/// Whether readings, their mean and their highest, are higher than explained, and by how much.
struct Rise {
    Rise(const OwnChannel& own, const Assumed& assumed)
        : mean(explain(own, &OwnReading::mean, assumed))
        , highest(explain(own, &OwnReading::max, assumed))
        , isMean(isOver(own, mean, &OwnReading::mean))
        , isHighest(isOver(own, highest, &OwnReading::max))
    {
    }

    bool isAny() const { return isMean || isHighest; }
    double over() const { return std::max(mean.over, highest.over); }

    Explained mean;
    Explained highest;
    bool isMean;
    bool isHighest;
};

/// One tuning in the channel, or few in a scan that shows nothing else.
Verdict byLevel(const OwnChannel& own)
{
    const Rise rise(own, {.mustBeSeen = true});
    if (!rise.isAny()) {
        return own.isSeenFromBeside() ? verdictBy(Rule::neighboursOnly) : orLeak(own);
    }
    if (!own.isSeenFromBeside()) {
        return isHigherThanUnseen(own) ? verdictBy(Rule::overAnyLeak, rise.over()) : orLeak(own);
    }
    const Rise overMasks(own, {.hasMasks = true, .mustBeSeen = true});
    if (overMasks.isAny()) {
        return verdictBy(Rule::overAllLeaks, rise.over());
    }
    constexpr double faint = 400.0;
    return verdictBy(rise.over() < faint ? Rule::neighboursOnly : Rule::maybeMask);
}

/// Tells by the readings of several tunings whether what is heard stands in the channel or beside it.
class ShapeJudge {
public:
    explicit ShapeJudge(const OwnChannel& own)
        : m_own(own)
        , m_profile(own.profileOf(&OwnReading::mean))
        , m_make(m_profile, own.width_kHz(), own.filterWidth_kHz())
        , m_known(knownShapes(own, m_make, &OwnReading::mean, {.hasMasks = true, .hasUnseen = !own.isSeenFromBeside()}))
        , m_anywhere(searchEmitters(m_profile, own.noise_mW(), m_known, m_make, SearchRange::everywhere))
    {
    }

    Verdict judge() const;

private:
    double inside() const;
    double burst() const;
    double highestOver() const;
    bool isExplainedBeside(std::size_t index) const;
    double excess(std::size_t index) const;
    double leastRise() const;
    bool isBurst(std::size_t index, double highest) const;
    Verdict withoutInterferer() const;

    const OwnChannel& m_own;
    const Profile m_profile;
    const ShapeMaker m_make;
    const std::vector<Shape> m_known;
    const EmitterSearch m_anywhere;
};

/// By how much emitters in the channel raise a reading in it; 0 where emitters beside it explain readings as well.
double ShapeJudge::inside() const
{
    const double over = raisedInside(m_own, m_anywhere);
    constexpr double least = 200.0;
    if (over < least) {
        return 0.0;
    }
    const EmitterSearch beside =
        searchEmitters(m_profile, m_own.noise_mW(), m_known, m_make, SearchRange::outsideOfTheChannel);
    return m_anywhere.cost() < beside.cost() ? over : 0.0;
}

/// The highest reading at a tuning over what is there on average.
double ShapeJudge::excess(std::size_t index) const
{
    return m_own.readings()[index].max - readingOf(m_anywhere.all_mW[index]);
}

/// What chance does not make a reading exceed the others by.
double ShapeJudge::leastRise() const
{
    constexpr double more = 100.0;
    return m_own.marginOfMax() + more;
}

/// Whether something beside the channel, which the filter reaches, was as much higher now and then.
bool ShapeJudge::isExplainedBeside(std::size_t index) const
{
    constexpr double muchOf = 0.5;
    const auto rise_mW = [this](std::size_t at) {
        return milliwatts(m_own.readings()[at].max) - milliwatts(readingOf(m_anywhere.all_mW[at]));
    };
    const double offset_kHz = m_own.readings()[index].offset_kHz;
    const double filter_kHz = m_own.filterWidth_kHz();
    if (std::abs(offset_kHz) + filter_kHz / 2.0 <= m_own.width_kHz() / 2.0) {
        return false;
    }
    for (std::size_t other = 0; other < m_profile.size(); ++other) {
        const OwnReading& reading = m_own.readings()[other];
        const bool isReached = !reading.isOwn && reading.offset_kHz * offset_kHz >= 0.0
            && std::abs(reading.offset_kHz - offset_kHz) <= filter_kHz;
        if (isReached && rise_mW(other) > muchOf * rise_mW(index)) {
            return true;
        }
    }
    return false;
}

/// @param highest  excess in the channel: outside of it, what is much less is something else
bool ShapeJudge::isBurst(std::size_t index, double highest) const
{
    constexpr double muchLess = 600.0;
    const OwnReading& reading = m_own.readings()[index];
    const double least = leastRise();
    if (excess(index) < (reading.isOwn ? least : std::max(least, highest - muchLess))) {
        return false;
    }
    return m_own.isSeenFromBeside()
        || reading.max >= readingOf(m_own.noise_mW() + unseen_mW(m_own, reading)) + m_own.marginOfMax();
}

/// By how much something in the channel raises readings now and then. What stands beside the channel does so on one side
/// of its centre only.
double ShapeJudge::burst() const
{
    constexpr double middle = 0.02;
    double highest = 0.0;
    double unexplained = 0.0;
    for (std::size_t index = 0; index < m_profile.size(); ++index) {
        if (m_own.readings()[index].isOwn) {
            highest = std::max(highest, excess(index));
            unexplained = isExplainedBeside(index) ? unexplained : std::max(unexplained, excess(index));
        }
    }
    bool isBelow = false;
    bool isAbove = false;
    for (std::size_t index = 0; index < m_profile.size(); ++index) {
        const double offset = m_own.readings()[index].offset_kHz / m_own.width_kHz();
        isBelow = isBelow || (offset < middle && isBurst(index, highest));
        isAbove = isAbove || (offset > -middle && isBurst(index, highest));
    }
    if (isBelow && isAbove) {
        return highest;
    }
    return m_own.isSeenFromBeside() && unexplained > leastRise() ? unexplained : 0.0;
}

/// The highest reading over what is there without anything in the channel.
double ShapeJudge::highestOver() const
{
    double over = 0.0;
    for (std::size_t index = 0; index < m_profile.size(); ++index) {
        if (m_own.readings()[index].isOwn) {
            over = std::max(over, m_own.readings()[index].max - readingOf(m_anywhere.outside_mW[index]));
        }
    }
    return over;
}

/// What is heard may yet be more than carriers beside the channel give.
Verdict ShapeJudge::withoutInterferer() const
{
    if (!m_own.isSeenFromBeside()) {
        return orLeak(m_own);
    }
    const std::vector<Shape> plain = knownShapes(m_own, m_make, &OwnReading::mean, {});
    const EmitterSearch beside =
        searchEmitters(m_profile, m_own.noise_mW(), plain, m_make, SearchRange::outsideOfTheChannel);
    double over = 0.0;
    for (std::size_t index = 0; index < m_profile.size(); ++index) {
        if (m_own.readings()[index].isOwn) {
            over = std::max(over, m_profile[index].level - readingOf(beside.all_mW[index]));
        }
    }
    return verdictBy(over < m_own.marginOfMean(m_own.sweeps()) ? Rule::neighboursOnly : Rule::maybeMask);
}

Verdict ShapeJudge::judge() const
{
    const double stays = inside();
    const double comes = burst();
    if (stays == 0.0 && comes == 0.0) {
        return withoutInterferer();
    }
    if (comes > stays && m_own.sweeps() > 1) {
        return verdictBy(Rule::burstInChannel, highestOver());
    }
    return verdictBy(m_own.isSeenFromBeside() ? Rule::overAllLeaks : Rule::shapedInChannel, std::max(stays, comes));
}

} // namespace

Verdict judgeWithoutCarrier(const OwnChannel& own)
{
    const bool hasShape = own.tunings() >= samplesOfAShape || (own.isSeenFromBeside() && own.tunings() > 1);
    return hasShape ? ShapeJudge(own).judge() : byLevel(own);
}

} // namespace sdc
