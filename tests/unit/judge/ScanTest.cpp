// The judge takes the samples that a controller takes.

#include "tests/judge/trial/Scan.h"
#include "apps/sdc/scan/Session.h"
#include "host/Clock.h"
#include "simulator/Radios.h"
#include "tests/judge/Outcome.h"
#include "tests/judge/trial/Trial.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <numeric>
#include <set>
#include <string>
#include <vector>

namespace {

using judge::Course;
using judge::Trial;

/// Keeps the sweeps of one channel.
class Sweeps : public sdc::Sink {
public:
    void onSweepEnd(std::size_t, const sdc::Sweep& sweep) override { m_sweeps.push_back(sweep); }
    const std::vector<sdc::Sweep>& all() const { return m_sweeps; }

private:
    std::vector<sdc::Sweep> m_sweeps;
};

/// With a terminal, a worker and a controller.
std::vector<sdc::Sweep> sweepsOfASession(const Trial& trial, std::uint32_t sweeps)
{
    host::VirtualClock clock;
    const simulator::Radios radios({trial.channel()}, clock);
    Sweeps found;
    sdc::SessionPlan plan;
    plan.kind = trial.kind;
    plan.sweeps = sweeps;
    plan.channels.push_back({{trial.channel().number, trial.link().unitTypeText, trial.link().rxFrequency_kHz, {}}, {}});
    sdc::Session(plan, {&found}, [] { return false; }).run(radios.channels(), clock);
    return found.all();
}

std::string unitOf(const Trial& trial)
{
    const std::string& text = trial.link().unitTypeText;
    return text.substr(0, text.rfind(' '));
}

TEST(JudgeScan, samplesAndTimesAreThoseOfAController)
{
    constexpr std::uint64_t seeds = 60;
    constexpr std::uint32_t mostSweeps = 3;
    std::set<std::string> units;
    std::set<sdc::ScanKind> kinds;
    bool isAnyDead = false;
    for (std::uint64_t seed = 1; seed <= seeds; ++seed) {
        Trial trial = judge::makeTrial(seed);
        trial.sweeps = std::min(trial.sweeps, mostSweeps);
        const sdc::ChannelResult taken = judge::scan(trial, judge::courseOf(trial).value());
        const std::vector<sdc::Sweep> expected = sweepsOfASession(trial, trial.sweeps);

        ASSERT_EQ(taken.sweeps.size(), expected.size()) << "seed " << seed;
        for (std::size_t sweep = 0; sweep < expected.size(); ++sweep) {
            EXPECT_EQ(taken.sweeps[sweep].samples, expected[sweep].samples) << "seed " << seed;
            EXPECT_EQ(taken.sweeps[sweep].start, expected[sweep].start) << "seed " << seed;
            EXPECT_EQ(taken.sweeps[sweep].end, expected[sweep].end) << "seed " << seed;
            EXPECT_EQ(expected[sweep].ending, sdc::Ending::complete) << "seed " << seed;
        }
        units.insert(unitOf(trial));
        kinds.insert(trial.kind);
        isAnyDead = isAnyDead || trial.isReceiverDead();
    }

    EXPECT_EQ(units.size(), 9U);
    EXPECT_EQ(kinds.size(), 2U);
    EXPECT_TRUE(isAnyDead);
}

TEST(JudgeScan, someSamplesAreReadAsAmongAll)
{
    for (std::uint64_t seed = 1; seed <= 40; ++seed) {
        const Trial trial = judge::makeTrial(seed);
        const Course course = judge::courseOf(trial).value();
        const simulator::Link link = judge::quiet(trial.link());
        const std::vector<std::int32_t> all = judge::readings(link, course);
        std::vector<std::int64_t> some;
        for (std::int64_t sample = static_cast<std::int64_t>(seed) % 7; sample < course.samples(); sample += 17) {
            some.push_back(sample);
        }
        const std::vector<std::int32_t> taken = judge::readings(link, course, some);

        for (std::size_t index = 0; index < some.size(); ++index) {
            EXPECT_NEAR(taken[index], all[static_cast<std::size_t>(some[index])], 1) << "seed " << seed;
        }
    }
}

TEST(JudgeScan, aQuietReceiverHasNeitherJitterNorFaults)
{
    simulator::Link link = judge::makeTrial(1).link();
    link.faults.push_back({});

    EXPECT_EQ(judge::quiet(link).jitter_dB, 0.0);
    EXPECT_TRUE(judge::quiet(link).faults.empty());
}

} // namespace
