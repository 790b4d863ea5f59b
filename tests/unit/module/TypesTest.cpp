// The values of commands and statuses, and their texts.

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

constexpr std::uint32_t noCommands[] = {6, 7, 256, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF};

TEST(Types, commandsHaveTheListedValuesAndTextsAndAnyOtherIsUnknown)
{
    const struct {
        ESDCCommand command;
        std::uint32_t value;
        const char* text;
    } rows[] = {
        {SDC_CMD_CHANNEL_SCAN_START, 0, "channel-scan-start"},
        {SDC_CMD_SUB_BAND_SCAN_START, 1, "sub-band-scan-start"},
        {SDC_CMD_SCAN_STOP, 2, "scan-stop"},
        {SDC_CMD_GET_STATUS, 3, "get-status"},
        {SDC_CMD_GET_RESULT, 4, "get-result"},
        {SDC_CMD_GET_SCAN_PROPERTIES, 5, "get-scan-properties"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(std::uint32_t{row.command}, row.value);
        EXPECT_EQ(SDCCommand::toString(row.command), row.text);
    }
    for (const std::uint32_t value : noCommands) {
        EXPECT_EQ(SDCCommand::toString(ESDCCommand{value}), "unknown") << value;
    }
}

TEST(Types, statusesHaveTheListedValuesAndTextsAndAnyOtherIsUnknown)
{
    const struct {
        ESDCStatus status;
        std::uint32_t value;
        const char* text;
    } rows[] = {
        {SDC_STATUS_SCAN_NOT_STARTED, 0, "scan-not-started"},
        {SDC_STATUS_SUB_BAND_ONGOING, 1, "sub-band-ongoing"},
        {SDC_STATUS_CHANNEL_SCAN_ONGOING, 2, "channel-scan-ongoing"},
        {SDC_STATUS_SUB_BAND_SCAN_FINISHED, 3, "sub-band-scan-finished"},
        {SDC_STATUS_CHANNEL_SCAN_FINISHED, 4, "channel-scan-finished"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(std::uint32_t{row.status}, row.value);
        EXPECT_EQ(SDCStatus::toString(row.status), row.text);
    }
    EXPECT_EQ(SDCStatus::toString(ESDCStatus{5}), "unknown");
    for (const std::uint32_t value : noCommands) {
        EXPECT_EQ(SDCStatus::toString(ESDCStatus{value}), "unknown") << value;
    }
}

} // namespace
