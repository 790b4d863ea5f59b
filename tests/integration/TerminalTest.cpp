// The real library in a whole terminal: brought up, commanded, polled and taken down through the host's life cycle and the
// published interface alone.

#include "terminal/Terminal.h"
#include "host/HostObserver.h"
#include "host/ModuleManager.h"
#include "simulator/Radios.h"

#include "Platform/Host/InterfaceBroker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <sstream>
#include <thread>

namespace {

using simulator::Link;
using simulator::TerminalChannel;
using terminal::ScanStart;
using testing::Contains;
using testing::Each;
using testing::IsEmpty;

constexpr RadioChannel channel1{1};

const Link& firstLink()
{
    static const Link link = simulator::loadScenario("18-f595").channels.front().link;
    return link;
}

/// All but the time of a sweep is real: the clock is virtual.
class Terminal : public testing::Test {
protected:
    terminal::Terminal& bringUp(const std::vector<TerminalChannel>& channels = {{channel1, firstLink()}})
    {
        terminal.reset();
        radios = std::make_unique<simulator::Radios>(channels, clock);
        terminal = std::make_unique<terminal::Terminal>(radios->channels(), clock);
        return *terminal;
    }

    ESDCStatus scan(RadioChannel channel, ESDCCommand start) const
    {
        EXPECT_EQ(terminal->startScan(channel, start), ScanStart::underWay);
        return terminal->waitForEnd(channel);
    }

    host::VirtualClock clock;
    std::unique_ptr<simulator::Radios> radios;
    std::unique_ptr<terminal::Terminal> terminal;
};

TEST_F(Terminal, channelScanFindsTheCarrierAndPutsTheReceiverBack)
{
    bringUp();
    EXPECT_EQ(scan(channel1, SDC_CMD_CHANNEL_SCAN_START), SDC_STATUS_CHANNEL_SCAN_FINISHED);
    const std::vector<SDCResult> samples = terminal->samples(channel1);
    ASSERT_EQ(samples.size(), 13U); // 27.5 MHz channel, margin 1 MHz, step 2 MHz
    EXPECT_EQ(samples.front().frequency_kHz, 19164750U);
    EXPECT_EQ(samples.back().frequency_kHz, 19188750U);
    EXPECT_NEAR(samples[6].rssi, -3500, 300); // the wanted carrier
    EXPECT_EQ(terminal->controller(channel1).getProgress(), 92);
    EXPECT_EQ(terminal->rxFrequency_kHz(channel1), 19177500U);
}

TEST_F(Terminal, subBandScanCoversTheRasterAndShowsTheNeighbours)
{
    bringUp();
    EXPECT_EQ(scan(channel1, SDC_CMD_SUB_BAND_SCAN_START), SDC_STATUS_SUB_BAND_SCAN_FINISHED);
    const std::vector<SDCResult> samples = terminal->samples(channel1);
    ASSERT_EQ(samples.size(), 500U);
    EXPECT_EQ(samples.front().frequency_kHz, 18701000U);
    EXPECT_EQ(samples.back().frequency_kHz, 19699000U);
    const auto levelAt = [&](std::uint32_t frequency_kHz) { return samples[(frequency_kHz - 18701000U) / 2000U].rssi; };
    const std::int32_t quiet = levelAt(18801000);
    EXPECT_GT(levelAt(19122500), quiet + 1000); // n = 15
    EXPECT_GT(levelAt(19177500), quiet + 1000); // n = 17
    EXPECT_GT(levelAt(19260000), quiet + 1000); // n = 20
    EXPECT_EQ(terminal->rxFrequency_kHz(channel1), 19177500U);
}

TEST_F(Terminal, planIsWhatTheControllerReports)
{
    bringUp();
    EXPECT_FALSE(terminal->plan(channel1).has_value());
    scan(channel1, SDC_CMD_CHANNEL_SCAN_START);
    const terminal::ScanPlan plan = terminal->plan(channel1).value();
    EXPECT_EQ(plan.rxFrequency_kHz, 19177500U);
    EXPECT_EQ(plan.channelSpacing_kHz, 27500U);
    EXPECT_EQ(plan.lowest_kHz, 19164750U);
    EXPECT_EQ(plan.highest_kHz, 19188750U);
    EXPECT_EQ(plan.samples, 13);
    EXPECT_EQ(plan.step_kHz, 2000U);
    EXPECT_EQ(plan.firstSetRxWait_ms, 3000U);
    EXPECT_EQ(plan.setRxWait_ms, 300U);
    EXPECT_EQ(plan.settleTime(), std::chrono::milliseconds(3000 + 12 * 300));
}

TEST_F(Terminal, everyScanAfterAnotherIsStartedThoughTheWorkerMayStillBeBusy)
{
    bringUp();
    for (int round = 0; round < 100; ++round) {
        ASSERT_EQ(scan(channel1, SDC_CMD_CHANNEL_SCAN_START), SDC_STATUS_CHANNEL_SCAN_FINISHED);
        ASSERT_EQ(scan(channel1, SDC_CMD_SUB_BAND_SCAN_START), SDC_STATUS_SUB_BAND_SCAN_FINISHED);
        ASSERT_EQ(terminal->samples(channel1).size(), 500U);
    }
}

TEST_F(Terminal, stopEndsTheSweepAfterTheStepInHandAndPutsTheReceiverBack)
{
    bringUp();
    clock.hold();
    ASSERT_EQ(terminal->startScan(channel1, SDC_CMD_SUB_BAND_SCAN_START), ScanStart::underWay);
    ASSERT_EQ(terminal->rxFrequency_kHz(channel1), 18701000U); // the first step, in its settle delay
    EXPECT_TRUE(terminal->stopScan(channel1));
    EXPECT_EQ(terminal->controller(channel1).getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
    clock.release();
    terminal->waitForIdle(channel1);
    EXPECT_EQ(terminal->samples(channel1).size(), 1U);
    EXPECT_EQ(terminal->rxFrequency_kHz(channel1), 19177500U);
    EXPECT_FALSE(terminal->stopScan(channel1));
    EXPECT_EQ(scan(channel1, SDC_CMD_CHANNEL_SCAN_START), SDC_STATUS_CHANNEL_SCAN_FINISHED);
}

/// Lets the worker of channel 1 stand just before its last reading until the test's thread asks for its status a second
/// time.
class StandsBeforeItsEnd {
public:
    explicit StandsBeforeItsEnd(int nrOfSamples)
        : m_nrOfSamples(nrOfSamples)
    {
        host::setHostObserver([this](const std::string& event) { see(event); });
    }
    ~StandsBeforeItsEnd() { host::setHostObserver({}); }
    StandsBeforeItsEnd(const StandsBeforeItsEnd&) = delete;
    StandsBeforeItsEnd& operator=(const StandsBeforeItsEnd&) = delete;

    void waitUntilItStands() { m_stands.wait(false); }

    void endAtTheSecondStatus() { m_statuses = 0; }

private:
    void see(const std::string& event)
    {
        if (std::this_thread::get_id() == m_test) {
            if (event == "trace.isEnabled 6" && m_statuses >= 0 && ++m_statuses == 2) {
                raise(m_mayEnd);
                m_hasEnded.wait(false);
            }
        } else if (event == "sleep.get") {
            ++m_sleeps;
        } else if (event == "trace.isEnabled 7" && m_sleeps == m_nrOfSamples && !m_stands) {
            raise(m_stands);
            m_mayEnd.wait(false);
        } else if (event == "trace.isEnabled 5" && m_mayEnd) { // on its way into its wait
            raise(m_hasEnded);
        }
    }

    static void raise(std::atomic<bool>& flag)
    {
        flag = true;
        flag.notify_all();
    }

    const std::thread::id m_test = std::this_thread::get_id();
    int m_nrOfSamples;
    int m_statuses = -1; // counted from when the test says so
    std::atomic<int> m_sleeps{0};
    std::atomic<bool> m_stands{false};
    std::atomic<bool> m_mayEnd{false};
    std::atomic<bool> m_hasEnded{false};
};

TEST_F(Terminal, stopThatFindsTheScanEndingIsNotGiven)
{
    constexpr RadioChannel channel2{2};
    bringUp({{channel1, firstLink()}, {channel2, firstLink()}});
    const std::optional<terminal::ScanPlan> plan = [this] {
        scan(channel1, SDC_CMD_CHANNEL_SCAN_START);
        return terminal->plan(channel1);
    }();
    StandsBeforeItsEnd worker(plan.value().samples);
    ASSERT_EQ(terminal->startScan(channel1, SDC_CMD_CHANNEL_SCAN_START), ScanStart::underWay);
    worker.waitUntilItStands();
    clock.hold(); // the other channel is going to sleep, this one does not
    ASSERT_EQ(terminal->startScan(channel2, SDC_CMD_CHANNEL_SCAN_START), ScanStart::underWay);
    worker.endAtTheSecondStatus();
    EXPECT_FALSE(terminal->stopScan(channel1));
    EXPECT_EQ(terminal->controller(channel1).getStatus(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
    clock.release();
}

TEST_F(Terminal, startWhileAScanRunsIsToldAsBusyAndLeavesTheScanAlone)
{
    bringUp();
    clock.hold();
    ASSERT_EQ(terminal->startScan(channel1, SDC_CMD_SUB_BAND_SCAN_START), ScanStart::underWay);
    EXPECT_EQ(terminal->startScan(channel1, SDC_CMD_CHANNEL_SCAN_START), ScanStart::busy);
    clock.release();
    EXPECT_EQ(terminal->waitForEnd(channel1), SDC_STATUS_SUB_BAND_SCAN_FINISHED);
    EXPECT_EQ(terminal->samples(channel1).size(), 500U);
}

TEST_F(Terminal, unsupportedUnitTypeFailsTheStart)
{
    Link link = firstLink();
    link.unitTypeText = "no such unit";
    bringUp({{channel1, link}});
    EXPECT_EQ(terminal->startScan(channel1, SDC_CMD_CHANNEL_SCAN_START), ScanStart::failed);
    EXPECT_EQ(terminal->controller(channel1).getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
}

TEST_F(Terminal, channelsScanAtOnceEachWithTheSamplesItHasAlone)
{
    bringUp();
    scan(channel1, SDC_CMD_SUB_BAND_SCAN_START);
    const std::vector<SDCResult> alone = terminal->samples(channel1);
    terminal.reset();

    const std::vector<std::uint32_t> numbers = {0, 1, 2, 100, 4294967295U};
    std::vector<TerminalChannel> channels;
    for (const std::uint32_t number : numbers) {
        channels.push_back({RadioChannel{number}, firstLink()});
    }
    bringUp(channels);
    for (const std::uint32_t number : numbers) {
        ASSERT_EQ(terminal->startScan(RadioChannel{number}, SDC_CMD_SUB_BAND_SCAN_START), ScanStart::underWay);
    }
    for (const std::uint32_t number : numbers) {
        SCOPED_TRACE(number);
        EXPECT_EQ(terminal->waitForEnd(RadioChannel{number}), SDC_STATUS_SUB_BAND_SCAN_FINISHED);
        const std::vector<SDCResult> samples = terminal->samples(RadioChannel{number});
        ASSERT_EQ(samples.size(), alone.size());
        for (std::size_t i = 0; i < samples.size(); ++i) {
            ASSERT_EQ(samples[i].frequency_kHz, alone[i].frequency_kHz);
            ASSERT_EQ(samples[i].rssi, alone[i].rssi);
        }
    }
}

std::set<std::string> threadNames()
{
    std::set<std::string> names;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream file(task.path() / "comm");
        std::string name;
        std::getline(file, name);
        names.insert(name);
    }
    return names;
}

TEST_F(Terminal, workerThreadsAreNamedWithinWhatLinuxTakes)
{
    bringUp({{RadioChannel{3}, firstLink()}, {RadioChannel{100}, firstLink()}});
    EXPECT_THAT(threadNames(), Contains("SpectDiagCtrl3"));
    EXPECT_THAT(threadNames(), Contains("SpectDiagCtrl10")); // of SpectDiagCtrl100
}

/// Keeps the controllers' trace at every level.
class TraceTexts : public host::RecordingTraceSink {
public:
    TraceTexts()
    {
        host::trace::setLevel("ZRP.SDC", PLX_TRACE_LEVEL_DETAIL);
        host::trace::addSink(*this);
    }
    ~TraceTexts() override { host::trace::removeSink(*this); }
    TraceTexts(const TraceTexts&) = delete;
    TraceTexts& operator=(const TraceTexts&) = delete;

    std::size_t count(const std::string& begin) const
    {
        const std::vector<host::TraceRecord> all = records();
        return static_cast<std::size_t>(
            std::ranges::count_if(all, [&begin](const auto& record) { return record.text.starts_with(begin); }));
    }
};

TEST_F(Terminal, takingItDownDuringASweepLetsTheSweepEndWithoutItsTimeAndLeavesNothingBehind)
{
    const TraceTexts texts;
    host::RealClock slow(0.001); // the first settle delay alone takes 50 minutes
    {
        const simulator::Radios slowRadios({{channel1, firstLink()}}, slow);
        terminal::Terminal slowTerminal(slowRadios.channels(), slow);
        ASSERT_EQ(slowTerminal.startScan(channel1, SDC_CMD_SUB_BAND_SCAN_START), ScanStart::underWay);
    }
    EXPECT_EQ(texts.count("Read RSSI "), 500U);
    EXPECT_EQ(texts.count("Failed to restore"), 0U);
    EXPECT_EQ(texts.count("Thread exited with m_status sub-band-scan-finished"), 1U);
    EXPECT_THAT(host::ModuleManager::instance().modules(), IsEmpty());
    EXPECT_THAT(InterfaceBroker::getInstance().interfaces(), IsEmpty());
}

TEST_F(Terminal, takingItDownRightAfterAStartNeverHangs)
{
    for (int round = 0; round < 500; ++round) {
        bringUp();
        terminal->controller(channel1).setCommand(SDC_CMD_CHANNEL_SCAN_START, 0);
        terminal.reset();
    }
    EXPECT_THAT(host::ModuleManager::instance().modules(), IsEmpty());
}

/// A module of the host's that does not come up.
class FailingModule : public ModuleInterface {
public:
    FailingModule()
        : ModuleInterface(1, "Failing", 0, 0, nullptr, 0)
    {
    }
    unsigned int onModuleInit() override { return 32769; }
};

TEST_F(Terminal, aModuleThatDoesNotComeUpIsNamedAndNothingIsLeftBehind)
{
    {
        const FailingModule failing;
        EXPECT_THAT([this] { bringUp(); },
            testing::ThrowsMessage<terminal::NotUp>("Failing did not come up: onModuleInit returned 32769"));
    }
    EXPECT_THAT(InterfaceBroker::getInstance().interfaces(), IsEmpty());
    EXPECT_THAT(host::ModuleManager::instance().modules(), IsEmpty());
}

/// While it lives no thread can be created: none has room for its stack.
class NoRoomForThreads {
public:
    NoRoomForThreads()
    {
        pthread_getattr_default_np(&m_before);
        pthread_attr_t huge;
        pthread_attr_init(&huge);
        pthread_attr_setstacksize(&huge, std::size_t{1} << 62);
        EXPECT_EQ(pthread_setattr_default_np(&huge), 0);
        pthread_attr_destroy(&huge);
    }
    ~NoRoomForThreads()
    {
        pthread_setattr_default_np(&m_before);
        pthread_attr_destroy(&m_before);
    }
    NoRoomForThreads(const NoRoomForThreads&) = delete;
    NoRoomForThreads& operator=(const NoRoomForThreads&) = delete;

private:
    pthread_attr_t m_before{};
};

TEST_F(Terminal, aWorkerThatCannotBeCreatedIsToldAndNothingIsLeftBehind)
{
    {
        const NoRoomForThreads full;
        EXPECT_THAT([this] { bringUp(); },
            testing::ThrowsMessage<terminal::NotUp>(
                "channel 1 has no worker: Thread SpectDiagCtrl1 caught exception [Resource temporarily unavailable]."));
    }
    EXPECT_THAT(InterfaceBroker::getInstance().interfaces(), IsEmpty());
    EXPECT_THAT(host::ModuleManager::instance().modules(), IsEmpty());
    bringUp();
    EXPECT_EQ(scan(channel1, SDC_CMD_CHANNEL_SCAN_START), SDC_STATUS_CHANNEL_SCAN_FINISHED);
}

TEST_F(Terminal, aWorkerWithoutAKnownReasonIsToldToo)
{
    host::setHostObserver([](const std::string& event) {
        if (event == "thread.name SpectDiagCtrl1") {
            throw 1;
        }
    });
    EXPECT_THAT([this] { bringUp(); },
        testing::ThrowsMessage<terminal::NotUp>(
            "channel 1 has no worker: Unknown exception when trying to create the thread SpectDiagCtrl1"));
    host::setHostObserver({});
}

TEST_F(Terminal, aLinkThatCannotWorkOrATakenNameLeavesNothingBehind)
{
    struct Occupant : IInterface {
    } occupant;
    Link link = firstLink();
    link.channelSpacing_kHz = 0;
    EXPECT_THROW(bringUp({{channel1, link}}), std::invalid_argument);
    EXPECT_THAT(InterfaceBroker::getInstance().interfaces(), IsEmpty());

    InterfaceBroker::getInstance().registerInterface("IRadio_1", &occupant);
    EXPECT_THROW(bringUp(), std::runtime_error);
    InterfaceBroker::getInstance().unregisterInterface("IRadio_1");
    EXPECT_THAT(InterfaceBroker::getInstance().interfaces(), IsEmpty());
    EXPECT_THAT(host::ModuleManager::instance().modules(), IsEmpty());
}

TEST_F(Terminal, unknownChannelIsNamed)
{
    bringUp();
    try {
        terminal->controller(RadioChannel{9});
        FAIL() << "no exception";
    } catch (const std::out_of_range& exception) {
        EXPECT_STREQ(exception.what(), "the terminal has no radio channel 9");
    }
}

TEST_F(Terminal, severalThreadsMayStopOneScan)
{
    bringUp();
    clock.hold();
    ASSERT_EQ(terminal->startScan(channel1, SDC_CMD_SUB_BAND_SCAN_START), ScanStart::underWay);
    ISpectrumDiagnosticsController& sdc = terminal->controller(channel1);
    std::vector<std::thread> stoppers;
    for (int i = 0; i < 4; ++i) {
        stoppers.emplace_back([&sdc] { EXPECT_EQ(sdc.setCommand(SDC_CMD_SCAN_STOP, 0), SDC_RC_OK); });
    }
    for (std::thread& stopper : stoppers) {
        stopper.join();
    }
    clock.release();
    terminal->waitForIdle(channel1);
    EXPECT_EQ(terminal->samples(channel1).size(), 1U);
}

/// Pollers of every query beside one commander: what the interface promises to be safe.
TEST_F(Terminal, anyNumberOfPollersBesideOneCommander)
{
    constexpr int scans = 200;
    bringUp();
    ISpectrumDiagnosticsController& sdc = terminal->controller(channel1);
    std::atomic<bool> isOver{false};
    std::vector<std::thread> pollers;
    for (int i = 0; i < 3; ++i) {
        pollers.emplace_back([&] {
            std::vector<SDCResult> samples(500);
            while (!isOver) {
                sdc.getStatus();
                sdc.getProgress();
                sdc.getSpectrumDiagnosticsProperties();
                std::int32_t count = 500;
                sdc.getResult(&count, samples.data());
                for (std::int32_t k = 1; k < count; ++k) {
                    const auto index = static_cast<std::size_t>(k);
                    EXPECT_EQ(samples[index].frequency_kHz, samples[index - 1].frequency_kHz + 2000);
                }
            }
        });
    }
    int finished = 0;
    for (int round = 0; round < scans; ++round) {
        if (scan(channel1, SDC_CMD_CHANNEL_SCAN_START) == SDC_STATUS_CHANNEL_SCAN_FINISHED) {
            ++finished;
        }
    }
    isOver = true;
    for (std::thread& poller : pollers) {
        poller.join();
    }
    EXPECT_EQ(finished, scans);
}

} // namespace
