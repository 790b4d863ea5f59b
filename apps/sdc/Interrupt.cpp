#include "apps/sdc/Interrupt.h"

#include <csignal>

namespace sdc {

namespace {

volatile std::sig_atomic_t interrupted = 0;

extern "C" void onInterrupt(int)
{
    interrupted = 1;
}

} // namespace

void watchForInterrupt()
{
    struct sigaction action = {};
    action.sa_handler = onInterrupt;
    action.sa_flags = static_cast<int>(SA_RESETHAND); // the second one does what it does to every program
    sigaction(SIGINT, &action, nullptr);
}

bool isInterrupted()
{
    return interrupted != 0;
}

} // namespace sdc
