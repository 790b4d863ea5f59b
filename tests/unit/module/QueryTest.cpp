// The queries: what they answer, write and trace.

#include "tests/support/ControllerFixture.h"

#include "Platform/Radio/IRadio.h"

#include <gmock/gmock.h>

#include <cstring>
#include <limits>

namespace {

using testing::ContainerEq;
using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
constexpr SDCResult untouched{111, 222};

std::string entry(const std::string& function, const std::string& status)
{
    return "enter 6 " + function + ": m_radioChannelId=7, SDCStatus::toString(m_status)=" + status;
}

std::vector<std::uint8_t> bytes(const SDCProperties& properties)
{
    std::vector<std::uint8_t> all(sizeof properties);
    std::memcpy(all.data(), &properties, sizeof properties);
    return all;
}

/// Without a worker.
class Queries : public tests::ControllerFixture {
protected:
    Queries()
    {
        prepare();
        fillMembers();
    }
};

TEST_F(Queries, statusIsReturnedAsItIsAndTracedByItsText)
{
    for (const std::uint32_t number : {0U, 1U, 2U, 3U, 4U, 5U, 4294967295U}) {
        SCOPED_TRACE(number);
        inspect().m_status() = ESDCStatus{number};
        const Members before = members();
        log.clear();
        EXPECT_EQ(controller->getStatus(), ESDCStatus{number});
        EXPECT_THAT(log.calls(), ElementsAre(entry("getStatus", SDCStatus::toString(ESDCStatus{number}))));
        EXPECT_THAT(members(), ContainerEq(before));
    }
}

TEST_F(Queries, progressIsReturnedAsItIsAndTracedSigned)
{
    for (const std::int32_t progress : {0, 1, 66, 99, 100, -1, lowest, highest}) {
        SCOPED_TRACE(progress);
        inspect().m_progress() = progress;
        const Members before = members();
        log.clear();
        EXPECT_EQ(controller->getProgress(), progress);
        EXPECT_THAT(
            log.calls(), ElementsAre("enter 6 getProgress: m_radioChannelId=7, m_progress=" + std::to_string(progress)));
        EXPECT_THAT(members(), ContainerEq(before));
    }
}

TEST_F(Queries, resultIsTheSmallerOfRoomAndSamples)
{
    const std::vector<SDCResult> all = {{17972000, -9970}, {18000000, 5}, {4294967295U, lowest}};
    const struct {
        std::size_t held;
        std::int32_t room;
        std::int32_t copied;
    } rows[] = {{3, 10, 3}, {3, 4, 3}, {3, highest, 3}, {3, 3, 3}, {3, 2, 2}, {3, 1, 1}, {3, 0, 0}, {3, -1, -1},
        {3, lowest, lowest}, {0, 10, 0}, {0, 1, 0}, {0, 0, 0}, {0, -1, -1}, {1, 2, 1}, {1, 1, 1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.held << " samples, room for " << row.room);
        inspect().m_results().assign(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(row.held));
        std::vector<SDCResult> expected(4, untouched);
        std::copy_n(all.begin(), std::max(row.copied, 0), expected.begin());
        for (int repetition = 0; repetition < 2; ++repetition) {
            const Members before = members();
            std::vector<SDCResult> copy(4, untouched);
            std::int32_t count = row.room;
            log.clear();
            EXPECT_EQ(controller->getResult(&count, copy.data()), 0);
            EXPECT_EQ(count, row.copied);
            EXPECT_THAT(copy, ElementsAreArray(expected));
            EXPECT_THAT(log.calls(), ElementsAre(entry("getResult", "channel-scan-finished")));
            EXPECT_THAT(members(), ContainerEq(before));
        }
    }
}

TEST_F(Queries, resultIsCopiedWhateverStatusAndState)
{
    for (const std::uint32_t status : {0U, 1U, 2U, 3U, 4U, 5U}) {
        for (const std::uint32_t state : {0U, 1U, 2U, 3U}) {
            SCOPED_TRACE(testing::Message() << "status " << status << ", state " << state);
            inspect().m_status() = ESDCStatus{status};
            inspect().m_state() = State{state};
            log.clear();
            EXPECT_THAT(samples(), ElementsAre(SDCResult{17000001, -101}, SDCResult{17000002, -102}));
            EXPECT_THAT(log.calls(), ElementsAre(entry("getResult", SDCStatus::toString(ESDCStatus{status}))));
            inspect().m_state() = State::STATE_IDLE;
        }
    }
}

TEST_F(Queries, resultRefusesNullPointersAndWritesNothing)
{
    const Members before = members();
    for (const int given : {0, 1, 2}) {
        SCOPED_TRACE(given);
        std::int32_t count = 10;
        SDCResult sample = untouched;
        log.clear();
        EXPECT_EQ(controller->getResult(given == 1 ? &count : nullptr, given == 2 ? &sample : nullptr), 32768);
        EXPECT_EQ(count, 10);
        EXPECT_EQ(sample, untouched);
        EXPECT_THAT(members(), ContainerEq(before));
        EXPECT_THAT(
            log.calls(), ElementsAre(entry("getResult", "channel-scan-finished"), "trace 1 Called with NULL pointer(s)"));
    }
}

TEST_F(Queries, propertiesAreFetchedAnewKeptAndReturnedWholeWhateverTheResultWithoutAnyTrace)
{
    for (const std::int32_t result : {0, 1, 32767, 32768, highest, -1}) {
        for (const SDCProperties& properties : {SDCProperties{0x11, 0x82, 0x33, 0xff}, SDCProperties{0, 0, 0, 0}}) {
            SCOPED_TRACE(result);
            fillMembers();
            peers.radio.properties = properties;
            peers.radio.propertiesResult = result;
            Members expected = members();
            expected["m_properties.longHaul"] = properties.longHaul;
            expected["m_properties.extendedRxWait"] = properties.extendedRxWait;
            expected["m_properties.slowRxWait"] = properties.slowRxWait;
            expected["m_properties.spareFlag"] = properties.spareFlag;
            EXPECT_EQ(bytes(controller->getSpectrumDiagnosticsProperties()), bytes(properties));
            EXPECT_THAT(log.calls(), ElementsAre("provider.getProperties"));
            EXPECT_THAT(members(), ContainerEq(expected));
        }
    }
}

TEST_F(Queries, providerIsGivenTheRecordAsItStands)
{
    struct Counting : IRadioPropertiesProvider {
        std::int32_t getProperties(SDCProperties& properties) override
        {
            ++properties.longHaul;
            ++properties.spareFlag;
            return 0;
        }
        void getUnitInfo(UnitInfo&) override {}
    };
    inspect().m_propertiesProvider() = std::make_unique<Counting>();
    controller->getSpectrumDiagnosticsProperties();
    EXPECT_THAT(bytes(controller->getSpectrumDiagnosticsProperties()), ElementsAre(2, 0, 0, 6));
}

TEST_F(Queries, exceptionOfTheProviderPassesToTheCaller)
{
    peers.radio.properties = {1, 1, 1, 1};
    at("provider.getProperties", [] { throw std::string("no answer"); });
    const Members before = members();
    EXPECT_THROW(controller->getSpectrumDiagnosticsProperties(), std::string);
    EXPECT_THAT(members(), ContainerEq(before));
}

} // namespace
