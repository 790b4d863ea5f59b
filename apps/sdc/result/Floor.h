#pragma once

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "apps/sdc/result/ReceiverData.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"

#include <cstddef>
#include <cstdint>
#include <optional>
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
double power_mW(double reading, const ReceiverData& receiver);

/// What receivers have as the standard deviation of one reading, in hundredths of a dB.
inline constexpr double leastScatter = 30.0;
inline constexpr double mostScatter = 100.0;

/// The standard deviation of one reading, in hundredths of a dB: that of the readings from one sweep to the next at the same
/// frequency, or along a sweep of many samples, in the median, so that what comes and goes does not count; within what
/// receivers have. With too few readings, or with all of them at the lowest reading, the most that receivers have.
double scatterOf(const Survey& survey);

/// A stretch of the frequency axis.
struct Stretch {
    double low_kHz;
    double high_kHz;

    double width_kHz() const { return high_kHz - low_kHz; }
};

/// A modulated carrier as it stands in a channel: it fills 0.98 of it, with the flanks of a root-raised-cosine transmitter.
struct CarrierShape {
    double centre_kHz;
    double channelWidth_kHz;
    double rollOff;
};

// Of those that are usual the steepest flanks, and the flattest.
inline constexpr double leastRollOff = 0.2;
inline constexpr double mostRollOff = 0.35;

/// The part of a carrier's power, 0 to 1, that lies between two frequencies, or that a filter takes in.
double shareOfCarrier(const CarrierShape& carrier, const Stretch& stretch);
double shareOfCarrier(const CarrierShape& carrier, double tuning_kHz, double filterWidth_kHz);

/// How many standard deviations the highest of so many readings of one level lies above it, in one case of two thousand.
double extremeOf(std::size_t readings);

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

    /// The most that the masks of transmitters beside a channel can put into the filter, as far as what is read on the other
    /// side of them allows it; nothing where none stands there.
    double mostByMasks_mW(const Stretch& channel) const;

private:
    struct Heard {
        double frequency_kHz;
        double power_mW; ///< above the receiver's noise
    };

    std::optional<double> heardAt_mW(double centre_kHz) const;

    ReceiverData m_receiver;
    double m_spacing_kHz;
    double m_perReading; ///< spectrum that one sample stands for, in widths of the filter
    std::vector<Heard> m_heard;
};

} // namespace sdc
