#pragma once

#include "apps/sdc/results/ScanResult.h"

#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace sdc {

/// A result that cannot be used. what() names the file and, line by line, the place in it as a JSON path, what is wrong and
/// what would be right.
class ResultError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Writes one JSON object, as its schema describes it; the same result is the same text. Texts that are no UTF-8 are
/// mended. What can be computed from the samples (holds, analysis) is written for other readers and not read back.
void writeJson(std::ostream& stream, const ScanResult& result);

/// Reads what writeJson wrote; comments may stand in it.
/// @param file  its name in messages
/// @throws ResultError  for a text that is no result: not of the schema, or at odds with itself
ScanResult parseResult(std::string_view text, const std::string& file);

/// Writes the JSON Schema (draft-07) of results.
void writeResultSchema(std::ostream& stream);

} // namespace sdc
