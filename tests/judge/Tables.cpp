#include "tests/judge/Tables.h"

#include "apps/sdc/result/ScanResult.h"
#include "support/Table.h"
#include "tests/judge/Answer.h"
#include "tests/judge/Goals.h"
#include "tests/judge/truth/ChannelTruth.h"
#include "tests/judge/truth/RasterTruth.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace judge {

namespace {

using sdc::FarEnd;
using sdc::InterferenceKind;
using sdc::Judgement;
using sdc::RasterState;
using sdc::ScanKind;
using Outcomes = std::vector<Outcome>;
using Belongs = std::function<bool(const Outcome&)>;

std::string percentOf(const Share& share)
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
        return to > highest ? fmt::format("> {} dB", from / 100) : fmt::format("{} to {} dB", from / 100, to / 100);
    }
    static constexpr std::int32_t highest = 30000;
};

constexpr Class classes[] = {
    {0, 300}, {300, 500}, {500, 1000}, {1000, 1500}, {1500, 2000}, {2000, 3000}, {3000, Class::highest + 1}};
constexpr std::int32_t weak = 500;
constexpr std::int32_t strong = 1000;

bool isDisturbed(const Outcome& one, FarEnd told, std::int32_t from)
{
    return one.told == told && one.which == Case::disturbed && one.truth.channel.over >= from;
}

bool hasRightKind(const Outcome& one)
{
    return std::ranges::count(one.truth.channel.kinds, one.answer.kind.value()) > 0;
}

/// All that counts as an interferer reaches into the channel.
bool hasRightPlace(const Outcome& one)
{
    return one.answer.place == sdc::InterferencePlace::coChannel || one.truth.channel.isFromBeside;
}

/// What was said of the links of a row.
class SaidTable {
public:
    SaidTable(const Outcomes& outcomes, const std::string& of)
        : m_outcomes(outcomes)
        , m_rows{{of, "links", "alarm %", "clear %", "cannot tell %", "right kind %", "right place %"}}
    {
    }

    void add(const std::string& name, const Belongs& belongs)
    {
        const auto alarmed = [&](const Outcome& one) {
            return belongs(one) && isAlarm(one) && one.which == Case::disturbed;
        };
        const auto withKind = [&](const Outcome& one) { return alarmed(one) && one.answer.kind; };
        const auto withPlace = [&](const Outcome& one) { return alarmed(one) && one.answer.place; };
        const Share alarms = shareOf(m_outcomes, OfLinks{belongs, isAlarm});
        m_rows.push_back(
            {name, std::to_string(alarms.all), percentOf(alarms), percentOf(shareOf(m_outcomes, OfLinks{belongs, isClear})),
                percentOf(shareOf(m_outcomes, OfLinks{belongs, cannotTell})),
                percentOf(shareOf(m_outcomes, OfLinks{withKind, hasRightKind})),
                percentOf(shareOf(m_outcomes, OfLinks{withPlace, hasRightPlace}))});
    }

    void write(std::ostream& stream, const std::string& title) const
    {
        stream << '\n' << title << "\n\n" << support::table(m_rows, "lrrrrrr");
    }

private:
    const Outcomes& m_outcomes;
    std::vector<support::Row> m_rows;
};

void writeLevels(std::ostream& stream, const Outcomes& outcomes, FarEnd told, ScanKind kind)
{
    SaidTable table(outcomes, "over the floor");
    const auto isHere = [&](const Outcome& one) { return one.told == told && one.kind == kind; };
    table.add("no interferer", [&](const Outcome& one) { return isHere(one) && one.which == Case::clean; });
    for (const Class& level : classes) {
        table.add(level.text(), [&](const Outcome& one) {
            return isHere(one) && isDisturbed(one, told, 0) && level.contains(one.truth.channel.over);
        });
    }
    table.write(stream, fmt::format("far end {}, scan of the {}", toText(told), toText(kind)));
}

void writeKinds(std::ostream& stream, const Outcomes& outcomes, FarEnd told)
{
    SaidTable table(outcomes, "kind");
    for (std::size_t kind = 0; kind < sdc::interferenceKinds.size(); ++kind) {
        table.add(std::string(sdc::interferenceKinds.at(kind)), [&](const Outcome& one) {
            return isDisturbed(one, told, strong)
                && std::ranges::count(one.truth.channel.kinds, static_cast<InterferenceKind>(kind)) > 0;
        });
    }
    table.write(stream, fmt::format("far end {}, from 10 dB, by kind", toText(told)));
}

/// Of the interferers that are of one kind without doubt.
void writeConfusion(std::ostream& stream, const Outcomes& outcomes)
{
    std::vector<support::Row> rows{{"is", "called carrier", "line", "burst", "sweep", "wideband", "no kind"}};
    for (std::size_t kind = 0; kind < sdc::interferenceKinds.size(); ++kind) {
        std::array<std::size_t, sdc::interferenceKinds.size() + 1> called{};
        for (const Outcome& one : outcomes) {
            const std::vector<InterferenceKind> only{static_cast<InterferenceKind>(kind)};
            if (isDisturbed(one, one.told, strong) && isAlarm(one) && one.truth.channel.kinds == only) {
                ++called.at(one.answer.kind ? static_cast<std::size_t>(*one.answer.kind) : sdc::interferenceKinds.size());
            }
        }
        if (std::ranges::count(called, 0U) == std::ssize(called)) {
            continue;
        }
        support::Row row{std::string(sdc::interferenceKinds.at(kind))};
        for (const std::size_t count : called) {
            row.push_back(std::to_string(count));
        }
        rows.push_back(row);
    }
    stream << "\nkinds, from 10 dB, of interferers of one kind alone, where an alarm was given\n\n"
           << support::table(rows, "lrrrrrr");
}

void addNeighbours(SaidTable& table)
{
    const auto isNextCase = [](const Outcome& one) { return one.told == FarEnd::muted && one.which == Case::nextCase; };
    const auto isLeakEnough = [](const Outcome& one) { return one.truth.channel.isExplainableByLeak; };
    const auto isRaised = [](const Outcome& one) { return one.told == FarEnd::muted && one.which == Case::raised; };
    table.add("muted, none, neighbours raise the reading: the next case", isNextCase);
    table.add("... as low as a leak is", [=](const Outcome& one) { return isNextCase(one) && isLeakEnough(one); });
    table.add("... higher: a mask, an edge", [=](const Outcome& one) { return isNextCase(one) && !isLeakEnough(one); });
    table.add("muted, none, the same with the neighbours shown", isRaised);
    table.add("... where \"adjacent\" was said",
        [=](const Outcome& one) { return isRaised(one) && one.answer.place == sdc::InterferencePlace::adjacent; });
}

void addExplainable(SaidTable& table)
{
    const auto is = [](const Outcome& one, bool isNarrow) {
        const ChannelTruth& truth = one.truth.channel;
        return isDisturbed(one, FarEnd::muted, weak) && truth.isExplainable && truth.isNarrow == isNarrow;
    };
    const auto isLeakEnough = [](const Outcome& one) { return one.truth.channel.isExplainableByLeak; };
    table.add(
        "muted, an interferer from 5 dB that neighbours could explain", [=](const Outcome& one) { return is(one, true); });
    table.add("... as low as a leak is", [=](const Outcome& one) { return is(one, true) && isLeakEnough(one); });
    table.add("... higher: a mask, an edge", [=](const Outcome& one) { return is(one, true) && !isLeakEnough(one); });
    table.add("... the same with the neighbours shown", [=](const Outcome& one) { return is(one, false); });
}

void writeSpecialCases(std::ostream& stream, const Outcomes& outcomes)
{
    SaidTable table(outcomes, "case");
    addNeighbours(table);
    addExplainable(table);
    table.add("on, from 10 dB, shaped like the own carrier", [](const Outcome& one) {
        return isDisturbed(one, FarEnd::on, strong) && one.truth.channel.isShapedLikeOwn && !one.truth.channel.comesAndGoes;
    });
    table.add("something grazes the channel", [](const Outcome& one) { return one.which == Case::grazed; });
    table.add("no sample in the channel", [](const Outcome& one) { return one.which == Case::unseen; });
    table.add("dead receiver", [](const Outcome& one) { return one.which == Case::dead; });
    table.write(stream, "special cases");
}

support::Row statesOf(
    const Outcomes& outcomes, const std::string& name, const std::function<bool(const RasterTruth&)>& belongs)
{
    const auto called = [&](RasterState wanted) {
        return shareOf(outcomes, OfChannels{belongs, [wanted](RasterState state) { return state == wanted; }});
    };
    return {name, std::to_string(called(RasterState::free).all), percentOf(called(RasterState::occupied)),
        percentOf(called(RasterState::intermittent)), percentOf(called(RasterState::free)),
        percentOf(called(RasterState::unknown))};
}

void writeRaster(std::ostream& stream, const Outcomes& outcomes)
{
    std::vector<support::Row> rows{{"channel", "channels", "occupied %", "intermittent %", "free %", "unknown %"}};
    const auto add = [&](const std::string& name, bool isSeen, Occupant occupant, const auto& belongs) {
        rows.push_back(statesOf(outcomes, name,
            [&](const RasterTruth& one) { return one.isSeen == isSeen && one.occupant == occupant && belongs(one); }));
    };
    const auto any = [](const RasterTruth&) { return true; };
    add("empty", true, Occupant::nobody, any);
    add("a mask or a filter's edge", true, Occupant::fringe, any);
    add("in doubt", true, Occupant::uncertain, any);
    for (const bool comesAndGoes : {false, true}) {
        for (const Class& level : classes) {
            add((comesAndGoes ? "comes and goes, " : "stays, ") + level.text(), true, Occupant::somebody,
                [&](const RasterTruth& one) { return one.comesAndGoes == comesAndGoes && level.contains(one.over); });
        }
    }
    add("between two samples, empty", false, Occupant::nobody, any);
    add("between two samples, from 10 dB", false, Occupant::somebody,
        [](const RasterTruth& one) { return one.over >= strong; });
    stream << "\nchannels of the raster\n\n" << support::table(rows, "lrrrrr");
}

} // namespace

bool writeGoals(std::ostream& stream, const Outcomes& outcomes)
{
    std::vector<support::Row> rows{{"goal", "", "measured", "", ""}};
    bool areMet = true;
    for (const Goal& goal : goals()) {
        const Share share = measure(goal, outcomes);
        const bool met = isMet(goal, share);
        areMet = areMet && met;
        const std::string side = goal.side == Goal::Side::atLeast ? "at least" : "at most";
        rows.push_back(
            {goal.what, fmt::format("{} {:.1f} %", side, goal.percent), share.all == 0 ? "nothing" : percentOf(share) + " %",
                fmt::format("({} of {})", share.count, share.all), met ? "met" : "missed"});
    }
    stream << support::table(rows, "llrll");
    return areMet;
}

void writeTables(std::ostream& stream, const Outcomes& outcomes)
{
    for (const FarEnd told : {FarEnd::muted, FarEnd::on, FarEnd::unknown}) {
        for (const ScanKind kind : {ScanKind::channel, ScanKind::subBand}) {
            writeLevels(stream, outcomes, told, kind);
        }
    }
    writeKinds(stream, outcomes, FarEnd::muted);
    writeKinds(stream, outcomes, FarEnd::on);
    writeConfusion(stream, outcomes);
    writeSpecialCases(stream, outcomes);
    writeRaster(stream, outcomes);
}

} // namespace judge
