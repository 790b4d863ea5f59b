#include "apps/sdc/compare/Comparison.h"
#include "apps/sdc/compare/ComparisonText.h"
#include "apps/sdc/formats/Formats.h"
#include "apps/sdc/result/ResultFile.h"
#include "tests/support/GroupingLocale.h"

#include "TestResults.h"

#include <gtest/gtest.h>

using namespace testing_results;

// Streams that are made while a locale is in force follow it: numbers must not.
TEST(Locales, noOutputDependsOnTheLocale)
{
    auto channel = channelOf(12345, {sweepOf({-9970, -4512, -3000, -9900, -9900, -9900, -9900})});
    channel.sweeps[0] = cutShort(channel.sweeps[0], 6, sdc::Ending::stopped);
    channel.add(sweepOf({-9970, -4512, -2000, -9900, -9900, -9900, -9900}));
    const auto result = resultOf({channel});
    const auto other = resultOf({channelOf(12345, {sweepOf({-5000, -9000, -9000, -9000, -3000, -9000, -9000})})});
    const auto all = [&] {
        return written([&](std::ostream& stream) {
            for (const sdc::Format& format : sdc::formats) {
                sdc::writeResult(stream, format, result, {.rows = 4});
            }
            sdc::writeComparison(stream, sdc::compare({"a.json", result}, {"b.json", other}, {}));
            sdc::writeJson(
                stream, sdc::parseResult(written([&](std::ostream& json) { sdc::writeJson(json, other); }), "file"));
        });
    };
    const std::string usual = all();
    const tests::GroupingLocale grouping;
    EXPECT_EQ(written([](std::ostream& stream) { stream << 1234567; }), "1.234.567") << "the locale is in force";
    EXPECT_EQ(all(), usual);
}
