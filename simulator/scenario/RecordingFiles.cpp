#include "simulator/scenario/RecordingFiles.h"

#include "simulator/scenario/RecordedSweep.h"
#include "simulator/scenario/Scenario.h"
#include "support/Text.h"

#include <fmt/format.h>

#include <filesystem>
#include <utility>

namespace simulator {

RecordingFiles::RecordingFiles(TextOf textOf)
    : m_textOf(std::move(textOf))
{
}

void RecordingFiles::read(Recording& recording)
{
    Recording found;
    if (recording.file) {
        const std::string key = std::filesystem::path(*recording.file).lexically_normal().string();
        const auto known = m_read.find(key);
        found = known != m_read.end()
            ? known->second
            : m_read.emplace(key, parse(m_textOf(*recording.file), support::shown(*recording.file))).first->second;
    } else {
        found = parse(fmt::format("{}", fmt::join(recording.rows, "\n")), "rows");
    }
    recording.bins = found.bins;
    recording.lowest_kHz = recording.lowest_kHz ? recording.lowest_kHz : found.lowest_kHz;
}

Recording RecordingFiles::parse(std::string_view text, const std::string& name)
{
    m_bytes += text.size();
    if (m_bytes > largest_MiB << 20U) {
        throw ScenarioError(name + ": the recordings of the scenario are larger than " + std::to_string(largest_MiB)
            + " MiB together; must be smaller");
    }
    Recording recording = readRecordedSweep(text, name, mostRecordedBins - m_bins);
    m_bins += recording.bins->count();
    return recording;
}

} // namespace simulator
