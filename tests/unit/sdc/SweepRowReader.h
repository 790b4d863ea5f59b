#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace testing_results {

/// A row of the common sweep format, as the pickiest of its readers takes it.
struct CommonRow {
    std::string stamp; ///< date and time
    std::int64_t low_Hz;
    std::int64_t high_Hz;
    std::int64_t step_Hz;
    std::int64_t samples;
    std::vector<double> levels_dBm;
};

/// Reads one row; throws std::runtime_error for whatever any reader stumbles over: a header, a fraction in a frequency or a
/// time, an empty value, a separator other than comma and blank, and numbers that do not belong together.
inline CommonRow readCommonRow(const std::string& line)
{
    static const std::regex shape(
        R"((\d{4}-\d\d-\d\d, \d\d:\d\d:\d\d), (\d+), (\d+), (\d+), (\d+)((?:, (?:-?\d+\.\d\d|nan))+))");
    std::smatch parts;
    if (!std::regex_match(line, parts, shape)) {
        throw std::runtime_error("no row: " + line);
    }
    CommonRow row{parts[1], std::stoll(parts[2]), std::stoll(parts[3]), std::stoll(parts[4]), std::stoll(parts[5]), {}};
    std::istringstream levels(parts[6]);
    for (std::string level; levels >> level;) {
        if (level != ",") {
            row.levels_dBm.push_back(level.starts_with("nan") ? std::numeric_limits<double>::quiet_NaN() : std::stod(level));
        }
    }
    if (row.step_Hz <= 0 || row.high_Hz != row.low_Hz + std::ssize(row.levels_dBm) * row.step_Hz) {
        throw std::runtime_error("levels do not fill the row: " + line);
    }
    return row;
}

/// Reads a file; throws also where a later row is not later in time, or of the same time not higher in frequency.
inline std::vector<CommonRow> readCommonRows(const std::string& text)
{
    std::vector<CommonRow> rows;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        rows.push_back(readCommonRow(line));
        const CommonRow& row = rows.back();
        const bool isLater = rows.size() == 1 || rows[rows.size() - 2].stamp < row.stamp
            || (rows[rows.size() - 2].stamp == row.stamp && rows[rows.size() - 2].low_Hz <= row.low_Hz);
        if (!isLater) {
            throw std::runtime_error("out of order: " + line);
        }
    }
    if (!text.empty() && text.back() != '\n') {
        throw std::runtime_error("the last line does not end");
    }
    return rows;
}

} // namespace testing_results
