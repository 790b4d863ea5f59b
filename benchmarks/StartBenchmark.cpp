// How soon a scan begins: from the command to the first tuning on the worker, beside the waking of a thread that waits on a
// condition variable. Both are told without the lock, and note the moment as soon as they run. All of it happens on one
// processor: how long another one takes to leave its idle state is the machine's affair, and now a few microseconds, now
// fifty.

#include "benchmarks/support/Scanner.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"

#include <benchmark/benchmark.h>

#include <sched.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

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

/// The times of a benchmark's iterations. Their median, a counter, tells of a call what their mean does not where other
/// programs take the processor now and then.
class Times {
public:
    explicit Times(benchmark::State& state)
        : m_state(state)
    {
    }

    /// The time of an iteration: from a call to the moment that it leads to.
    template <typename Call>
    void measure(Moment& moment, Call call)
    {
        moment.forget();
        std::this_thread::sleep_for(rest);
        const Clock::time_point begin = Clock::now();
        call();
        m_seconds.push_back(std::chrono::duration<double>(moment.wait() - begin).count());
        m_state.SetIterationTime(m_seconds.back());
    }

    void countMedian()
    {
        const auto middle = m_seconds.begin() + static_cast<std::ptrdiff_t>(m_seconds.size() / 2);
        std::nth_element(m_seconds.begin(), middle, m_seconds.end());
        m_state.counters["median"] = *middle;
    }

private:
    benchmark::State& m_state;
    std::vector<double> m_seconds;
};

/// Keeps the calling thread, and those that it makes meanwhile, on the processor that it is on.
class OneProcessor {
public:
    OneProcessor()
    {
        sched_getaffinity(0, sizeof m_before, &m_before);
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(static_cast<unsigned>(sched_getcpu()), &one);
        sched_setaffinity(0, sizeof one, &one);
    }
    ~OneProcessor() { sched_setaffinity(0, sizeof m_before, &m_before); }
    OneProcessor(const OneProcessor&) = delete;
    OneProcessor& operator=(const OneProcessor&) = delete;

private:
    cpu_set_t m_before{};
};

class NotingPeers : public bench::PlainPeers {
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
    const OneProcessor here;
    Moment tuned;
    bench::Scanner scanner(1, std::make_unique<NotingPeers>(1, tuned));
    Times times(state);
    for ([[maybe_unused]] auto _ : state) {
        scanner.waitForEnd();
        times.measure(tuned, [&] { scanner.controller().setCommand(SDC_CMD_SUB_BAND_SCAN_START, 0); });
    }
    times.countMedian();
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
    const OneProcessor here;
    Moment woken;
    Sleeper sleeper(woken);
    Times times(state);
    for ([[maybe_unused]] auto _ : state) {
        sleeper.waitForSleep();
        times.measure(woken, [&] { sleeper.wake(); });
    }
    times.countMedian();
}

BENCHMARK(firstTuning)->Name("start/first-tuning")->Unit(benchmark::kMicrosecond)->UseManualTime();
BENCHMARK(wakeOfAThread)->Name("start/wake-of-a-thread")->Unit(benchmark::kMicrosecond)->UseManualTime();

} // namespace
