#pragma once

#include "apps/sdc/result/ScanResult.h"
#include "support/Fields.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sdc {

// What `sdc plan --json` writes.

/// What one scan of a channel would do, or why the controller cannot plan it.
struct PlannedScan {
    std::optional<std::string> refusal;
    std::optional<ScanPlan> plan;
    std::optional<std::int64_t> radioTime_ms; ///< the sum of the settle delays
    std::optional<std::int64_t> wallTime_ms;  ///< what they take at the speed asked for
};

struct PlannedScans {
    PlannedScan channelScan;
    PlannedScan subBandScan;
};

struct ChannelPlans {
    std::uint32_t channel = 0;
    std::string unitTypeText;
    PlannedScans scans;
};

struct PlanDocument {
    std::uint32_t schemaVersion = 1;
    std::string scenario;
    std::string description;
    std::vector<ChannelPlans> channels;
};

/// The keys of such a document.
const support::Record<PlanDocument>& planDocumentRecord();

} // namespace sdc
