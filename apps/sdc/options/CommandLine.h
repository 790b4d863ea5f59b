#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace sdc {

/// What the program reports to its caller.
enum ExitStatus : int {
    EXIT_COMPLETE = 0,
    EXIT_INTERNAL = 1,
    EXIT_USAGE = 2,
    EXIT_FAILED = 3,        ///< a scan could not be started, was aborted, or left the receiver off its frequency
    EXIT_STOPPED = 4,       ///< by Ctrl-C, TERM or HUP
    EXIT_INTERRUPTED = 130, ///< as a shell reports a program that SIGINT has ended

    // Of a comparison, as diff has it.
    EXIT_SAME = 0,
    EXIT_DIFFERENT = 1,
    EXIT_TROUBLE = 2,
};

struct ExitStatusText {
    ExitStatus status;
    std::string_view text;
};

inline constexpr ExitStatusText exitStatusTexts[] = {
    {EXIT_COMPLETE, "complete"},
    {EXIT_INTERNAL, "internal or output error"},
    {EXIT_USAGE, "usage or bad scenario"},
    {EXIT_FAILED, "scan failed"},
    {EXIT_STOPPED, "stopped"},
    {EXIT_INTERRUPTED, "left by a second Ctrl-C (129 by HUP, 143 by TERM)"},
};
inline constexpr ExitStatusText compareStatusTexts[] = {
    {EXIT_SAME, "same"},
    {EXIT_DIFFERENT, "different"},
    {EXIT_TROUBLE, "trouble"},
};

/// Arguments that cannot be acted upon. what() says what was wrong and what would be right.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What the arguments ask for. Call it once.
using Command = std::function<ExitStatus()>;

/// The arguments, as they were read.
const std::vector<std::string>& givenArguments();

/// Reads the arguments.
/// @throws UsageError
Command readCommandLine(int count, const char* const* arguments);

} // namespace sdc
