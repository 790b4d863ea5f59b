#pragma once

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"

#include <cstdint>
#include <vector>

// What a receiver reads where nobody transmits. Levels in hundredths of a dBm, powers in mW.

namespace sdc {

double milliwatts(double level);
double levelOf(double power_mW); ///< above 0

/// What the receiver itself adds to all that it reads: kTB at 290 K and its noise figure.
double noise_mW(const ReceiverData& receiver);

/// What is read of a power; not below the lowest reading.
double readingOf(double power_mW);

/// What is read where nothing else is on the air.
std::int32_t quietReading(const ReceiverData& receiver);

/// The power behind a reading that was taken below saturation, where readings level off.
double power_mW(std::int32_t reading, const ReceiverData& receiver);

/// What receivers have as the standard deviation of one reading, in hundredths of a dB.
inline constexpr double leastScatter = 30.0;
inline constexpr double mostScatter = 100.0;

/// The standard deviation of one reading, in hundredths of a dB: that of the readings from one sweep to the next at the same
/// frequency, or along a sweep of many samples, in the median, so that what comes and goes does not count; within what
/// receivers have. With too few readings, or with all of them at the lowest reading, the most that receivers have.
double scatterOf(const Survey& survey);

/// The part of a carrier's power, 0 to 1, that a filter takes in. The carrier fills a channel as typical ones do: 0.98 of
/// it, with the flanks of a root-raised-cosine transmitter of roll-off 0.2, the steepest that is usual.
double shareOfCarrier(double centre_kHz, double channelWidth_kHz, double tuning_kHz, double filterWidth_kHz);

/// A stretch of the frequency axis.
struct Stretch {
    double low_kHz;
    double high_kHz;

    double width_kHz() const { return high_kHz - low_kHz; }
};

/// A raster channel so many channels above the configured one.
Stretch channelAt(std::int64_t offset, const ScanPlan& plan);

/// What of all else that a scan shows gets into the filter while the receiver stands in a channel.
///
/// A transmitter's mask leaves 25 to 35 dB less than its carrier in the channels beside its own, 45 to 55 dB less in those
/// after them, of a density as flat as the carrier's; most do better. The filter rejects what lies farther away by the
/// receiver's ultimate rejection.
class Leakage {
public:
    /// @param trace  of the whole scan, frequencies ascending
    Leakage(const ReceiverData& receiver, const ScanPlan& plan, const std::vector<SDCResult>& trace);

    /// What the filter lets through of all that stands outside of a channel.
    double rejected_mW(const Stretch& channel) const;

    /// The most that the masks of transmitters beside a channel can put into the filter; nothing where none stands there.
    double mostByMasks_mW(const Stretch& channel) const;

    /// What a filter that reaches over a channel's edges takes in of carriers in the channels beside it, at a tuning in the
    /// channel.
    double mostOverEdges_mW(const Stretch& channel, std::uint32_t tuning_kHz) const;

    /// What is read in an empty channel at a tuning: noise and what is rejected; and the most that can be read there.
    double likelyReading(const Stretch& channel) const;
    double mostReading(const Stretch& channel, std::uint32_t tuning_kHz) const;

private:
    struct Heard {
        double frequency_kHz;
        double power_mW; ///< above the receiver's noise
    };

    double strongest_mW(double low_kHz, double high_kHz) const;

    ReceiverData m_receiver;
    double m_perReading; ///< spectrum that one sample stands for, in widths of the filter
    std::vector<Heard> m_heard;
};

} // namespace sdc
