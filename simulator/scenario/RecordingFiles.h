#pragma once

#include "simulator/radio/emitters/RecordedBins.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>

namespace simulator {

/// The recordings that a scenario names. Each is read once, whoever shows it, and all of them together are bounded.
class RecordingFiles {
public:
    using TextOf = std::function<std::string(const std::string& name)>;

    /// @param textOf  finds the text of a recording by its name
    explicit RecordingFiles(TextOf textOf);

    /// @throws ScenarioError
    const std::shared_ptr<const RecordedBins>& bins(const std::string& name);

    static constexpr std::size_t largest_MiB = 32; ///< together

private:
    std::shared_ptr<const RecordedBins> read(const std::string& name);

    TextOf m_textOf;
    std::map<std::string, std::shared_ptr<const RecordedBins>> m_read; ///< by name
    std::size_t m_bytes = 0;
    std::size_t m_bins = 0;
};

} // namespace simulator
