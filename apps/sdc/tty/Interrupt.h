#pragma once

#include <csignal>

namespace sdc {

/// From now on INT (Ctrl-C), TERM and HUP ask for a stop, and a second one of them for leaving at once. After that a further
/// INT does what it does to every program; TERM and HUP, which come in pairs when a terminal is closed, do nothing more.
/// What the program was started with as ignored, such as by nohup or in the background of a shell, stays ignored.
void watchForInterrupt();

/// Whether a stop was asked for.
bool isInterrupted();

/// Whether the user waits no longer: what is measured is to be kept, and nothing else to be waited for.
bool isLeaveWanted();

/// Ends the program as the last signal that was asked with does, so that whoever started it sees which: a shell reports 128
/// and the signal's number.
[[noreturn]] void leaveBySignal();

/// Holds back signals from the calling thread, and for good from the threads that are started meanwhile. Where the other
/// threads have been started under one of these, nothing that can be caught ends the program before it goes.
class SignalsHeld {
public:
    SignalsHeld();
    ~SignalsHeld();
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

private:
    sigset_t m_before{};
};

} // namespace sdc
