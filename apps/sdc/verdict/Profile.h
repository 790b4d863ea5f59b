#pragma once

#include "apps/sdc/result/Floor.h"

#include <limits>
#include <vector>

// What the readings across a channel look like, explained as a sum of powers of known shapes.

namespace sdc {

/// A reading across a channel.
struct ProfilePoint {
    double offset_kHz = 0.0; ///< of the tuning from the channel's centre
    double level = 0.0;      ///< hundredths of a dBm
    double deviation = 0.0;  ///< standard deviation, hundredths of a dB
};

using Profile = std::vector<ProfilePoint>;

/// What a shape gives behind the filter at each point of a profile.
struct Shape {
    std::vector<double> shares;                               ///< for a power of 1
    double most_mW = std::numeric_limits<double>::infinity(); ///< it has no more power
};

/// Makes the shapes of emitters as a receive filter shows them at the points of a profile.
class ShapeMaker {
public:
    ShapeMaker(const Profile& profile, double channelWidth_kHz, double filterWidth_kHz);

    Shape flat() const;
    Shape carrier(double centre_kHz, double width_kHz, double rollOff) const;
    Shape partOfCarrier(const CarrierShape& carrier, const Stretch& part) const;
    Shape line(double frequency_kHz) const;
    Shape band(double low_kHz, double high_kHz) const; ///< of one density

    double channelWidth_kHz() const { return m_channelWidth_kHz; }
    double filterWidth_kHz() const { return m_filterWidth_kHz; }

private:
    template <typename Share>
    Shape shapeOf(Share share) const;

    const Profile& m_profile;
    double m_channelWidth_kHz;
    double m_filterWidth_kHz;
};

/// The part of a band of one density, 0 to 1, that a filter takes in.
double shareOfBand(const Stretch& band, double tuning_kHz, double filterWidth_kHz);

/// The best sum of shapes, none of them less than nothing.
struct Fit {
    double misfit = 0.0;              ///< sum of the squares of the deviations, each in standard deviations
    std::vector<double> powers_mW;    ///< of each shape
    std::vector<double> explained_mW; ///< at each point
};

/// What one more shape would take of the misfit of a fit, at most.
double gainOf(const Profile& profile, const Fit& fit, const Shape& shape);

/// @param constant_mW  what is there in any case
Fit fit(const Profile& profile, double constant_mW, const std::vector<Shape>& shapes);

} // namespace sdc
