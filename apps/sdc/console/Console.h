#pragma once

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "Platform/Host/RadioChannel.h"
#include "apps/sdc/console/Completion.h"
#include "apps/sdc/console/LineSource.h"
#include "apps/sdc/console/Words.h"
#include "apps/sdc/formats/Formats.h"
#include "apps/sdc/options/CommandLine.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/scan/Channels.h"
#include "apps/sdc/scan/Lane.h"
#include "apps/sdc/tty/ShownTrace.h"
#include "host/Clock.h"
#include "simulator/Radios.h"
#include "terminal/Terminal.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

namespace sdc {

struct ConsoleSetup {
    RadioChannel channel{};       ///< that commands go to at first
    double speed = 0.0;           ///< 1 is real time, more is faster; 0: no wall time at all
    std::uint32_t traceLevel = 1; ///< of what the controllers' trace shows on standard error at first
    bool isEchoed = true;         ///< a line that nobody types is shown before its answer
    bool endsAtError = false;     ///< the first line whose work is not done is the last
    bool showsProgress = false;   ///< of a scan that is waited for; the errors go to a terminal
};

/// A terminal at the command of somebody who types, or of a script.
class Console {
public:
    /// @param site  must outlive the console, as the streams must
    /// @throws std::out_of_range for a channel that there is not
    Console(const Site& site, const ConsoleSetup& setup, std::ostream& output, std::ostream& errors);

    /// Obeys commands, one a line, until there are no more or one says "quit", and answers each with the controller's own
    /// codes and texts. Scans that are under way then are brought to their end without taking wall time.
    /// @return what the first error stands for, complete without any
    ExitStatus obey(LineSource& lines);

    /// What may stand where the beginning of a line ends.
    Completion complete(const std::string& begun) const;

private:
    /// The last that was started with success on a channel.
    struct Scan {
        ScanKind kind{};
        Lane lane;
    };

    void obey(const std::string& line);
    void act(const Words& words);
    Words offered(const Words& words) const;
    void tell(const std::string& text) const;
    void tellError(const std::string& text, ExitStatus status);

    struct Verb {
        const char* name;
        const char* arguments;
        std::size_t mostArguments;
        const char* help;
        void (Console::*action)(const Words& words);
        Words (Console::*offer)(const Words& words) const = nullptr; ///< for the last word, and those that begin otherwise
    };
    static const std::vector<Verb>& verbs();

    // ConsoleScans.cpp
    void start(const Words& words);
    void keepScan(ScanKind kind, TimePoint start, std::uint32_t rxBefore_kHz);
    void stop(const Words& words);
    void status(const Words& words);
    void result(const Words& words);
    void properties(const Words& words);
    void wait(const Words& words);
    void showStatus();
    void showFailure();
    void requireWorker();
    bool isHeldAfterStop() const;
    bool reachIdle();
    void tellInterrupted() const;
    void endScans();

    // ConsoleFiles.cpp
    void save(const Words& words);
    void plot(const Words& words);
    Words fileNames(const Words& words) const;
    ScanResult lastScan();
    void write(const Format& format, const std::string& file);

    // ConsoleSettings.cpp
    void hold(const Words& words);
    void release(const Words& words);
    void channel(const Words& words);
    void fault(const Words& words);
    void trace(const Words& words);
    Words channelNumbers(const Words& words) const;
    Words faultWords(const Words& words) const;
    Words traceLevels(const Words& words) const;

    void help(const Words& words);
    void quit(const Words& words);

    ISpectrumDiagnosticsController& controller() const { return m_terminal.controller(m_channel); }

    const Site& m_site;
    std::unique_ptr<host::Clock> m_clock;
    simulator::Radios m_radios;
    terminal::Terminal m_terminal;
    ConsoleSetup m_setup;
    RadioChannel m_channel;
    std::ostream& m_output;
    std::ostream& m_errors;
    std::optional<ShownTrace> m_trace;
    LineSource* m_lines = nullptr; ///< that are obeyed
    std::size_t m_line = 0;        ///< number of the one in hand, in a script; 0: none
    ExitStatus m_status = EXIT_COMPLETE;
    bool m_isHeld = false;
    std::map<RadioChannel, Scan> m_scans; ///< the last of each channel
    std::set<RadioChannel> m_stopped;     ///< may still be in the settle delay in which they were stopped
    std::set<RadioChannel> m_dead;        ///< have no worker any more, which has been told
    bool m_isOver = false;
};

} // namespace sdc
