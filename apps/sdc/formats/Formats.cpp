#include "apps/sdc/formats/Formats.h"

#include "apps/sdc/plot/Plot.h"

namespace sdc {

namespace {

/// A picture, of the kind that the file's name tells.
void writePicture(std::ostream& stream, const ScanResult& result, const WriteOptions& options)
{
    writePlot(stream, result,
        {.format = plotFormat(options.file).value(), .width = options.width, .isColored = options.isColored});
}

constexpr Format all[] = {
    {"table", "Table, as on the terminal; - is standard output", writeTable},
    {"csv", "CSV, RFC 4180", writeCsv},
    {"json", "JSON: all that is known of the scan", writeJson},
    {"sweep", "Rows as power scanners of receivers write them", writeSweepRows},
    {"plot", "Picture: .svg, .png or .txt; - is text", writePicture, plotNameError},
};

} // namespace

std::span<const Format> formats()
{
    return all;
}

} // namespace sdc
