#pragma once

#include "simulator/radio/Emitters.h"
#include "simulator/radio/Fading.h"
#include "simulator/radio/emitters/Carrier.h"
#include "simulator/radio/emitters/Recording.h"

#include <tuple>
#include <variant>
#include <vector>

namespace simulator {

/// Thermal noise at 290 K that a receiver finds in its filter: -174 dBm per Hz, raised by its noise figure.
double thermalNoise_dBm(double filterWidth_kHz, double noiseFigure_dB);

/// The part of a carrier's power, 0 to 1, that passes a rectangular filter: the exact integral of the carrier's density. Its
/// shoulders are left out.
double shareInFilter(const Carrier& carrier, double tuning_kHz, double filterWidth_kHz);

/// Whether an emitter with the schedule is on.
bool isOn(const Schedule& schedule, double time_ms) noexcept;

/// What a receiver makes of the air.
struct Reception {
    double filterWidth_kHz;
    double noiseFigure_dB;
    double ultimateRejection_dB = 200.0; ///< of what lies outside the filter; 50 to 60 typical
    double saturation_dBm = 60.0;        ///< where the readings level off; about -20 typical
};

/// All emitters and the noise, seen through a receive filter.
///
/// The filter is rectangular, its edges included: channel filters of digital radios are steep against their width, and the
/// power behind it has a closed form. What lies outside leaks in, lower by the ultimate rejection. The whole saturates as
/// P Ps / (P + Ps) does. Readings that are seen again have been through all of it. Immutable, so readable from any thread.
class Air {
public:
    /// The figures must be those of a possible link.
    Air(const std::vector<Emitter>& emitters, const Reception& reception, const Fading& fading = {});

    /// The power behind the filter tuned to a frequency, at a time. Allocates nothing; takes time in proportion to the
    /// number of emitters.
    double rssi_dBm(double tuning_kHz, double time_ms) const noexcept;

private:
    template <typename Spectrum>
    struct Source {
        Spectrum spectrum;
        Schedule schedule;
        bool fades;
    };
    template <typename... Kinds>
    static std::tuple<std::vector<Source<typename Kinds::Spectrum>>...> listsOf(const std::variant<Kinds...>&);
    class Listening;

    double leveledOff_mW(double power_mW) const noexcept;

    decltype(listsOf(Signal())) m_sources; ///< a list for each kind
    std::vector<Source<SeenReadings>> m_readings;
    Fading m_fading;
    double m_halfWidth_kHz;
    double m_noise_mW;
    double m_leak; ///< the part that comes in of what lies outside the filter
    double m_saturation_mW;
};

} // namespace simulator
