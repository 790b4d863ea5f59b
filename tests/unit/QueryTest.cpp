#include "tests/support/GroupingLocale.h"
#include "tests/support/WorkerlessFixture.h"

#include "Platform/Radio/IRadio.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <cstring>
#include <limits>

namespace {

using testing::ContainerEq;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

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

class Queries : public support::WorkerlessFixture {};

TEST_F(Queries, statusIsReturnedAsItIsAndTracedByItsText)
{
    const std::pair<std::uint32_t, std::string> rows[] = {{0, "scan-not-started"}, {1, "sub-band-ongoing"},
        {2, "channel-scan-ongoing"}, {3, "sub-band-scan-finished"}, {4, "channel-scan-finished"}, {5, "unknown"},
        {4294967295U, "unknown"}};
    for (const auto& [number, text] : rows) {
        SCOPED_TRACE(number);
        inspect().m_status() = ESDCStatus{number};
        const Members before = members();
        log.clear();
        EXPECT_EQ(controller->getStatus(), ESDCStatus{number});
        EXPECT_THAT(log.calls(), ElementsAre(entry("getStatus", text)));
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
    const std::vector<SDCResult> held = {{17972000, -9970}, {18000000, 5}, {4294967295U, lowest}};
    struct Row {
        std::size_t held;
        std::int32_t room;
        std::int32_t copied;
    };
    const Row rows[] = {{3, 10, 3}, {3, 4, 3}, {3, highest, 3}, {3, 3, 3}, {3, 2, 2}, {3, 1, 1}, {3, 0, 0}, {3, -1, -1},
        {3, -3, -3}, {3, lowest, lowest}, {0, 10, 0}, {0, 1, 0}, {0, 0, 0}, {0, -1, -1}, {1, 2, 1}, {1, 1, 1}};
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.held << " samples, room for " << row.room);
        inspect().m_results().assign(held.begin(), held.begin() + static_cast<std::ptrdiff_t>(row.held));
        std::vector<SDCResult> expected(4, untouched);
        std::copy_n(held.begin(), std::max(row.copied, 0), expected.begin());
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
            inspect().m_state() = SpectrumDiagnosticsController::State{state};
            log.clear();
            EXPECT_THAT(samples(), ElementsAre(SDCResult{17000001, -101}, SDCResult{17000002, -102}));
            EXPECT_THAT(log.calls(), ElementsAre(entry("getResult", SDCStatus::toString(ESDCStatus{status}))));
        }
    }
}

TEST_F(Queries, resultRefusesNullPointersAndWritesNothing)
{
    const Members before = members();
    for (const std::uint32_t level : {7U, 0U}) {
        setTraceLevel(level);
        for (const int given : {0, 1, 2}) {
            SCOPED_TRACE(testing::Message() << "level " << level << ", pointers " << given);
            std::int32_t count = 10;
            SDCResult sample = untouched;
            log.clear();
            EXPECT_EQ(controller->getResult(given == 1 ? &count : nullptr, given == 2 ? &sample : nullptr), 32768);
            EXPECT_EQ(count, 10);
            EXPECT_EQ(sample, untouched);
            EXPECT_THAT(members(), ContainerEq(before));
            EXPECT_EQ(log.calls(),
                level == 0 ? std::vector<std::string>{}
                           : (std::vector<std::string>{
                               entry("getResult", "channel-scan-finished"), "trace 1 Called with NULL pointer(s)"}));
        }
    }
}

TEST_F(Queries, propertiesAreFetchedKeptAndReturnedWholeWithoutAnyTrace)
{
    peers.radio.properties = {0x11, 0x82, 0x33, 0xff};
    Members expected = members();
    expected["m_properties.longHaul"] = 0x11;
    expected["m_properties.extendedRxWait"] = 0x82;
    expected["m_properties.slowRxWait"] = 0x33;
    expected["m_properties.spareFlag"] = 0xff;
    EXPECT_THAT(bytes(controller->getSpectrumDiagnosticsProperties()), ElementsAre(0x11, 0x82, 0x33, 0xff));
    EXPECT_THAT(log.calls(), ElementsAre("provider.getProperties"));
    EXPECT_THAT(members(), ContainerEq(expected));
}

TEST_F(Queries, propertiesAreFetchedAnewByEachCall)
{
    for (const std::uint8_t value : {std::uint8_t{1}, std::uint8_t{2}, std::uint8_t{0}}) {
        peers.radio.properties = {value, value, value, value};
        EXPECT_THAT(bytes(controller->getSpectrumDiagnosticsProperties()), ElementsAre(value, value, value, value));
    }
}

TEST_F(Queries, resultCodeOfTheProviderIsIgnored)
{
    for (const std::int32_t result : {0, 1, 32767, 32768, highest, -1}) {
        SCOPED_TRACE(result);
        fillMembers();
        peers.radio.propertiesResult = result;
        peers.radio.properties = {1, 2, 3, 5};
        EXPECT_THAT(bytes(controller->getSpectrumDiagnosticsProperties()), ElementsAre(1, 2, 3, 5));
        EXPECT_THAT(bytes(inspect().m_properties()), ElementsAre(1, 2, 3, 5));
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
    peers.radio.onGetProperties = [] { throw std::string("no answer"); };
    const Members before = members();
    try {
        controller->getSpectrumDiagnosticsProperties();
        ADD_FAILURE() << "no exception";
    } catch (const std::string& text) {
        EXPECT_EQ(text, "no answer");
    }
    EXPECT_THAT(members(), ContainerEq(before));
    EXPECT_THAT(log.calls(), ElementsAre("provider.getProperties"));
}

TEST_F(Queries, writeTheirRecordsAtTheirLevelsOnly)
{
    const auto callAll = [this] {
        controller->getStatus();
        controller->getProgress();
        controller->getResult(nullptr, nullptr);
        controller->getSpectrumDiagnosticsProperties();
        return log.callsWithout({"provider."});
    };
    for (const std::uint32_t level : {0U, 1U, 3U, 5U, 6U}) {
        SCOPED_TRACE(level);
        setTraceLevel(level);
        log.clear();
        const std::vector<std::string> records = callAll();
        EXPECT_EQ(records.size(), level == 0 ? 0U : (level < 6 ? 1U : 4U));
        EXPECT_EQ(log.count("trace 1 Called with NULL pointer(s)"), level == 0 ? 0U : 1U);
    }
}

TEST_F(Queries, leaveErrnoAloneAtEveryLevel)
{
    traceIntoLog.onWrite = [](const host::TraceRecord&) { errno = ERANGE; };
    for (const std::uint32_t level : {0U, 1U, 5U, 6U, 7U}) {
        SCOPED_TRACE(level);
        setTraceLevel(level);
        const std::function<void()> queries[] = {[this] { controller->getStatus(); }, [this] { controller->getProgress(); },
            [this] { controller->getResult(nullptr, nullptr); }, [this] { controller->getSpectrumDiagnosticsProperties(); }};
        for (const std::function<void()>& query : queries) {
            errno = EDOM;
            query();
            EXPECT_EQ(errno, EDOM);
        }
    }
}

TEST_F(Queries, traceNumbersWithoutTheGlobalLocalesGrouping)
{
    inspect().m_radioChannelId() = 4294967295U;
    inspect().m_progress() = -1234567;
    {
        const support::GroupingLocale grouping;
        controller->getStatus();
        controller->getProgress();
        controller->getResult(nullptr, nullptr);
    }
    inspect().m_radioChannelId() = 7;
    EXPECT_THAT(log.callsStartingWith("enter"),
        ElementsAre("enter 6 getStatus: m_radioChannelId=4294967295, SDCStatus::toString(m_status)=channel-scan-finished",
            "enter 6 getProgress: m_radioChannelId=4294967295, m_progress=-1234567",
            "enter 6 getResult: m_radioChannelId=4294967295, SDCStatus::toString(m_status)=channel-scan-finished"));
}

/// Queries to a constructed controller that the host has not initialised.
class QueriesBeforeInitialisation : public support::ControllerFixture {};

TEST_F(QueriesBeforeInitialisation, answerTheDefaultsAndAskNoPeer)
{
    peers.radio.properties = {1, 1, 1, 1};
    construct();
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
    EXPECT_EQ(controller->getProgress(), 0);
    EXPECT_THAT(samples(), IsEmpty());
    EXPECT_THAT(bytes(controller->getSpectrumDiagnosticsProperties()), ElementsAre(0, 0, 0, 0));
    inspect().m_properties() = SDCProperties{1, 2, 3, 4};
    EXPECT_THAT(bytes(controller->getSpectrumDiagnosticsProperties()), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(bytes(inspect().m_properties()), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(log.callsStartingWith("provider."), IsEmpty());
}

} // namespace
