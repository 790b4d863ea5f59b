// How soon a scan begins: from the command to the first tuning on the worker, beside the waking of a thread that waits on a
// condition variable.

#include "benchmarks/support/BareHost.h"
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

constexpr auto rest = std::chrono::microseconds(200); // before each start, so that both sides find a thread that sleeps

double seconds(Clock::duration duration)
{
    return std::chrono::duration<double>(duration).count();
}

/// Peers whose receiver notes when it was first tuned.
class NotingPeers : public support::PlainPeers {
public:
    explicit NotingPeers(std::uint32_t channel)
        : PlainPeers(channel)
    {
    }

    /// Forgets the last scan; while none runs.
    void forget() { m_isTuned = false; }

    /// When the scan that has ended first tuned the receiver.
    Clock::time_point firstTuning() const { return m_firstTuning; }

private:
    std::int32_t setRxFrequency(std::uint32_t, bool) override
    {
        if (!m_isTuned) {
            m_firstTuning = Clock::now();
            m_isTuned = true;
        }
        return 0;
    }

    bool m_isTuned = false;
    Clock::time_point m_firstTuning;
};

void firstTuning(benchmark::State& state)
{
    auto peers = std::make_unique<NotingPeers>(1);
    NotingPeers& receiver = *peers;
    bench::Scanner scanner(1, std::move(peers));
    for ([[maybe_unused]] auto _ : state) {
        receiver.forget();
        std::this_thread::sleep_for(rest);
        const Clock::time_point command = Clock::now();
        scanner.controller().setCommand(SDC_CMD_SUB_BAND_SCAN_START, 0);
        scanner.waitForEnd();
        state.SetIterationTime(seconds(receiver.firstTuning() - command));
    }
}

/// A thread that sleeps on a condition variable and notes when it was woken.
class Sleeper {
public:
    ~Sleeper() { wake(Order::leave); }

    /// Waits until the thread sleeps. @return when it was woken the last time
    Clock::time_point woken()
    {
        while (true) {
            {
                const std::lock_guard<std::mutex> sleeps(m_mutex);
                if (m_order == Order::sleep) {
                    return m_woken;
                }
            }
            std::this_thread::yield();
        }
    }

    void wake() { wake(Order::note); }

private:
    enum class Order { sleep, note, leave };

    void wake(Order order)
    {
        m_order = order;
        m_condition.notify_all();
    }

    void run()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        while (m_order != Order::leave) {
            m_condition.wait(lock, [this] { return m_order != Order::sleep; });
            m_woken = Clock::now();
            Order noted = Order::note;
            m_order.compare_exchange_strong(noted, Order::sleep);
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_condition;
    std::atomic<Order> m_order{Order::sleep};
    Clock::time_point m_woken;
    std::jthread m_thread{[this] { run(); }};
};

void wakeOfAThread(benchmark::State& state)
{
    Sleeper sleeper;
    for ([[maybe_unused]] auto _ : state) {
        std::this_thread::sleep_for(rest);
        const Clock::time_point call = Clock::now();
        sleeper.wake();
        state.SetIterationTime(seconds(sleeper.woken() - call));
    }
}

BENCHMARK(firstTuning)->Name("start/first-tuning")->Unit(benchmark::kMicrosecond)->UseManualTime();
BENCHMARK(wakeOfAThread)->Name("start/wake-of-a-thread")->Unit(benchmark::kMicrosecond)->UseManualTime();

} // namespace
