#pragma once

#include "apps/sdc/results/Plot.h"
#include "support/Text.h"

#include <filesystem>
#include <optional>
#include <string>

namespace sdc {

/// The kind of picture that goes into a file, by the ending of its name; text for standard output ("-"). Nothing where the
/// name tells none.
inline std::optional<PlotFormat> plotFormat(const std::string& file)
{
    const std::string ending = std::filesystem::path(file).extension();
    if (file == "-" || ending == ".txt") {
        return PlotFormat::text;
    }
    if (ending == ".svg" || ending == ".png") {
        return ending == ".svg" ? PlotFormat::svg : PlotFormat::png;
    }
    return std::nullopt;
}

/// What is said where it tells none.
inline std::string plotNameComplaint(const std::string& file)
{
    return "'" + support::shown(file) + "' tells no kind of picture: let it end in .svg, .png or .txt";
}

} // namespace sdc
