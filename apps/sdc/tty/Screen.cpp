#include "apps/sdc/tty/Screen.h"

#include "apps/sdc/options/Options.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace sdc {

std::string_view environment(const char* name)
{
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): nobody changes the environment
    return value == nullptr ? "" : value;
}

namespace {

/// Of a terminal, as the environment tells it.
std::optional<int> sizeIn(const char* name)
{
    constexpr std::uint32_t largest = std::numeric_limits<std::uint16_t>::max();
    const auto size = parseCount(environment(name));
    return size && *size > 0 && *size <= largest ? std::optional(static_cast<int>(*size)) : std::nullopt;
}

} // namespace

bool isTerminal(int file)
{
    return isatty(file) != 0;
}

bool isCapableTerminal(int file)
{
    const std::string_view kind = environment("TERM");
    return isTerminal(file) && !kind.empty() && kind != "dumb";
}

int terminalWidth(int file)
{
    constexpr int usualWidth = 80;
    winsize size{};
    if (ioctl(file, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
        return size.ws_col;
    }
    return sizeIn("COLUMNS").value_or(usualWidth);
}

int terminalHeight(int file)
{
    winsize size{};
    if (ioctl(file, TIOCGWINSZ, &size) == 0 && size.ws_row > 0) {
        return size.ws_row;
    }
    return sizeIn("LINES").value_or(0);
}

bool usesColor(ColorMode mode, int file)
{
    if (mode == ColorMode::automatic) {
        return isCapableTerminal(file) && environment("NO_COLOR").empty();
    }
    return mode == ColorMode::always;
}

/// A descriptor is taken in the wrong direction on purpose: to write to "standard output" then fails.
void holdStandardDescriptors()
{
    for (const int file : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(file, F_GETFD) < 0) {
            open("/dev/null", file == STDIN_FILENO ? O_WRONLY : O_RDONLY); // the lowest number that is free: this one
        }
    }
}

bool isReaderGone(int file)
{
    pollfd watched{.fd = file, .events = POLLOUT, .revents = 0};
    return poll(&watched, 1, 0) > 0 && (watched.revents & POLLERR) != 0;
}

ExitStatus toStandardOutput(const std::function<ExitStatus(std::ostream& output)>& write)
{
    const ExitStatus status = write(std::cout);
    if (std::cout.flush()) {
        return status;
    }
    if (isReaderGone(STDOUT_FILENO)) {
        return EXIT_INTERNAL;
    }
    throw std::runtime_error("cannot write to standard output: it is closed, or the disk is full");
}

} // namespace sdc
