#pragma once

#include "apps/sdc/ShownTrace.h"
#include "simulator/Radios.h"
#include "terminal/Terminal.h"

#include <cstdint>
#include <optional>
#include <ostream>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace sdc {

/// A line that the console cannot act upon. what() tells what would be right.
class BadLine : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A terminal at the command of somebody who types, or of a script.
class Console {
public:
    using Words = std::vector<std::string>;

    /// @param traceLevel  what the controllers' trace shows on standard error at first
    /// @throws std::out_of_range for a channel that the scenario does not have
    Console(const simulator::Scenario& scenario, RadioChannel channel, std::uint32_t traceLevel, host::Clock& clock,
        std::ostream& output);

    /// Obeys a line, of one word at least. Returns false when the console is to end.
    /// @throws BadLine; what a peer throws through the controller
    bool act(const Words& words);

private:
    struct Verb {
        const char* name;
        const char* arguments;
        std::size_t mostArguments;
        const char* help;
        void (Console::*action)(const Words& words);
    };
    static const std::vector<Verb>& verbs();

    void start(const Words& words);
    void stop(const Words& words);
    void status(const Words& words);
    void result(const Words& words);
    void properties(const Words& words);
    void wait(const Words& words);
    void hold(const Words& words);
    void release(const Words& words);
    void channel(const Words& words);
    void fault(const Words& words);
    void trace(const Words& words);
    void help(const Words& words);
    void quit(const Words& words);

    ISpectrumDiagnosticsController& controller() const { return m_terminal.controller(m_channel); }
    bool isOngoing() const;
    bool isHeldAfterStop() const;

    host::Clock& m_clock;
    simulator::Radios m_radios;
    terminal::Terminal m_terminal;
    RadioChannel m_channel;
    std::ostream& m_output;
    std::optional<ShownTrace> m_trace;
    bool m_isHeld = false;
    std::set<RadioChannel> m_stopped; ///< may still be in the settle delay in which they were stopped
    bool m_isOver = false;
};

} // namespace sdc
