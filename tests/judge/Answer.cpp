#include "tests/judge/Answer.h"

#include <algorithm>

namespace judge {

sdc::RasterState stateOf(const Answer& answer, std::int64_t offset)
{
    const auto found = std::ranges::find(answer.raster, offset, &RasterAnswer::offset);
    return found == answer.raster.end() ? sdc::RasterState::unknown : found->state;
}

Answer verdictOfSdc(const sdc::ChannelResult& channel, sdc::FarEnd farEnd)
{
    const sdc::Verdict verdict = sdc::judge(channel, farEnd);
    Answer answer{verdict.judgement, verdict.kind, verdict.place, verdict.overFloor, verdict.rule, {}};
    for (const sdc::RasterChannel& one : sdc::rasterOf(channel)) {
        answer.raster.push_back({one.offset, one.state});
    }
    return answer;
}

} // namespace judge
