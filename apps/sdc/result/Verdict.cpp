#include "apps/sdc/result/Verdict.h"

#include "apps/sdc/result/Floor.h"
#include "apps/sdc/result/Fluctuation.h"
#include "apps/sdc/result/OwnChannel.h"
#include "apps/sdc/result/Profile.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace sdc {

namespace {

/// What decided.
enum class Rule : std::uint8_t {
    noSample,
    deadReceiver,
    quiet,
    neighboursOnly,
    overAllLeaks,
    maybeMask,
    shapedInChannel,
    maybeLeak,
    overAnyLeak,
    overload,
    besideCarrierComes,
    besideCarrierShape,
    carrierUntold,
    carrierAlone,
    carrierFades,
};

struct RuleText {
    Rule rule;
    Judgement judgement;
    const char* sentence;
    std::vector<Help> helps;
};

/// What each rule says. A disturbance by less than `surelyDisturbed` is only suspected.
const std::vector<RuleText>& rules()
{
    static const std::vector<RuleText> texts{
        {Rule::noSample, Judgement::cannotTell, "no sample was taken in the channel", {Help::channelScan}},
        {Rule::deadReceiver, Judgement::cannotTell,
            "a receiver that works does not read this: all the same, or less than its own noise", {Help::checkReceiver}},
        {Rule::quiet, Judgement::clear,
            "no reading in the channel is above what the receiver reads of its own noise and of leaks", {}},
        {Rule::neighboursOnly, Judgement::clear,
            "what is heard rises towards the edges as carriers in the channels beside do", {}},
        {Rule::overAllLeaks, Judgement::disturbed,
            "readings are above the noise and all that can leak into the filter of what the scan shows elsewhere", {}},
        {Rule::maybeMask, Judgement::cannotTell,
            "readings are above the noise, but no higher than a strong carrier beside the channel makes them by a poor mask",
            {Help::channelScan}},
        {Rule::shapedInChannel, Judgement::disturbed,
            "what is heard has a shape across the channel that nothing outside of it gives", {}},
        {Rule::maybeLeak, Judgement::cannotTell,
            "readings are above the noise, but no higher and no other than the leak of a strong carrier that the scan does "
            "not show",
            {Help::subBandScan}},
        {Rule::overAnyLeak, Judgement::disturbed,
            "readings are higher than the strongest carrier makes them that the scan may not show", {}},
        {Rule::overload, Judgement::disturbed, "the level is higher than any link is designed for", {Help::muteFarEnd}},
        {Rule::besideCarrierComes, Judgement::disturbed,
            "something comes and goes on top of the own carrier, other than fading does", {Help::muteFarEnd}},
        {Rule::besideCarrierShape, Judgement::disturbed,
            "what is heard is not of the shape of the own carrier and its neighbours", {Help::muteFarEnd}},
        {Rule::carrierUntold, Judgement::cannotTell,
            "a carrier is in the channel all the time, and whether it is the far end's was not said",
            {Help::sayFarEnd, Help::muteFarEnd}},
        {Rule::carrierAlone, Judgement::cannotTell,
            "nothing but the shape of the own carrier is heard; what lies under it cannot be", {Help::muteFarEnd}},
        {Rule::carrierFades, Judgement::cannotTell,
            "levels change as those of a carrier that fades; what lies under it cannot be told",
            {Help::muteFarEnd, Help::moreSweeps}},
    };
    return texts;
}

const RuleText& textOf(Rule rule)
{
    return *std::ranges::find(rules(), rule, &RuleText::rule);
}

constexpr double surelyDisturbed = 600.0; ///< hundredths of a dB over what is explained

Verdict verdictBy(Rule rule, std::optional<double> over = {})
{
    const RuleText& text = textOf(rule);
    Verdict verdict{.judgement = text.judgement, .rule = text.sentence, .wouldHelp = text.helps};
    if (over && text.judgement == Judgement::disturbed) {
        verdict.judgement = *over >= surelyDisturbed ? Judgement::disturbed : Judgement::suspected;
        verdict.overFloor = static_cast<std::int32_t>(std::lround(*over));
    }
    return verdict;
}

/// Readings against what may explain them.
struct Explained {
    double misfit = 0.0; ///< mean over the points, in squares of standard deviations
    double over = 0.0;   ///< a reading in the channel over what is explained, at most; hundredths of a dB
};

/// What may be taken to explain readings, besides what the scan shows beside the channel.
struct Assumed {
    bool hasMasks = false;  ///< the poorest that there are, of transmitters that the scan shows
    bool hasUnseen = false; ///< transmitters that it does not show
    bool hasOwnCarrier = false;
    Stretch notch{0.0, 0.0}; ///< in which multipath takes away of it
};

// The worst that a scan may not show: a transmitter as strong as readings go, whose mask leaves so much in the channel
// beside its own, and so much, but ten dB less at least, in the one after that. Hundredths of a dB.
constexpr double strongest = -2000.0;
constexpr double poorestMask = 2500.0;
constexpr double poorestMaskAfter = 4500.0;
constexpr double leastFallOfMask = 1000.0;
const double strongest_mW = milliwatts(strongest);
constexpr double unbounded_mW = std::numeric_limits<double>::infinity();

constexpr std::size_t samplesOfAShape = 5;

/// Part of a fall; what is less changes no verdict.
constexpr double notSlow = 0.05;

double ratioOf(double hundredths)
{
    return milliwatts(hundredths);
}

Shape sum(Shape shape, const Shape& other, double part)
{
    for (std::size_t index = 0; index < shape.shares.size(); ++index) {
        shape.shares[index] += part * other.shares[index];
    }
    return shape;
}

class ChannelJudge {
public:
    ChannelJudge(const OwnChannel& own, FarEnd farEnd)
        : m_own(own)
        , m_farEnd(farEnd)
        , m_noise_mW(milliwatts(readingOf(noise_mW(own.receiver()))))
        , m_unseenFlat_mW(milliwatts(strongest - 100.0 * own.receiver().ultimateRejection_dB))
    {
    }

    Verdict judge() const;

private:
    using Level = double OwnReading::*;

    bool isDead() const;
    bool isRaised() const;
    bool isOverloaded() const;
    std::size_t sweeps() const;
    Verdict withoutCarrier() const;
    Verdict described(Verdict verdict) const;
    bool comesAndGoes() const;
    std::optional<InterferenceKind> kindByShape() const;
    Verdict besideCarrier() const;

    double unseen_mW(const OwnReading& reading) const;
    double maskSeen_mW() const;
    bool isHigherThanUnseen() const;
    bool hasEdges() const;
    bool mayBeNotched() const;
    bool isOver(const Explained& explained, Level level) const;
    Explained explain(Level level, const Assumed& assumed) const;
    Explained explain(const Profile& profile, Level level, const Assumed& assumed) const;
    void addKnown(const ShapeMaker& make, Level level, const Assumed& assumed, std::vector<Shape>& shapes) const;
    void addUnknown(const ShapeMaker& make, double side, std::vector<Shape>& shapes) const;

    const OwnChannel& m_own;
    const FarEnd m_farEnd;
    const double m_noise_mW; ///< but not less than the lowest reading
    const double m_unseenFlat_mW;
};

Verdict ChannelJudge::judge() const
{
    if (isDead()) {
        return verdictBy(Rule::deadReceiver);
    }
    if (!isRaised()) {
        return verdictBy(Rule::quiet);
    }
    return described(m_farEnd == FarEnd::muted ? withoutCarrier() : besideCarrier());
}

/// Adds what is seen of the interferer, where there is one. What stands outside of the channel has been taken into account.
Verdict ChannelJudge::described(Verdict verdict) const
{
    if (!verdict.overFloor) {
        return verdict;
    }
    verdict.place = InterferencePlace::coChannel;
    verdict.kind = comesAndGoes() ? InterferenceKind::burst : kindByShape();
    if (m_farEnd == FarEnd::on) {
        const double ratio = milliwatts(*verdict.overFloor) - 1.0;
        verdict.carrierToInterference = static_cast<std::int32_t>(std::lround(-levelOf(std::max(ratio, 0.01))));
    }
    return verdict;
}

/// Whether the reading that is highest was low in another sweep.
bool ChannelJudge::comesAndGoes() const
{
    constexpr double muchLower = 500.0;
    const OwnReading* highest = nullptr;
    for (const OwnReading& reading : m_own.readings()) {
        if (reading.isOwn && (highest == nullptr || reading.max > highest->max)) {
            highest = &reading;
        }
    }
    return highest != nullptr && highest->max - highest->min > muchLower + 2.0 * m_own.marginOfMax();
}

/// The shape that explains best what stands in the channel beside all else.
std::optional<InterferenceKind> ChannelJudge::kindByShape() const
{
    constexpr std::size_t fewTunings = 3;
    if (m_own.readings().size() < fewTunings) {
        return std::nullopt;
    }
    const Profile profile = m_own.profileOf(&OwnReading::mean, 0.0);
    const ShapeMaker make(profile, m_own.width_kHz(), m_own.filterWidth_kHz());
    const Assumed assumed{.hasOwnCarrier = m_farEnd != FarEnd::muted};
    std::vector<Shape> shapes;
    addKnown(make, &OwnReading::mean, assumed, shapes);
    shapes.emplace_back();
    std::optional<InterferenceKind> best;
    double least = unbounded_mW;
    const auto consider = [&](const Shape& shape, InterferenceKind kind) {
        shapes.back() = shape;
        const double misfit = fit(profile, m_noise_mW, shapes).misfit;
        if (misfit < least) {
            least = misfit;
            best = kind;
        }
    };
    const double width_kHz = m_own.width_kHz();
    consider(make.band(-4.0 * width_kHz, 4.0 * width_kHz), InterferenceKind::wideband);
    for (double centre_kHz = -0.5 * width_kHz; centre_kHz <= 0.5 * width_kHz; centre_kHz += width_kHz / 16.0) {
        consider(make.line(centre_kHz), InterferenceKind::line);
        for (const double part : {0.25, 0.5, 1.0}) {
            consider(make.carrier(centre_kHz, part * width_kHz, leastRollOff), InterferenceKind::carrier);
        }
    }
    return best;
}

bool ChannelJudge::isDead() const
{
    double highest = -1e9;
    double lowest = 1e9;
    for (const OwnReading& reading : m_own.readings()) {
        highest = std::max(highest, reading.max);
        lowest = std::min(lowest, reading.min);
    }
    const double quiet = readingOf(m_noise_mW);
    if (highest < quiet - 4.0 * mostScatter) {
        return true;
    }
    constexpr std::size_t fewReadings = 4;
    return m_own.count() >= fewReadings && highest == lowest && highest > lowestReading;
}

/// Over the noise.
bool ChannelJudge::isRaised() const
{
    const double quiet = readingOf(m_noise_mW);
    return std::ranges::any_of(m_own.readings(), [&](const OwnReading& reading) {
        return reading.isOwn
            && (reading.max > quiet + m_own.marginOfMax() || reading.mean > quiet + m_own.marginOfMean(reading.readings));
    });
}

std::size_t ChannelJudge::sweeps() const
{
    std::size_t sweeps = 1;
    for (const OwnReading& reading : m_own.readings()) {
        sweeps = std::max(sweeps, reading.readings);
    }
    return sweeps;
}

/// What the scan shows, and carriers on the raster.
void ChannelJudge::addKnown(const ShapeMaker& make, Level level, const Assumed& assumed, std::vector<Shape>& shapes) const
{
    const double width_kHz = make.channelWidth_kHz();
    const Stretch channel{m_own.centre_kHz() - width_kHz / 2.0, m_own.centre_kHz() + width_kHz / 2.0};
    const Leakage leakage = m_own.leakage(level == &OwnReading::mean ? TraceKind::average : TraceKind::max);
    // A slow receiver shows less of what it comes upon than there is.
    const double uncertain = m_own.mostLag() > notSlow ? 2.0 : 1.3;
    const auto add = [&](Shape shape, double most_mW) {
        shape.most_mW = most_mW;
        shapes.push_back(std::move(shape));
    };
    add(make.flat(), uncertain * leakage.rejected_mW(channel) + (assumed.hasUnseen ? m_unseenFlat_mW : 0.0));
    const Shape own = make.band(-width_kHz / 2.0, width_kHz / 2.0);
    if (assumed.hasMasks) {
        add(own, leakage.mostByMasks_mW(channel) * width_kHz / std::min(width_kHz, make.filterWidth_kHz()));
    }
    for (const double side : {-1.0, 1.0}) {
        if (!hasEdges()) {
            break;
        }
        const Shape beside = make.band((side - 0.5) * width_kHz, (side + 0.5) * width_kHz);
        add(beside, strongest_mW * ratioOf(-poorestMask));
        for (const double rollOff : {leastRollOff, mostRollOff}) {
            const Shape carrier = make.carrier(side * width_kHz, width_kHz, rollOff);
            add(carrier, strongest_mW);
            if (assumed.hasUnseen) {
                add(sum(carrier, own, ratioOf(-poorestMask)), strongest_mW);
            }
        }
        if (assumed.hasUnseen) {
            add(sum(beside, own, ratioOf(-leastFallOfMask)), strongest_mW * ratioOf(leastFallOfMask - poorestMaskAfter));
        }
    }
    for (const double rollOff : {leastRollOff, mostRollOff}) {
        if (assumed.hasOwnCarrier) {
            const CarrierShape carrier{0.0, width_kHz, rollOff};
            add(make.carrier(0.0, width_kHz, rollOff), unbounded_mW);
            add(make.partOfCarrier(carrier, {-width_kHz, assumed.notch.low_kHz}),
                assumed.notch.width_kHz() > 0.0 ? unbounded_mW : 0.0);
            add(make.partOfCarrier(carrier, {assumed.notch.high_kHz, width_kHz}),
                assumed.notch.width_kHz() > 0.0 ? unbounded_mW : 0.0);
        }
    }
}

/// Anything else outside of the channel, as a power for each part of the spectrum that filters begin or end with; right
/// beside the channel on one side of it alone.
void ChannelJudge::addUnknown(const ShapeMaker& make, double side, std::vector<Shape>& shapes) const
{
    constexpr double nearest = 0.6;
    constexpr double near = 0.8;
    constexpr double narrowest = 0.1;
    const double width_kHz = make.channelWidth_kHz();
    for (const double here : {side, -side}) {
        double from_kHz = width_kHz * (here == side ? nearest : near);
        std::vector<double> ends_kHz;
        for (const OwnReading& reading : m_own.readings()) {
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

Explained ChannelJudge::explain(Level level, const Assumed& assumed) const
{
    Explained best = explain(m_own.profileOf(level, 0.0), level, assumed);
    for (const double part : {0.25, 0.5, 0.75, 1.0}) {
        if (m_own.mostLag() > notSlow && m_own.readings().size() > 1) {
            const Explained other = explain(m_own.profileOf(level, part * m_own.mostLag()), level, assumed);
            best = other.misfit < best.misfit ? other : best;
        }
    }
    return best;
}

Explained ChannelJudge::explain(const Profile& profile, Level level, const Assumed& assumed) const
{
    const ShapeMaker make(profile, m_own.width_kHz(), m_own.filterWidth_kHz());
    std::vector<Shape> known;
    addKnown(make, level, assumed, known);
    std::optional<Explained> best;
    for (const double side : {-1.0, 1.0}) {
        std::vector<Shape> shapes = known;
        if (hasEdges()) {
            addUnknown(make, side, shapes);
        }
        const Fit usual = fit(profile, m_noise_mW, shapes);
        Explained explained{.misfit = usual.misfit / static_cast<double>(profile.size())};
        for (std::size_t index = 0; index < profile.size(); ++index) {
            const double over = profile[index].level - readingOf(usual.explained_mW[index]);
            explained.over = m_own.readings()[index].isOwn ? std::max(explained.over, over) : explained.over;
        }
        best = best && best->misfit <= explained.misfit ? best : explained;
    }
    return *best;
}

bool ChannelJudge::isOver(const Explained& explained, Level level) const
{
    constexpr double anotherShape = 4.0;
    constexpr double leastOver = 150.0;
    const double margin = level == &OwnReading::mean ? m_own.marginOfMean(sweeps()) : m_own.marginOfMax();
    return explained.over > margin
        || (level == &OwnReading::mean && explained.misfit > anotherShape && explained.over > leastOver);
}

Verdict ChannelJudge::withoutCarrier() const
{
    const Explained usual = explain(&OwnReading::mean, {});
    const Explained most = explain(&OwnReading::max, {});
    const bool isUsual = isOver(usual, &OwnReading::mean);
    const bool isMost = isOver(most, &OwnReading::max);
    if (!isUsual && !isMost) {
        return verdictBy(Rule::neighboursOnly);
    }
    const double over = std::max(usual.over, most.over);
    if (!m_own.isSeenFromBeside() && m_own.tunings() < samplesOfAShape) {
        return isHigherThanUnseen() ? verdictBy(Rule::overAnyLeak, over) : verdictBy(Rule::maybeLeak);
    }
    const Assumed assumed{.hasMasks = true, .hasUnseen = !m_own.isSeenFromBeside()};
    const bool isUsualStill = isUsual && isOver(explain(&OwnReading::mean, assumed), &OwnReading::mean);
    const bool isMostStill = isMost && isOver(explain(&OwnReading::max, assumed), &OwnReading::max);
    constexpr double faint = 400.0;
    if (!isUsualStill && !isMostStill && m_own.isSeenFromBeside() && over < faint) {
        return verdictBy(Rule::neighboursOnly);
    }
    if (!isUsualStill && !isMostStill) {
        return verdictBy(m_own.isSeenFromBeside() ? Rule::maybeMask : Rule::maybeLeak);
    }
    if (!isUsualStill && !m_own.isSeenFromBeside() && !isHigherThanUnseen()) {
        return verdictBy(Rule::maybeLeak);
    }
    return verdictBy(m_own.isSeenFromBeside() ? Rule::overAllLeaks : Rule::shapedInChannel, over);
}

/// What the strongest transmitter leaves in the filter that the scan does not show: in the middle of the channel by its
/// mask, over the edges, and through the filter.
double ChannelJudge::unseen_mW(const OwnReading& reading) const
{
    const double width_kHz = m_own.width_kHz();
    const double filter_kHz = m_own.filterWidth_kHz();
    const bool isBesideSeen = m_own.tunings() >= samplesOfAShape || m_own.isRaster();
    const double mask = isBesideSeen ? poorestMaskAfter : poorestMask;
    const double part = std::min(1.0, filter_kHz / width_kHz);
    const CarrierShape beside{width_kHz, width_kHz, leastRollOff};
    const double overEdge = isBesideSeen ? 0.0 : shareOfCarrier(beside, std::abs(reading.offset_kHz), filter_kHz);
    return m_unseenFlat_mW + strongest_mW * (part * ratioOf(-mask) + overEdge);
}

bool ChannelJudge::isHigherThanUnseen() const
{
    return std::ranges::any_of(m_own.readings(), [this](const OwnReading& reading) {
        const double level = readingOf(m_noise_mW + unseen_mW(reading) + maskSeen_mW());
        return reading.isOwn
            && (reading.mean > level + m_own.marginOfMean(reading.readings) - 100.0
                || reading.max > level + 50.0 + 1.5 * m_own.scatter());
    });
}

/// Whether readings tell where what stands beside the channel begins.
bool ChannelJudge::hasEdges() const
{
    return m_own.isSeenFromBeside() || m_own.tunings() >= samplesOfAShape || m_own.isRaster();
}

/// Whether the own carrier with a notch in it looks like that.
bool ChannelJudge::mayBeNotched() const
{
    const double width_kHz = m_own.width_kHz();
    for (const double width : {0.2, 0.4, 0.7, 1.0}) {
        for (double centre = -0.9; centre <= 0.9; centre += 0.1) {
            const Assumed notched{.hasMasks = true,
                .hasUnseen = !m_own.isSeenFromBeside(),
                .hasOwnCarrier = true,
                .notch = {(centre - width / 2.0) * width_kHz, (centre + width / 2.0) * width_kHz}};
            if (explain(m_own.profileOf(&OwnReading::mean, 0.0), &OwnReading::mean, notched).over
                < m_own.marginOfMean(sweeps())) {
                return true;
            }
        }
    }
    return false;
}

double ChannelJudge::maskSeen_mW() const
{
    const Stretch channel{m_own.centre_kHz() - m_own.width_kHz() / 2.0, m_own.centre_kHz() + m_own.width_kHz() / 2.0};
    return m_own.leakage(TraceKind::max).mostByMasks_mW(channel);
}

/// No link is designed for a level at which receivers begin to saturate.
bool ChannelJudge::isOverloaded() const
{
    constexpr double overload = -2500.0;
    double nearest_kHz = m_own.width_kHz();
    double level = lowestReading;
    for (const OwnReading& reading : m_own.readings()) {
        if (std::abs(reading.offset_kHz) < nearest_kHz) {
            nearest_kHz = std::abs(reading.offset_kHz);
            level = reading.mean;
        }
    }
    return levelOf(power_mW(level, m_own.receiver())) > overload;
}

Verdict ChannelJudge::besideCarrier() const
{
    constexpr double multipathBelow_kHz = 13.5e6;
    const bool hasShape = m_own.tunings() >= samplesOfAShape;
    const bool hasMultipath = m_own.centre_kHz() < multipathBelow_kHz;
    const Fluctuation fluctuation = fluctuationOf(m_own.fromSweepToSweep(), m_own.scatter());
    const double rises = std::max(fluctuation.rises, hasMultipath ? 0.0 : fluctuation.falls);
    if (rises > 0.0 && (!hasMultipath || fluctuation.rises > fluctuation.falls)) {
        return verdictBy(Rule::besideCarrierComes, rises + 300);
    }
    if (fluctuation.comes > 0.0) {
        return verdictBy(Rule::besideCarrierComes, fluctuation.comes + 300);
    }
    if (fluctuation.jumps > 0.0 && !hasMultipath) {
        return verdictBy(Rule::besideCarrierComes, fluctuation.jumps + 300);
    }
    const Assumed assumed{.hasMasks = true, .hasUnseen = !m_own.isSeenFromBeside(), .hasOwnCarrier = true};
    const Explained strange = hasShape ? explain(&OwnReading::mean, assumed) : Explained{};
    if (strange.over > m_own.marginOfMean(sweeps()) + 50.0 && !(hasMultipath && mayBeNotched())) {
        return verdictBy(Rule::besideCarrierShape, strange.over);
    }
    const Explained highest = hasShape && sweeps() > 2 ? explain(&OwnReading::max, assumed) : Explained{};
    if (highest.over > m_own.marginOfMax() + 100.0 && !hasMultipath) {
        return verdictBy(Rule::besideCarrierComes, highest.over);
    }
    if (isOverloaded()) {
        return verdictBy(Rule::overload, 300.0);
    }
    return m_farEnd == FarEnd::unknown ? verdictBy(Rule::carrierUntold) : verdictBy(Rule::carrierAlone);
}

} // namespace

Verdict judge(const ChannelResult& channel, FarEnd farEnd)
{
    if (channel.plan.channelSpacing_kHz == 0 || channel.receiver.filterWidth_kHz <= 0.0) {
        return verdictBy(Rule::noSample);
    }
    const OwnChannel own(channel);
    return own.tunings() == 0 ? verdictBy(Rule::noSample) : ChannelJudge(own, farEnd).judge();
}

} // namespace sdc
