#pragma once

#include "apps/sdc/result/ScanResult.h"

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace sdc {

inline constexpr std::size_t largestResult_MiB = 64; ///< that is read

/// What a result of that size has room for, where each sweep counts as so many samples more.
inline constexpr std::size_t mostSamplesInResult = 500'000;
inline constexpr std::size_t samplesPerSweep = 5;

/// A result that cannot be used. what() names the file and, line by line, the place in it as a JSON path, what is wrong and
/// what would be right.
class ResultError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads a result that `sdc scan --json` wrote; "-" is standard input.
/// @throws ResultError
ScanResult readResult(const std::string& file);

/// Reads the text of such a file; comments may stand in it. What can be computed from the samples (holds, analysis) is not
/// kept.
/// @param file  its name in messages
/// @throws ResultError  for a text that is no result: not of its form, or at odds with itself
ScanResult parseResult(std::string_view text, const std::string& file);

} // namespace sdc
