#pragma once

#include "apps/sdc/console/Signals.h"

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>

namespace sdc {

inline constexpr const char* prompt = "sdc> ";
inline constexpr std::size_t longestLine = 4096; ///< bytes; of a longer one no more than its beginning is read

/// Where a console's lines come from.
class LineSource {
public:
    virtual ~LineSource() = default;

    /// The next line, without its end; nothing at the end of the input, or when the program is to end.
    virtual std::optional<std::string> next() = 0;

    /// Whether a person types them, and so has seen each.
    virtual bool isTyped() const { return false; }

    /// Whether whoever waits for something else is to come back for the next line. Each Ctrl-C is told once.
    virtual bool isInterrupted() { return false; }

    /// Whether there is no next line because the program is to end.
    virtual bool isEndWanted() const { return false; }
};

/// Lines of a script, or of a terminal that edits them itself.
class PlainLines : public LineSource {
public:
    /// @param file    a descriptor
    /// @param prompts  where the prompt goes; null: nobody types
    PlainLines(int file, Signals& signals, std::ostream* prompts);

    /// @throws std::runtime_error where the input cannot be read
    std::optional<std::string> next() override;
    bool isTyped() const override { return m_prompts != nullptr; }
    bool isInterrupted() override { return m_signals.isInterrupted(); }
    bool isEndWanted() const override { return m_signals.isEndWanted(); }

private:
    void showPrompt();
    void heedSignals();
    void read();
    void bound();
    std::string takeLine(std::size_t end);

    int m_file;
    Signals& m_signals;
    std::ostream* m_prompts;
    std::string m_read;       ///< not yet taken
    std::size_t m_looked = 0; ///< so much of it holds no end of a line
    bool m_isOver = false;
};

} // namespace sdc
