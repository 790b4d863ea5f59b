// What a thousand controllers cost that have nothing to do, beside as many threads that wait. Each measurement is a process
// of its own, in which nothing has been before.

#include "benchmarks/support/PlainPeers.h"

#include "Control/SpectrumDiagnosticsController/private/SpectrumDiagnosticsController.h"
#include "Platform/Host/RadioChannel.h"
#include "Platform/Host/thread_utilities.h"

#include <benchmark/benchmark.h>

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <ctime>
#include <deque>
#include <fstream>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

using Seconds = std::chrono::duration<double>;

constexpr std::uint32_t thousand = 1000;

/// A thread that waits until it is told to end.
class WaitingThread {
public:
    explicit WaitingThread(std::uint32_t number)
        : m_thread([this] { wait(); })
    {
        os_extension::thread_utilities::setName(m_thread, "Waiting" + std::to_string(number));
    }

    ~WaitingThread()
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_isOver = true;
        }
        m_condition.notify_all();
        m_thread.join();
    }

private:
    void wait()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_condition.wait(lock, [this] { return m_isOver; });
    }

    std::mutex m_mutex;
    std::condition_variable m_condition;
    bool m_isOver = false;
    std::thread m_thread;
};

/// A controller as a host has it after initialisation.
class IdleController {
public:
    explicit IdleController(std::uint32_t number)
        : m_controller(RadioChannel{number})
    {
        if (m_controller.onModuleInit() != 0) {
            throw std::runtime_error("a benchmark's controller cannot be initialised");
        }
    }

private:
    SpectrumDiagnosticsController m_controller;
};

/// What the process has of its own, in bytes.
double ownMemory()
{
    std::ifstream rollup("/proc/self/smaps_rollup");
    std::string name;
    double kibibytes = 0.0;
    while (rollup >> name) {
        if (name == "Private_Clean:" || name == "Private_Dirty:") {
            double part = 0.0;
            rollup >> part;
            kibibytes += part;
        }
    }
    return 1024.0 * kibibytes;
}

/// Processor time of the process, in seconds.
double processorTime()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/// How long all are left idle; SDC_IDLE_SECONDS takes another time.
Seconds idleTime()
{
    const char* const seconds = std::getenv("SDC_IDLE_SECONDS");
    return Seconds(seconds == nullptr ? 10.0 : std::stod(seconds));
}

struct Cost {
    double memoryOfOne = 0.0;   ///< bytes
    double timeOfOne = 0.0;     ///< seconds until it is there
    double processorTime = 0.0; ///< seconds, of all of them while they are idle
};

/// In a process that has nothing but the peers.
template <typename Idle>
Cost costOfAThousand()
{
    std::deque<bench::PlainPeers> peers;
    for (std::uint32_t number = 1; number <= thousand; ++number) {
        peers.emplace_back(number);
    }
    const double memory = ownMemory();
    const auto begin = std::chrono::steady_clock::now();
    std::deque<Idle> idle;
    for (std::uint32_t number = 1; number <= thousand; ++number) {
        idle.emplace_back(number);
    }
    const Seconds time = std::chrono::steady_clock::now() - begin;
    std::this_thread::sleep_for(Seconds(0.2)); // until the last one waits
    const double processorTimeBefore = processorTime();
    std::this_thread::sleep_for(idleTime());
    const double processorTimeAfter = processorTime();
    return {(ownMemory() - memory) / thousand, time.count() / thousand, processorTimeAfter - processorTimeBefore};
}

/// Forks: this process has one thread.
template <typename Idle>
void idle(benchmark::State& state)
{
    Cost cost;
    for ([[maybe_unused]] auto _ : state) {
        int ends[2] = {-1, -1};
        if (pipe(ends) != 0) {
            state.SkipWithError("there is no pipe");
            return;
        }
        const pid_t process = fork();
        if (process == 0) {
            const Cost measured = costOfAThousand<Idle>();
            _exit(write(ends[1], &measured, sizeof measured) == sizeof measured ? EXIT_SUCCESS : EXIT_FAILURE);
        }
        close(ends[1]);
        const bool isMeasured = read(ends[0], &cost, sizeof cost) == sizeof cost;
        close(ends[0]);
        waitpid(process, nullptr, 0);
        if (!isMeasured) {
            state.SkipWithError("the process that measures has failed");
        }
    }
    state.counters["memory_of_one"] = cost.memoryOfOne;
    state.counters["time_of_one"] = cost.timeOfOne;
    state.counters["processor_time"] = cost.processorTime;
}

BENCHMARK_TEMPLATE(idle, IdleController)
    ->Name("idle/controller")
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_TEMPLATE(idle, WaitingThread)->Name("idle/thread")->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
