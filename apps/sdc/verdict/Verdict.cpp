#include "apps/sdc/verdict/Verdict.h"

#include "apps/sdc/result/Floor.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/verdict/BesideCarrier.h"
#include "apps/sdc/verdict/Interferer.h"
#include "apps/sdc/verdict/OwnChannel.h"
#include "apps/sdc/verdict/Rules.h"
#include "apps/sdc/verdict/WithoutCarrier.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace sdc {

namespace {

bool hasSampleIn(const Stretch& stretch, const ChannelResult& channel)
{
    return std::ranges::any_of(channel.sweeps, [&stretch](const Sweep& sweep) {
        return std::ranges::any_of(sweep.samples, [&stretch](const Sample& sample) {
            return sample.frequency_kHz >= stretch.low_kHz && sample.frequency_kHz <= stretch.high_kHz;
        });
    });
}

/// By more than noise figures and chance explain.
bool isBelowNoise(const OwnChannel& own)
{
    constexpr double uncertain = 150.0;
    constexpr double surely = 3.3;
    double count = 0.0;
    double sum = 0.0;
    for (const OwnReading& reading : own.readings()) {
        count += static_cast<double>(reading.readings);
        sum += static_cast<double>(reading.readings) * reading.mean;
    }
    return sum / count < levelOf(own.noise_mW()) - uncertain - surely * mostScatter / std::sqrt(count);
}

bool isDead(const OwnChannel& own)
{
    constexpr std::size_t fewReadings = 4;
    const double highest = std::ranges::max_element(own.readings(), {}, &OwnReading::max)->max;
    const double lowest = std::ranges::min_element(own.readings(), {}, &OwnReading::min)->min;
    return isBelowNoise(own) || (own.count() >= fewReadings && highest == lowest && highest > lowestReading);
}

/// Over the noise.
bool isRaised(const OwnChannel& own)
{
    const double quiet = levelOf(own.noise_mW());
    return std::ranges::any_of(own.readings(), [&](const OwnReading& reading) {
        return reading.isOwn
            && (reading.max > quiet + own.marginOfMax() || reading.mean > quiet + own.marginOfMean(reading.readings));
    });
}

/// What comes and goes on top of a carrier shows in three sweeps at the earliest; what is only suspected stands out better
/// in the mean of many.
bool wouldMoreSweepsHelp(const Verdict& verdict, const OwnChannel& own, FarEnd farEnd)
{
    constexpr std::size_t sweepsToComeAndGo = 3;
    const bool isBesideCarrier = verdict.judgement == Judgement::cannotTell && farEnd != FarEnd::muted;
    return verdict.judgement == Judgement::suspected || (isBesideCarrier && own.sweeps() < sweepsToComeAndGo);
}

} // namespace

Verdict judge(const ChannelResult& channel, FarEnd farEnd)
{
    if (channel.plan.channelSpacing_kHz == 0 || channel.receiver.filterWidth_kHz <= 0.0) {
        return verdictBy(Rule::noSample);
    }
    const OwnChannel own(channel);
    if (own.tunings() == 0) {
        return verdictBy(hasSampleIn(own.stretch(), channel) ? Rule::noLevel : Rule::noSample);
    }
    if (isDead(own)) {
        return verdictBy(Rule::deadReceiver);
    }
    if (!isRaised(own)) {
        return verdictBy(farEnd == FarEnd::on ? Rule::noCarrier : Rule::quiet);
    }
    Verdict verdict = farEnd == FarEnd::muted ? judgeWithoutCarrier(own) : judgeBesideCarrier(own, farEnd);
    if (wouldMoreSweepsHelp(verdict, own, farEnd)) {
        verdict.wouldHelp.push_back(Help::moreSweeps);
    }
    describeInterferer(verdict, own, farEnd);
    return verdict;
}

} // namespace sdc
