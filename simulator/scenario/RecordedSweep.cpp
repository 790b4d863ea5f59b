#include "simulator/scenario/RecordedSweep.h"

#include "simulator/radio/Band.h"
#include "simulator/radio/emitters/RecordedBins.h"
#include "simulator/radio/emitters/Recording.h"
#include "simulator/scenario/Scenario.h"
#include "simulator/scenario/SweepRow.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

namespace simulator {

namespace {

/// Nothing where no level is known.
double seen_mW(double level_dBm)
{
    return std::isnan(level_dBm) ? 0.0 : milliwatts(level_dBm);
}

/// Where the scanner stood, and the powers it has seen there in all sweeps.
class Hop {
public:
    Hop(SweepRow row, std::size_t line)
        : m_highest_Hz(row.highest_Hz)
        , m_line(line)
        , m_powers_mW(std::move(row.levels_dBm))
    {
        std::ranges::transform(m_powers_mW, m_powers_mW.begin(), seen_mW);
    }

    double highest_Hz() const { return m_highest_Hz; }
    std::size_t line() const { return m_line; } ///< of its first row
    std::size_t bins() const { return m_powers_mW.size(); }

    /// The same hop of a later sweep.
    void add(const std::vector<double>& levels_dBm)
    {
        if (m_counts.empty()) {
            std::ranges::transform(
                m_powers_mW, std::back_inserter(m_counts), [](double power_mW) { return power_mW > 0.0 ? 1U : 0U; });
        }
        for (std::size_t index = 0; index < levels_dBm.size(); ++index) {
            m_powers_mW[index] += seen_mW(levels_dBm[index]);
            m_counts[index] += std::isnan(levels_dBm[index]) ? 0U : 1U;
        }
    }

    /// The mean of what the sweeps saw, where they saw anything.
    std::vector<double> takePowers_mW()
    {
        for (std::size_t index = 0; index < m_counts.size(); ++index) {
            m_powers_mW[index] /= std::max(m_counts[index], std::uint32_t{1});
        }
        m_counts = {};
        return std::move(m_powers_mW);
    }

private:
    double m_highest_Hz;
    std::size_t m_line;
    std::vector<double> m_powers_mW;     ///< of all sweeps together
    std::vector<std::uint32_t> m_counts; ///< number of powers in each sum; empty: there was one sweep
};

std::string inLine(std::size_t line)
{
    return "line " + std::to_string(line) + ": ";
}

/// Collects rows and joins them.
class Joiner {
public:
    explicit Joiner(std::size_t mostBins)
        : m_mostBins(mostBins)
    {
    }

    void add(SweepRow row, std::size_t line)
    {
        checkStep(row);
        const auto hop = m_hops.find(row.lowest_Hz);
        if (hop == m_hops.end()) {
            addHop(std::move(row), line);
        } else if (hop->second.bins() != row.levels_dBm.size()) {
            throw std::runtime_error("has " + std::to_string(row.levels_dBm.size()) + " levels; line "
                + std::to_string(hop->second.line()) + " begins at the same frequency and has "
                + std::to_string(hop->second.bins()));
        } else {
            hop->second.add(row.levels_dBm);
        }
    }

    /// Takes what was collected.
    Recording join()
    {
        if (m_hops.empty()) {
            throw std::runtime_error("has no rows; must have at least one");
        }
        const double lowest_Hz = m_hops.begin()->first;
        const double width_Hz = m_hops.rbegin()->second.highest_Hz() - lowest_Hz;
        std::vector<RecordedBins::Stretch> stretches;
        double end = 0.0; // bins so far, gaps included
        for (auto hop = m_hops.begin(); hop != m_hops.end(); ++hop) {
            const double gap = hop == m_hops.begin() ? 0.0 : gapBelow(*hop, std::prev(hop)->second);
            if (hop == m_hops.begin() || gap > 0.0) {
                stretches.push_back({end + gap, {}});
            }
            end += gap + static_cast<double>(hop->second.bins());
            append(hop->second.takePowers_mW(), stretches.back().powers_mW);
        }
        const double step_kHz = width_Hz / end / Hz_per_kHz;
        return {lowest_Hz / Hz_per_kHz, std::make_shared<RecordedBins>(step_kHz, std::move(stretches))};
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

    void addHop(SweepRow&& row, std::size_t line)
    {
        m_bins += row.levels_dBm.size();
        if (m_bins > m_mostBins) {
            throw TooManyBins();
        }
        const double lowest_Hz = row.lowest_Hz;
        m_hops.try_emplace(lowest_Hz, std::move(row), line);
    }

    static void append(std::vector<double> powers_mW, std::vector<double>& stretch_mW)
    {
        if (stretch_mW.empty()) {
            stretch_mW = std::move(powers_mW);
        } else {
            stretch_mW.insert(stretch_mW.end(), powers_mW.begin(), powers_mW.end());
        }
    }

    /// Whole bins from the end of one hop to the beginning of the next. Scanners cut frequencies to whole Hz: neighbours may
    /// miss each other by so much.
    double gapBelow(const std::pair<const double, Hop>& hop, const Hop& below) const
    {
        constexpr double cut_Hz = 2.0;
        const double gap = (hop.first - below.highest_Hz()) / m_step_Hz;
        const double tolerance = std::min(0.01 + cut_Hz / m_step_Hz, 0.25);
        if (gap < -tolerance) {
            throw std::runtime_error(
                inLine(hop.second.line()) + "overlaps line " + std::to_string(below.line()) + "; must begin where it ends");
        }
        if (std::abs(gap - std::round(gap)) > tolerance) {
            throw std::runtime_error(inLine(hop.second.line()) + "leaves a gap above line " + std::to_string(below.line())
                + " that is no whole number of bins");
        }
        return std::max(std::round(gap), 0.0);
    }

    const std::size_t m_mostBins;
    std::size_t m_bins = 0;
    double m_step_Hz = 0.0;
    std::map<double, Hop> m_hops; ///< by their lowest frequencies
};

} // namespace

Recording readRecordedSweep(std::string_view text, const std::string& file, std::size_t mostBins)
{
    Joiner joiner(mostBins);
    std::size_t number = 0;
    for (std::size_t begin = 0, end = 0; begin < text.size(); begin = end + 1) {
        end = std::min(text.find('\n', begin), text.size());
        ++number;
        try {
            if (std::optional<SweepRow> row = readSweepRow(text.substr(begin, end - begin), mostBins)) {
                joiner.add(*std::move(row), number);
            }
        } catch (const std::runtime_error& error) {
            throw ScenarioError(file + ": " + inLine(number) + error.what());
        }
    }
    try {
        return joiner.join();
    } catch (const std::runtime_error& error) {
        throw ScenarioError(file + ": " + error.what());
    }
}

} // namespace simulator
