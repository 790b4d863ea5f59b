#include "apps/sdc/CompareCommand.h"

#include "apps/sdc/ResultFile.h"
#include "apps/sdc/results/Compare.h"
#include "apps/sdc/results/ResultJson.h"
#include "support/Text.h"

#include <stdexcept>

namespace sdc {

ExitStatus compare(const CompareOptions& options, std::ostream& output)
{
    const ScanResult before = readResult(options.before);
    const ScanResult after = readResult(options.after);
    try {
        writeComparison(output, before, after, options.threshold_dB);
    } catch (const std::runtime_error& cannot) {
        throw ResultError(support::shown(options.before) + " and " + support::shown(options.after) + ": " + cannot.what());
    }
    return EXIT_COMPLETE;
}

} // namespace sdc
