#include "apps/sdc/formats/Formats.h"

#include "apps/sdc/plot/Plot.h"

#include <optional>

namespace sdc {

namespace {

PlotOptions plotOptions(const WriteOptions& options)
{
    return {.format = plotFormat(options.file).value(),
        .width = options.width,
        .terminalLines = options.height,
        .isColored = options.isColored,
        .trace = options.trace};
}

} // namespace

void writePicture(std::ostream& stream, const ScanResult& result, const WriteOptions& options)
{
    writePlot(stream, result, plotOptions(options));
}

void writeWaterfallPicture(std::ostream& stream, const ScanResult& result, const WriteOptions& options)
{
    writeWaterfall(stream, result, plotOptions(options));
}

} // namespace sdc
