#include "tests/judge/Outcome.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Sweep.h"
#include "simulator/radio/Link.h"
#include "tests/judge/truth/ChannelTruth.h"
#include "tests/judge/truth/RasterTruth.h"

namespace judge {

namespace {

Case caseOf(const Trial& trial, const ChannelTruth& truth)
{
    if (trial.isReceiverDead()) {
        return Case::dead;
    }
    if (truth.tunings == 0) {
        return Case::unseen;
    }
    if (truth.isGrazed) {
        return Case::grazed;
    }
    if (!isClean(truth)) {
        return Case::disturbed;
    }
    if (trial.isFarEndOn || !isRaised(truth)) {
        return Case::clean;
    }
    return truth.isNarrow ? Case::nextCase : Case::raised;
}

/// One after the other: only one terminal at a time can be up.
Course planned(const Trial& trial)
{
    static std::mutex guard;
    const std::lock_guard<std::mutex> lock(guard);
    const auto course = courseOf(trial);
    if (!course) {
        throw std::logic_error("seed " + std::to_string(trial.seed) + ": the controller cannot plan the scan");
    }
    return *course;
}

} // namespace

bool isAlarm(const Outcome& outcome)
{
    const sdc::Judgement judgement = outcome.answer.judgement;
    return judgement == sdc::Judgement::suspected || judgement == sdc::Judgement::disturbed;
}

bool isClear(const Outcome& outcome)
{
    return outcome.answer.judgement == sdc::Judgement::clear;
}

bool cannotTell(const Outcome& outcome)
{
    return outcome.answer.judgement == sdc::Judgement::cannotTell;
}

bool isExcused(const Outcome& outcome)
{
    const ChannelTruth& truth = outcome.truth.channel;
    if (outcome.which != Case::disturbed || !cannotTell(outcome)) {
        return false;
    }
    switch (outcome.told) {
    case sdc::FarEnd::muted: return truth.isExplainable;
    case sdc::FarEnd::on: return truth.isShapedLikeOwn && !truth.comesAndGoes;
    case sdc::FarEnd::unknown: return !truth.comesAndGoes;
    }
    return false;
}

std::vector<RasterTruth> rasterOf(const Outcome& outcome)
{
    return outcome.which == Case::dead ? std::vector<RasterTruth>{} : outcome.truth.raster;
}

sdc::ChannelResult scan(const Trial& trial, const Course& course)
{
    const simulator::Link& link = trial.link();
    sdc::ChannelResult result;
    result.channel = static_cast<std::uint32_t>(trial.channel().number);
    result.unitTypeText = link.unitTypeText;
    result.receiver = {link.filterWidth_kHz, link.noiseFigure_dB, link.ultimateRejection_dB, link.saturation_dBm};
    result.plan = course.plan;
    const std::vector<std::int32_t> taken = readings(link, course);
    for (std::int64_t first = 0; first < course.samples(); first += course.perSweep) {
        sdc::Sweep sweep;
        sweep.start = sdc::TimePoint(course.tuned(first));
        sweep.rxBefore_kHz = link.rxFrequency_kHz;
        sweep.rxAfter_kHz = link.rxFrequency_kHz;
        for (std::int64_t sample = first; sample < first + course.perSweep; ++sample) {
            sweep.samples.push_back(
                {course.tuning_kHz(sample), taken[static_cast<std::size_t>(sample)], sdc::TimePoint(course.read(sample))});
        }
        sweep.end = sweep.samples.back().time;
        result.add(std::move(sweep));
    }
    return result;
}

Outcome tryOne(std::uint64_t seed, Detector detector)
{
    const Trial trial = makeTrial(seed);
    const Course course = planned(trial);
    Truth truth = truthOf(trial, course);
    return {seed, trial.kind, trial.sweeps, trial.told, caseOf(trial, truth.channel), std::move(truth),
        detector(scan(trial, course), trial.told)};
}

/// Which thread takes which seed does not matter: each seed has its place.
std::vector<Outcome> tryAll(std::uint64_t firstSeed, std::uint64_t lastSeed, Detector detector, unsigned threads)
{
    std::vector<Outcome> outcomes(lastSeed - firstSeed + 1);
    std::atomic<std::size_t> next = 0;
    std::vector<std::jthread> workers;
    std::exception_ptr failure;
    std::mutex guard;
    const auto work = [&] {
        try {
            for (std::size_t index = next++; index < outcomes.size(); index = next++) {
                outcomes[index] = tryOne(firstSeed + index, detector);
            }
        } catch (...) {
            const std::lock_guard<std::mutex> lock(guard);
            failure = std::current_exception();
            next = outcomes.size();
        }
    };
    for (unsigned count = 0; count < std::max(threads, 1U); ++count) {
        workers.emplace_back(work);
    }
    workers.clear();
    if (failure) {
        std::rethrow_exception(failure);
    }
    return outcomes;
}

} // namespace judge
