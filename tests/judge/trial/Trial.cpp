#include "tests/judge/trial/Trial.h"

#include "simulator/radio/Fault.h"
#include "simulator/scenario/ScenarioRecord.h"
#include "support/FieldsJson.h"
#include "support/ReadableJson.h"
#include "tests/judge/trial/RandomAir.h"
#include "tests/judge/trial/RandomSite.h"

#include "Platform/Host/RadioChannel.h"

#include <fmt/format.h>

#include <algorithm>
#include <sstream>

namespace judge {

namespace {

using sdc::ScanKind;
using simulator::Fault;
using simulator::FaultAction;
using simulator::Operation;

/// A receiver that reads nothing: always the floor, or one reading over and over.
Fault deadReceiver(Dice& dice)
{
    Fault fault{.operation = Operation::readRssi, .calls = Fault::all};
    fault.action = dice.oneIn(2) ? FaultAction::answer : FaultAction::stick;
    constexpr std::int64_t atFloor[] = {-9970, -12000};
    fault.value = fault.action == FaultAction::answer ? dice.pick(atFloor) : 0;
    return fault;
}

/// One, a few, or up to fifty. Long scans are not repeated as often.
std::uint32_t chooseSweeps(Dice& dice, const Site& site, ScanKind kind)
{
    constexpr std::uint64_t mosts[] = {1, 5, 20, 50};
    const std::uint64_t wanted = dice.between(1, dice.pick(mosts));
    constexpr std::uint32_t step_kHz = 2000;
    constexpr std::uint32_t mostSamples = 8000;
    const std::uint32_t samples = kind == ScanKind::subBand ? site.channels * site.spacing_kHz() / step_kHz + 1 : 1;
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(wanted, std::max(mostSamples / samples, 3U)));
}

/// What the readings come from is what the file says: it is written and read back.
simulator::Scenario throughFile(const simulator::Scenario& scenario)
{
    std::ostringstream text;
    support::writeReadably(text, support::jsonOf(simulator::scenarioRecord(), &scenario));
    return simulator::parseScenario(text.str(), scenario.name + ".json");
}

} // namespace

Trial makeTrial(std::uint64_t seed)
{
    constexpr std::uint64_t apart = 0x9E3779B97F4A7C15ULL;
    Dice dice(seed * apart);
    Trial trial;
    trial.seed = seed;
    Site site = randomSite(dice);
    trial.isFarEndOn = dice.oneIn(2);
    trial.told = dice.happens(0.12) ? sdc::FarEnd::unknown : trial.isFarEndOn ? sdc::FarEnd::on : sdc::FarEnd::muted;
    trial.kind = dice.happens(0.45) ? ScanKind::channel : ScanKind::subBand;
    trial.sweeps = chooseSweeps(dice, site, trial.kind);
    putOnAir(dice, site, trial.isFarEndOn);
    if (dice.happens(0.03)) {
        site.link.faults.push_back(deadReceiver(dice));
    }
    trial.scenario.name = fmt::format("judge-{}", seed);
    trial.scenario.description = "a random link, scanned as: " + scanOptions(trial);
    trial.scenario.sources = {"typical: drawn by chance; channel plans: ITU-R."};
    trial.scenario.seed = static_cast<std::uint32_t>(dice.word());
    trial.scenario.channels.push_back({RadioChannel{1}, site.link});
    trial.scenario = throughFile(trial.scenario);
    return trial;
}

std::string scenarioText(const Trial& trial)
{
    std::ostringstream text;
    support::writeReadably(text, support::jsonOf(simulator::scenarioRecord(), &trial.scenario));
    return text.str();
}

std::string scanOptions(const Trial& trial)
{
    return fmt::format("{} --repeat {} --far-end {}", toText(trial.kind), trial.sweeps, toText(trial.told));
}

} // namespace judge
