#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace sdc {

/// The lines that a person has typed, in the order typed, kept in a file from one console to the next. Several consoles may
/// share the file.
class LineHistory {
public:
    static constexpr std::size_t mostLines = 1000;
    static constexpr std::size_t longestLine = 1000; ///< bytes; longer ones are not kept

    /// @param file  only its owner can read it, once it is written; nothing: lines are kept for as long as this lives.
    ///              What cannot be read is no history
    explicit LineHistory(std::optional<std::filesystem::path> file);

    const std::vector<std::string>& lines() const { return m_lines; }

    /// Keeps a line, at once; not one that is empty, or the same as the last. Returns whether it is kept.
    bool add(const std::string& line);

    /// Why the file does not have all lines that were added; empty while it has.
    const std::string& failure() const { return m_failure; }

private:
    void load();
    void rewrite() const;
    void append(const std::string& line);

    std::optional<std::filesystem::path> m_file;
    std::vector<std::string> m_lines;
    std::string m_failure;
};

/// In the user's folder for state: $XDG_STATE_HOME/sdc/history, or else ~/.local/state/sdc/history. Nothing where neither is
/// known.
std::optional<std::filesystem::path> historyFile();

} // namespace sdc
