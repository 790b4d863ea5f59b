#include "tests/soak/Round.h"

#include "tests/soak/Pollers.h"
#include "tests/soak/RandomRadio.h"
#include "tests/soak/SoakFailure.h"

#include "Platform/Host/InterfaceBroker.h"
#include "host/ModuleManager.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

namespace soak {

namespace {

using simulator::Fault;
using simulator::FaultAction;
using simulator::Operation;
using terminal::ScanStart;

std::string nameOf(RadioChannel channel)
{
    return "channel " + std::to_string(static_cast<std::uint32_t>(channel));
}

void requireEmptyHost()
{
    require(InterfaceBroker::getInstance().interfaces().empty(), "interfaces stay behind in the broker");
    require(host::ModuleManager::instance().modules().empty(), "modules stay behind in the host");
}

} // namespace

Round::Round(const std::vector<simulator::Link>& links, std::uint64_t seed, Tally& tally)
    : m_links(links)
    , m_dice(seed)
    , m_tally(tally)
    , m_clock(host::makeClock(m_dice.oneIn(8) ? 1e7 : 0.0)) // 60 s in 6 us: sweeps that overlap elsewhere
{
}

void Round::run()
{
    constexpr PlxTraceLevel levels[] = {PLX_TRACE_LEVEL_DEFAULT, PLX_TRACE_LEVEL_INFO, PLX_TRACE_LEVEL_DETAIL};
    host::trace::setLevel("ZRP.SDC", m_dice.pick(levels));
    if (!bringUp()) {
        requireEmptyHost();
        return;
    }
    std::vector<ISpectrumDiagnosticsController*> controllers;
    for (const Lane& lane : m_lanes) {
        controllers.push_back(&m_terminal->controller(lane.channel.number));
    }
    {
        const Pollers pollers(controllers, m_dice.below(4));
        for (std::uint64_t bouts = m_dice.between(1, 6); bouts > 0; --bouts) {
            scanSome();
            pollers.check();
        }
    }
    if (m_dice.oneIn(4)) { // to be taken down with scans that run
        std::ranges::for_each(m_lanes, [this](Lane& lane) { start(lane); });
    }
    m_terminal.reset();
    requireEmptyHost();
}

bool Round::bringUp()
{
    std::vector<simulator::TerminalChannel> channels = randomChannels(m_dice, m_links);
    for (const simulator::TerminalChannel& channel : channels) {
        m_lanes.push_back({channel, Dice(m_dice.word())});
        m_lanes.back().scan.mayGoWrong = !channel.link.faults.empty();
    }
    if (m_dice.oneIn(50)) {
        bringUpInVain();
        return false;
    }
    plugIn(channels);
    ++m_tally.terminals;
    return true;
}

void Round::plugIn(const std::vector<simulator::TerminalChannel>& channels)
{
    m_radios = std::make_unique<simulator::Radios>(channels, *m_clock);
    m_terminal = std::make_unique<terminal::Terminal>(m_radios->channels(), *m_clock);
}

/// One radio hands out no properties provider: the terminal must not come up, and leave nothing behind.
void Round::bringUpInVain()
{
    std::vector<simulator::TerminalChannel> channels;
    for (const Lane& lane : m_lanes) {
        channels.push_back(lane.channel);
    }
    channels.at(m_dice.below(channels.size()))
        .link.faults.push_back(
            {.operation = Operation::createPropertiesProvider, .action = FaultAction::fail, .text = std::string(faultText)});
    try {
        plugIn(channels);
    } catch (const std::runtime_error& error) {
        require(error.what() == faultText, std::string("a terminal did not come up: ") + error.what());
        return;
    }
    throw SoakFailure("a terminal came up though a radio gave no properties provider");
}

/// Scans of some channels at once, of which some are stopped; looks at each once it has ended.
void Round::scanSome()
{
    const bool isHeld = m_dice.oneIn(3);
    if (isHeld) {
        m_clock->hold();
    }
    startSome();
    if (isHeld) { // stops at the first sample, one of them: the worker goes on to sleep
        Lane& first = m_lanes.at(m_dice.below(m_lanes.size()));
        stop(first);
        m_clock->release();
    }
    finishStopped();
    for (Lane& lane : m_lanes) {
        if (m_dice.oneIn(4)) {
            stop(lane);
            finish(lane); // before the next stop, which must not take this worker for one whose scan goes on
        }
    }
    for (Lane& lane : m_lanes) {
        finish(lane);
    }
}

void Round::finishStopped()
{
    for (Lane& lane : m_lanes) {
        if (lane.scan.wasStopped) {
            finish(lane);
        }
    }
}

void Round::startSome()
{
    for (Lane& lane : m_lanes) {
        if (lane.isAlive && !lane.dice.oneIn(4)) {
            askForProperties(lane);
            injectSome(lane);
            start(lane);
        }
    }
}

void Round::stop(Lane& lane)
{
    if (lane.isScanning && !lane.scan.wasStopped) {
        lane.scan.wasStopped = m_terminal->stopScan(lane.channel.number);
        m_tally.stops += lane.scan.wasStopped ? 1 : 0;
    }
}

void Round::finish(Lane& lane)
{
    if (!lane.isScanning) {
        return;
    }
    const RadioChannel channel = lane.channel.number;
    if (!lane.scan.wasStopped) {
        m_terminal->waitForEnd(channel);
    }
    if (!m_terminal->workerFailure(channel)) {
        m_terminal->waitForIdle(channel);
    }
    checkScan(*m_terminal, lane.scan);
    lane.isScanning = false;
    lane.scan.wasStopped = false;
    if (m_terminal->workerFailure(channel)) {
        lane.isAlive = false;
        ++m_tally.deaths;
        const ScanStart started = m_terminal->startScan(channel, SDC_CMD_CHANNEL_SCAN_START);
        require(started == ScanStart::noWorker, nameOf(channel) + ": a start went through without a worker");
    }
}

void Round::injectSome(Lane& lane)
{
    while (lane.dice.oneIn(2)) {
        inject(lane, randomSweepFault(lane.dice));
    }
    if (lane.dice.oneIn(6)) {
        const Fault fault = randomStartFault(lane.dice, lane.channel.link);
        try {
            inject(lane, fault);
            lane.startFault = fault;
        } catch (const std::invalid_argument&) { // a frequency with which no radio could work
            return;
        }
    }
}

void Round::inject(Lane& lane, const Fault& fault)
{
    (*m_radios)[lane.channel.number].inject(fault);
    lane.scan.mayGoWrong = true;
    ++m_tally.faults;
}

void Round::askForProperties(Lane& lane)
{
    if (lane.dice.oneIn(2)) {
        return;
    }
    try {
        m_terminal->controller(lane.channel.number).getSpectrumDiagnosticsProperties();
    } catch (const std::runtime_error& error) {
        require(lane.scan.mayGoWrong && error.what() == faultText,
            nameOf(lane.channel.number) + ": properties: " + error.what());
    }
}

void Round::start(Lane& lane)
{
    if (!lane.isAlive) {
        return;
    }
    const RadioChannel channel = lane.channel.number;
    const ESDCCommand command = lane.dice.oneIn(2) ? SDC_CMD_CHANNEL_SCAN_START : SDC_CMD_SUB_BAND_SCAN_START;
    lane.scan.channel = channel;
    lane.scan.start = command;
    lane.scan.samplesBefore = m_terminal->samples(channel);
    const std::optional<Fault> fault = std::exchange(lane.startFault, std::nullopt);
    ScanStart started{};
    try {
        started = m_terminal->startScan(channel, command);
    } catch (const std::runtime_error& error) {
        acceptException(lane, fault, error);
        return;
    }
    accept(lane, fault, started);
}

/// What a start answered: accepted, unless the unit's type was said to be none or a wrong answer left nothing to plan.
void Round::accept(Lane& lane, const std::optional<Fault>& fault, ScanStart started)
{
    const std::string name = nameOf(lane.channel.number) + ": a start ";
    const bool isWrongAnswer = fault && fault->action == FaultAction::answer;
    const bool isUnknownUnit = fault && fault->text == unknownUnit;
    require(!fault || isWrongAnswer, name + "came through though the radio threw");
    require(!isUnknownUnit || started == ScanStart::failed, name + "came through with an unknown unit");
    if (started == ScanStart::failed) {
        require(isWrongAnswer, name + "failed");
        return;
    }
    require(started == ScanStart::underWay, name + "was refused, or there was no worker");
    lane.isScanning = true;
    lane.scan.configured_kHz = lane.channel.link.rxFrequency_kHz;
    if (isWrongAnswer && fault->operation == Operation::getRxFrequency) {
        lane.scan.configured_kHz = static_cast<std::uint32_t>(fault->value);
    }
    ++m_tally.scans;
}

void Round::acceptException(const Lane& lane, const std::optional<Fault>& fault, const std::exception& exception)
{
    const RadioChannel channel = lane.channel.number;
    const std::string name = nameOf(channel) + ": after an exception of a start, ";
    const bool isExpected = fault && fault->action == FaultAction::fail;
    require(isExpected && exception.what() == faultText, name + exception.what());
    ISpectrumDiagnosticsController& controller = m_terminal->controller(channel);
    require(controller.getStatus() == SDC_STATUS_SCAN_NOT_STARTED, name + "the status shows a scan");
    require(controller.getProgress() == 0, name + "there is progress");
    require(isSame(m_terminal->samples(channel), lane.scan.samplesBefore), name + "there are other samples");
}

} // namespace soak
