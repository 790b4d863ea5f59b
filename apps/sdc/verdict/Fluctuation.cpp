#include "apps/sdc/verdict/Fluctuation.h"

#include "apps/sdc/result/Floor.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

namespace sdc {

namespace {

constexpr double rainPerSecond = 100.0; ///< hundredths of a dB
constexpr double deepestRain = 2000.0;
constexpr double leastChange = 100.0;

double inSeconds(TimePoint time)
{
    return std::chrono::duration<double>(time.time_since_epoch()).count();
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

std::vector<double> mediansOf(const Readings& readings)
{
    std::vector<double> medians;
    for (std::size_t tuning = 0; tuning < readings.tunings(); ++tuning) {
        std::vector<double> levels;
        for (const std::vector<double>& sweep : readings.levels) {
            levels.push_back(sweep[tuning]);
        }
        medians.push_back(median(std::move(levels)));
    }
    return medians;
}

/// How the readings differ from what is usual at their tunings.
class Differences {
public:
    Differences(const Readings& readings, const std::vector<double>& usual);

    double highestRise() const;
    double deepestFall() const;
    double greatestJump() const;
    double greatestComing() const;

private:
    const Readings& m_readings;
    std::vector<std::vector<double>> m_differences;
    std::vector<double> m_common; ///< of each sweep
};

Differences::Differences(const Readings& readings, const std::vector<double>& usual)
    : m_readings(readings)
{
    for (const std::vector<double>& sweep : readings.levels) {
        std::vector<double> differences;
        for (std::size_t tuning = 0; tuning < usual.size(); ++tuning) {
            differences.push_back(sweep[tuning] - usual[tuning]);
        }
        m_common.push_back(median(differences));
        m_differences.push_back(std::move(differences));
    }
}

double Differences::highestRise() const
{
    double highest = 0.0;
    for (std::size_t sweep = 0; sweep < m_common.size(); ++sweep) {
        highest = std::max(highest, *std::ranges::max_element(m_differences[sweep]) - m_common[sweep]);
    }
    return highest;
}

double Differences::deepestFall() const
{
    double deepest = 0.0;
    for (std::size_t sweep = 0; sweep < m_common.size(); ++sweep) {
        deepest = std::max(deepest, m_common[sweep] - *std::ranges::min_element(m_differences[sweep]));
    }
    return deepest;
}

/// From each reading to the next one taken, also into the next sweep.
double Differences::greatestJump() const
{
    double greatest = 0.0;
    double before = m_differences.front().front();
    double before_s = m_readings.times_s.front().front();
    for (std::size_t sweep = 0; sweep < m_common.size(); ++sweep) {
        for (std::size_t tuning = 0; tuning < m_differences[sweep].size(); ++tuning) {
            const double now = m_differences[sweep][tuning];
            const double now_s = m_readings.times_s[sweep][tuning];
            const double rain = std::min(rainPerSecond * (now_s - before_s), deepestRain);
            greatest = std::max(greatest, std::abs(now - before) - rain);
            before = now;
            before_s = now_s;
        }
    }
    return greatest;
}

double Differences::greatestComing() const
{
    double greatest = 0.0;
    for (std::size_t tuning = 0; tuning < m_readings.tunings(); ++tuning) {
        std::vector<double> lowestAfter(m_common.size() + 1, std::numeric_limits<double>::infinity());
        for (std::size_t sweep = m_common.size(); sweep-- > 0;) {
            lowestAfter[sweep] = std::min(lowestAfter[sweep + 1], m_readings.levels[sweep][tuning]);
        }
        double lowestBefore = m_readings.levels.front()[tuning];
        for (std::size_t sweep = 1; sweep + 1 < m_common.size(); ++sweep) {
            const double level = m_readings.levels[sweep][tuning];
            greatest = std::max(greatest, level - std::max(lowestBefore, lowestAfter[sweep + 1]));
            lowestBefore = std::min(lowestBefore, level);
        }
    }
    return greatest;
}

} // namespace

Readings readingsOf(const std::deque<std::vector<Sample>>& sweeps, const std::function<bool(const Sample&)>& isWanted)
{
    Readings readings;
    std::size_t longest = 0;
    for (const std::vector<Sample>& sweep : sweeps) {
        std::vector<double> levels;
        std::vector<double> times_s;
        for (const Sample& sample : sweep) {
            if (isWanted(sample)) {
                levels.push_back(sample.rssi);
                times_s.push_back(inSeconds(sample.time));
            }
        }
        longest = std::max(longest, levels.size());
        readings.levels.push_back(std::move(levels));
        readings.times_s.push_back(std::move(times_s));
    }
    const auto isShort = [longest](const auto& values) { return values.empty() || values.size() < longest; };
    std::erase_if(readings.levels, isShort);
    std::erase_if(readings.times_s, isShort);
    return readings;
}

Fluctuation fluctuationOf(const Readings& readings, double scatter)
{
    if (readings.sweeps() < 2) {
        return {};
    }
    const double extreme = extremeOf(readings.sweeps() * readings.tunings()) * scatter;
    const double between = leastChange + std::numbers::sqrt2 * extreme;
    const Differences differences(readings, mediansOf(readings));
    return {.rises = differences.highestRise() - leastChange - 1.2 * extreme,
        .falls = differences.deepestFall() - leastChange - 1.2 * extreme,
        .jumps = differences.greatestJump() - between,
        .comes = differences.greatestComing() - between};
}

} // namespace sdc
