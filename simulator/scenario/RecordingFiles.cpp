#include "simulator/scenario/RecordingFiles.h"

#include "simulator/radio/emitters/RecordedBins.h"
#include "simulator/scenario/RecordedSweep.h"
#include "simulator/scenario/Scenario.h"
#include "support/Text.h"

#include <filesystem>
#include <memory>
#include <utility>

namespace simulator {

RecordingFiles::RecordingFiles(TextOf textOf)
    : m_textOf(std::move(textOf))
{
}

const std::shared_ptr<const RecordedBins>& RecordingFiles::bins(const std::string& name)
{
    const std::string key = std::filesystem::path(name).lexically_normal().string();
    const auto known = m_read.find(key);
    return known != m_read.end() ? known->second : m_read.emplace(key, read(name)).first->second;
}

std::shared_ptr<const RecordedBins> RecordingFiles::read(const std::string& name)
{
    const std::string text = m_textOf(name);
    m_bytes += text.size();
    if (m_bytes > largest_MiB << 20U) {
        throw ScenarioError(support::shown(name) + ": the recordings of the scenario are larger than "
            + std::to_string(largest_MiB) + " MiB together; must be smaller");
    }
    std::shared_ptr<const RecordedBins> bins = readRecordedSweep(text, support::shown(name), mostRecordedBins - m_bins).bins;
    m_bins += bins->count();
    return bins;
}

} // namespace simulator
