#include "apps/sdc/verdict/Rules.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace sdc {

namespace {

struct RuleText {
    Rule rule;
    Judgement judgement;
    const char* sentence;
    std::vector<Help> helps;
    std::optional<InterferenceKind> kind{}; ///< of which it is by the rule alone
};

const std::vector<RuleText>& rules()
{
    static const std::vector<RuleText> texts{
        {Rule::noSample, Judgement::cannotTell, "no sample was taken in the channel", {Help::channelScan}},
        {Rule::noLevel, Judgement::cannotTell, "no reading in the channel is one that a receiver can give",
            {Help::checkReceiver}},
        {Rule::deadReceiver, Judgement::cannotTell,
            "a receiver that works does not read this: all the same, or less than its own noise", {Help::checkReceiver}},
        {Rule::noCarrier, Judgement::cannotTell, "the far end is said to be on, and nothing of it is heard",
            {Help::checkReceiver}},
        {Rule::quiet, Judgement::clear,
            "no reading in the channel is above what the receiver reads of its own noise and of leaks", {}},
        {Rule::neighboursOnly, Judgement::clear,
            "what is heard is no more than emitters beside the channel put into the filter", {}},
        {Rule::overAllLeaks, Judgement::disturbed,
            "readings are above the noise and all that can leak into the filter of what the scan shows elsewhere", {}},
        {Rule::maybeMask, Judgement::clear,
            "readings are above the noise, but no higher than a strong carrier beside the channel makes them by a poor mask",
            {Help::channelScan}},
        {Rule::shapedInChannel, Judgement::disturbed,
            "what is heard has a shape across the channel that nothing outside of it gives", {}},
        {Rule::burstInChannel, Judgement::disturbed,
            "readings were higher now and then, as nothing beside the channel makes them", {}, InterferenceKind::burst},
        {Rule::maybeLeak, Judgement::cannotTell,
            "readings are above the noise, but no higher and no other than the leak of a strong carrier that the scan does "
            "not show",
            {Help::subBandScan}},
        {Rule::overAnyLeak, Judgement::disturbed,
            "readings are higher than the strongest carrier makes them that the scan may not show", {}},
        {Rule::overload, Judgement::disturbed, "the level is higher than any link is designed for", {Help::muteFarEnd}},
        {Rule::besideCarrierComes, Judgement::disturbed,
            "something comes and goes on top of the own carrier, other than fading does", {Help::muteFarEnd},
            InterferenceKind::burst},
        {Rule::besideCarrierShape, Judgement::disturbed,
            "what is heard is not of the shape of the own carrier and its neighbours", {Help::muteFarEnd}},
        {Rule::carrierUntold, Judgement::cannotTell,
            "a carrier is in the channel all the time, and whether it is the far end's was not said",
            {Help::sayFarEnd, Help::muteFarEnd}},
        {Rule::carrierAlone, Judgement::cannotTell,
            "what is heard is no more than the own carrier and its fading explain; what lies under it is not heard",
            {Help::muteFarEnd}},
    };
    return texts;
}

} // namespace

Verdict verdictBy(Rule rule, std::optional<double> over)
{
    constexpr double surely = 600.0;
    const RuleText& text = *std::ranges::find(rules(), rule, &RuleText::rule);
    Verdict verdict{.judgement = text.judgement, .rule = text.sentence, .wouldHelp = text.helps};
    if (over && text.judgement == Judgement::disturbed) {
        verdict.judgement = *over >= surely ? Judgement::disturbed : Judgement::suspected;
        verdict.kind = text.kind;
        verdict.overFloor = static_cast<std::int32_t>(std::lround(*over));
    }
    return verdict;
}

} // namespace sdc
