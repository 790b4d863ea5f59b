#include "apps/sdc/result/ResultFile.h"

#include "apps/sdc/result/ResultForm.h"
#include "apps/sdc/result/Survey.h"
#include "support/Errors.h"
#include "support/FieldsJson.h"
#include "support/Text.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <system_error>
#include <utility>

namespace sdc {

namespace {

ChannelResult outOfFile(ChannelInFile&& channel)
{
    ChannelResult read{.channel = channel.channel,
        .unitTypeText = std::move(channel.unitTypeText),
        .receiver = channel.receiver,
        .plan = channel.plan,
        .sweeps = {},
        .survey = Survey(channel.analysis.occupancy)};
    for (SweepInFile& sweep : channel.sweeps) {
        sweep.reason = std::move(sweep.givenReason).value_or("");
        sweep.samples.assign(sweep.readings.begin(), sweep.readings.end());
        read.add(std::move(sweep));
    }
    return read;
}

std::string readAll(std::istream& stream, const std::string& file)
{
    try {
        return support::readToEnd(stream, largestResult_MiB);
    } catch (const std::runtime_error& error) {
        throw ResultError(file + ": " + error.what());
    }
}

} // namespace

ScanResult parseResult(std::string_view text, const std::string& file)
{
    ResultInFile read;
    support::Errors errors;
    support::readJson(text, resultRecord(), read, errors);
    if (!errors.areNone()) {
        throw ResultError(errors.listed(file));
    }
    ScanResult result{.scenario = std::move(read.scenario),
        .description = std::move(read.description),
        .kind = read.kind,
        .farEnd = read.farEnd,
        .provenance = std::move(read.provenance),
        .channels = {}};
    for (ChannelInFile& channel : read.channels) {
        result.channels.push_back(outOfFile(std::move(channel)));
    }
    return result;
}

ScanResult readResult(const std::string& file)
{
    if (file == "-") {
        return parseResult(readAll(std::cin, "standard input"), "standard input");
    }
    const std::string name = support::shown(file);
    std::error_code error; // the file itself tells
    if (std::filesystem::is_directory(file, error)) {
        throw ResultError(name + ": is a folder; a file that 'sdc scan --json' wrote is needed");
    }
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw ResultError(name + ": cannot be read: " + std::generic_category().message(errno));
    }
    return parseResult(readAll(stream, name), name);
}

} // namespace sdc
