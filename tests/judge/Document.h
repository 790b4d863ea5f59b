#pragma once

#include "tests/judge/Outcome.h"

#include <string>
#include <vector>

namespace judge {

/// Puts a text in place of what stands in a document between the lines `<!-- judge -->` and `<!-- end of judge -->`.
/// @throws std::runtime_error when the file cannot be read or written, or lacks the lines
void updateDocument(const std::string& file, const std::string& text);

/// Detection against level over the floor, with the false alarms told beside it, of two detectors.
/// @return a picture in SVG
/// @throws std::runtime_error when gnuplot is not there, or fails
std::string picture(const std::vector<Outcome>& outcomes, const std::vector<Outcome>& plain);

} // namespace judge
