// Reading the radio's frequency parameters, and recognising the unit type from its text.

#include "tests/support/ControllerFixture.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace {

using testing::ContainerEq;
using testing::ElementsAre;

/// Each of the thirteen words is the number of its place plus an offset.
RadioFrequencyParameters numbered(std::uint32_t offset)
{
    const auto word = [offset](std::uint32_t place) { return offset + place; };
    return {word(0), {word(1), word(2), word(3)}, word(4), word(5), word(6), word(7), word(8), {word(9), word(10)}, word(11),
        word(12)};
}

class GeneralParams : public tests::ControllerFixture {
protected:
    GeneralParams()
    {
        prepare();
        fillMembers();
    }

    /// The members with the seven of these parameters.
    Members membersWith(const RadioFrequencyParameters& parameters) const
    {
        Members expected = members();
        expected["m_rxBaseFrequency_kHz"] = parameters.rxBaseFrequency_kHz;
        expected["m_frequencyBand_GHz"] = parameters.frequencyBand_GHz;
        expected["m_minRxFrequency_kHz"] = parameters.minRxFrequency_kHz;
        expected["m_maxRxFrequency_kHz"] = parameters.maxRxFrequency_kHz;
        expected["m_frequencyStepSize_kHz"] = parameters.frequencyStepSize_kHz;
        expected["m_stepLimitLow"] = parameters.stepLimitLow;
        expected["m_stepLimitHigh"] = parameters.stepLimitHigh;
        return expected;
    }
};

TEST_F(GeneralParams, areTheSevenWordsNeitherCheckedNorConvertedAndOverwrittenByEachCall)
{
    for (const RadioFrequencyParameters& parameters : {numbered(100), numbered(4294967000),
             RadioFrequencyParameters{0, {}, 4294967295, 0, 0, 0, 4294967295, {}, 4294967295, 0}}) {
        const Members expected = membersWith(parameters);
        peers.radioCapability.parameters = parameters;
        EXPECT_EQ(inspect().setGeneralParams(), 0);
        EXPECT_THAT(members(), ContainerEq(expected));
    }
    EXPECT_EQ(log.count("IRadioCapability.getFrequencyParameters"), 3U);
}

TEST_F(GeneralParams, areReadBeforeAnyTextAndTracedInTheirOrderWithLabelsOfOneWidth)
{
    peers.radioCapability.parameters =
        RadioFrequencyParameters{18, {1, 2, 3}, 17700000, 19700000, 250, 7, 17000000, {9, 10}, 0, 4294967295};
    inspect().setGeneralParams();
    EXPECT_THAT(log.calls(),
        ElementsAre("enter 6 setGeneralParams", "IRadioCapability.getFrequencyParameters",
            "trace 5   m_rxBaseFrequency_kHz = 17000000", "trace 5     m_frequencyBand_GHz = 18",
            "trace 5    m_minRxFrequency_kHz = 17700000", "trace 5    m_maxRxFrequency_kHz = 19700000",
            "trace 5 m_frequencyStepSize_kHz = 250", "trace 5          m_stepLimitLow = 0",
            "trace 5         m_stepLimitHigh = 4294967295"));
    for (const std::string& text : traceTexts(5)) {
        EXPECT_EQ(text.find(" = ") + 3, 26U) << text;
    }
}

TEST_F(GeneralParams, stayAsTheyWereWhenThePeerThrowsAndAreAllSetWhenATextDoes)
{
    const auto throwing = [] { throw std::runtime_error("no answer"); };
    Members expected = members();
    peers.radioCapability.parameters = numbered(100);
    at("IRadioCapability.getFrequencyParameters", throwing);
    EXPECT_THROW(inspect().setGeneralParams(), std::runtime_error);
    EXPECT_THAT(members(), ContainerEq(expected));
    expected = membersWith(numbered(100));
    at("trace 5   m_rxBaseFrequency_kHz = 108", throwing);
    EXPECT_THROW(inspect().setGeneralParams(), std::runtime_error);
    EXPECT_THAT(members(), ContainerEq(expected));
}

class UnitType : public tests::ControllerFixture {
protected:
    UnitType() { prepare(); }

    OduType typeOf(const std::string& text)
    {
        peers.radio.typeText = text;
        return inspect().getOduType();
    }
};

TEST_F(UnitType, isTheFirstRowThatOccursInTheTextAndIsTracedWithBoth)
{
    const struct {
        std::string text;
        OduType type;
        std::string row; ///< empty: none found
    } rows[] = {
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
        // an earlier row goes before a later one, wherever the two stand
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
        {"SDC KLM KLM6 KLM6 P KLM5 4743 4742 4741 QRU7 K", ODU_TYPE_QRU7_K, "QRU7 K"},
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
        {"4740 4744 474 741", ODU_TYPE_UNKNOWN, ""},
        {"KL M", ODU_TYPE_UNKNOWN, ""},
        {"sdc SD C", ODU_TYPE_UNKNOWN, ""},
        {"LM6", ODU_TYPE_UNKNOWN, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const Members before = members();
        log.clear();
        EXPECT_EQ(typeOf(row.text), row.type);
        const std::string message = row.row.empty() ? "trace 1 Unknown radio type : (" + row.text + ")"
                                                    : "trace 5 Radio type is : " + row.row + "(" + row.text + ")";
        EXPECT_THAT(log.calls(), ElementsAre("enter 6 getOduType", "provider.getUnitInfo with \"\"", message));
        EXPECT_THAT(members(), ContainerEq(before));
        setTraceLevel(PLX_TRACE_LEVEL_OFF);
        EXPECT_EQ(typeOf(row.text), row.type);
        setTraceLevel(PLX_TRACE_LEVEL_DETAIL);
    }
}

TEST_F(UnitType, letsWhatItsProviderOrItsTraceThrowsPass)
{
    for (const std::string call : {"provider.getUnitInfo with \"\"", "trace 5 Radio type is : KLM5(KLM5)"}) {
        at(call, [] { throw std::runtime_error("no answer"); });
        EXPECT_THROW(typeOf("KLM5"), std::runtime_error);
    }
}

} // namespace
