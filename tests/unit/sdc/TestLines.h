#pragma once

#include "apps/sdc/formats/LiveFormat.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/scan/Channels.h"
#include "apps/sdc/scan/Session.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace testing_results {

/// Keeps lines.
class KeptLines : public sdc::Lines {
public:
    void head(std::string_view lines) override { before += lines; }
    void put(std::string_view lines) override { text += lines; }

    std::string before; ///< the head
    std::string text;
};

using MakeLive = std::unique_ptr<sdc::LiveFormat> (*)(const sdc::ScanResult&, std::vector<sdc::Lines*>);

/// What a format makes of a result in so many files.
inline std::vector<KeptLines> linesOf(MakeLive make, const sdc::ScanResult& result, std::size_t files = 1)
{
    std::vector<KeptLines> kept(files);
    std::vector<sdc::Lines*> lines;
    for (KeptLines& file : kept) {
        lines.push_back(&file);
    }
    sdc::replay(result, *make(result, lines));
    return kept;
}

} // namespace testing_results
