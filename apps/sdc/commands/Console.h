#pragma once

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "Platform/Host/RadioChannel.h"
#include "apps/sdc/scan/Channels.h"
#include "apps/sdc/tty/ShownTrace.h"
#include "host/Clock.h"
#include "simulator/Radios.h"
#include "terminal/Terminal.h"

#include <cstddef>
#include <cstdint>
#include <istream>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

namespace sdc {

/// A terminal at the command of somebody who types, or of a script.
class Console {
public:
    using Words = std::vector<std::string>;

    /// @param traceLevel  what the controllers' trace shows on standard error at first
    /// @throws std::out_of_range for a channel that there is not
    Console(const Site& site, RadioChannel channel, std::uint32_t traceLevel, host::Clock& clock, std::ostream& output);

    /// Obeys commands, one a line, until the input ends or says "quit", and answers each with the controller's own codes and
    /// texts.
    /// @param isInteractive  a person types: prompt; otherwise each line read is shown before its answer
    /// @return false when a line was invalid
    bool obey(std::istream& input, bool isInteractive);

private:
    std::string errorOf(const Words& words);
    void act(const Words& words);

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
