// What the engine of scans tells its sinks.

#include "apps/sdc/scan/Session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;

/// Writes down what it is told, and how many samples there were since.
class Recorder : public sdc::Sink {
public:
    void onPlan(const sdc::SessionPlan& plan) override { tell("plan " + std::to_string(plan.channels.size())); }
    void onSweepBegin(std::size_t channel, const sdc::ScanPlan& plan) override
    {
        tell("begin " + std::to_string(channel) + " of " + std::to_string(plan.samples));
    }
    void onSample(std::size_t channel, const sdc::Sample& sample) override { samples.at(channel).push_back(sample); }
    void onSweepEnd(std::size_t channel, const sdc::Sweep& sweep) override
    {
        tell("end " + std::to_string(channel) + (sweep.reason.empty() ? "" : ": " + sweep.reason));
        EXPECT_EQ(samples.at(channel), sweep.samples);
        samples.at(channel).clear();
    }
    void onStop(std::chrono::milliseconds) override { tell("stop"); }
    void onEnd() override { tell("over"); }

    std::vector<std::string> told;
    std::array<std::vector<sdc::Sample>, 2> samples;

private:
    void tell(const std::string& what) { told.push_back(what); }
};

class Session : public testing::Test {
protected:
    sdc::SessionPlan planOf(const std::vector<std::size_t>& channels, std::uint32_t sweeps)
    {
        sdc::SessionPlan plan;
        plan.sweeps = sweeps;
        for (const std::size_t channel : channels) {
            plan.channels.push_back({site.channels().at(channel), std::nullopt});
        }
        return plan;
    }

    void run(sdc::Session& session)
    {
        const simulator::Radios radios = site.radios(clock);
        session.run(radios.channels(), clock);
    }

    sdc::Site site{"8-quad"};
    host::VirtualClock clock;
    Recorder one;
    Recorder other;
};

TEST_F(Session, tellsAllSinksEachSampleAndEachEndOfTheChannelsAskedFor)
{
    sdc::Session session(planOf({3, 1}, 2), {&one, &other}, [] { return false; });
    run(session);
    EXPECT_THAT(one.told,
        ElementsAre("plan 2", "begin 0 of 14", "begin 1 of 14", "end 0", "end 1", "begin 0 of 14", "begin 1 of 14", "end 0",
            "end 1", "over"));
    EXPECT_EQ(other.told, one.told);
    EXPECT_FALSE(session.isCutShort());
}

TEST_F(Session, thatIsStoppedBeginsNoOtherSweep)
{
    clock.hold(); // no sweep ends by itself
    bool isStopWanted = false;
    sdc::Session session(planOf({0}, 0), {&one}, [&] {
        if (!std::exchange(isStopWanted, true)) {
            clock.release();
        }
        return isStopWanted;
    });
    run(session);
    EXPECT_EQ(one.told.front(), "plan 1");
    EXPECT_EQ(one.told.back(), "over");
    EXPECT_EQ(std::ranges::count(one.told, "begin 0 of 14"), 1);
    EXPECT_TRUE(session.isCutShort());
}

TEST_F(Session, ofATerminalThatDoesNotComeUpIsAFailedSweepOfEachChannel)
{
    sdc::Session session(planOf({0, 1}, 5), {&one}, [] { return false; });
    const simulator::Radios radios = site.radios(clock);
    session.run({radios.channels().front(), radios.channels().front()}, clock);
    ASSERT_EQ(one.told.size(), 4U);
    EXPECT_THAT(one.told[1], testing::StartsWith("end 0: the terminal did not come up: "));
    EXPECT_THAT(one.told[2], testing::StartsWith("end 1: the terminal did not come up: "));
}

} // namespace
