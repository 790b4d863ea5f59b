#pragma once

#include "tests/judge/trial/Scan.h"
#include "tests/judge/trial/Trial.h"
#include "tests/judge/truth/ChannelTruth.h"
#include "tests/judge/truth/RasterTruth.h"

#include <vector>

namespace judge {

/// What is so, as the simulator knows it. All levels are those that the receiver of the trial would read without jitter, at
/// the frequencies and moments at which it stood there, with what a slow one still shows of the sample before; in hundredths
/// of a dBm, never below the floor of readings. An emitter that was silent at those moments is not there.
struct Truth {
    ChannelTruth channel;
    std::vector<RasterTruth> raster;
};

Truth truthOf(const Trial& trial, const Course& course);

} // namespace judge
