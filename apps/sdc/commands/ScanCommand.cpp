#include "apps/sdc/commands/Commands.h"
#include "apps/sdc/formats/Formats.h"
#include "apps/sdc/formats/Outputs.h"
#include "apps/sdc/options/Options.h"
#include "apps/sdc/options/UsageText.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/scan/Channels.h"
#include "apps/sdc/scan/Session.h"
#include "apps/sdc/tty/Interrupt.h"
#include "apps/sdc/tty/Report.h"
#include "apps/sdc/tty/Screen.h"
#include "apps/sdc/tty/ShownTrace.h"
#include "host/Clock.h"
#include "simulator/Radios.h"
#include "support/Text.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sdc {

namespace {

struct ScanOptions {
    std::string scenario;
    std::vector<std::uint32_t> channels; ///< none: all
    SessionPlan session;
    std::optional<TimePoint> start; ///< otherwise now
    OutputOptions outputs;
    bool isQuiet = false;
    std::uint32_t traceLevel = 1;
};

void addKind(CLI::App& command, ScanKind& kind)
{
    const auto store = [&kind](const std::string& text) {
        const auto word = std::ranges::find(scanKinds, text);
        if (word == scanKinds.end()) {
            throw CLI::ValidationError(invalid("kind of scan", text, "channel or sub-band") + suggestion(text, scanKinds));
        }
        kind = static_cast<ScanKind>(word - scanKinds.begin());
    };
    CLI::Option* const option = command.add_option_function<std::string>("channel|sub-band", store,
        "channel: fine, across the configured channel;\nsub-band: all that the radio can receive");
    offer(option->required()->type_name(""), Words(scanKinds.begin(), scanKinds.end()));
}

/// An output may be asked for several times, in several files.
void addOutput(CLI::App& command, std::vector<Output>& outputs, const Format& format)
{
    const std::string name = std::string("--") + format.name;
    const auto store = [name, &format, &outputs](const std::vector<std::string>& files) {
        for (const std::string& file : files) {
            const std::string error = format.nameError == nullptr ? "" : format.nameError(file);
            if (!error.empty()) {
                throw CLI::ValidationError(name, error);
            }
            if (file == "-" && usesStandardOutput(outputs)) {
                throw CLI::ValidationError(name, "another output goes to standard output already: write the name of a file");
            }
            outputs.push_back({&format, file});
        }
    };
    command.add_option_function<std::vector<std::string>>(name, store, format.help)
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->check(fileName())
        ->type_name("FILE");
}

void addOutputs(CLI::App& command, OutputOptions& options)
{
    for (const Format& format : formats) {
        addOutput(command, options.outputs, format);
    }
    const Parsing<std::uint32_t> rows{"N", "number of rows", "a number such as 50, or 0 for no limit", parseCount};
    addParsed(command, "--rows", options.rows, rows,
        "Most rows of the table, each the strongest of\nseveral samples; 0: no limit (0)");
    addColor(command, options.color);
}

/// Keeps all that a session tells.
class Collector : public Sink {
public:
    explicit Collector(const Site& site)
    {
        m_result.scenario = site.name();
        m_result.description = site.description();
    }

    void onPlan(const SessionPlan& plan) override
    {
        m_result.kind = plan.kind;
        for (const auto& [channel, channelPlan] : plan.channels) {
            m_result.channels.push_back({.channel = static_cast<std::uint32_t>(channel.number),
                .unitTypeText = channel.unitTypeText,
                .receiver = channel.receiver,
                .plan = channelPlan.value_or(ScanPlan{}),
                .sweeps = {},
                .survey = {}});
        }
    }
    void onSweepBegin(std::size_t channel, const ScanPlan& plan) override { m_result.channels[channel].plan = plan; }
    void onSweepEnd(std::size_t channel, const Sweep& sweep) override { m_result.channels[channel].add(sweep); }

    const ScanResult& result() const { return m_result; }

private:
    ScanResult m_result;
};

/// Of all sweeps: a failure counts more than a stop, a stop more than completion.
ExitStatus statusOf(const ScanResult& result, bool isCutShort)
{
    bool isStopped = isCutShort;
    for (const ChannelResult& channel : result.channels) {
        for (const Sweep& sweep : channel.sweeps) {
            if (sweep.ending == Ending::failed) {
                return EXIT_FAILED;
            }
            isStopped = isStopped || sweep.ending == Ending::stopped;
        }
    }
    return isStopped ? EXIT_STOPPED : EXIT_COMPLETE;
}

/// Returns false when some output could not be written.
bool write(const ScanResult& result, const OutputOptions& options)
{
    const std::vector<std::string> failures = writeOutputs(result, options);
    for (const std::string& failure : failures) {
        std::cerr << support::prefixed(failure, "sdc: ") << std::flush;
    }
    return failures.empty();
}

/// Scans, writes the outputs, and tells on standard error what is done.
ExitStatus scan(const ScanOptions& options)
{
    const Site site(options.scenario);
    watchForInterrupt();
    const std::vector<ChannelInfo> channels = chooseChannels(site, options.channels);
    Report report(options.isQuiet, options.outputs.color);
    report.introduce(site, options.session.kind);
    checkOutputs(options.outputs.outputs);

    SessionPlan plan = options.session;
    plan.start = options.start.value_or(std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now()));
    for (const ChannelInfo& channel : channels) {
        plan.channels.push_back(site.planned(channel, plan.kind));
    }
    Collector collector(site);
    const ShownTrace trace(options.traceLevel);
    const auto writeAndLeave = [&] {
        write(collector.result(), options.outputs);
        leaveBySignal();
    };
    Session session(plan, {&report, &collector}, isInterrupted, {isLeaveWanted, writeAndLeave});
    const std::unique_ptr<host::Clock> clock = host::makeClock(plan.speed);
    const simulator::Radios radios = site.radios(*clock);
    session.run(radios.channels(), *clock);
    const bool isWritten = write(collector.result(), options.outputs);
    if (isLeaveWanted()) {
        leaveBySignal();
    }
    return isWritten ? statusOf(collector.result(), session.isCutShort()) : EXIT_INTERNAL;
}

} // namespace

void addScan(CLI::App& app, Command& command)
{
    const auto options = std::make_shared<ScanOptions>();
    CLI::App& scanning = *app.add_subcommand("scan", "Scan the spectrum of simulated links");
    addKind(scanning, options->session.kind);
    addScenario(scanning, options->scenario);
    addChannels(scanning, options->channels);
    addSpeed(scanning, options->session.speed);
    const Parsing<std::uint32_t> sweeps{"N", "number of sweeps", "1 or more, or forever", parseRepeat, {"forever"}};
    addParsed(scanning, "--repeat", options->session.sweeps, sweeps, "Sweeps of each channel; forever: until Ctrl-C (1)");
    addOutputs(scanning, options->outputs);
    addFlag(scanning, "--quiet", options->isQuiet, "No plan, no progress; only results and failures");
    addTrace(scanning, options->outputs.trace, &options->traceLevel);
    addTraceLevel(scanning, options->traceLevel);
    const Parsing<TimePoint> time{"TIME", "time", "one such as 2026-01-02T03:04:05Z", parseTime};
    addParsed(
        scanning, "--start-time", options->start, time, "When simulated time begins, such as\n2026-01-02T03:04:05Z (now)");
    scanning.footer("Examples:\n"
                    "  sdc scan channel\n"
                    "  sdc scan sub-band --speed 20 --csv samples.csv --plot samples.svg\n"
                    "  sdc scan channel --repeat 100 --json - --quiet\n");
    scanning.callback([options, &command] { command = [options] { return scan(*options); }; });
}

} // namespace sdc
