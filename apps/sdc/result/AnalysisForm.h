#pragma once

#include "apps/sdc/result/Analysis.h"
#include "apps/sdc/result/Occupancy.h"
#include "apps/sdc/result/Sanity.h"
#include "apps/sdc/result/Survey.h"
#include "apps/sdc/verdict/Verdict.h"
#include "support/Fields.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace sdc {

// What is computed from the samples of a channel, as it stands in a file.

/// Of several sweeps; each list has an item for each frequency. Levels in hundredths of a dBm.
struct HoldsInFile {
    std::vector<std::uint32_t> frequencies_kHz;
    std::vector<std::int32_t> max;
    std::vector<std::int32_t> min;
    std::vector<std::int32_t> average;
};

enum class ThresholdKind : std::uint8_t { dynamic, preSet };

struct OccupancyInFile : OccupancyRule {
    ThresholdKind kind{};
    std::optional<std::int32_t> margin;        ///< of a dynamic threshold, hundredths of a dB
    std::optional<std::int32_t> bandOccupancy; ///< hundredths of a percent
    std::optional<std::int64_t> revisit_ms;
};

struct AnalysisInFile : Analysis {
    TraceKind trace{};
    std::uint32_t samplesLeftOut = edgeSamples;
    OccupancyInFile occupancy{};
};

const support::Record<HoldsInFile>& holdsRecord();
const support::Record<AnalysisInFile>& analysisRecord();
const support::Record<Verdict>& verdictRecord();
const support::Record<Finding>& findingRecord();

} // namespace sdc
