#include "apps/sdc/formats/Formats.h"

#include "apps/sdc/plot/Plot.h"

#include <optional>

namespace sdc {

void writePicture(std::ostream& stream, const ScanResult& result, const WriteOptions& options)
{
    writePlot(stream, result,
        {.format = plotFormat(options.file).value(), .width = options.width, .isColored = options.isColored});
}

} // namespace sdc
