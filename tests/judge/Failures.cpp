#include "tests/judge/Failures.h"

#include "apps/sdc/result/ScanResult.h"
#include "tests/judge/Answer.h"
#include "tests/judge/Goals.h"
#include "tests/judge/truth/ChannelTruth.h"
#include "tests/judge/truth/RasterTruth.h"

#include <fmt/format.h>

#include <cstdint>
#include <string>
#include <variant>

namespace judge {

namespace {

std::string inDecibels(std::int32_t level)
{
    return fmt::format("{:.2f}", level / 100.0);
}

std::string described(const ChannelTruth& truth)
{
    std::string text = fmt::format(
        "{} samples a sweep in the channel, floor {} dB over the noise", truth.tunings, inDecibels(truth.raised));
    if (truth.kinds.empty()) {
        return text + ", no interferer";
    }
    text += fmt::format(", {} dBm is {} dB over the floor,", inDecibels(truth.level), inDecibels(truth.over));
    for (const sdc::InterferenceKind kind : truth.kinds) {
        text += fmt::format(" {}", toText(kind));
    }
    return text + (truth.comesAndGoes ? ", comes and goes" : "")
        + (truth.isShapedLikeOwn ? ", shaped like the own carrier" : "");
}

std::string described(const Answer& answer)
{
    std::string text(toText(answer.judgement));
    if (answer.kind) {
        text += fmt::format(", {}", toText(*answer.kind));
    }
    if (answer.place) {
        text += fmt::format(", {}", toText(*answer.place));
    }
    if (answer.overFloor) {
        text += fmt::format(", {} dB", inDecibels(*answer.overFloor));
    }
    return text + (answer.rule.empty() ? "" : ": " + answer.rule);
}

std::vector<std::string> wrongBy(const Goal& goal, const OfLinks& asked, const Outcome& outcome)
{
    if (!asked.belongs(outcome) || !isWrong(goal, asked.counts(outcome))) {
        return {};
    }
    return {fmt::format("is: {}\n      said: {}", described(outcome.truth.channel), described(outcome.answer))};
}

std::vector<std::string> wrongBy(const Goal& goal, const OfChannels& asked, const Outcome& outcome)
{
    std::vector<std::string> wrong;
    for (const RasterTruth& channel : rasterOf(outcome)) {
        if (asked.belongs(channel) && isWrong(goal, asked.counts(stateOf(outcome.answer, channel.offset)))) {
            wrong.push_back(fmt::format("channel {:+}, {} dB over the floor{}{}", channel.offset, inDecibels(channel.over),
                channel.comesAndGoes ? ", comes and goes" : "", channel.isSeen ? "" : ", between two samples"));
        }
    }
    return wrong;
}

} // namespace

void writeFailures(std::ostream& stream, const std::vector<Outcome>& outcomes, std::size_t most)
{
    for (const Goal& goal : goals()) {
        stream << "\nagainst \"" << goal.what << "\"\n\n";
        std::size_t left = most;
        for (const Outcome& outcome : outcomes) {
            const auto wrong = std::visit([&](const auto& asked) { return wrongBy(goal, asked, outcome); }, goal.of);
            for (std::size_t index = 0; index < wrong.size() && left > 0; ++index, --left) {
                stream << fmt::format("  seed {}, {} sweeps of the {}, far end {}\n      {}\n", outcome.seed, outcome.sweeps,
                    toText(outcome.kind), toText(outcome.told), wrong[index]);
            }
        }
    }
}

} // namespace judge
