#pragma once

#include "apps/sdc/result/ScanResult.h"

#include <cstdint>
#include <optional>
#include <string>

namespace sdc {

/// How a sweep went, as far as its ending depends on it.
struct SweepFacts {
    std::string startFailure;                        ///< why it did not start, one line; empty: it did
    std::optional<std::string> workerFailure;        ///< what ended the worker, in the controller's words
    bool isStopped = false;                          ///< by the user
    ESDCStatus status = SDC_STATUS_SCAN_NOT_STARTED; ///< at the end
    terminal::ScanPlan plan;
    std::int64_t taken = 0;           ///< samples
    std::uint32_t configured_kHz = 0; ///< where the receiver belongs
    std::uint32_t rxAfter_kHz = 0;    ///< where it stands
};

struct Verdict {
    Ending ending{};
    std::string reason; ///< of a failure: what happened and where it is seen, one line; empty otherwise
};

Verdict judge(const SweepFacts& facts);

} // namespace sdc
