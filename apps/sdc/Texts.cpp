#include "apps/sdc/Texts.h"

#include "support/Text.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace sdc {

std::string durationText(std::chrono::milliseconds time)
{
    constexpr std::int64_t minute = 60;
    constexpr std::int64_t hour = 3600;
    const std::int64_t seconds = time.count() / 1000;
    if (seconds < minute) {
        return std::to_string(seconds) + "." + std::to_string(time.count() % 1000 / 100) + " s";
    }
    const std::string hours = seconds >= hour ? std::to_string(seconds / hour) + " h " : "";
    return hours + std::to_string(seconds % hour / minute) + " min " + std::to_string(seconds % minute) + " s";
}

std::chrono::milliseconds wallTime(std::chrono::milliseconds radioTime, double speed)
{
    constexpr double longest_ms = 1e15; // far beyond what anybody waits for
    const double wallTime_ms = speed > 0.0 ? static_cast<double>(radioTime.count()) / speed : 0.0;
    return std::chrono::milliseconds(std::llround(std::min(wallTime_ms, longest_ms)));
}

std::string left(const std::string& text, std::size_t width)
{
    return text.size() < width ? text + std::string(width - text.size(), ' ') : text;
}

std::string counted(std::size_t count, const std::string& what)
{
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string message(const std::string& text, const std::string& before)
{
    constexpr std::size_t longestLine = 1000;
    std::istringstream lines(text);
    std::string messages;
    for (std::string line; std::getline(lines, line);) {
        messages += line.empty() ? "" : before + support::shown(line, longestLine) + "\n";
    }
    return messages;
}

} // namespace sdc
