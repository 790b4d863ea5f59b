#include "apps/sdc/Interrupt.h"

#include <csignal>
#include <unistd.h>

namespace sdc {

namespace {

constexpr int exitInterrupted = 130;

volatile std::sig_atomic_t interrupted = 0;

extern "C" void onInterrupt(int)
{
    if (interrupted != 0) {
        _exit(exitInterrupted);
    }
    interrupted = 1;
}

} // namespace

void watchForInterrupt()
{
    struct sigaction action = {};
    action.sa_handler = onInterrupt;
    sigaction(SIGINT, &action, nullptr);
}

bool isInterrupted()
{
    return interrupted != 0;
}

} // namespace sdc
