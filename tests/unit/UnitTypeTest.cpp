/// Recognising the unit type from its text.

#include "tests/unit/PlanningFixture.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <set>
#include <stdexcept>

namespace {

using testing::ElementsAre;

class UnitType : public planning::PlanningFixture {
protected:
    OduType typeOf(const std::string& text)
    {
        peers.radio.typeText = text;
        return inspect().getOduType();
    }
};

TEST_F(UnitType, hasTheNumbersThatTheCommandsRelyOn)
{
    const std::vector<int> values{ODU_TYPE_QRU7_K, ODU_TYPE_4741, ODU_TYPE_4742, ODU_TYPE_4743, ODU_TYPE_KLM, ODU_TYPE_KLM5,
        ODU_TYPE_KLM6, ODU_TYPE_KLM6_P, ODU_TYPE_SDC, ODU_TYPE_UNKNOWN};
    EXPECT_THAT(values, ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9));
    static_assert(sizeof(OduType) == 4);
}

struct TypeText {
    std::string text;
    OduType type;
    std::string row; ///< empty: none found
};

const TypeText typeTexts[] = {
    // each row alone
    {"QRU7 K", ODU_TYPE_QRU7_K, "QRU7 K"},
    {"4741", ODU_TYPE_4741, "4741"},
    {"4742", ODU_TYPE_4742, "4742"},
    {"4743", ODU_TYPE_4743, "4743"},
    {"KLM5", ODU_TYPE_KLM5, "KLM5"},
    {"KLM6 P", ODU_TYPE_KLM6_P, "KLM6 P"},
    {"KLM6", ODU_TYPE_KLM6, "KLM6"},
    {"KLM", ODU_TYPE_KLM, "KLM"},
    {"SDC", ODU_TYPE_SDC, "SDC"},
    // at any position
    {"XKLM6B", ODU_TYPE_KLM6, "KLM6"},
    {"unit QRU7 K 18G", ODU_TYPE_QRU7_K, "QRU7 K"},
    {"radio unit of type 4742", ODU_TYPE_4742, "4742"},
    {"474741", ODU_TYPE_4741, "4741"},
    {"47434", ODU_TYPE_4743, "4743"},
    {"KLM6 PX", ODU_TYPE_KLM6_P, "KLM6 P"},
    {"KLM9", ODU_TYPE_KLM, "KLM"},
    {"KLKLM5", ODU_TYPE_KLM5, "KLM5"},
    {"\nSDC\t", ODU_TYPE_SDC, "SDC"},
    {std::string("\0SDC", 4), ODU_TYPE_SDC, "SDC"},
    // an earlier row goes before a later one, wherever the two stand: each pair of neighbours
    {"4741 QRU7 K", ODU_TYPE_QRU7_K, "QRU7 K"},
    {"4742/4741", ODU_TYPE_4741, "4741"},
    {"4743/4741", ODU_TYPE_4741, "4741"},
    {"4743/4742", ODU_TYPE_4742, "4742"},
    {"KLM5 4743", ODU_TYPE_4743, "4743"},
    {"KLM6 PKLM5", ODU_TYPE_KLM5, "KLM5"},
    {"KLM6, KLM6 P", ODU_TYPE_KLM6_P, "KLM6 P"},
    {"KLM KLM6", ODU_TYPE_KLM6, "KLM6"},
    {"SDC KLM", ODU_TYPE_KLM, "KLM"},
    {"KLM SDC", ODU_TYPE_KLM, "KLM"},
    // and some that stand farther apart
    {"SDC KLM KLM6 KLM6 P KLM5 4743 4742 4741 QRU7 K", ODU_TYPE_QRU7_K, "QRU7 K"},
    {"SDC KLM5", ODU_TYPE_KLM5, "KLM5"},
    {"KLM KLM6 P", ODU_TYPE_KLM6_P, "KLM6 P"},
    {"SDC KLM6", ODU_TYPE_KLM6, "KLM6"},
    // nearly a more specific row
    {"KLM6P", ODU_TYPE_KLM6, "KLM6"},
    {"KLM6  P", ODU_TYPE_KLM6, "KLM6"},
    {"KLM6 p", ODU_TYPE_KLM6, "KLM6"},
    {"KLM 6 P", ODU_TYPE_KLM, "KLM"},
    {"KLM 5", ODU_TYPE_KLM, "KLM"},
    // none
    {"", ODU_TYPE_UNKNOWN, ""},
    {"klm6", ODU_TYPE_UNKNOWN, ""},
    {"QRU7K", ODU_TYPE_UNKNOWN, ""},
    {"QRU7  K", ODU_TYPE_UNKNOWN, ""},
    {"QRU7 k", ODU_TYPE_UNKNOWN, ""},
    {"QRU7", ODU_TYPE_UNKNOWN, ""},
    {"4740 4744 474 741", ODU_TYPE_UNKNOWN, ""},
    {"KL M", ODU_TYPE_UNKNOWN, ""},
    {"sdc SD C", ODU_TYPE_UNKNOWN, ""},
    {"LM6", ODU_TYPE_UNKNOWN, ""},
};

TEST_F(UnitType, isTheFirstRowThatOccursInTheTextAndIsTracedWithBoth)
{
    for (const TypeText& row : typeTexts) {
        SCOPED_TRACE(row.text);
        log.clear();
        EXPECT_EQ(typeOf(row.text), row.type);
        const std::string message = row.row.empty() ? "trace 1 Unknown radio type : (" + row.text + ")"
                                                    : "trace 5 Radio type is : " + row.row + "(" + row.text + ")";
        EXPECT_THAT(log.calls(), ElementsAre("enter 6 getOduType", "provider.getUnitInfo with \"\"", message));
    }
}

TEST_F(UnitType, isTheSameWithEveryTraceLevelAndTracedOnlyAtItsOwn)
{
    for (std::uint32_t level = 0; level <= 7; ++level) {
        setTraceLevel(level);
        for (const TypeText& row : typeTexts) {
            SCOPED_TRACE(row.text + " at level " + std::to_string(level));
            log.clear();
            EXPECT_EQ(typeOf(row.text), row.type);
            EXPECT_EQ(log.callsStartingWith("enter 6 ").size(), level >= 6 ? 1U : 0U);
            EXPECT_EQ(log.callsStartingWith("trace 5 ").size(), level >= 5 && !row.row.empty() ? 1U : 0U);
            EXPECT_EQ(log.callsStartingWith("trace 1 ").size(), level >= 1 && row.row.empty() ? 1U : 0U);
        }
    }
}

TEST_F(UnitType, asksForNoOtherTraceLevelThanThatOfItsMessage)
{
    logTraceQuestions();
    setTraceLevel(PLX_TRACE_LEVEL_OFF);
    typeOf("KLM6");
    EXPECT_THAT(log.calls(), ElementsAre("trace.isEnabled 6", "provider.getUnitInfo with \"\"", "trace.isEnabled 5"));
    log.clear();
    typeOf("none");
    EXPECT_THAT(log.calls(), ElementsAre("trace.isEnabled 6", "provider.getUnitInfo with \"\"", "trace.isEnabled 1"));
}

TEST_F(UnitType, isWorkedOutAnewOnEveryCallAndRemembersNothing)
{
    EXPECT_EQ(typeOf("KLM5"), ODU_TYPE_KLM5);
    EXPECT_EQ(typeOf("4742"), ODU_TYPE_4742);
    EXPECT_EQ(typeOf("none"), ODU_TYPE_UNKNOWN);
    EXPECT_EQ(typeOf("KLM5"), ODU_TYPE_KLM5);
    EXPECT_EQ(log.count("provider.getUnitInfo with \"\""), 4U);
}

TEST_F(UnitType, isTracedWithOneHeaderPerMessageAndTheFunctionsName)
{
    typeOf("KLM5");
    typeOf("none");
    std::set<const PlxTraceHeader*> headers;
    for (const host::TraceRecord& record : trace.records()) {
        headers.insert(record.header);
        EXPECT_STREQ(record.header->function, "getOduType");
    }
    EXPECT_EQ(headers.size(), 3U);
}

TEST_F(UnitType, letsWhatTheProviderThrowsPass)
{
    peers.radio.onGetUnitInfo = [] { throw std::runtime_error("no answer"); };
    EXPECT_THROW(inspect().getOduType(), std::runtime_error);
    EXPECT_THAT(log.calls(), ElementsAre("enter 6 getOduType", "provider.getUnitInfo with \"\""));
}

TEST_F(UnitType, letsWhatItsTraceThrowsPass)
{
    traceIntoLog.onWrite = [](const host::TraceRecord& record) {
        if (!record.isEntry) {
            throw std::runtime_error("no room");
        }
    };
    EXPECT_THROW(typeOf("KLM5"), std::runtime_error);
    EXPECT_THROW(typeOf("none"), std::runtime_error);
}

TEST_F(UnitType, leavesErrnoAlone)
{
    traceIntoLog.onWrite = [](const host::TraceRecord&) { errno = EIO; };
    for (std::uint32_t level = 0; level <= 7; ++level) {
        setTraceLevel(level);
        errno = ERANGE;
        typeOf("KLM5");
        typeOf("none");
        EXPECT_EQ(errno, ERANGE) << level;
    }
}

} // namespace
