// Several controllers at once, each with its commander, and eight pollers that ask them everything. Stops come at random
// moments, those that cross a sweep's start or end among them. Meant for the sanitizers; what holds in any order of events
// is checked.

#include "tests/support/ControllerInspector.h"
#include "tests/support/FakePeers.h"
#include "tests/support/Waiting.h"

#include "host/Clock.h"
#include "host/Trace.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

using Controller = SpectrumDiagnosticsController;

constexpr std::uint32_t configured_kHz = 18000000;
constexpr std::int32_t samplesOfAScan = 14; // of the peers' channel scan

constexpr std::size_t nrOfPollers = 8;
constexpr std::uint32_t nrOfChannels = 3;
constexpr std::uint32_t nrOfLives = 4;

/// 10,000 in all; SDC_STRESS_SCANS takes another number.
std::uint32_t scansOfOneLife()
{
    const char* const scans = std::getenv("SDC_STRESS_SCANS");
    const auto all = scans == nullptr ? 10000U : static_cast<std::uint32_t>(std::stoul(scans));
    return (all + nrOfChannels * nrOfLives - 1) / (nrOfChannels * nrOfLives);
}

/// With SDC_STRESS_LOCK set, scans start with the worker's lock held, which no caller does: for tools that follow locks
/// alone.
const bool holdsTheLock = std::getenv("SDC_STRESS_LOCK") != nullptr;

class Yield : public Util::SleepApi {
public:
    void sleepMs(std::uint32_t) override { std::this_thread::yield(); }
};

/// A channel with its controller and its commander. The commander uses the interface alone, as others do, but for what frees
/// a worker that a command in a bad moment has left behind.
class Channel {
public:
    explicit Channel(std::uint32_t number)
        : m_number(number)
        , m_random(number)
    {
        m_peers.registerFor(number);
    }

    void beBorn()
    {
        m_controller = std::make_unique<Controller>(RadioChannel{m_number});
        ASSERT_EQ(m_controller->onModuleInit(), 0U);
    }

    void die()
    {
        isOver(); // a failed run may have left it turning round
        m_controller.reset();
    }

    /// The commander's thread.
    void scan(std::uint32_t times)
    {
        for (std::uint32_t scan = 0; scan < times; ++scan) {
            start();
            const bool isStopped = m_random() % 3 == 0;
            if (isStopped) {
                stopAtRandom();
            }
            ASSERT_TRUE(tests::eventually([this] { return isOver(); }));
            if (isStopped || holdsTheLock) { // a stopped one was freed in the midst of its sweep, perhaps
                const std::lock_guard<std::mutex> workerWaits(members().m_mutex());
            }
            check(isStopped);
        }
    }

    /// A poller's thread: whatever the sweep does, every answer is a possible one.
    void poll(std::mt19937& random) const
    {
        ASSERT_LE(m_controller->getStatus(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
        const std::int32_t progress = m_controller->getProgress();
        ASSERT_TRUE(progress >= 0 && progress < 100) << progress;
        checkSamples(static_cast<std::int32_t>(random() % (samplesOfAScan + 1)));
        ASSERT_EQ(m_controller->getSpectrumDiagnosticsProperties().longHaul, 0);
    }

private:
    ControllerInspector members() const { return ControllerInspector(*m_controller); }

    void start()
    {
        std::unique_lock<std::mutex> workerWaits(members().m_mutex(), std::defer_lock);
        if (holdsTheLock) {
            workerWaits.lock();
        }
        ASSERT_EQ(m_controller->setCommand(SDC_CMD_CHANNEL_SCAN_START, 0), SDC_RC_OK);
    }

    void stopAtRandom()
    {
        for (auto yields = m_random() % 40; yields > 0; --yields) {
            std::this_thread::yield();
        }
        ASSERT_EQ(m_controller->setCommand(SDC_CMD_SCAN_STOP, 0), SDC_RC_OK);
    }

    /// A stop that came before the sweep or after it has left the worker turning round: the idle state from outside releases
    /// it, and ends a sweep just as well. A start that came between the worker's test and its wait is told once more.
    bool isOver() const
    {
        if (members().getState() == Controller::STATE_STOP) {
            members().setState(Controller::STATE_IDLE);
        }
        if (!holdsTheLock) {
            members().m_condition().notify_all();
        }
        return members().getState() == Controller::STATE_IDLE;
    }

    void check(bool isStopped) const
    {
        ASSERT_EQ(m_peers.frequencyController.receiver_kHz, configured_kHz);
        const std::int32_t count = checkSamples(samplesOfAScan + 1);
        ASSERT_LE(count, samplesOfAScan);
        if (!isStopped) {
            ASSERT_EQ(m_controller->getStatus(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
            ASSERT_EQ(count, samplesOfAScan);
        }
    }

    /// @return how many of at most so many there are
    std::int32_t checkSamples(std::int32_t count) const
    {
        std::array<SDCResult, samplesOfAScan + 1> samples{};
        EXPECT_EQ(m_controller->getResult(&count, samples.data()), SDC_RC_OK);
        for (std::int32_t index = 0; index < count; ++index) {
            EXPECT_EQ(samples.at(static_cast<std::size_t>(index)).frequency_kHz,
                17987000 + 2000 * static_cast<std::uint32_t>(index));
        }
        return count;
    }

    std::uint32_t m_number;
    tests::FakePeers m_peers;
    std::mt19937 m_random;
    std::unique_ptr<Controller> m_controller;
};

TEST(Stress, commandersAndPollersOfSeveralChannelsGetOnTogether)
{
    host::trace::setLevel("ZRP.SDC", PLX_TRACE_LEVEL_OFF);
    Yield yield;
    const host::SleepServiceInForce sleepInForce(yield);
    std::vector<std::unique_ptr<Channel>> channels;
    for (std::uint32_t number = 1; number <= nrOfChannels; ++number) {
        channels.push_back(std::make_unique<Channel>(number));
    }
    for (std::uint32_t life = 0; life < nrOfLives && !testing::Test::HasFailure(); ++life) {
        std::atomic<bool> isOver{false};
        for (const auto& channel : channels) {
            channel->beBorn();
        }
        {
            std::vector<std::jthread> pollers;
            for (std::size_t poller = 0; poller < nrOfPollers; ++poller) {
                pollers.emplace_back([&, random = std::mt19937(static_cast<std::uint32_t>(poller))]() mutable {
                    while (!isOver) {
                        channels[random() % nrOfChannels]->poll(random);
                        std::this_thread::yield();
                    }
                });
            }
            {
                std::vector<std::jthread> commanders;
                for (const auto& channel : channels) {
                    commanders.emplace_back([&channel] { channel->scan(scansOfOneLife()); });
                }
            }
            isOver = true;
        }
        for (const auto& channel : channels) {
            channel->die();
        }
    }
}

} // namespace
