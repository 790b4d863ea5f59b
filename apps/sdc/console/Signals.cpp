#include "apps/sdc/console/Signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <system_error>

namespace sdc {

namespace {

std::atomic<int> writeEnd{-1};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler reads it");

/// A pipe that is full has enough to wake whoever reads it.
extern "C" void onConsoleSignal(int signal)
{
    const int error = errno;
    const auto number = static_cast<unsigned char>(signal);
    static_cast<void>(!write(writeEnd, &number, 1));
    errno = error;
}

} // namespace

Signals::Signals(bool endsAtInterrupt)
    : m_endsAtInterrupt(endsAtInterrupt)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot make a pipe");
    }
    m_readEnd = ends[0];
    writeEnd = ends[1];
    const int once = static_cast<int>(SA_RESTART | SA_RESETHAND);
    watch(SIGINT, endsAtInterrupt ? once : SA_RESTART);
    watch(SIGTERM, once);
    watch(SIGHUP, once);
    watch(SIGWINCH, SA_RESTART);
    watch(SIGCONT, SA_RESTART);
}

Signals::~Signals()
{
    for (const Before& before : m_before) {
        sigaction(before.signal, &before.action, nullptr);
    }
    close(writeEnd.exchange(-1));
    close(m_readEnd);
}

void Signals::watch(int signal, int flags)
{
    Before before{signal, {}};
    if (sigaction(signal, nullptr, &before.action) != 0 || before.action.sa_handler == SIG_IGN) {
        return;
    }
    struct sigaction action = {};
    action.sa_handler = onConsoleSignal;
    action.sa_flags = flags;
    sigaction(signal, &action, nullptr);
    m_before.push_back(before);
}

int Signals::take()
{
    unsigned char signal = 0;
    if (read(m_readEnd, &signal, 1) != 1) {
        return 0;
    }
    const bool isEnd = signal == SIGTERM || signal == SIGHUP || (signal == SIGINT && m_endsAtInterrupt);
    m_isEndWanted = m_isEndWanted || isEnd;
    return signal;
}

bool Signals::isInterrupted()
{
    bool isInterrupt = false;
    for (int signal = take(); signal != 0; signal = take()) {
        isInterrupt = isInterrupt || signal == SIGINT;
    }
    return isInterrupt || m_isEndWanted;
}

} // namespace sdc
