#pragma once

#include "apps/sdc/options/CommandLine.h"

#include <cstdint>
#include <functional>
#include <ostream>
#include <string_view>

namespace sdc {

/// When to print in colour.
enum class ColorMode : std::uint8_t { automatic, always, never };

/// What a variable of the environment says; nothing where it is not set.
std::string_view environment(const char* name);

/// Whether a person looks at a file descriptor.
bool isTerminal(int file);

/// Whether a terminal stands behind a file descriptor that can write over a line: TERM is set, and not to "dumb".
bool isCapableTerminal(int file);

/// Columns of the terminal: as the terminal says, or else the environment variable COLUMNS, or else 80.
int terminalWidth(int file);

/// Lines of the terminal, where it tells; otherwise the environment variable LINES; 0 where neither does.
int terminalHeight(int file);

/// Whether to print in colour to a file descriptor. Automatic: on a capable terminal, unless NO_COLOR is set to some text.
bool usesColor(ColorMode mode, int file);

/// Makes sure that the three standard descriptors are open, so that no file that is opened later takes the number of one of
/// them: what a closed one is used for fails as before.
void holdStandardDescriptors();

/// Whether the reader of a pipe has gone.
bool isReaderGone(int file);

/// Lets a command write to standard output and sees that all arrives. A reader that has had enough, such as `head`, ends the
/// command without a word.
/// @return what the command returns; EXIT_INTERNAL when the reader went away before the end
/// @throws std::runtime_error when it cannot be written
ExitStatus toStandardOutput(const std::function<ExitStatus(std::ostream& output)>& write);

} // namespace sdc
