#include "tests/judge/Document.h"

#include "apps/sdc/plot/Gnuplot.h"
#include "apps/sdc/result/ScanResult.h"
#include "tests/judge/Goals.h"
#include "tests/judge/truth/ChannelTruth.h"

#include <fmt/format.h>

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <functional>
#include <iterator>
#include <stdexcept>
#include <string_view>

namespace judge {

namespace {

using sdc::FarEnd;
using Outcomes = std::vector<Outcome>;

constexpr std::int32_t binWidth = 250; ///< hundredths of a dB
constexpr std::int32_t bins = 14;
constexpr std::size_t leastOfABin = 10; ///< fewer links say nothing

struct Curve {
    std::string name;
    const Outcomes& outcomes;
    FarEnd told;
    std::function<bool(const ChannelTruth&)> belongs;
};

/// A line for each bin: its middle, and the detection in it.
std::string points(const Curve& curve)
{
    std::string lines;
    for (std::int32_t bin = 0; bin < bins; ++bin) {
        const auto belongs = [&](const Outcome& one) {
            const ChannelTruth& truth = one.truth.channel;
            return one.told == curve.told && one.which == Case::disturbed && !isExcused(one) && curve.belongs(truth)
                && truth.over / binWidth == bin;
        };
        const Share share = shareOf(curve.outcomes, OfLinks{belongs, isAlarm});
        if (share.all >= leastOfABin) {
            lines += fmt::format("{} {:.3f}\n", (bin + 0.5) * binWidth / 100.0, share.percent());
        }
    }
    return lines;
}

std::string title(const Curve& curve)
{
    const auto belongs = [&](const Outcome& one) {
        return one.told == curve.told && (one.which == Case::clean || one.which == Case::raised);
    };
    const Share alarms = shareOf(curve.outcomes, OfLinks{belongs, isAlarm});
    return fmt::format("{}; false alarms {:.2f} %", curve.name, alarms.percent());
}

} // namespace

void updateDocument(const std::string& file, const std::string& text)
{
    std::ifstream before(file);
    const std::string document((std::istreambuf_iterator<char>(before)), std::istreambuf_iterator<char>());
    constexpr std::string_view beginning = "<!-- judge -->\n";
    constexpr std::string_view end = "<!-- end of judge -->\n";
    const std::size_t from = document.find(beginning);
    const std::size_t to = document.find(end);
    if (from == std::string::npos || to == std::string::npos || to < from) {
        throw std::runtime_error(file + ": the lines between which the figures stand are missing");
    }
    std::ofstream after(file);
    after << document.substr(0, from + beginning.size()) << text << document.substr(to);
    after.close();
    if (!after) {
        throw std::runtime_error(file + " cannot be written");
    }
}

std::string picture(const Outcomes& outcomes, const Outcomes& plain)
{
    const auto any = [](const ChannelTruth&) { return true; };
    const Curve curves[] = {
        {"far end muted", outcomes, FarEnd::muted, any},
        {"far end muted, plain threshold", plain, FarEnd::muted, any},
        {"far end on, comes and goes", outcomes, FarEnd::on, [](const ChannelTruth& truth) { return truth.comesAndGoes; }},
        {"far end on, stays, another shape", outcomes, FarEnd::on,
            [](const ChannelTruth& truth) {
                return !truth.comesAndGoes && !truth.isShapedLikeOwn && truth.tunings >= samplesOfAShape;
            }},
    };
    std::string data;
    std::string plots;
    for (const Curve& curve : curves) {
        const std::size_t number = static_cast<std::size_t>(&curve - std::begin(curves)) + 1;
        data += fmt::format("$curve{} << EOD\n{}EOD\n", number, points(curve));
        plots += fmt::format("{}$curve{} using 1:2 with linespoints lw 2 lt {} pt {} dt {} title '{}'",
            number > 1 ? ", " : "", number, number, 2 * number + 3, number, title(curve));
    }
    return sdc::runGnuplot(data
        + "set terminal svg size 900,520 background rgb 'white' font 'sans,13'\n"
          "set xlabel 'level of the interferer over the floor, dB'\nset ylabel 'detected, %'\n"
          "set xrange [0:35]\nset yrange [0:102]\nset grid\nset key bottom right box opaque\nplot "
        + plots + "\n");
}

} // namespace judge
