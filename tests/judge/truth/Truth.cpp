#include "tests/judge/truth/Truth.h"

#include "tests/judge/truth/QuietAir.h"

namespace judge {

Truth truthOf(const Trial& trial, const Course& course)
{
    const QuietAir air(trial.link(), course);
    return {channelTruth(trial, air), rasterTruth(air)};
}

} // namespace judge
