#include "apps/sdc/formats/Outputs.h"

#include "apps/sdc/formats/OutputFile.h"
#include "apps/sdc/formats/Target.h"
#include "apps/sdc/options/CommandLine.h"
#include "apps/sdc/result/ResultFile.h"
#include "support/Text.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <iterator>
#include <map>
#include <ostream>
#include <stdexcept>
#include <utility>

namespace sdc {

namespace {

constexpr const char* standardOutput = "-";

/// The samples of all sweeps.
bool needsAll(const Output& output)
{
    return output.format->keep == Keep::all;
}

WriteOptions writeOptions(const Output& output, const OutputOptions& options)
{
    const bool isStandard = output.file == standardOutput;
    const bool isShown = isStandard && isTerminal(STDOUT_FILENO);
    const bool hasRows = output.format->write == writeTable && options.rows;
    return {.file = output.file,
        .rows = options.rows.value_or(0),
        .width = isShown ? terminalWidth(STDOUT_FILENO) : 0,
        .height = isShown && !hasRows ? terminalHeight(STDOUT_FILENO) : 0,
        .isColored = isStandard && usesColor(options.color, STDOUT_FILENO),
        .trace = options.trace};
}

std::string optionOf(const Output& output)
{
    return std::string("--") + output.format->name;
}

UsageError sharedFile(const std::string& one, const std::string& other, const std::string& file)
{
    return UsageError(
        fmt::format("{} and {} both write to {}; give each a file of its own", one, other, support::shown(file)));
}

/// "out.csv" is "out-2.csv" for channel 2.
std::string numbered(const std::string& file, std::uint32_t channel)
{
    const std::filesystem::path path(file);
    const std::string name = fmt::format("{}-{}{}", path.stem().string(), channel, path.extension().string());
    return (path.parent_path() / name).string();
}

} // namespace

bool usesStandardOutput(const std::vector<Output>& outputs)
{
    return std::ranges::find(outputs, standardOutput, &Output::file) != outputs.end();
}

bool isLiveOnTerminal(const std::vector<Output>& outputs)
{
    const auto isLive = [](const Output& output) {
        return output.format->makeLive != nullptr && output.file == standardOutput;
    };
    return isTerminal(STDOUT_FILENO) && std::ranges::any_of(outputs, isLive);
}

Keep keepFor(const std::vector<Output>& outputs)
{
    Keep keep = Keep::last;
    for (const Output& output : outputs) {
        keep = std::max(keep, output.format->keep);
    }
    return keep;
}

Outputs::Outputs(OutputOptions options, std::vector<std::uint32_t> channels, std::function<void(const std::string&)> tell)
    : m_options(std::move(options))
    , m_channels(std::move(channels))
    , m_tell(std::move(tell))
{
    if (m_options.outputs.empty()) {
        m_options.outputs.push_back({&formats[0], standardOutput});
    }
    // Standard output, at most one of them, comes last.
    const auto own = std::ranges::find(m_options.outputs, standardOutput, &Output::file);
    if (own != m_options.outputs.end()) {
        std::rotate(own, std::next(own), m_options.outputs.end());
    }
    checkEachHasItsOwn();
    for (const Output& output : m_options.outputs) {
        for (const std::string& file : filesOf(output)) {
            Target(file).check();
        }
        const std::string obstacle = output.format->obstacle == nullptr ? "" : output.format->obstacle(output.file);
        if (!obstacle.empty()) {
            throw std::runtime_error(optionOf(output) + ": " + obstacle);
        }
    }
}

/// One, or one for each channel.
std::vector<std::string> Outputs::filesOf(const Output& output) const
{
    if (!output.format->isPerChannel || m_channels.size() < 2) {
        return {output.file};
    }
    const Target target(output.file);
    if (!target.identity()) {
        return std::vector(m_channels.size(), output.file); // a device
    }
    if (!target.isFile()) {
        throw UsageError(fmt::format("{}: the rows of several channels need a file each; write the name of a file, of which "
                                     "others are made with the channels' numbers, or choose one --channel",
            optionOf(output)));
    }
    std::vector<std::string> files;
    for (const std::uint32_t channel : m_channels) {
        files.push_back(numbered(output.file, channel));
    }
    return files;
}

/// Two outputs into one file would leave the last of them, or a mixture. What the shell has opened as standard output may go
/// by the name of an output, too.
void Outputs::checkEachHasItsOwn() const
{
    std::map<FileIdentity, std::string> owners;
    const auto shells = usesStandardOutput(m_options.outputs) ? std::nullopt : Target(standardOutput).identity();
    for (const Output& output : m_options.outputs) {
        for (const std::string& file : filesOf(output)) {
            const Target target(file);
            const auto identity = target.identity();
            if (identity && !owners.try_emplace(*identity, optionOf(output)).second) {
                throw sharedFile(owners.at(*identity), optionOf(output), file);
            }
            if (identity && identity == shells && target.isFile()) {
                throw sharedFile(optionOf(output), "standard output", file);
            }
        }
    }
}

void Outputs::open(const ScanResult& result)
{
    m_result = &result;
    for (const Output& output : m_options.outputs) {
        if (output.format->makeLive != nullptr) {
            Live& live = m_live.emplace_back();
            std::vector<Lines*> lines;
            for (const std::string& file : filesOf(output)) {
                lines.push_back(live.files.emplace_back(std::make_unique<LiveFile>(file)).get());
            }
            live.format = output.format->makeLive(result, std::move(lines));
        }
    }
}

std::vector<Sink*> Outputs::sinks()
{
    std::vector<Sink*> sinks;
    for (const Live& live : m_live) {
        sinks.push_back(live.format.get());
    }
    sinks.push_back(this);
    return sinks;
}

Keep Outputs::keep() const
{
    std::vector<Output> left = m_options.outputs;
    if (m_isFull) {
        std::erase_if(left, needsAll);
    }
    return keepFor(left);
}

bool Outputs::isAnyWanted() const
{
    const auto isWhole = [this](const Output& output) {
        return output.format->makeLive == nullptr && !(needsAll(output) && m_isFull);
    };
    const auto isOpen = [](const Live& live) {
        return std::ranges::any_of(live.files, [](const auto& file) { return file->isOpen(); });
    };
    return std::ranges::any_of(m_options.outputs, isWhole) || std::ranges::any_of(m_live, isOpen);
}

/// A result that has become too large would be read by nobody, and its samples would fill the memory.
void Outputs::onSweepBegin(std::size_t, const ScanPlan&)
{
    if (keep() == Keep::all && m_kept >= mostSamplesInResult) {
        writeWhatIsFull();
        m_isFull = true;
    }
}

void Outputs::writeWhatIsFull()
{
    for (const Output& output : m_options.outputs) {
        if (needsAll(output)) {
            attempt([&] {
                writeWhole(output);
                throw std::runtime_error(fmt::format("{} ends with sweep {}: it is as large as a result may be; --jsonl and "
                                                     "--csv have no limit",
                    Target(output.file).shownName(), m_result->channels.front().survey.sweeps()));
            });
        }
    }
}

void Outputs::onSweepEnd(std::size_t, const Sweep& sweep)
{
    m_kept += sweep.samples.size() + samplesPerSweep;
    onPoll();
}

void Outputs::onPoll()
{
    for (const Live& live : m_live) {
        for (const auto& file : live.files) {
            attempt([&file] { file->pass(); });
        }
    }
}

void Outputs::finish(LiveFile& file)
{
    if (!file.finish()) {
        m_tell(file.name() + " keeps what it had: nothing was measured");
    }
}

/// Where one is waited for, the others have all there is.
void Outputs::onEnd(Ending)
{
    onPoll();
    for (const Live& live : m_live) {
        for (const auto& file : live.files) {
            attempt([&] { finish(*file); });
        }
    }
    for (const Output& output : m_options.outputs) {
        if (output.format->makeLive == nullptr && !(needsAll(output) && m_isFull)) {
            attempt([&] { writeWhole(output); });
        }
    }
}

void Outputs::attempt(const std::function<void()>& write)
{
    try {
        write();
    } catch (const std::exception& exception) {
        m_areAllWritten = false;
        m_tell(exception.what());
    }
}

void Outputs::writeWhole(const Output& output)
{
    try {
        writeFile(output.file,
            [&](std::ostream& stream) { output.format->write(stream, *m_result, writeOptions(output, m_options)); });
    } catch (const ReaderGone&) { // has had enough
    }
}

} // namespace sdc
