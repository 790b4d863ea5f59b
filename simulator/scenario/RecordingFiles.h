#pragma once

#include "simulator/radio/emitters/Recording.h"

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace simulator {

/// The recordings of a scenario. Each file is read once, whoever shows it, and all of them together are bounded.
class RecordingFiles {
public:
    using TextOf = std::function<std::string(const std::string& name)>;

    /// @param textOf  finds the text of a recording by its name
    explicit RecordingFiles(TextOf textOf);

    /// Gives a recording its bins, and where they were recorded if it is put nowhere else.
    /// @throws ScenarioError
    void read(Recording& recording);

    static constexpr std::size_t largest_MiB = 32; ///< together

private:
    Recording parse(std::string_view text, const std::string& name);

    TextOf m_textOf;
    std::map<std::string, Recording> m_read; ///< by the name of the file
    std::size_t m_bytes = 0;
    std::size_t m_bins = 0;
};

} // namespace simulator
