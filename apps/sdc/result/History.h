#pragma once

#include "apps/sdc/result/ReceiverData.h"
#include "apps/sdc/result/Sweep.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"

#include <cstddef>
#include <limits>
#include <vector>

namespace sdc {

/// The strongest levels of sweeps in the order of time, in memory that does not grow with their number: where there would be
/// too many rows, each takes in the one behind it.
class History {
public:
    /// As many as a picture of the usual size has room for.
    static constexpr std::size_t usualRows = 512;
    static constexpr std::size_t noLimit = std::numeric_limits<std::size_t>::max();

    struct Row {
        TimePoint start;               ///< of its first sweep
        std::vector<SDCResult> levels; ///< the strongest at each frequency, ascending
    };

    /// @param mostRows  at least 2
    explicit History(std::size_t mostRows = usualRows)
        : m_mostRows(mostRows)
    {
    }

    void add(const Sweep& sweep, const ReceiverData& receiver);

    const std::vector<Row>& rows() const { return m_rows; }

    /// Each row stands for so many; the last one may have fewer.
    std::size_t sweepsOfARow() const { return m_sweepsOfARow; }

private:
    void join();

    std::size_t m_mostRows;
    std::size_t m_sweepsOfARow = 1;
    std::size_t m_sweepsOfTheLast = 0;
    std::vector<Row> m_rows;
};

} // namespace sdc
