#include "simulator/scenario/RecordedSweep.h"

#include "simulator/scenario/Scenario.h"
#include "simulator/scenario/SweepRow.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <stdexcept>

namespace simulator {

namespace {

constexpr std::size_t mostBins = 10'000'000;

double milliwatts(double level_dBm)
{
    return std::pow(10.0, level_dBm / 10.0);
}

/// Where the scanner stood, and the powers it has seen there in all sweeps.
struct Hop {
    double highest_Hz;
    std::size_t line; ///< of its first row
    std::vector<double> sums_mW;
    std::vector<std::uint32_t> counts; ///< number of powers in each sum

    explicit Hop(const SweepRow& row, std::size_t theLine)
        : highest_Hz(row.highest_Hz)
        , line(theLine)
        , sums_mW(row.levels_dBm.size())
        , counts(row.levels_dBm.size())
    {
    }

    void add(const std::vector<double>& levels_dBm)
    {
        for (std::size_t index = 0; index < levels_dBm.size(); ++index) {
            if (!std::isnan(levels_dBm[index])) {
                sums_mW[index] += milliwatts(levels_dBm[index]);
                ++counts[index];
            }
        }
    }

    double level_dBm(std::size_t index) const
    {
        return counts[index] == 0 ? std::numeric_limits<double>::quiet_NaN()
                                  : 10.0 * std::log10(sums_mW[index] / counts[index]);
    }
};

std::string inLine(std::size_t line)
{
    return "line " + std::to_string(line) + ": ";
}

/// Collects rows and joins them.
class Joiner {
public:
    void add(const SweepRow& row, std::size_t line)
    {
        checkStep(row);
        Hop& hop = m_hops.try_emplace(row.lowest_Hz, row, line).first->second;
        if (hop.sums_mW.size() != row.levels_dBm.size()) {
            throw std::runtime_error("has " + std::to_string(row.levels_dBm.size()) + " levels; line "
                + std::to_string(hop.line) + " begins at the same frequency and has " + std::to_string(hop.sums_mW.size()));
        }
        hop.add(row.levels_dBm);
    }

    Recording joined() const
    {
        if (m_hops.empty()) {
            throw std::runtime_error("has no rows; must have at least one");
        }
        Recording recording{m_hops.begin()->first / Hz_per_kHz, 0.0, {}};
        std::vector<double>& levels_dBm = recording.levels_dBm;
        for (auto hop = m_hops.begin(); hop != m_hops.end(); ++hop) {
            const double gap =
                hop == m_hops.begin() ? 0.0 : gapBetween(std::prev(hop)->second, hop->first, hop->second.line);
            checkSize(static_cast<double>(levels_dBm.size() + hop->second.sums_mW.size()) + gap);
            levels_dBm.insert(levels_dBm.end(), static_cast<std::size_t>(gap), std::numeric_limits<double>::quiet_NaN());
            for (std::size_t index = 0; index < hop->second.sums_mW.size(); ++index) {
                levels_dBm.push_back(hop->second.level_dBm(index));
            }
        }
        const double width_Hz = m_hops.rbegin()->second.highest_Hz - m_hops.begin()->first;
        recording.step_kHz = width_Hz / static_cast<double>(recording.levels_dBm.size()) / Hz_per_kHz;
        return recording;
    }

private:
    static constexpr double Hz_per_kHz = 1000.0;

    void checkStep(const SweepRow& row)
    {
        constexpr double rounding_Hz = 0.001;
        constexpr double rounding = 1e-6;
        if (m_hops.empty()) {
            m_step_Hz = row.step_Hz;
        } else if (std::abs(row.step_Hz - m_step_Hz) > rounding_Hz + rounding * m_step_Hz) {
            throw std::runtime_error("has another step than the rows before");
        }
    }

    static void checkSize(double bins)
    {
        if (bins > static_cast<double>(mostBins)) {
            throw std::runtime_error("makes more than 10000000 bins; a recording has that many at most");
        }
    }

    /// Whole bins from the end of one hop to the beginning of the next. Scanners cut frequencies to whole Hz: neighbours may
    /// miss each other by so much.
    double gapBetween(const Hop& below, double lowest_Hz, std::size_t line) const
    {
        constexpr double cut_Hz = 2.0;
        const double gap = (lowest_Hz - below.highest_Hz) / m_step_Hz;
        const double tolerance = std::min(0.01 + cut_Hz / m_step_Hz, 0.25);
        if (gap < -tolerance) {
            throw std::runtime_error(
                inLine(line) + "overlaps line " + std::to_string(below.line) + "; must begin where it ends");
        }
        if (std::abs(gap - std::round(gap)) > tolerance) {
            throw std::runtime_error(
                inLine(line) + "leaves a gap above line " + std::to_string(below.line) + " that is no whole number of bins");
        }
        return std::max(std::round(gap), 0.0);
    }

    double m_step_Hz = 0.0;
    std::map<double, Hop> m_hops; ///< by their lowest frequencies
};

} // namespace

Recording readRecordedSweep(std::istream& stream, const std::string& file)
{
    Joiner joiner;
    std::size_t number = 0;
    for (std::string line; std::getline(stream, line);) {
        ++number;
        try {
            if (const std::optional<SweepRow> row = readSweepRow(line)) {
                joiner.add(*row, number);
            }
        } catch (const std::runtime_error& error) {
            throw ScenarioError(file + ": " + inLine(number) + error.what());
        }
    }
    try {
        return joiner.joined();
    } catch (const std::runtime_error& error) {
        throw ScenarioError(file + ": " + error.what());
    }
}

} // namespace simulator
