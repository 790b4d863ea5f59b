#include "simulator/radio/Link.h"

#include "tests/unit/simulator/PlansOfALink.h"
#include "tests/unit/simulator/TestLink.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <random>
#include <sstream>

namespace {

using plans::Wide;
using simulator::Fault;
using simulator::FaultAction;
using simulator::Link;
using simulator::Operation;

constexpr Wide largestWord = 4294967295;

/// Random links, most of them next to where a plan begins to lead astray.
class RandomLinks {
public:
    explicit RandomLinks(std::uint64_t seed)
        : m_random(seed)
    {
    }

    Link next()
    {
        Link link = tests::plainLink();
        RadioFrequencyParameters& parameters = link.frequencyParameters;
        const Wide min = word();
        const Wide span = word();
        parameters.frequencyBand_GHz = oneOf<std::uint32_t>({0, 18, 42, 43, 80});
        link.properties.longHaul = oneOf<std::uint8_t>({0, 0, 1, 255});
        parameters.minRxFrequency_kHz = clamped(min);
        parameters.maxRxFrequency_kHz = clamped(min + span);
        chooseRaster(parameters, min, span);
        link.rxFrequency_kHz = rxFrequency(min, span);
        link.channelSpacing_kHz = spacing(min, span);
        while (upTo(3) == 0) {
            const bool ofSpacing = upTo(1) == 0;
            link.faults.push_back({ofSpacing ? Operation::getChannelSpacing : Operation::getRxFrequency, FaultAction::answer,
                1, 1, ofSpacing ? spacing(min, span) : rxFrequency(min, span)});
        }
        return link;
    }

private:
    Wide upTo(Wide largest) { return static_cast<Wide>(m_random() % static_cast<std::uint64_t>(largest + 1)); }

    template <typename Value>
    Value oneOf(std::initializer_list<Value> values)
    {
        return *(values.begin() + upTo(static_cast<Wide>(values.size()) - 1));
    }

    static std::uint32_t clamped(Wide value) { return static_cast<std::uint32_t>(std::clamp<Wide>(value, 0, largestWord)); }

    Wide nearly(Wide value) { return value + upTo(4) - 2; }

    /// Of any number of bits, next to a special one, or of a real radio.
    Wide word()
    {
        switch (upTo(3)) {
        case 0: return upTo((Wide{1} << upTo(32)) - 1);
        case 1: return nearly(oneOf<Wide>({2, 1000, 2000, 5000, 7000, 10000, 15000, largestWord / 2, largestWord - 10000}));
        default: return 5000000 + 250 * upTo(50000);
        }
    }

    void chooseRaster(RadioFrequencyParameters& parameters, Wide min, Wide span)
    {
        const Wide step =
            std::max<Wide>(upTo(2) == 0 ? word() : oneOf<Wide>({1, 10, 250, 1000, 3000}), upTo(20) == 0 ? 0 : 1);
        const Wide low = upTo(1) == 0 ? min / std::max<Wide>(step, 1) : upTo(2);
        const Wide steps = upTo(2) == 0 ? nearly(oneOf<Wide>({2000, 6000, 8000, 10000}) / std::max<Wide>(step, 1))
                                        : span / std::max<Wide>(step, 1);
        parameters.frequencyStepSize_kHz = clamped(step);
        parameters.rxBaseFrequency_kHz = clamped(min - step * low + (upTo(20) == 0 ? upTo(2) : 0));
        parameters.stepLimitLow = clamped(low);
        parameters.stepLimitHigh = clamped(low + steps);
    }

    std::uint32_t rxFrequency(Wide min, Wide span)
    {
        return clamped(oneOf<Wide>({min, min + span, nearly(min + span), min + span / 2, min + upTo(std::max<Wide>(span, 0)),
            min + upTo(15000), min + span - upTo(15000)}));
    }

    std::uint32_t spacing(Wide min, Wide span)
    {
        return clamped(oneOf<Wide>({7000, 7000, nearly(7000), 28000, word(), upTo(12000), nearly(min),
            nearly(largestWord - min - span), span / 999999 + upTo(2)}));
    }

    std::mt19937_64 m_random;
};

std::string toText(const Link& link)
{
    std::ostringstream text;
    const RadioFrequencyParameters& it = link.frequencyParameters;
    text << "band " << it.frequencyBand_GHz << ", long haul " << int{link.properties.longHaul} << ", min "
         << it.minRxFrequency_kHz << ", max " << it.maxRxFrequency_kHz << ", rx " << link.rxFrequency_kHz << ", spacing "
         << link.channelSpacing_kHz << ", raster " << it.rxBaseFrequency_kHz << " + " << it.frequencyStepSize_kHz << " * "
         << it.stepLimitLow << ".." << it.stepLimitHigh;
    for (const Fault& fault : link.faults) {
        text << ", " << toString(fault.operation) << " answers " << fault.value;
    }
    return text.str();
}

/// With every answer that the peers can give to a start.
std::string troubleOf(const Link& link)
{
    std::vector<Wide> frequencies{link.rxFrequency_kHz};
    std::vector<Wide> spacings{link.channelSpacing_kHz};
    for (const Fault& fault : link.faults) {
        (fault.operation == Operation::getRxFrequency ? frequencies : spacings).push_back(fault.value);
    }
    plans::Figures figures(link);
    for (figures.rx = 0; const Wide rx : frequencies) {
        figures.rx = rx;
        for (const Wide spacing : spacings) {
            figures.spacing = spacing;
            const std::string why = plans::troubleOfAny(figures, link.properties.longHaul != 0);
            if (!why.empty()) {
                return why;
            }
        }
    }
    return {};
}

TEST(PossibleLinks, neverLeadAControllersPlansAstray)
{
    constexpr std::uint64_t seed = 20240607;
    constexpr int links = 20000;
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomLinks random(seed);
    int possible = 0;
    int possibleWithFaults = 0;
    int rightlyRefused = 0;
    for (int count = 0; count < links; ++count) {
        const Link link = random.next();
        if (whyImpossible(link)) {
            rightlyRefused += count % 16 == 0 && !troubleOf(link).empty() ? 1 : 0;
            continue;
        }
        ++possible;
        possibleWithFaults += link.faults.empty() ? 0 : 1;
        ASSERT_EQ(troubleOf(link), "") << toText(link);
    }
    std::cout << "seed " << seed << ": " << possible << " of " << links << " links are possible, " << possibleWithFaults
              << " of them with faults\n";
    EXPECT_GT(possible, 3000);
    EXPECT_GT(possibleWithFaults, 500);
    EXPECT_GT(rightlyRefused, 300) << "the calculation here must find what is wrong, or it proves nothing";
}

} // namespace
