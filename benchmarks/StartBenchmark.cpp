// How soon a scan begins: from the command to the first tuning on the worker, beside the waking of a thread that waits on a
// condition variable. Both are told without the lock, and note the moment as soon as they run.

#include "benchmarks/support/Scanner.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto rest = std::chrono::microseconds(200); // before each call, so that both find a thread that sleeps

/// A moment that one thread notes and another waits for, without a lock that could hold up the first.
class Moment {
public:
    void forget() { m_isNoted = false; }

    /// The first call since forget counts.
    void note()
    {
        if (!m_isNoted) {
            m_time = Clock::now();
            m_isNoted = true;
        }
    }

    Clock::time_point wait() const
    {
        while (!m_isNoted) {
            std::this_thread::yield();
        }
        return m_time;
    }

private:
    std::atomic<bool> m_isNoted{false};
    Clock::time_point m_time;
};

/// The time of an iteration: from a call to the moment that it leads to.
template <typename Call>
void measure(benchmark::State& state, Moment& moment, Call call)
{
    moment.forget();
    std::this_thread::sleep_for(rest);
    const Clock::time_point begin = Clock::now();
    call();
    state.SetIterationTime(std::chrono::duration<double>(moment.wait() - begin).count());
}

class NotingPeers : public support::PlainPeers {
public:
    NotingPeers(std::uint32_t channel, Moment& firstTuning)
        : PlainPeers(channel)
        , m_firstTuning(firstTuning)
    {
    }

private:
    std::int32_t setRxFrequency(std::uint32_t, bool) override
    {
        m_firstTuning.note();
        return 0;
    }

    Moment& m_firstTuning;
};

void firstTuning(benchmark::State& state)
{
    Moment tuned;
    bench::Scanner scanner(1, std::make_unique<NotingPeers>(1, tuned));
    for ([[maybe_unused]] auto _ : state) {
        scanner.waitForEnd();
        measure(state, tuned, [&] { scanner.controller().setCommand(SDC_CMD_SUB_BAND_SCAN_START, 0); });
    }
    scanner.waitForEnd();
}

/// A thread that sleeps on a condition variable and notes when it was woken.
class Sleeper {
public:
    explicit Sleeper(Moment& woken)
        : m_woken(woken)
    {
        while (!m_hasBegun) {
            std::this_thread::yield();
        }
    }

    ~Sleeper()
    {
        waitForSleep();
        m_isOver = true;
        wake();
    }

    void waitForSleep()
    {
        while (true) {
            const std::lock_guard<std::mutex> sleeps(m_mutex);
            if (!m_isCalled) {
                return;
            }
        }
    }

    void wake()
    {
        m_isCalled = true;
        m_condition.notify_all();
    }

private:
    void run()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_hasBegun = true;
        while (!m_isOver) {
            m_condition.wait(lock, [this] { return m_isCalled.load(); });
            m_woken.note();
            m_isCalled = false;
        }
    }

    Moment& m_woken;
    std::mutex m_mutex;
    std::condition_variable m_condition;
    std::atomic<bool> m_hasBegun{false};
    std::atomic<bool> m_isCalled{false};
    std::atomic<bool> m_isOver{false};
    std::jthread m_thread{[this] { run(); }};
};

void wakeOfAThread(benchmark::State& state)
{
    Moment woken;
    Sleeper sleeper(woken);
    for ([[maybe_unused]] auto _ : state) {
        sleeper.waitForSleep();
        measure(state, woken, [&] { sleeper.wake(); });
    }
}

BENCHMARK(firstTuning)->Name("start/first-tuning")->Unit(benchmark::kMicrosecond)->UseManualTime();
BENCHMARK(wakeOfAThread)->Name("start/wake-of-a-thread")->Unit(benchmark::kMicrosecond)->UseManualTime();

} // namespace
