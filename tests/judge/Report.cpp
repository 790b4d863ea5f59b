#include "tests/judge/Report.h"

#include "support/Table.h"
#include "tests/judge/Goals.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <functional>
#include <string_view>

namespace judge {

namespace {

using sdc::FarEnd;
using sdc::InterferenceKind;
using sdc::Judgement;
using sdc::RasterState;
using Outcomes = std::vector<Outcome>;
using Belongs = std::function<bool(const Outcome&)>;

constexpr std::array<std::string_view, 5> kinds{"carrier", "line", "burst", "sweep", "wideband"};

std::string toText(const Share& share)
{
    return share.all == 0 ? "-" : fmt::format("{:.2f}", share.percent());
}

/// A range of levels over the floor, in hundredths of a dB.
struct Class {
    std::int32_t from;
    std::int32_t to;

    bool contains(std::int32_t level) const { return from <= level && level < to; }
    std::string text() const
    {
        return to > 100000 ? fmt::format("> {} dB", from / 100) : fmt::format("{} to {} dB", from / 100, to / 100);
    }
};

constexpr Class classes[] = {{0, 300}, {300, 500}, {500, 1000}, {1000, 1500}, {1500, 2000}, {2000, 3000}, {3000, 1000000}};

/// Of the trials that belong to a row: how many, and what was said of them.
support::Row saidOf(const Outcomes& outcomes, const std::string& name, const Belongs& belongs)
{
    Share alarm;
    Share clear;
    Share untold;
    Share rightKind;
    Share rightPlace;
    for (const Outcome& one : outcomes) {
        if (!belongs(one)) {
            continue;
        }
        const Answer& answer = one.answer;
        alarm.add(isAlarm(one));
        clear.add(answer.judgement == Judgement::clear);
        untold.add(cannotTell(one));
        if (isAlarm(one) && one.which == Case::disturbed && answer.kind) {
            rightKind.add(std::ranges::count(one.truth.channel.kinds, *answer.kind) > 0);
        }
        if (isAlarm(one) && one.which == Case::disturbed && answer.place) {
            rightPlace.add(answer.place == sdc::InterferencePlace::coChannel);
        }
    }
    return {name, std::to_string(alarm.all), toText(alarm), toText(clear), toText(untold), toText(rightKind),
        toText(rightPlace)};
}

bool isAt(const Outcome& outcome, FarEnd told, sdc::ScanKind kind)
{
    return outcome.told == told && outcome.kind == kind;
}

void writeChannelTable(std::ostream& stream, const Outcomes& outcomes, FarEnd told, sdc::ScanKind kind)
{
    std::vector<support::Row> rows{
        {"level", "links", "alarm %", "clear %", "cannot tell %", "right kind %", "right place %"}};
    const auto add = [&](const std::string& name, const Belongs& belongs) {
        rows.push_back(saidOf(outcomes, name, [&](const Outcome& one) { return isAt(one, told, kind) && belongs(one); }));
    };
    add("no interferer", [](const Outcome& one) { return one.which == Case::clean; });
    if (told != FarEnd::on) {
        add("none, but neighbours",
            [](const Outcome& one) { return one.which == Case::nextCase || one.which == Case::raised; });
    }
    for (const Class& one : classes) {
        add(one.text(), [&](const Outcome& outcome) {
            return outcome.which == Case::disturbed && one.contains(outcome.truth.channel.over);
        });
    }
    stream << fmt::format(
        "\nfar end {}, scan of the {}\n\n{}", sdc::toText(told), sdc::toText(kind), support::table(rows, "lrrrrrr"));
}

void writeKindTable(std::ostream& stream, const Outcomes& outcomes, FarEnd told)
{
    std::vector<support::Row> rows{
        {"kind", "links", "alarm %", "clear %", "cannot tell %", "right kind %", "right place %"}};
    for (std::size_t index = 0; index < kinds.size(); ++index) {
        const auto kind = static_cast<InterferenceKind>(index);
        rows.push_back(saidOf(outcomes, std::string(kinds[index]), [&](const Outcome& one) {
            const ChannelTruth& truth = one.truth.channel;
            return one.told == told && one.which == Case::disturbed && truth.over >= 1000
                && std::ranges::count(truth.kinds, kind) > 0;
        }));
    }
    stream << fmt::format("\nfar end {}, from 10 dB, by kind\n\n{}", sdc::toText(told), support::table(rows, "lrrrrrr"));
}

/// What was called what, of the interferers that are of one kind without doubt.
void writeConfusion(std::ostream& stream, const Outcomes& outcomes)
{
    std::vector<support::Row> rows{{"is", "called carrier", "line", "burst", "sweep", "wideband", "no kind"}};
    for (std::size_t is = 0; is < kinds.size(); ++is) {
        std::array<std::size_t, kinds.size() + 1> called{};
        for (const Outcome& one : outcomes) {
            const ChannelTruth& truth = one.truth.channel;
            if (one.which == Case::disturbed && truth.over >= 1000 && isAlarm(one) && truth.kinds.size() == 1
                && truth.kinds.front() == static_cast<InterferenceKind>(is)) {
                ++called.at(one.answer.kind ? static_cast<std::size_t>(*one.answer.kind) : kinds.size());
            }
        }
        support::Row row{std::string(kinds.at(is))};
        for (const std::size_t count : called) {
            row.push_back(std::to_string(count));
        }
        rows.push_back(row);
    }
    stream << "\nkinds, from 10 dB, where an alarm was given\n\n" << support::table(rows, "lrrrrrr");
}

void writeSpecialCases(std::ostream& stream, const Outcomes& outcomes)
{
    std::vector<support::Row> rows{
        {"case", "links", "alarm %", "clear %", "cannot tell %", "right kind %", "right place %"}};
    const auto add = [&](const std::string& name, const Belongs& belongs) {
        rows.push_back(saidOf(outcomes, name, belongs));
    };
    const auto isExplainable = [](const Outcome& one) {
        return one.told == FarEnd::muted && one.which == Case::disturbed && one.truth.channel.over >= 500
            && one.truth.channel.isExplainable;
    };
    const auto isRaised = [](const Outcome& one) { return one.told == FarEnd::muted && one.which == Case::raised; };
    const auto isLikeOwn = [](const Outcome& one) {
        return one.told == FarEnd::on && one.which == Case::disturbed && one.truth.channel.over >= 1000
            && one.truth.channel.isShapedLikeOwn && !one.truth.channel.comesAndGoes;
    };
    add("muted, none, a neighbour that is not shown (the next case)",
        [](const Outcome& one) { return one.told == FarEnd::muted && one.which == Case::nextCase; });
    add("muted, an interferer from 5 dB that neighbours could explain, narrow scan",
        [&](const Outcome& one) { return isExplainable(one) && one.truth.channel.isNarrow; });
    add("... other scans", [&](const Outcome& one) { return isExplainable(one) && !one.truth.channel.isNarrow; });
    add("muted, none, a neighbour that is shown raises by 3 dB", isRaised);
    add("... of those, adjacent by what was said",
        [&](const Outcome& one) { return isRaised(one) && one.answer.place == sdc::InterferencePlace::adjacent; });
    add("on, from 10 dB, shaped like the own carrier", isLikeOwn);
    add("something grazes the channel", [](const Outcome& one) { return one.which == Case::grazed; });
    add("no sample in the channel", [](const Outcome& one) { return one.which == Case::unseen; });
    add("dead receiver", [](const Outcome& one) { return one.which == Case::dead; });
    stream << "\nspecial cases\n\n" << support::table(rows, "lrrrrrr");
}

using BelongsInRaster = std::function<bool(const RasterTruth&)>;

support::Row statesOf(const Outcomes& outcomes, const std::string& name, const BelongsInRaster& belongs)
{
    std::array<std::size_t, 5> counts{};
    std::size_t all = 0;
    for (const Outcome& outcome : outcomes) {
        for (const RasterTruth& channel : outcome.truth.raster) {
            if (outcome.which != Case::dead && belongs(channel)) {
                ++counts.at(static_cast<std::size_t>(stateOf(outcome.answer, channel.offset)));
                ++all;
            }
        }
    }
    support::Row row{name, std::to_string(all)};
    for (const RasterState state :
        {RasterState::occupied, RasterState::intermittent, RasterState::free, RasterState::unknown}) {
        row.push_back(toText(Share{counts.at(static_cast<std::size_t>(state)), all}));
    }
    return row;
}

void writeRasterTable(std::ostream& stream, const Outcomes& outcomes)
{
    std::vector<support::Row> rows{{"channel", "channels", "occupied %", "intermittent %", "free %", "unknown %"}};
    const auto add = [&](const std::string& name, const BelongsInRaster& belongs) {
        rows.push_back(statesOf(outcomes, name, belongs));
    };
    const auto isSeen = [](const RasterTruth& one, Occupant occupant) { return one.isSeen && one.occupant == occupant; };
    add("empty", [&](const RasterTruth& one) { return isSeen(one, Occupant::nobody); });
    add("a mask or a filter's edge", [&](const RasterTruth& one) { return isSeen(one, Occupant::fringe); });
    add("in doubt", [&](const RasterTruth& one) { return isSeen(one, Occupant::uncertain); });
    for (const bool comesAndGoes : {false, true}) {
        for (const Class& level : classes) {
            add((comesAndGoes ? "comes and goes, " : "stays, ") + level.text(), [&](const RasterTruth& one) {
                return isSeen(one, Occupant::somebody) && one.comesAndGoes == comesAndGoes && level.contains(one.over);
            });
        }
    }
    add("between two samples, empty",
        [](const RasterTruth& one) { return !one.isSeen && one.occupant == Occupant::nobody; });
    add("between two samples, from 10 dB",
        [](const RasterTruth& one) { return !one.isSeen && one.occupant == Occupant::somebody && one.over >= 1000; });
    stream << "\nchannels of the raster\n\n" << support::table(rows, "lrrrrr");
}

/// Judged wrongly; empty of a trial that was not.
std::string wrongIn(const Outcome& outcome)
{
    const ChannelTruth& truth = outcome.truth.channel;
    const bool isClear = outcome.answer.judgement == Judgement::clear;
    if (outcome.told != FarEnd::unknown
        && (outcome.which == Case::clean || outcome.which == Case::nextCase || outcome.which == Case::raised)) {
        if (isAlarm(outcome)) {
            return "false alarm";
        }
        return outcome.which == Case::clean && cannotTell(outcome) ? "cannot tell" : "";
    }
    if (outcome.which == Case::disturbed && truth.over >= 500 && !isAlarm(outcome) && !mayBeExcused(outcome)) {
        return outcome.told == FarEnd::on && truth.over < 1000 ? "" : "missed";
    }
    if (outcome.which == Case::disturbed && outcome.told == FarEnd::on && truth.over >= 1000 && isClear) {
        return "clear";
    }
    return outcome.which == Case::dead && outcome.answer.judgement != Judgement::cannotTell ? "dead receiver" : "";
}

std::string wrongIn(const RasterTruth& truth, RasterState said)
{
    const bool isInUse = said == RasterState::occupied || said == RasterState::intermittent;
    switch (truth.occupant) {
    case Occupant::nobody: return isInUse ? "empty called occupied" : "";
    case Occupant::fringe: return said == RasterState::free ? "fringe called free" : "";
    case Occupant::somebody:
        if (truth.over < 1000 || isInUse || (!truth.isSeen && said == RasterState::unknown)) {
            return "";
        }
        return said == RasterState::free ? "occupied called free" : "occupied not found";
    case Occupant::uncertain: return "";
    }
    return "";
}

std::string described(const Outcome& outcome, const std::string& wrong)
{
    constexpr std::array<std::string_view, 4> judgements{"clear", "suspected", "disturbed", "cannot tell"};
    const ChannelTruth& truth = outcome.truth.channel;
    std::string text;
    for (const InterferenceKind kind : truth.kinds) {
        text += fmt::format(" {}", kinds.at(static_cast<std::size_t>(kind)));
    }
    return fmt::format(
        "seed {}: {}: {} sweeps of the {}, far end {}; {} samples in the channel, {:.2f} dB over the floor at "
        "{:.2f} dBm, floor {:.2f} dB over the noise,{}{}; said: {}{}{}{}, \"{}\"\n",
        outcome.seed, wrong, outcome.sweeps, toText(outcome.kind), toText(outcome.told), truth.tunings, truth.over / 100.0,
        truth.level / 100.0, truth.raised / 100.0, text.empty() ? " no interferer" : text,
        !truth.kinds.empty() && truth.comesAndGoes ? ", comes and goes" : "",
        judgements.at(static_cast<std::size_t>(outcome.answer.judgement)),
        outcome.answer.kind ? ", " + std::string(kinds.at(static_cast<std::size_t>(*outcome.answer.kind))) : "",
        outcome.answer.place ? (*outcome.answer.place == sdc::InterferencePlace::adjacent ? ", adjacent" : ", co-channel")
                             : "",
        outcome.answer.overFloor ? fmt::format(", {:.2f} dB", *outcome.answer.overFloor / 100.0) : "", outcome.answer.rule);
}

} // namespace

bool writeGoals(std::ostream& stream, const Outcomes& outcomes)
{
    std::vector<support::Row> rows{{"goal", "", "measured", "", ""}};
    bool areMet = true;
    for (const Goal& goal : goals()) {
        const Share share = goal.measure(outcomes);
        const bool met = isMet(goal, share);
        areMet = areMet && met;
        rows.push_back(
            {goal.what, fmt::format("{} {:.1f} %", goal.side == Goal::Side::atLeast ? "at least" : "at most", goal.percent),
                share.all == 0 ? "nothing" : toText(share) + " %", fmt::format("({} of {})", share.count, share.all),
                met ? "met" : "missed"});
    }
    stream << support::table(rows, "llrll");
    return areMet;
}

void writeTables(std::ostream& stream, const Outcomes& outcomes)
{
    for (const FarEnd told : {FarEnd::muted, FarEnd::on, FarEnd::unknown}) {
        for (const sdc::ScanKind kind : {sdc::ScanKind::channel, sdc::ScanKind::subBand}) {
            writeChannelTable(stream, outcomes, told, kind);
        }
    }
    writeKindTable(stream, outcomes, FarEnd::muted);
    writeKindTable(stream, outcomes, FarEnd::on);
    writeConfusion(stream, outcomes);
    writeSpecialCases(stream, outcomes);
    writeRasterTable(stream, outcomes);
}

void writeFailures(std::ostream& stream, const Outcomes& outcomes, std::size_t most)
{
    std::size_t left = most;
    const auto write = [&](const std::string& line) {
        if (left > 0) {
            stream << line;
            --left;
        }
    };
    for (const Outcome& outcome : outcomes) {
        if (const std::string wrong = wrongIn(outcome); !wrong.empty()) {
            write(described(outcome, wrong));
        }
        for (const RasterTruth& channel : outcome.truth.raster) {
            const std::string wrong = wrongIn(channel, stateOf(outcome.answer, channel.offset));
            if (outcome.which != Case::dead && !wrong.empty()) {
                write(fmt::format("seed {}: {}: raster channel {:+}, {:.2f} dB over the floor{}; {} sweeps of the {}\n",
                    outcome.seed, wrong, channel.offset, channel.over / 100.0, channel.isSeen ? "" : ", between two samples",
                    outcome.sweeps, toText(outcome.kind)));
            }
        }
    }
}

} // namespace judge
