#include "apps/sdc/commands/Console.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "Platform/Host/RadioChannel.h"
#include "apps/sdc/options/Options.h"
#include "apps/sdc/options/UsageText.h"
#include "apps/sdc/result/ScanResult.h"
#include "simulator/radio/Fault.h"
#include "support/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <iterator>
#include <span>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace sdc {

namespace {

using terminal::ScanStart;
using Words = Console::Words;
using support::shown;

constexpr std::size_t longestText = 300; ///< of what ended a worker

/// A line that the console cannot act upon. what() tells what would be right.
class InvalidLine : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Up to a remark.
Words split(const std::string& line)
{
    std::istringstream stream(line.substr(0, line.find('#')));
    Words words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

template <typename Number>
Number parse(const std::string& word, const char* what, const char* expected)
{
    Number number{};
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc{} || end != word.data() + word.size()) {
        throw InvalidLine(invalid(what, word, expected));
    }
    return number;
}

/// @param names  of the enumerators, in their order
template <typename Enumeration>
Enumeration named(const std::string& word, const char* what, std::span<const std::string_view> names)
{
    const auto found = std::ranges::find(names, word);
    if (found == names.end()) {
        throw InvalidLine(fmt::format("unknown {} '{}'; expected one of {}", what, shown(word), fmt::join(names, ", ")));
    }
    return static_cast<Enumeration>(found - names.begin());
}

std::string resultText(std::int32_t code)
{
    switch (code) {
    case SDC_RC_OK: return "0 SDC_RC_OK";
    case SDC_RC_FAILED: return "32768 SDC_RC_FAILED";
    case SDC_RC_UNKNOWN_COMMAND: return "32770 SDC_RC_UNKNOWN_COMMAND";
    default: return std::to_string(code);
    }
}

} // namespace

Console::Console(const Site& site, RadioChannel channel, std::uint32_t traceLevel, host::Clock& clock, std::ostream& output)
    : m_clock(clock)
    , m_radios(site.radios(clock))
    , m_terminal(m_radios.channels(), clock)
    , m_channel(channel)
    , m_output(output)
{
    m_terminal.controller(m_channel); // throws for a channel that there is not
    m_trace.emplace(traceLevel);
}

const std::vector<Console::Verb>& Console::verbs()
{
    static const std::vector<Verb> all{
        {"channel-scan-start", "", 0, "start a channel scan", &Console::start},
        {"sub-band-scan-start", "", 0, "start a sub-band scan", &Console::start},
        {"scan-stop", "", 0, "stop the scan", &Console::stop},
        {"get-status", "", 0, "status and progress", &Console::status},
        {"get-result", "[COUNT]", 1, "the samples, or the first COUNT of them", &Console::result},
        {"get-scan-properties", "", 0, "ask the radio for its properties; the next start uses them", &Console::properties},
        {"wait", "", 0, "wait until the scan has ended and the receiver is back", &Console::wait},
        {"hold", "", 0, "stop the clock: a scan stays in its settle delay", &Console::hold},
        {"release", "", 0, "let the clock go on", &Console::release},
        {"channel", "[NUMBER]", 1, "the radio channel that commands go to", &Console::channel},
        {"fault", "OPERATION ACTION [CALLS [VALUE]]", 4, "make the next calls of a radio operation go wrong",
            &Console::fault},
        {"trace", "LEVEL", 1, "show the controllers' trace up to a level, 0 to 7, on standard error", &Console::trace},
        {"help", "", 0, "this list", &Console::help},
        {"quit", "", 0, "end; so does the end of the input", &Console::quit},
    };
    return all;
}

bool Console::obey(std::istream& input, bool isInteractive)
{
    constexpr const char* prompt = "sdc> ";
    constexpr std::size_t longestError = 1000;
    bool isValid = true;
    std::string line;
    while (!m_isOver && m_output << (isInteractive ? prompt : "") << std::flush && std::getline(input, line)) {
        if (!isInteractive) {
            m_output << prompt << shown(line) << '\n';
        }
        const Words words = split(line);
        const std::string error = words.empty() ? "" : errorOf(words);
        if (!error.empty()) {
            m_output << "error: " << shown(error, longestError) << '\n';
            isValid = false;
        }
    }
    return isValid;
}

/// Obeys a line, of one word at least. Returns what is wrong with it; empty when nothing is.
std::string Console::errorOf(const Words& words)
{
    try {
        act(words);
        return {};
    } catch (const InvalidLine& invalid) {
        return invalid.what();
    } catch (const std::out_of_range& noChannel) {
        return noChannel.what();
    } catch (const std::runtime_error& thrown) { // by a peer, through the controller
        return std::string("the call ended with an exception: ") + thrown.what();
    }
}

void Console::act(const Words& words)
{
    const auto verb = std::ranges::find(verbs(), words.front(), &Verb::name);
    if (verb == verbs().end()) {
        std::vector<std::string_view> names;
        std::ranges::transform(verbs(), std::back_inserter(names), &Verb::name);
        throw InvalidLine("unknown command '" + shown(words.front()) + "'"
            + suggestion(words.front(), names, "; 'help' lists the commands"));
    }
    if (words.size() - 1 > verb->mostArguments) {
        throw InvalidLine("too many words; expected: " + std::string(verb->name) + " " + verb->arguments);
    }
    (this->*verb->action)(words);
}

/// Whether the channel's worker may stand in a settle delay that does not end while the clock is held. Where no worker
/// sleeps, it has left its sweep.
bool Console::isHeldAfterStop() const
{
    return m_isHeld && m_stopped.contains(m_channel) && m_clock.sleepers() > 0;
}

/// A start beside a scan is given as it is: the controller refuses it without harm. Any other goes through the terminal,
/// which gives it anew while the worker is still leaving the scan before.
void Console::start(const Words& words)
{
    const bool isChannelScan = words[0] == SDCCommand::toString(SDC_CMD_CHANNEL_SCAN_START);
    const ESDCCommand command = isChannelScan ? SDC_CMD_CHANNEL_SCAN_START : SDC_CMD_SUB_BAND_SCAN_START;
    if (m_terminal.isOngoing(m_channel) || isHeldAfterStop()) {
        m_output << resultText(controller().setCommand(command, 0)) << '\n';
        return;
    }
    switch (m_terminal.startScan(m_channel, command)) {
    case ScanStart::failed: m_output << resultText(SDC_RC_FAILED) << '\n'; break;
    case ScanStart::noWorker: m_output << shown(m_terminal.workerFailure(m_channel).value(), longestText) << '\n'; break;
    default: m_output << resultText(SDC_RC_OK) << '\n'; break;
    }
}

/// A stop that crosses the end of a sweep would leave the worker spinning. The terminal gives it to a sweep that stands in a
/// settle delay; where none runs, it is given once the worker is idle.
void Console::stop(const Words&)
{
    if (m_terminal.isOngoing(m_channel) && m_terminal.stopScan(m_channel)) {
        m_stopped.insert(m_channel);
        m_output << resultText(SDC_RC_OK) << '\n';
        return;
    }
    if (!isHeldAfterStop()) {
        m_terminal.waitForIdle(m_channel);
    }
    m_output << resultText(controller().setCommand(SDC_CMD_SCAN_STOP, 0)) << '\n';
}

void Console::status(const Words&)
{
    m_output << SDCStatus::toString(controller().getStatus()) << ", progress " << controller().getProgress() << " %\n";
    if (const auto failure = m_terminal.workerFailure(m_channel)) {
        m_output << shown(*failure, longestText) << '\n';
    }
}

void Console::result(const Words& words)
{
    std::vector<SDCResult> samples = m_terminal.samples(m_channel);
    if (words.size() > 1) {
        samples.resize(std::min(samples.size(), parse<std::size_t>(words[1], "count of samples", "a number such as 10")));
    }
    m_output << resultText(SDC_RC_OK) << ", " << support::counted(samples.size(), "sample") << '\n';
    for (const SDCResult& sample : samples) {
        m_output << fmt::format("{:>12} MHz {:>7} dBm\n", megahertz(sample.frequency_kHz), hundredths(sample.rssi));
    }
}

void Console::properties(const Words&)
{
    const SDCProperties properties = controller().getSpectrumDiagnosticsProperties();
    const auto yesNo = [](std::uint8_t flag) { return flag != 0 ? "yes" : "no"; };
    m_output << "long haul " << yesNo(properties.longHaul) << ", extended rx wait " << yesNo(properties.extendedRxWait)
             << ", slow rx wait " << yesNo(properties.slowRxWait) << ", spare flag " << yesNo(properties.spareFlag) << '\n';
}

void Console::wait(const Words& words)
{
    if ((m_isHeld && m_terminal.isOngoing(m_channel)) || isHeldAfterStop()) {
        throw InvalidLine("the clock is held, so the scan cannot end: 'release' first");
    }
    m_terminal.waitForEnd(m_channel);
    m_terminal.waitForIdle(m_channel);
    m_stopped.erase(m_channel);
    status(words);
    m_output << "receiver at " << megahertz(m_terminal.rxFrequency_kHz(m_channel)) << " MHz\n";
}

void Console::hold(const Words&)
{
    if (m_isHeld) {
        throw InvalidLine("the clock is held already; 'release' lets it go on");
    }
    m_clock.hold();
    m_isHeld = true;
}

void Console::release(const Words&)
{
    if (!m_isHeld) {
        throw InvalidLine("the clock is not held; 'hold' stops it");
    }
    m_clock.release();
    m_isHeld = false;
}

void Console::channel(const Words& words)
{
    if (words.size() > 1) {
        const RadioChannel wanted{parse<std::uint32_t>(words[1], "channel number", "one such as 1")};
        m_terminal.controller(wanted); // throws for a channel that there is not
        m_channel = wanted;
    }
    m_output << "channel " << static_cast<std::uint32_t>(m_channel) << '\n';
}

void Console::trace(const Words& words)
{
    const std::string level = words.size() > 1 ? words[1] : "";
    if (level.size() != 1 || level[0] < '0' || level[0] > '7') {
        throw InvalidLine(invalid("trace level", level, "0 (nothing), 1 (errors), 5 (information), 6 (calls) or 7 (steps)"));
    }
    m_trace.emplace(static_cast<std::uint32_t>(level[0] - '0'));
}

void Console::fault(const Words& words)
{
    if (words.size() < 3) {
        throw InvalidLine("a fault needs an operation and an action, such as: fault setRxFrequency refuse");
    }
    simulator::Fault fault;
    fault.operation = named<simulator::Operation>(words[1], "operation", simulator::operationNames);
    fault.action = named<simulator::FaultAction>(words[2], "action", simulator::faultActionNames);
    if (words.size() > 3) {
        fault.calls = words[3] == "all" ? simulator::Fault::all
                                        : parse<std::uint64_t>(words[3], "number of calls", "a number such as 3, or all");
    }
    if (words.size() > 4 && fault.operation == simulator::Operation::getUnitInfo) {
        fault.text = words[4];
    } else if (words.size() > 4) {
        fault.value = parse<std::int64_t>(words[4], "answer", "a number such as -4200");
    }
    try {
        m_radios[m_channel].inject(fault);
    } catch (const std::invalid_argument& impossible) {
        throw InvalidLine(impossible.what());
    }
}

void Console::help(const Words&)
{
    for (const Verb& verb : verbs()) {
        const std::string usage = std::string(verb.name) + (*verb.arguments != '\0' ? " " : "") + verb.arguments;
        m_output << fmt::format("{:<39} {}\n", usage, verb.help);
    }
}

void Console::quit(const Words&)
{
    m_isOver = true;
}

} // namespace sdc
