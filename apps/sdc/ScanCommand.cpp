#include "apps/sdc/ScanCommand.h"

#include "apps/sdc/ChannelChoice.h"
#include "apps/sdc/Interrupt.h"
#include "apps/sdc/ScanReport.h"
#include "apps/sdc/ScanSession.h"
#include "apps/sdc/ShownTrace.h"
#include "apps/sdc/Texts.h"
#include "simulator/Radios.h"

#include <unistd.h>

#include <iostream>
#include <memory>

namespace sdc {

namespace {

using simulator::Scenario;
using simulator::TerminalChannel;

TimePoint now()
{
    return std::chrono::time_point_cast<std::chrono::milliseconds>(std::chrono::system_clock::now());
}

/// Each message is one text, written at once: the workers' trace goes to the same stream.
void tell(const ScanOptions& options, const std::string& text)
{
    if (!options.isQuiet) {
        std::cerr << text << std::flush;
    }
}

std::vector<PlannedChannel> planAll(const std::vector<TerminalChannel>& channels, ScanKind kind)
{
    std::vector<PlannedChannel> all;
    all.reserve(channels.size());
    for (const TerminalChannel& channel : channels) {
        all.push_back(planned(channel, kind));
    }
    return all;
}

Progress makeProgress(const ScanOptions& options)
{
    static std::ostream nowhere(nullptr);
    return Progress(options.isQuiet ? nowhere : std::cerr,
        {.isTerminal = isCapableTerminal(STDERR_FILENO),
            .isColored = usesColor(options.outputs.color, STDERR_FILENO),
            .columns = [] { return terminalWidth(STDERR_FILENO); }});
}

ExitStatus statusOf(const ScanResult& result, bool isCutShort)
{
    ExitStatus status = isCutShort ? EXIT_STOPPED : EXIT_COMPLETE;
    for (const ChannelResult& channel : result.channels) {
        for (const Sweep& sweep : channel.sweeps) {
            status = worse(status, exitStatus(sweep.ending));
        }
    }
    return status;
}

void tellEnd(const ScanOptions& options, const ScanResult& result)
{
    for (const ChannelResult& channel : result.channels) {
        tell(options, endReport(channel, result.channels.size() > 1));
    }
}

/// Returns false when some output could not be written.
bool write(const ScanOptions& options, const ScanResult& result)
{
    const std::vector<std::string> failures = writeOutputs(result, options.outputs);
    for (const std::string& failure : failures) {
        std::cerr << message(failure) << std::flush;
    }
    return failures.empty();
}

} // namespace

ExitStatus scan(const ScanOptions& options)
{
    watchForInterrupt();
    const Scenario scenario = simulator::loadScenario(options.scenario);
    const std::vector<TerminalChannel> channels = chooseChannels(scenario, options.channels);
    tell(options, introduction(scenario, options.kind));
    checkOutputs(options.outputs.outputs);
    const SessionOptions sessionOptions{
        .kind = options.kind, .speed = options.speed, .sweeps = options.sweeps, .start = options.start.value_or(now())};
    const std::vector<PlannedChannel> plannedChannels = planAll(channels, options.kind);
    tell(options, planReport(plannedChannels, sessionOptions));

    const ShownTrace trace(options.traceLevel);
    Progress progress = makeProgress(options);
    ScanSession session(plannedChannels, sessionOptions, progress, std::cerr);
    const std::unique_ptr<host::Clock> clock = host::makeClock(options.speed);
    const simulator::Radios radios(scenario, *clock);
    session.run(radios.channels(), *clock);
    const ScanResult result{.scenario = scenario.name,
        .description = scenario.description,
        .kind = options.kind,
        .channels = session.takeResults()};
    tellEnd(options, result);
    const bool isWritten = write(options, result);
    return isWritten ? statusOf(result, session.isCutShort()) : EXIT_INTERNAL;
}

} // namespace sdc
