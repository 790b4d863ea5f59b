#pragma once

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "apps/sdc/result/ReceiverData.h"
#include "terminal/ScanPlan.h"

#include <cstdint>
#include <vector>

namespace sdc {

/// What a receiver reads at the samples of a trace where nobody transmits: its own noise, and what its filter lets through
/// of all that the trace shows elsewhere. Levels in hundredths of a dBm.
class Background {
public:
    /// What the trace of one sweep, or of the average of several, tells. All that leaks in is taken to be there all the
    /// time: then there is no more of it anywhere than the lowest level tells.
    Background(const std::vector<SDCResult>& trace, const terminal::ScanPlan& plan, const ReceiverData& receiver);

    /// The same where there is more on the air now and then, so that there is no such limit.
    /// @param onAir_mW  at most
    Background sometimes(double onAir_mW) const;

    /// The part of the way, in dB, from the level of a sample to that of the next that a slow receiver may still be away
    /// from it: of the slowest receivers, or less where a deep fall from one sample to the next shows it.
    double lag() const { return m_lag; }

    /// At a sample that has this level, with all that may be on the air: more than was read where the receiver is slow, and
    /// where a sample stands for more than its filter takes in.
    double under(std::int32_t level) const { return withLeakOf(m_onAir_mW, level); }

    /// The same with no more on the air than was read.
    double atLeastUnder(std::int32_t level) const { return withLeakOf(m_leastOnAir_mW, level); }

    /// Of the receiver alone.
    double noise() const;

    /// All power on the air that the trace shows, in mW.
    double onAir_mW() const { return m_onAir_mW; }

private:
    double heard_mW(double level) const;
    double withLeakOf(double onAir_mW, std::int32_t level) const;
    double lagIn(const std::vector<SDCResult>& trace, const terminal::ScanPlan& plan) const;
    double onAir_mW(const std::vector<SDCResult>& trace) const;

    ReceiverData m_receiver;
    double m_perSample; ///< spectrum that a sample stands for, in widths of the filter
    double m_onAir_mW = 0.0;
    double m_leastOnAir_mW = 0.0;
    double m_mostLeak_mW;
    double m_lag = 0.0;
};

} // namespace sdc
