#include "apps/sdc/result/History.h"

#include "apps/sdc/result/Sanity.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace sdc {

namespace {

bool isLower(const SDCResult& one, const SDCResult& other)
{
    return one.frequency_kHz < other.frequency_kHz;
}

/// One level for each frequency out of those that ascend.
void keepStrongest(std::vector<SDCResult>& levels)
{
    std::size_t count = 0;
    for (const SDCResult& level : levels) {
        if (count > 0 && levels[count - 1].frequency_kHz == level.frequency_kHz) {
            levels[count - 1].rssi = std::max(levels[count - 1].rssi, level.rssi);
        } else {
            levels[count++] = level;
        }
    }
    levels.resize(count);
    levels.shrink_to_fit();
}

std::vector<SDCResult> levelsOf(const Sweep& sweep, const ReceiverData& receiver)
{
    std::vector<SDCResult> levels = levelsIn(sweep, receiver);
    std::ranges::sort(levels, isLower);
    keepStrongest(levels);
    return levels;
}

void raise(std::vector<SDCResult>& levels, const std::vector<SDCResult>& others)
{
    std::vector<SDCResult> all;
    all.reserve(levels.size() + others.size());
    std::ranges::merge(levels, others, std::back_inserter(all), isLower);
    keepStrongest(all);
    levels = std::move(all);
}

} // namespace

void History::add(const Sweep& sweep, const ReceiverData& receiver)
{
    if (!m_rows.empty() && m_sweepsOfTheLast < m_sweepsOfARow) {
        raise(m_rows.back().levels, levelsOf(sweep, receiver));
        ++m_sweepsOfTheLast;
        return;
    }
    if (m_rows.size() == m_mostRows) {
        join();
        add(sweep, receiver);
        return;
    }
    m_rows.push_back({sweep.start, levelsOf(sweep, receiver)});
    m_sweepsOfTheLast = 1;
}

/// All rows are full.
void History::join()
{
    const std::size_t count = m_rows.size();
    for (std::size_t row = 0; row < count; row += 2) {
        if (row + 1 < count) {
            raise(m_rows[row].levels, m_rows[row + 1].levels);
        }
        if (row > 0) {
            m_rows[row / 2] = std::move(m_rows[row]);
        }
    }
    m_sweepsOfTheLast = count % 2 == 0 ? 2 * m_sweepsOfARow : m_sweepsOfARow;
    m_rows.resize((count + 1) / 2);
    m_sweepsOfARow *= 2;
}

} // namespace sdc
