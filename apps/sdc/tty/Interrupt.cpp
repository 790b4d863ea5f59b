#include "apps/sdc/tty/Interrupt.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>

namespace sdc {

namespace {

constexpr std::array stopSignals{SIGINT, SIGTERM, SIGHUP};

// Words, not bytes: there are processors without atomic operations on bytes.
std::atomic<int> asked{0}; ///< how often
std::atomic<int> lastSignal{SIGINT};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler writes it");

void setAction(int signal, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART; // output that is being written goes on
    for (const int other : stopSignals) {
        sigaddset(&action.sa_mask, other);
    }
    sigaction(signal, &action, nullptr);
}

bool isIgnored(int signal)
{
    struct sigaction action = {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

extern "C" void onStopSignal(int signal)
{
    lastSignal = signal;
    if (++asked == 2 && !isIgnored(SIGINT)) {
        setAction(SIGINT, SIG_DFL);
    }
}

} // namespace

void watchForInterrupt()
{
    for (const int signal : stopSignals) {
        if (!isIgnored(signal)) {
            setAction(signal, onStopSignal);
        }
    }
}

bool isInterrupted()
{
    return asked > 0;
}

bool isLeaveWanted()
{
    return asked > 1;
}

void leaveBySignal()
{
    constexpr int firstStatus = 128; // of a shell
    const int signal = lastSignal;
    setAction(signal, SIG_DFL);
    raise(signal);
    std::_Exit(firstStatus + signal);
}

SignalsHeld::SignalsHeld()
{
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &m_before);
}

SignalsHeld::~SignalsHeld()
{
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

} // namespace sdc
