#include "apps/sdc/verdict/Profile.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace sdc {

namespace {

/// In which a deviation of a level is told as one of its power.
constexpr double relativePerLevel = std::numbers::ln10 / 1000.0;

/// Of a deviation in power: so many standard deviations each mW is.
double weightOf(const ProfilePoint& point)
{
    return 1.0 / (milliwatts(point.level) * point.deviation * relativePerLevel);
}

/// A sum of shapes that comes nearer to a profile step by step: one shape after the other gets the power that is best for
/// it.
class Fitting {
public:
    Fitting(const Profile& profile, double constant_mW, const std::vector<Shape>& shapes);

    Fit run();

private:
    double improve();
    double improve(std::size_t shape);

    const Profile& m_profile;
    const std::vector<Shape>& m_shapes;
    std::vector<double> m_weights;
    std::vector<double> m_rest_mW; ///< what is not explained
    std::vector<double> m_powers_mW;
};

Fitting::Fitting(const Profile& profile, double constant_mW, const std::vector<Shape>& shapes)
    : m_profile(profile)
    , m_shapes(shapes)
    , m_powers_mW(shapes.size(), 0.0)
{
    for (const ProfilePoint& point : profile) {
        m_weights.push_back(weightOf(point));
        m_rest_mW.push_back(milliwatts(point.level) - constant_mW);
    }
}

double Fitting::improve(std::size_t shape)
{
    double matched = 0.0;
    double whole = 0.0;
    for (std::size_t index = 0; index < m_rest_mW.size(); ++index) {
        const double weighted = m_shapes[shape].shares[index] * m_weights[index];
        matched += weighted * m_rest_mW[index] * m_weights[index];
        whole += weighted * weighted;
    }
    if (whole == 0.0) {
        return 0.0;
    }
    const double change_mW = std::clamp(matched / whole, -m_powers_mW[shape], m_shapes[shape].most_mW - m_powers_mW[shape]);
    m_powers_mW[shape] += change_mW;
    for (std::size_t index = 0; index < m_rest_mW.size(); ++index) {
        m_rest_mW[index] -= change_mW * m_shapes[shape].shares[index];
    }
    return change_mW * change_mW * whole;
}

/// By how much the misfit falls, at most.
double Fitting::improve()
{
    double gained = 0.0;
    for (std::size_t shape = 0; shape < m_shapes.size(); ++shape) {
        gained += improve(shape);
    }
    return gained;
}

Fit Fitting::run()
{
    constexpr int mostRounds = 300;
    constexpr double notWorthIt = 0.01;
    for (int round = 0; round < mostRounds && improve() > notWorthIt; ++round) {
    }
    Fit fit{.powers_mW = m_powers_mW, .explained_mW = {}};
    for (std::size_t index = 0; index < m_profile.size(); ++index) {
        const double deviation = m_rest_mW[index] * m_weights[index];
        fit.misfit += deviation * deviation;
        fit.explained_mW.push_back(milliwatts(m_profile[index].level) - m_rest_mW[index]);
    }
    return fit;
}

} // namespace

ShapeMaker::ShapeMaker(const Profile& profile, double channelWidth_kHz, double filterWidth_kHz)
    : m_profile(profile)
    , m_channelWidth_kHz(channelWidth_kHz)
    , m_filterWidth_kHz(filterWidth_kHz)
{
}

template <typename Share>
Shape ShapeMaker::shapeOf(Share share) const
{
    Shape shape;
    for (const ProfilePoint& point : m_profile) {
        shape.shares.push_back(share(point.offset_kHz));
    }
    return shape;
}

Shape ShapeMaker::flat() const
{
    return shapeOf([](double) { return 1.0; });
}

Shape ShapeMaker::carrier(double centre_kHz, double width_kHz, double rollOff) const
{
    return shapeOf([&](double tuning_kHz) {
        return shareOfCarrier({centre_kHz, width_kHz, rollOff}, tuning_kHz, m_filterWidth_kHz);
    });
}

Shape ShapeMaker::partOfCarrier(const CarrierShape& carrier, const Stretch& part) const
{
    return shapeOf([&](double tuning_kHz) {
        const double low_kHz = std::max(part.low_kHz, tuning_kHz - m_filterWidth_kHz / 2.0);
        const double high_kHz = std::min(part.high_kHz, tuning_kHz + m_filterWidth_kHz / 2.0);
        return high_kHz > low_kHz ? shareOfCarrier(carrier, {low_kHz, high_kHz}) : 0.0;
    });
}

Shape ShapeMaker::line(double frequency_kHz) const
{
    return shapeOf(
        [&](double tuning_kHz) { return std::abs(tuning_kHz - frequency_kHz) <= m_filterWidth_kHz / 2.0 ? 1.0 : 0.0; });
}

Shape ShapeMaker::band(double low_kHz, double high_kHz) const
{
    return shapeOf([&](double tuning_kHz) { return shareOfBand({low_kHz, high_kHz}, tuning_kHz, m_filterWidth_kHz); });
}

double shareOfBand(const Stretch& band, double tuning_kHz, double filterWidth_kHz)
{
    const double from_kHz = std::max(band.low_kHz, tuning_kHz - filterWidth_kHz / 2.0);
    const double to_kHz = std::min(band.high_kHz, tuning_kHz + filterWidth_kHz / 2.0);
    return std::max(to_kHz - from_kHz, 0.0) / band.width_kHz();
}

Fit fit(const Profile& profile, double constant_mW, const std::vector<Shape>& shapes)
{
    return Fitting(profile, constant_mW, shapes).run();
}

double gainOf(const Profile& profile, const Fit& fit, const Shape& shape)
{
    double matched = 0.0;
    double whole = 0.0;
    for (std::size_t index = 0; index < profile.size(); ++index) {
        const double weight = weightOf(profile[index]);
        const double weighted = shape.shares[index] * weight;
        matched += weighted * (milliwatts(profile[index].level) - fit.explained_mW[index]) * weight;
        whole += weighted * weighted;
    }
    return whole > 0.0 && matched > 0.0 ? matched * matched / whole : 0.0;
}

} // namespace sdc
