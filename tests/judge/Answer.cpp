#include "tests/judge/Answer.h"

#if __has_include("apps/sdc/result/Raster.h")
#include "apps/sdc/result/Analysis.h"
#endif

#include <algorithm>

namespace judge {

sdc::RasterState stateOf(const Answer& answer, std::int64_t offset)
{
    const auto found = std::ranges::find(answer.raster, offset, &RasterAnswer::offset);
    return found == answer.raster.end() ? sdc::RasterState::unknown : found->state;
}

#if __has_include("apps/sdc/result/Raster.h")
Answer verdictOfSdc(const sdc::ChannelResult& channel, sdc::FarEnd farEnd)
{
    const sdc::Analysis analysis = sdc::analyse(channel, farEnd);
    const sdc::Verdict& verdict = analysis.verdict;
    Answer answer{verdict.judgement, verdict.kind, verdict.place, verdict.overFloor, verdict.rule, {}};
    for (const auto& one : analysis.raster) {
        answer.raster.push_back({one.offset, one.state});
    }
    return answer;
}
#else
Answer verdictOfSdc(const sdc::ChannelResult& channel, sdc::FarEnd farEnd)
{
    return plainThreshold(channel, farEnd);
}
#endif

} // namespace judge
