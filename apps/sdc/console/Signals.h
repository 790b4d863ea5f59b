#pragma once

#include <csignal>
#include <vector>

namespace sdc {

/// The signals that a console takes, for as long as it lives: Ctrl-C, that the program is to end (TERM, HUP), that the
/// window has another size, that the program goes on after it was stopped. They come to the thread that asks, whichever has
/// caught them. What the program was started with as ignored stays so. One at a time.
class Signals {
public:
    /// @param endsAtInterrupt  Ctrl-C, too, means that the program is to end: nobody is there to go on
    explicit Signals(bool endsAtInterrupt);
    ~Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    /// A descriptor that can be read when something has come.
    int descriptor() const { return m_readEnd; }

    /// The next signal that has come; 0: there is none.
    int take();

    /// Whether the program is to end, by what has been taken. The same signal a second time ends it at once.
    bool isEndWanted() const { return m_isEndWanted; }

    /// Takes all that has come. Whether Ctrl-C was among it, or the program is to end.
    bool isInterrupted();

private:
    void watch(int signal, int flags);

    struct Before {
        int signal;
        struct sigaction action;
    };

    bool m_endsAtInterrupt;
    bool m_isEndWanted = false;
    int m_readEnd = -1;
    std::vector<Before> m_before;
};

} // namespace sdc
