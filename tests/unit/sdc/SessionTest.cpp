// What the engine of scans tells its sinks.

#include "apps/sdc/scan/Session.h"

#include "Platform/Radio/IRssiHandler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <new>

namespace {

using namespace std::chrono_literals;
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
        kept = sweep.samples.size();
        samples.at(channel).clear();
    }
    void onStop(std::chrono::milliseconds) override { tell("stop"); }
    void onEnd(sdc::Ending ending) override { tell("over, " + std::string(toText(ending))); }

    std::vector<std::string> told;
    std::size_t kept = 0; ///< samples of the last sweep that ended
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
            "end 1", "over, complete"));
    EXPECT_EQ(other.told, one.told);
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
    EXPECT_EQ(one.told.back(), "over, stopped");
    EXPECT_EQ(std::ranges::count(one.told, "begin 0 of 14"), 1);
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

/// Keeps when sweeps began and ended.
class Times : public sdc::Sink {
public:
    void onSweepEnd(std::size_t, const sdc::Sweep& sweep) override { starts.push_back(sweep.start - sdc::TimePoint()); }
    std::vector<std::chrono::milliseconds> starts;
};

constexpr std::chrono::milliseconds aSweep = 3000ms + 13 * 300ms; // of a channel of this terminal

TEST_F(Session, beginsSweepsEverySoOftenOnTheRadiosClock)
{
    sdc::SessionPlan plan = planOf({0}, 3);
    plan.interval = 1min;
    Times times;
    sdc::Session session(plan, {&times}, [] { return false; });
    run(session);
    EXPECT_THAT(times.starts, ElementsAre(0min, 1min, 2min));
    EXPECT_EQ(clock.now(), 2min - 2 * aSweep) << "what has passed between the sweeps, for all threads";
    EXPECT_EQ(session.ending(), sdc::Ending::complete);
}

TEST_F(Session, whoseSweepsTakeLongerThanTheirIntervalBeginsThemOneAfterTheOther)
{
    sdc::SessionPlan plan = planOf({0}, 3);
    plan.interval = aSweep - 1ms;
    Times times;
    sdc::Session session(plan, {&times}, [] { return false; });
    run(session);
    EXPECT_THAT(times.starts, ElementsAre(0ms, aSweep, 2 * aSweep));
}

TEST_F(Session, beginsSweepsForAsLongAsTold)
{
    const std::pair<std::chrono::milliseconds, std::size_t> rows[]{
        {1ms, 1}, {aSweep, 1}, {aSweep + 1ms, 2}, {10 * aSweep, 10}};
    for (const auto& [length, sweeps] : rows) {
        sdc::SessionPlan plan = planOf({0}, 0);
        plan.length = length;
        Times times;
        sdc::Session session(plan, {&times}, [] { return false; });
        run(session);
        EXPECT_EQ(times.starts.size(), sweeps);
        EXPECT_EQ(session.ending(), sdc::Ending::complete);
    }
}

TEST_F(Session, thatIsStoppedBetweenTwoSweepsWaitsForNoOther)
{
    host::RealClock slow(1e6);
    sdc::SessionPlan plan = planOf({0}, 2);
    plan.speed = 1e6;
    plan.interval = 100h * 365 * 24; // far longer than a test may take, at this speed too
    Times times;
    sdc::Session session(plan, {&times}, [&times] { return !times.starts.empty(); });
    const simulator::Radios radios = site.radios(slow);
    session.run(radios.channels(), slow);
    EXPECT_EQ(times.starts.size(), 1U);
    EXPECT_EQ(session.ending(), sdc::Ending::stopped);
}

/// A reading that waits behind a gate, from the fourth on.
class GatedRssi : public IRssiHandler {
public:
    explicit GatedRssi(IRssiHandler& radio)
        : m_radio(radio)
    {
    }
    std::int32_t readRssi(std::int32_t& rssi) override
    {
        if (++m_readings > 3) {
            m_isReached = true;
            m_gate.get_future().wait();
        }
        return m_radio.readRssi(rssi);
    }
    bool isReached() const { return m_isReached; }
    void open() { m_gate.set_value(); }

private:
    IRssiHandler& m_radio;
    int m_readings = 0;
    std::atomic<bool> m_isReached = false;
    std::promise<void> m_gate;
};

TEST_F(Session, whoseRadioDoesNotAnswerIsGivenUpWithAllItsSamplesWhereTheUserWaitsNoLonger)
{
    const simulator::Radios radios = site.radios(clock);
    std::vector<terminal::Channel> channels = radios.channels();
    GatedRssi rssi(channels[0].peers.rssiHandler);
    const terminal::Peers& peers = channels[0].peers;
    const terminal::Channel gated{channels[0].number,
        {peers.systemPowerController, peers.frameFormat, peers.frequencyController, rssi, peers.radioCapability,
            peers.radio},
        channels[0].tunedTo_kHz};
    std::size_t toldBefore = 0;
    const auto abandon = [&] {
        toldBefore = one.told.size();
        rssi.open();
    };
    const auto isReached = [&] { return rssi.isReached(); };
    sdc::Session session(planOf({0}, 0), {&one}, isReached, {isReached, abandon});
    session.run({gated}, clock);
    EXPECT_THAT(one.told,
        ElementsAre("plan 1", "begin 0 of 14", "stop",
            testing::StartsWith(
                "end 0: the sweep was given up: its radio did not answer, and the user waited no longer; the "
                "receiver was not put back: it stands at "),
            "over, failed"));
    EXPECT_EQ(one.kept, 3U);
    EXPECT_EQ(toldBefore, one.told.size());
}

TEST_F(Session, whoseUserWaitsNoLongerTakesNoWallTimeForTheReceiver)
{
    host::RealClock slow(1e-9); // a settle delay is longer than a life
    bool isStopWanted = false;
    bool isLeaveWanted = false;
    const auto stop = [&] { return std::exchange(isStopWanted, true); };
    const auto leave = [&] { return isStopWanted && std::exchange(isLeaveWanted, true); };
    sdc::Session session(planOf({0}, 0), {&one}, stop, {leave, [] { FAIL(); }});
    const simulator::Radios radios = site.radios(slow);
    session.run(radios.channels(), slow);
    EXPECT_THAT(one.told, ElementsAre("plan 1", "begin 0 of 14", "stop", "end 0", "over, stopped"));
    EXPECT_EQ(one.kept, 1U);
    EXPECT_EQ(radios.channels().front().tunedTo_kHz(), site.channels().front().rxFrequency_kHz);
}

/// Cannot take the second sample.
class FullSink : public sdc::Sink {
public:
    void onSample(std::size_t, const sdc::Sample&) override
    {
        if (++m_samples == 2) {
            throw std::bad_alloc();
        }
    }

private:
    int m_samples = 0;
};

TEST_F(Session, thatBreaksTellsItsEndAndWhatItHad)
{
    FullSink full;
    sdc::Session session(planOf({0}, 0), {&one, &full}, [] { return false; });
    EXPECT_THROW(run(session), std::bad_alloc);
    ASSERT_EQ(one.told.size(), 4U);
    EXPECT_THAT(one.told[2], testing::StartsWith("end 0: the sweep was given up: std::bad_alloc"));
    EXPECT_EQ(one.told[3], "over, failed");
    EXPECT_GE(one.kept, 2U);
}

} // namespace
