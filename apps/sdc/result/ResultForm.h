#pragma once

#include "apps/sdc/result/AnalysisForm.h"
#include "apps/sdc/result/ReceiverData.h"
#include "apps/sdc/result/Sanity.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/verdict/Verdict.h"
#include "support/Fields.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sdc {

// A result as it stands in a file: with what can be computed from it, for other readers.

struct SampleInFile : Sample {
    std::vector<SampleFlag> flags;
};

struct SweepInFile : Sweep {
    std::vector<SampleInFile> readings;     ///< its samples
    std::optional<std::string> givenReason; ///< of a failure
    std::int32_t planned = 0;               ///< samples
    std::uint32_t taken = 0;
};

struct ChannelInFile {
    std::uint32_t channel = 0;
    std::string unitTypeText;
    ReceiverData receiver;
    ScanPlan plan;
    std::vector<SweepInFile> sweeps;
    std::optional<HoldsInFile> holds;
    std::vector<Finding> findings;
    AnalysisInFile analysis;
    Verdict verdict;
};

struct ResultInFile {
    std::uint32_t schemaVersion = 2;
    std::string scenario;
    std::string description;
    ScanKind kind{};
    FarEnd farEnd{};
    Provenance provenance;
    std::vector<ChannelInFile> channels;
};

/// What a sweep is going to do, as it stands there and wherever a plan is written as JSON.
const support::Record<ScanPlan>& stepsRecord();

// What is told of a scan in the same way wherever it is told as JSON.
const support::Record<ScanPlan>& planRecord();
const support::Record<ReceiverData>& receiverRecord();
const support::Record<Provenance>& provenanceRecord();

/// The keys of such a file, and what must hold among their values.
const support::Record<ResultInFile>& resultRecord();

} // namespace sdc
