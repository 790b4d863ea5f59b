#include "apps/sdc/tty/Interrupt.h"

#include <atomic>
#include <csignal>

namespace sdc {

namespace {

// A word, not a byte: there are processors without atomic operations on bytes.
std::atomic<int> interrupted{0};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler writes it");

extern "C" void onInterrupt(int)
{
    interrupted = 1;
}

} // namespace

void watchForInterrupt()
{
    struct sigaction action = {};
    if (sigaction(SIGINT, nullptr, &action) == 0 && action.sa_handler == SIG_IGN) {
        return; // started in the background by a shell: not ours to handle
    }
    action = {};
    action.sa_handler = onInterrupt;
    // Output that is being written goes on; the second interrupt does what it does to every program.
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
    sigaction(SIGINT, &action, nullptr);
}

bool isInterrupted()
{
    return interrupted != 0;
}

} // namespace sdc
