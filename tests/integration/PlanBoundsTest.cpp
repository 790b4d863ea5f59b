#include "simulator/radio/Link.h"
#include "tests/support/PlannedScan.h"
#include "tests/unit/simulator/TestLink.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <random>
#include <string>

// A controller plans in words that wrap, and tests nothing. The bounds of a link are to keep it from that: whatever link is
// possible, its plans are asked of the controller itself.

namespace {

using simulator::Link;

/// Links at the ends of what is possible.
class ExtremeLinks {
public:
    Link next()
    {
        Link link = tests::plainLink();
        RadioFrequencyParameters& radio = link.frequencyParameters;
        const std::uint32_t span_kHz = oneOf({10000, 12500, 20000, 1000000, 999000000});
        radio.frequencyBand_GHz = oneOf({1, 42, 43, 200});
        radio.minRxFrequency_kHz = oneOf({1000000, 1000001, 1000000000 - span_kHz});
        radio.maxRxFrequency_kHz = radio.minRxFrequency_kHz + span_kHz;
        radio.frequencyStepSize_kHz = oneOf({1, 3, 250, 5000, 10000});
        radio.rxBaseFrequency_kHz = radio.minRxFrequency_kHz;
        radio.stepLimitLow = 0;
        radio.stepLimitHigh = span_kHz / radio.frequencyStepSize_kHz;
        link.rxFrequency_kHz = radio.minRxFrequency_kHz + oneOf({0, 1, span_kHz / 2, span_kHz - 1, span_kHz});
        link.channelSpacing_kHz = oneOf({span_kHz / 1000000 + 1, 2, 999, 2000, 7000, 1000000});
        link.properties.longHaul = static_cast<std::uint8_t>(oneOf({0, 1}));
        link.unitTypeText = types[oneOf({0, 1, 2, 3, 4, 5, 6, 7, 8})];
        return link;
    }

private:
    static constexpr const char* types[] = {"QRU7 K", "4741", "4742", "4743", "KLM5", "KLM6 P", "KLM6", "KLM", "SDC"};

    std::uint32_t oneOf(std::initializer_list<std::uint32_t> values)
    {
        return *(values.begin() + m_random() % values.size());
    }

    std::mt19937_64 m_random{20240607}; // the same links each time
};

TEST(PossibleLinks, leadNoPlanAstray)
{
    ExtremeLinks links;
    int possible = 0;
    for (int count = 0; count < 600; ++count) {
        const Link link = links.next();
        try {
            requirePossible(link);
        } catch (const std::invalid_argument&) {
            continue;
        }
        ++possible;
        for (const ESDCCommand start : {SDC_CMD_CHANNEL_SCAN_START, SDC_CMD_SUB_BAND_SCAN_START}) {
            const auto plan = tests::plannedScan({RadioChannel{1}, link}, start).value();
            SCOPED_TRACE(link.unitTypeText + ", spacing " + std::to_string(link.channelSpacing_kHz) + ", configured "
                + std::to_string(link.rxFrequency_kHz) + ", lowest "
                + std::to_string(link.frequencyParameters.minRxFrequency_kHz));
            constexpr std::uint32_t mostBeyond_kHz = 20000; // a narrow channel is swept a step beside itself
            EXPECT_GE(plan.samples, 1);
            EXPECT_LE(plan.samples, 1000000);
            EXPECT_LE(plan.lowest_kHz, plan.highest_kHz);
            EXPECT_GE(plan.lowest_kHz, link.frequencyParameters.minRxFrequency_kHz);
            EXPECT_LE(plan.highest_kHz, link.frequencyParameters.maxRxFrequency_kHz + mostBeyond_kHz);
        }
    }
    EXPECT_GT(possible, 200);
}

} // namespace
