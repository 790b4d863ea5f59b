#include "apps/sdc/commands/Commands.h"
#include "apps/sdc/formats/Formats.h"
#include "apps/sdc/formats/Outputs.h"
#include "apps/sdc/options/CommandLine.h"
#include "apps/sdc/options/Options.h"
#include "apps/sdc/options/UsageText.h"
#include "apps/sdc/result/Occupancy.h"
#include "apps/sdc/result/ResultFile.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/scan/Channels.h"
#include "apps/sdc/scan/Session.h"
#include "apps/sdc/tty/Interrupt.h"
#include "apps/sdc/tty/Report.h"
#include "apps/sdc/tty/ShownTrace.h"
#include "host/Clock.h"
#include "simulator/Radios.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <ratio>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sdc {

namespace {

struct ScanOptions {
    std::string scenario;
    std::vector<std::uint32_t> channels; ///< none: all
    SessionPlan session;
    FarEnd farEnd = FarEnd::unknown;
    std::optional<std::uint32_t> sweeps; ///< of each channel; otherwise one or, for a length of time, as many as that takes
    std::optional<TimePoint> start;      ///< otherwise now
    OccupancyRule occupancy;
    OutputOptions outputs;
    bool isQuiet = false;
    std::uint32_t traceLevel = 1;
};

std::optional<FarEnd> parseFarEnd(std::string_view text)
{
    const auto farEnd = std::ranges::find(farEnds, text);
    return farEnd == farEnds.end() ? std::nullopt : std::optional(static_cast<FarEnd>(farEnd - farEnds.begin()));
}

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
        "Most rows of the table, each the strongest of\nseveral samples; 0: no limit (as many as the\nterminal shows)");
    addColor(command, options.color);
}

void addRepetition(CLI::App& command, ScanOptions& options)
{
    const Parsing<std::uint32_t> sweeps{"N", "number of sweeps", "1 or more, or forever", parseRepeat, {"forever"}};
    addParsed(command, "--repeat", options.sweeps, sweeps, "Sweeps of each channel; forever: until Ctrl-C (1)");
    const Parsing<std::chrono::milliseconds> duration{
        "DURATION", "length of time", "one such as 90s, 30min, 2h or 1h30min", parseDuration};
    addParsed(command, "--for", options.session.length, duration,
        "Begin sweeps for so long, as the radios count it:\n90s, 30min, 2h");
    addParsed(command, "--every", options.session.interval, duration, "From the begin of a sweep to the next one");
}

/// Keeps what a session tells.
class Collector : public Sink {
public:
    /// @param keep  asked with each sweep
    Collector(
        const Site& site, const SessionPlan& plan, FarEnd farEnd, const OccupancyRule& rule, std::function<Keep()> keep)
        : m_rule(rule)
        , m_keep(std::move(keep))
    {
        m_result.farEnd = farEnd;
        m_result.scenario = site.name();
        m_result.description = site.description();
        m_result.kind = plan.kind;
        m_result.provenance = site.provenance(plan.speed);
        m_result.provenance.arguments = givenArguments();
    }

    void onPlan(const SessionPlan& plan) override
    {
        for (const auto& [channel, channelPlan] : plan.channels) {
            m_result.channels.push_back({.channel = static_cast<std::uint32_t>(channel.number),
                .unitTypeText = channel.unitTypeText,
                .receiver = channel.receiver,
                .plan = channelPlan.value_or(ScanPlan{}),
                .sweeps = {},
                .survey = Survey(m_rule)});
        }
    }
    void onSweepBegin(std::size_t channel, const ScanPlan& plan) override { m_result.channels[channel].plan = plan; }
    void onSweepEnd(std::size_t channel, const Sweep& sweep) override { m_result.channels[channel].add(sweep, m_keep()); }

    const ScanResult& result() const { return m_result; }

private:
    OccupancyRule m_rule;
    std::function<Keep()> m_keep;
    ScanResult m_result;
};

void checkRepetition(const ScanOptions& options)
{
    if (options.session.interval && !options.session.length && options.sweeps.value_or(1) == 1) {
        throw UsageError("--every needs several sweeps; add --repeat or --for");
    }
}

SessionPlan planOf(const ScanOptions& options, const Site& site, const std::vector<ChannelInfo>& channels)
{
    SessionPlan plan = options.session;
    plan.sweeps = options.sweeps.value_or(plan.length ? 0 : 1);
    plan.start = options.start.value_or(std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now()));
    for (const ChannelInfo& channel : channels) {
        plan.channels.push_back(site.planned(channel, plan.kind));
    }
    return plan;
}

std::vector<std::uint32_t> numbersOf(const std::vector<ChannelInfo>& channels)
{
    std::vector<std::uint32_t> numbers;
    for (const ChannelInfo& channel : channels) {
        numbers.push_back(static_cast<std::uint32_t>(channel.number));
    }
    return numbers;
}

/// Of all sweeps, as a result counts samples, where their number is known before; without end otherwise.
double samplesOf(const SessionPlan& plan)
{
    double samples = 0.0; // in a sweep of all channels
    std::chrono::milliseconds time{1};
    for (const PlannedChannel& channel : plan.channels) {
        const ScanPlan steps = channel.plan.value_or(ScanPlan{});
        samples += steps.samples + static_cast<double>(samplesPerSweep);
        time = std::max(time, steps.settleTime());
    }
    const double byNumber = plan.sweeps == 0 ? std::numeric_limits<double>::infinity() : plan.sweeps;
    const double byTime = plan.length
        ? std::ceil(*plan.length / std::chrono::duration<double, std::milli>(std::max(time, plan.interval.value_or(time))))
        : byNumber;
    return samples * std::min(byNumber, byTime);
}

/// Of a result that is going to be full.
void warnOfSize(const SessionPlan& plan, const OutputOptions& options, Report& report)
{
    const double samples = samplesOf(plan);
    if (samples > static_cast<double>(mostSamplesInResult) && keepFor(options.outputs) == Keep::all) {
        report.tellAlways(fmt::format("{}: 'sdc plot' and 'sdc compare' read no results above {} MiB, so --json ends "
                                      "with the sweep that makes it so large; --jsonl and --csv have no "
                                      "limit",
            std::isinf(samples) ? "a scan without end" : "a scan of many samples", largestResult_MiB));
    }
}

/// A reader that has had enough of the only output has had what it wanted.
ExitStatus statusOf(Ending ending, const Outputs& outputs)
{
    if (!outputs.areAllWritten()) {
        return EXIT_INTERNAL;
    }
    if (ending == Ending::stopped) {
        return isInterrupted() ? EXIT_STOPPED : EXIT_COMPLETE;
    }
    return ending == Ending::failed ? EXIT_FAILED : EXIT_COMPLETE;
}

/// Scans, writes the outputs, and tells on standard error what is done.
ExitStatus scan(const ScanOptions& options)
{
    checkRepetition(options);
    const Site site(options.scenario);
    watchForInterrupt();
    const std::vector<ChannelInfo> channels = chooseChannels(site, options.channels);
    Report report(options.isQuiet, options.outputs.color, !isLiveOnTerminal(options.outputs.outputs));
    Outputs outputs(options.outputs, numbersOf(channels), [&report](const std::string& text) { report.tellAlways(text); });
    report.introduce(site, options.session.kind);

    const SessionPlan plan = planOf(options, site, channels);
    warnOfSize(plan, options.outputs, report);
    Collector collector(site, plan, options.farEnd, options.occupancy, [&outputs] { return outputs.keep(); });
    outputs.open(collector.result());
    std::vector<Sink*> sinks = outputs.sinks();
    sinks.insert(sinks.begin(), {&report, &collector});
    const ShownTrace trace(options.traceLevel);
    const auto isStopWanted = [&outputs] { return isInterrupted() || !outputs.isAnyWanted(); };
    Session session(plan, sinks, isStopWanted, {isLeaveWanted, leaveBySignal});
    const std::unique_ptr<host::Clock> clock = host::makeClock(plan.speed);
    const simulator::Radios radios = site.radios(*clock);
    session.run(radios.channels(), *clock);
    if (isLeaveWanted()) {
        leaveBySignal();
    }
    return statusOf(session.ending(), outputs);
}

void addOccupancy(CLI::App& scanning, OccupancyRule& rule)
{
    const Parsing<std::int32_t> level{"DBM", "threshold", "a level in dBm such as -85", parseThreshold};
    addParsed(scanning, "--threshold", rule.threshold, level,
        "Channels are on above this level (6 dB over what\nis read where nobody transmits)");
    const Parsing<std::int32_t> confidence{"PERCENT", "confidence", "50 to 99.99", parseConfidence};
    addParsed(scanning, "--confidence", rule.confidence, confidence, "Confidence asked for of an occupancy (95)");
    const Parsing<std::int32_t> accuracy{"POINTS", "accuracy", "0.1 to 50", parseAccuracy};
    addParsed(scanning, "--accuracy", rule.accuracy, accuracy, "Its accuracy, percentage points either way (10)");
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
    addRepetition(scanning, *options);
    const Parsing<FarEnd> farEnd{
        "STATE", "state of the far end", "on, muted or unknown", parseFarEnd, Words(farEnds.begin(), farEnds.end())};
    addParsed(scanning, "--far-end", options->farEnd, farEnd,
        "Whether the far end transmits meanwhile: on,\nmuted or unknown; the verdict needs it (unknown)");
    addOccupancy(scanning, options->occupancy);
    addOutputs(scanning, options->outputs);
    addFlag(scanning, "--quiet", options->isQuiet, "No plan, no progress; only results and failures");
    addTrace(scanning, options->outputs.trace, &options->traceLevel);
    addTraceLevel(scanning, options->traceLevel);
    const Parsing<TimePoint> time{"TIME", "time", "one such as 2026-01-02T03:04:05Z", parseTime};
    addParsed(
        scanning, "--start-time", options->start, time, "When simulated time begins, such as\n2026-01-02T03:04:05Z (now)");
    scanning.footer(exitStatusHelp("Exit status:", exitStatusTexts)
        + "\n\nExamples:\n"
          "  sdc scan channel\n"
          "  sdc scan sub-band --far-end muted --repeat 20 --json today.json\n"
          "  sdc scan sub-band --speed 20 --csv samples.csv --plot samples.svg\n"
          "  sdc scan channel --for 2h --every 5min --jsonl day.jsonl\n");
    scanning.callback([options, &command] { command = [options] { return scan(*options); }; });
}

} // namespace sdc
