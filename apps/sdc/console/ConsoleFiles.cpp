// What a console's last scan is written to.

#include "apps/sdc/console/Completion.h"
#include "apps/sdc/console/Console.h"
#include "apps/sdc/console/Words.h"
#include "apps/sdc/formats/Formats.h"
#include "apps/sdc/formats/OutputFile.h"
#include "apps/sdc/options/CommandLine.h"
#include "apps/sdc/plot/Plot.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/scan/Channels.h"
#include "apps/sdc/scan/Lane.h"
#include "apps/sdc/tty/Screen.h"
#include "support/Text.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace sdc {

namespace {

const Format& formatNamed(std::string_view name)
{
    return *std::ranges::find(formats, name, [](const Format& format) { return std::string_view(format.name); });
}

/// By the ending of a file's name, which may be a format's own; JSON for any that tells none.
const Format& formatOf(const std::string& file)
{
    const std::string ending = std::filesystem::path(file).extension().string();
    const auto hasName = [&](const Format& format) { return ending == "." + std::string(format.name); };
    if (const auto named = std::ranges::find_if(formats, hasName); named != std::end(formats)) {
        return *named;
    }
    const auto picture = file == "-" ? std::nullopt : plotFormat(file);
    return picture == PlotFormat::text ? formatNamed("table") : formatNamed(picture ? "plot" : "json");
}

} // namespace

void Console::save(const Words& words)
{
    if (words.size() < 2) {
        throw InvalidLine("the name of a file is missing, such as: save scan.json");
    }
    write(formatOf(words[1]), words[1]);
}

/// A picture in text fills the terminal that shows it.
void Console::plot(const Words& words)
{
    const Format& picture = formatNamed("plot");
    const std::string file = words.size() > 1 ? words[1] : "-";
    if (const std::string error = picture.nameError(file); !error.empty()) {
        throw InvalidLine(error);
    }
    write(picture, file);
}

Words Console::fileNames(const Words& words) const
{
    return filesBeginning(words.back());
}

/// Of one that is under way, what there is so far.
ScanResult Console::lastScan()
{
    const auto found = m_scans.find(m_channel);
    if (found == m_scans.end()) {
        throw InvalidLine(fmt::format(
            "there is no scan on channel {} yet; 'channel-scan-start' starts one", static_cast<std::uint32_t>(m_channel)));
    }
    const bool isUnderWay = m_terminal.isSweeping(m_channel);
    Lane lane = found->second.lane; // which goes on
    lane.setStatus(controller().getStatus());
    lane.measure(m_terminal);
    Sweep sweep = lane.finish();
    if (isUnderWay) {
        sweep.ending = Ending::failed;
        sweep.reason = "the scan was still under way";
    }
    const auto info = std::ranges::find(m_site.channels(), m_channel, &ChannelInfo::number);
    ScanResult result{.scenario = m_site.name(),
        .description = m_site.description(),
        .kind = found->second.kind,
        .provenance = m_site.provenance(m_setup.speed),
        .channels = {}};
    result.provenance.arguments = givenArguments();
    result.channels.push_back({.channel = static_cast<std::uint32_t>(m_channel),
        .unitTypeText = info->unitTypeText,
        .receiver = info->receiver,
        .plan = lane.plan(),
        .sweeps = {},
        .survey = {}});
    result.channels.front().add(std::move(sweep));
    return result;
}

void Console::write(const Format& format, const std::string& file)
{
    const ScanResult result = lastScan();
    const bool isSeen = file == "-";
    const bool isShown = isSeen && isTerminal(STDOUT_FILENO);
    const WriteOptions options{.file = file,
        .width = isShown ? terminalWidth(STDOUT_FILENO) : 0,
        .height = isShown ? terminalHeight(STDOUT_FILENO) : 0,
        .isColored = isSeen && usesColor(ColorMode::automatic, STDOUT_FILENO)};
    const auto writeTo = [&](std::ostream& stream) { writeResult(stream, format, result, options); };
    try {
        if (isSeen) {
            writeTo(m_output);
        } else {
            writeFile(file, writeTo);
        }
    } catch (const std::runtime_error& error) {
        throw ConsoleError(error.what(), EXIT_INTERNAL);
    }
    if (!isSeen) {
        const ChannelResult& channel = result.channels.front();
        m_output << fmt::format("{} of {} samples written to {}\n", channel.sweeps.front().samples.size(),
            channel.plan.samples, support::shown(file));
    }
}

} // namespace sdc
