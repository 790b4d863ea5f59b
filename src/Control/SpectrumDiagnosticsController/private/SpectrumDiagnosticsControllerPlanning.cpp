// Parameters, unit type, plans.
//
// Runs on the thread that starts a scan, while the worker is idle. Locks nothing. Must never touch the state, the status or
// the samples. Frequencies and counts are unsigned 32-bit kHz and wrap; nothing is validated here.

#include "Control/SpectrumDiagnosticsController/private/SpectrumDiagnosticsController.h"

#include "Control/SpectrumDiagnosticsController/private/ScanConstants.h"
#include "Control/SpectrumDiagnosticsController/private/Trace.h"
#include "Platform/Radio/IRadio.h"
#include "Platform/Radio/IRadioCapability.h"

namespace {

struct UnitTypeRow {
    const char* text;
    OduType type;
};

/// Searched from the first row to the last; a text that contains another stands before it.
constexpr UnitTypeRow unitTypeRows[] = {
    {"QRU7 K", ODU_TYPE_QRU7_K},
    {"4741", ODU_TYPE_4741},
    {"4742", ODU_TYPE_4742},
    {"4743", ODU_TYPE_4743},
    {"KLM5", ODU_TYPE_KLM5},
    {"KLM6 P", ODU_TYPE_KLM6_P},
    {"KLM6", ODU_TYPE_KLM6},
    {"KLM", ODU_TYPE_KLM},
    {"SDC", ODU_TYPE_SDC},
};

} // namespace

std::int32_t SpectrumDiagnosticsController::setGeneralParams()
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER);
    const RadioFrequencyParameters parameters = m_radioCapability->getFrequencyParameters();
    m_rxBaseFrequency_kHz = parameters.rxBaseFrequency_kHz;
    m_frequencyBand_GHz = parameters.frequencyBand_GHz;
    m_minRxFrequency_kHz = parameters.minRxFrequency_kHz;
    m_maxRxFrequency_kHz = parameters.maxRxFrequency_kHz;
    m_frequencyStepSize_kHz = parameters.frequencyStepSize_kHz;
    m_stepLimitLow = parameters.stepLimitLow;
    m_stepLimitHigh = parameters.stepLimitHigh;
    SDC_TRACE(PLX_TRACE_LEVEL_INFO, "  m_rxBaseFrequency_kHz = " << m_rxBaseFrequency_kHz);
    SDC_TRACE(PLX_TRACE_LEVEL_INFO, "    m_frequencyBand_GHz = " << m_frequencyBand_GHz);
    SDC_TRACE(PLX_TRACE_LEVEL_INFO, "   m_minRxFrequency_kHz = " << m_minRxFrequency_kHz);
    SDC_TRACE(PLX_TRACE_LEVEL_INFO, "   m_maxRxFrequency_kHz = " << m_maxRxFrequency_kHz);
    SDC_TRACE(PLX_TRACE_LEVEL_INFO, "m_frequencyStepSize_kHz = " << m_frequencyStepSize_kHz);
    SDC_TRACE(PLX_TRACE_LEVEL_INFO, "         m_stepLimitLow = " << m_stepLimitLow);
    SDC_TRACE(PLX_TRACE_LEVEL_INFO, "        m_stepLimitHigh = " << m_stepLimitHigh);
    return SDC_RC_OK;
}

OduType SpectrumDiagnosticsController::getOduType() const
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER);
    UnitInfo unitInfo{};
    m_propertiesProvider->getUnitInfo(unitInfo);
    const std::string& typeText = unitInfo.typeText;
    for (const UnitTypeRow& row : unitTypeRows) {
        if (typeText.find(row.text) != std::string::npos) {
            SDC_TRACE(PLX_TRACE_LEVEL_INFO, "Radio type is : " << row.text << "(" << typeText << ")");
            return row.type;
        }
    }
    SDC_TRACE(PLX_TRACE_LEVEL_ERROR, "Unknown radio type : (" << typeText << ")");
    return ODU_TYPE_UNKNOWN;
}

/// The plan for a unit type and a start command, null for a type that is not supported.
SpectrumDiagnosticsController::Plan SpectrumDiagnosticsController::planFor(OduType type, ESDCCommand command)
{
    const bool channelScan = command == SDC_CMD_CHANNEL_SCAN_START;
    switch (type) {
    case ODU_TYPE_QRU7_K:
    case ODU_TYPE_4741:
    case ODU_TYPE_KLM:
    case ODU_TYPE_KLM6:
    case ODU_TYPE_SDC:
        return channelScan ? &SpectrumDiagnosticsController::prepChannelScanStd
                           : &SpectrumDiagnosticsController::prepSubBandScanStd;
    case ODU_TYPE_4742:
        return channelScan ? &SpectrumDiagnosticsController::prepChannelScan4742_4743
                           : &SpectrumDiagnosticsController::prepSubBandScan4742;
    case ODU_TYPE_4743:
    case ODU_TYPE_KLM5:
    case ODU_TYPE_KLM6_P:
        return channelScan ? &SpectrumDiagnosticsController::prepChannelScan4742_4743
                           : &SpectrumDiagnosticsController::prepSubBandScan4743;
    default: return nullptr;
    }
}

/// A fine sweep across the configured channel. Long haul goes with the lower band here, unlike in the sub-band plan.
std::int32_t SpectrumDiagnosticsController::prepChannelScanStd()
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER);
    std::uint32_t samples = 1;
    if (isLongHaul() || isLowerFrequencyBand()) {
        m_frequencyMargin_kHz = fineMargin_kHz;
        m_scanStep_kHz = isChannelSpcaingOdd() ? fineStepInOddSpacing_kHz : fineStep_kHz;
    } else {
        m_scanStep_kHz = coarseStep_kHz;
        m_frequencyMargin_kHz = coarseMargin_kHz;
    }
    if (validMinFrequencyMargin()) {
        m_scanLowestRxFrequency_kHz = m_currentRxFrequency_kHz + m_frequencyMargin_kHz - (m_channelSpacing_kHz >> 1);
    } else if (isChannelSpcaingOdd()) {
        m_scanLowestRxFrequency_kHz = m_minRxFrequency_kHz + (m_frequencyMargin_kHz >> 1);
    } else {
        m_scanLowestRxFrequency_kHz = m_minRxFrequency_kHz + m_frequencyMargin_kHz;
    }
    m_scanHighestRxFrequency_kHz = m_scanLowestRxFrequency_kHz;
    while (isHighestFreqInRange()) {
        ++samples;
        m_scanHighestRxFrequency_kHz += m_scanStep_kHz;
    }
    // The difference wraps where the highest frequency lies above the channel's, so the extra sample is nearly always taken.
    if (isChannelSpcaingOdd() && m_currentRxFrequency_kHz - m_scanHighestRxFrequency_kHz > m_scanStep_kHz) {
        m_scanHighestRxFrequency_kHz += m_scanStep_kHz;
        ++samples;
    }
    m_totalNrOfSamples = static_cast<std::int32_t>(samples);
    return SDC_RC_OK;
}

/// A coarse sweep over the whole tunable raster. Long haul goes with the upper band here. The lower margin is rounded down
/// to the raster, the upper one is not.
std::int32_t SpectrumDiagnosticsController::prepSubBandScanStd()
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER);
    if (!isLongHaul() && isLowerFrequencyBand()) {
        m_scanStep_kHz = fineStep_kHz;
        m_frequencyMargin_kHz = fineMargin_kHz;
    } else {
        m_scanStep_kHz = coarseStep_kHz;
        m_frequencyMargin_kHz = coarseMargin_kHz;
    }
    m_scanLowestRxFrequency_kHz =
        m_rxBaseFrequency_kHz + m_frequencyStepSize_kHz * (m_stepLimitLow + m_frequencyMargin_kHz / m_frequencyStepSize_kHz);
    const std::uint32_t top_kHz = m_rxBaseFrequency_kHz + m_stepLimitHigh * m_frequencyStepSize_kHz - m_frequencyMargin_kHz;
    const std::uint32_t steps = (top_kHz - m_scanLowestRxFrequency_kHz) / m_scanStep_kHz;
    m_totalNrOfSamples = static_cast<std::int32_t>(steps + 1);
    m_scanHighestRxFrequency_kHz = m_scanLowestRxFrequency_kHz + m_scanStep_kHz * steps;
    return SDC_RC_OK;
}

/// A single measurement at the configured frequency.
std::int32_t SpectrumDiagnosticsController::prepChannelScan4742_4743()
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER);
    m_scanStep_kHz = 0;
    m_frequencyMargin_kHz = 0;
    m_scanLowestRxFrequency_kHz = m_currentRxFrequency_kHz;
    m_scanHighestRxFrequency_kHz = m_currentRxFrequency_kHz;
    m_totalNrOfSamples = 1;
    return SDC_RC_OK;
}

/// One sample per channel, on the raster of channels through the configured one, for each channel that fits in whole.
std::int32_t SpectrumDiagnosticsController::prepSubBandScan4743()
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER);
    const std::uint32_t lowestCentre_kHz = m_minRxFrequency_kHz + (m_channelSpacing_kHz >> 1);
    const std::uint32_t highestCentre_kHz = m_maxRxFrequency_kHz - (m_channelSpacing_kHz >> 1);
    m_scanStep_kHz = m_channelSpacing_kHz;
    m_frequencyMargin_kHz = 0;
    m_scanLowestRxFrequency_kHz = m_currentRxFrequency_kHz;
    if (lowestCentre_kHz <= m_currentRxFrequency_kHz) {
        while (lowestCentre_kHz <= m_scanLowestRxFrequency_kHz - m_channelSpacing_kHz) {
            m_scanLowestRxFrequency_kHz -= m_channelSpacing_kHz;
        }
    }
    m_scanHighestRxFrequency_kHz = m_currentRxFrequency_kHz;
    if (highestCentre_kHz >= m_currentRxFrequency_kHz) {
        while (highestCentre_kHz >= m_scanHighestRxFrequency_kHz + m_channelSpacing_kHz) {
            m_scanHighestRxFrequency_kHz += m_channelSpacing_kHz;
        }
    }
    m_totalNrOfSamples =
        static_cast<std::int32_t>((m_scanHighestRxFrequency_kHz - m_scanLowestRxFrequency_kHz) / m_channelSpacing_kHz + 1);
    return SDC_RC_OK;
}

/// The configured channel and those of its two neighbours that fit in whole.
std::int32_t SpectrumDiagnosticsController::prepSubBandScan4742()
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER);
    m_scanStep_kHz = m_channelSpacing_kHz;
    m_frequencyMargin_kHz = 0;
    m_totalNrOfSamples = 1;
    m_scanLowestRxFrequency_kHz = m_currentRxFrequency_kHz;
    if (m_minRxFrequency_kHz + (m_channelSpacing_kHz >> 1) <= m_currentRxFrequency_kHz - m_channelSpacing_kHz) {
        m_scanLowestRxFrequency_kHz -= m_channelSpacing_kHz;
        m_totalNrOfSamples = 2;
    }
    m_scanHighestRxFrequency_kHz = m_currentRxFrequency_kHz;
    if (m_maxRxFrequency_kHz - (m_channelSpacing_kHz >> 1) >= m_currentRxFrequency_kHz + m_channelSpacing_kHz) {
        m_scanHighestRxFrequency_kHz += m_channelSpacing_kHz;
        ++m_totalNrOfSamples;
    }
    return SDC_RC_OK;
}

/// The name is misspelt in the system and stays so.
bool SpectrumDiagnosticsController::isChannelSpcaingOdd() const
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER);
    return m_channelSpacing_kHz == oddChannelSpacing_kHz;
}

bool SpectrumDiagnosticsController::isLongHaul() const
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER);
    return m_properties.longHaul != 0;
}

bool SpectrumDiagnosticsController::isLowerFrequencyBand() const
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER);
    return m_frequencyBand_GHz < upperFrequencyBand_GHz;
}

bool SpectrumDiagnosticsController::validMinFrequencyMargin() const
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER);
    return m_currentRxFrequency_kHz >= m_minRxFrequency_kHz + m_frequencyMargin_kHz + (m_channelSpacing_kHz >> 1);
}

/// Whether one more step stays clear of the sub-band's edge and of the channel's.
bool SpectrumDiagnosticsController::isHighestFreqInRange() const
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER);
    const std::uint32_t next_kHz = m_scanHighestRxFrequency_kHz + m_scanStep_kHz;
    return next_kHz <= m_maxRxFrequency_kHz - m_frequencyMargin_kHz
        && next_kHz <= (m_channelSpacing_kHz >> 1) - m_frequencyMargin_kHz + m_currentRxFrequency_kHz;
}
