#include "apps/sdc/ScanCommand.h"

#include "apps/sdc/Csv.h"
#include "apps/sdc/Format.h"
#include "apps/sdc/Interrupt.h"
#include "apps/sdc/Progress.h"
#include "apps/sdc/Table.h"
#include "simulator/terminal/SimulatedTerminal.h"

#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <vector>

namespace sdc {

namespace {

using simulator::Clock;
using simulator::ScanPlan;
using simulator::ScanStart;
using simulator::SimulatedTerminal;

std::unique_ptr<Clock> makeClock(double speed)
{
    if (speed > 0.0) {
        return std::make_unique<simulator::RealClock>(speed);
    }
    return std::make_unique<simulator::VirtualClock>();
}

const simulator::Link& chooseLink(const std::string& name)
{
    const simulator::Link* const link = simulator::findLink(name);
    if (link == nullptr) {
        throw std::invalid_argument("there is no link '" + name + "'");
    }
    return *link;
}

std::string seconds(std::chrono::milliseconds time)
{
    return std::to_string(time.count() / 1000) + "." + std::to_string(time.count() % 1000 / 100) + " s";
}

/// Each message is one text, written at once: the workers' trace goes to the same stream.
void printPlan(const ScanPlan& plan)
{
    std::cerr << "plan       " + megahertz(plan.lowest_kHz) + " to " + megahertz(plan.highest_kHz) + " MHz, step "
            + megahertz(plan.step_kHz) + " MHz, " + std::to_string(plan.samples) + " samples, settling "
            + std::to_string(plan.firstSetRxWait_ms) + " ms, then " + std::to_string(plan.setRxWait_ms)
            + " ms: " + seconds(plan.settleTime()) + " of radio time\n"
              << std::flush;
}

/// A terminal that cannot move its cursor gets plain lines.
bool isDumb()
{
    const char* const terminal = std::getenv("TERM"); // NOLINT(concurrency-mt-unsafe): nobody changes the environment
    return terminal != nullptr && std::string(terminal) == "dumb";
}

/// One scan of one channel, from the start to the report.
class Scan {
public:
    Scan(const ScanOptions& options, const simulator::Link& link, Clock& clock)
        : m_options(options)
        , m_channel{options.channel}
        , m_link(link)
        , m_terminal({{m_channel, link}}, clock)
        , m_controller(m_terminal.controller(m_channel))
    {
    }

    ExitStatus run()
    {
        const ESDCCommand start = m_options.isSubBand ? SDC_CMD_SUB_BAND_SCAN_START : SDC_CMD_CHANNEL_SCAN_START;
        std::cerr << "link       " + m_link.name + ": " + m_link.description + "\nfigures    " + m_link.source
                + "\nunit       " + m_link.unitTypeText + "\ncommand    " + SDCCommand::toString(start) + "\nreceiver   "
                + megahertz(m_terminal.rxFrequency_kHz(m_channel)) + " MHz before\n"
                  << std::flush;
        if (m_terminal.startScan(m_channel, start) != ScanStart::underWay) {
            std::cerr << "sdc: the controller did not start the scan; its trace tells why\n";
            return EXIT_FAILED;
        }
        m_plan = m_terminal.plan(m_channel).value();
        printPlan(m_plan);
        const ESDCStatus status = follow();
        return report(status);
    }

private:
    /// Shows the progress until the scan has ended, and passes a stop on.
    ESDCStatus follow()
    {
        Progress progress(std::cerr, isDumb() ? false : isatty(STDERR_FILENO) != 0);
        const auto show = [&] { progress.show(m_controller.getProgress(), m_terminal.samples(m_channel), m_plan.samples); };
        const ESDCStatus status = m_terminal.waitForEnd(m_channel, [&] {
            show();
            if (isInterrupted()) {
                std::cerr << "\nsdc: stopping after the step in hand; Ctrl-C again leaves at once\n" << std::flush;
                m_isStopped = m_terminal.stopScan(m_channel);
            }
        });
        m_terminal.waitForIdle(m_channel); // after a stop the step in hand still finishes
        show();
        progress.end();
        return status;
    }

    ExitStatus report(ESDCStatus status)
    {
        const std::vector<SDCResult> samples = m_terminal.samples(m_channel);
        const std::uint32_t rxFrequency_kHz = m_terminal.rxFrequency_kHz(m_channel);
        const ScanOutcome outcome{
            .isStopped = m_isStopped,
            .status = status,
            .taken = static_cast<std::int64_t>(samples.size()),
            .planned = m_plan.samples,
            .isReceiverBack = rxFrequency_kHz == m_plan.rxFrequency_kHz,
        };
        std::cerr << "status     " + SDCStatus::toString(status) + ", " + std::to_string(outcome.taken) + " of "
                + std::to_string(outcome.planned) + " samples" + (m_isStopped ? ", stopped" : "") + "\nreceiver   "
                + megahertz(rxFrequency_kHz) + " MHz after"
                + (outcome.isReceiverBack ? "" : ", NOT put back to " + megahertz(m_plan.rxFrequency_kHz) + " MHz") + "\n"
                  << std::flush;
        write(samples);
        return exitStatus(outcome);
    }

    void write(const std::vector<SDCResult>& samples) const
    {
        if (m_options.csvFile == "-") {
            writeCsv(std::cout, samples);
        } else {
            writeTable(std::cout, samples, m_options.rows);
            if (!m_options.csvFile.empty()) {
                writeCsvFile(m_options.csvFile, samples);
                std::cerr << "samples    " + m_options.csvFile + "\n";
            }
        }
        if (!std::cout.flush()) {
            throw std::runtime_error("cannot write the samples to standard output");
        }
    }

    const ScanOptions& m_options;
    const RadioChannel m_channel;
    const simulator::Link& m_link;
    SimulatedTerminal m_terminal;
    ISpectrumDiagnosticsController& m_controller;
    ScanPlan m_plan;
    bool m_isStopped = false;
};

/// Shows the controllers' trace on standard error for as long as it lives.
class TraceOnStandardError {
public:
    explicit TraceOnStandardError(std::uint32_t level)
        : m_sink(std::cerr, static_cast<PlxTraceLevel>(level))
    {
        simulator::trace::setLevel("ZRP.SDC", static_cast<PlxTraceLevel>(level));
        simulator::trace::addSink(m_sink);
    }
    ~TraceOnStandardError() { simulator::trace::removeSink(m_sink); }
    TraceOnStandardError(const TraceOnStandardError&) = delete;
    TraceOnStandardError& operator=(const TraceOnStandardError&) = delete;

private:
    simulator::StreamTraceSink m_sink;
};

} // namespace

ExitStatus scan(const ScanOptions& options)
{
    const simulator::Link& link = chooseLink(options.link);
    const std::unique_ptr<Clock> clock = makeClock(options.speed);
    const TraceOnStandardError trace(options.traceLevel);
    watchForInterrupt();
    return Scan(options, link, *clock).run();
}

} // namespace sdc
