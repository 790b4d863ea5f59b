#include "apps/sdc/result/ResultFile.h"

#include "apps/sdc/result/ResultForm.h"
#include "support/Text.h"
#include "support/Time.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>
#include <system_error>
#include <utility>

namespace sdc {

namespace {

std::string inQuotes(std::string_view text)
{
    return "\"" + std::string(text) + "\"";
}

/// Goes through the sweeps of a channel.
class SweepCheck {
public:
    SweepCheck(const ChannelInFile& channel, std::string path, std::vector<std::string>& errors)
        : m_channel(channel)
        , m_path(std::move(path))
        , m_errors(errors)
    {
    }

    void check(std::size_t index)
    {
        const SweepInFile& sweep = m_channel.sweeps[index];
        m_sweepPath = m_path + ".sweeps[" + std::to_string(index) + "].";
        m_isLast = index + 1 == m_channel.sweeps.size();
        const auto samples = std::ssize(sweep.samples);
        expect(sweep.end >= sweep.start, "end", inQuotes(support::rfc3339(sweep.end)), "not before the start");
        expect(sweep.planned == m_channel.plan.samples, "planned", std::to_string(sweep.planned),
            std::to_string(m_channel.plan.samples) + ", as the plan says");
        expect(std::int64_t{sweep.taken} == samples, "taken", std::to_string(sweep.taken),
            std::to_string(samples) + ", the number of samples");
        checkEnding(sweep);
        checkFrequencies(sweep.samples);
    }

private:
    void expect(bool isRight, const std::string& place, const std::string& is, const std::string& right)
    {
        if (!isRight && m_errors.size() <= mostErrors) {
            m_errors.push_back(m_sweepPath + place + ": is " + is + "; must be " + right);
        }
    }

    void checkEnding(const SweepInFile& sweep)
    {
        const std::string ending = inQuotes(toText(sweep.ending));
        const bool isWhole = std::int64_t{sweep.taken} == sweep.planned;
        expect(sweep.ending != Ending::complete || !m_isLast || isWhole, "ending", ending,
            "stopped or failed, because " + std::to_string(sweep.taken) + " of " + std::to_string(sweep.planned)
                + " samples were taken");
        expect(
            sweep.reason.empty() || sweep.ending == Ending::failed, "ending", ending, "failed, because there is a reason");
    }

    /// One step from each sample to the next; of the last sweep, whose plan is known, the samples stand where the plan says.
    void checkFrequencies(const std::vector<SDCResult>& samples)
    {
        const auto frequency = [&samples](std::size_t index) { return std::int64_t{samples[index].frequency_kHz}; };
        const std::int64_t ownStep_kHz = samples.size() > 1 ? frequency(1) - frequency(0) : 0;
        const std::int64_t step_kHz = m_isLast ? m_channel.plan.step_kHz : ownStep_kHz;
        for (std::size_t index = 0; index < samples.size(); ++index) {
            const std::int64_t lowest_kHz = m_isLast ? m_channel.plan.lowest_kHz : frequency(0);
            const std::int64_t right_kHz = lowest_kHz + static_cast<std::int64_t>(index) * step_kHz;
            if (step_kHz >= 0 && frequency(index) == right_kHz) {
                continue;
            }
            expect(false, "samples[" + std::to_string(index) + "].frequency_kHz", std::to_string(frequency(index)),
                step_kHz < 0 ? "no lower than the one before"
                             : std::to_string(right_kHz) + " (steps of " + std::to_string(step_kHz) + " kHz)");
        }
    }

    const ChannelInFile& m_channel;
    std::string m_path;
    std::vector<std::string>& m_errors;
    std::string m_sweepPath;
    bool m_isLast = false;
};

/// Where a result that is of its form is at odds with itself: the first few places.
std::vector<std::string> contradictions(const ResultInFile& result)
{
    std::vector<std::string> errors;
    std::set<std::uint32_t> numbers;
    for (std::size_t index = 0; index < result.channels.size() && errors.size() <= mostErrors; ++index) {
        const ChannelInFile& channel = result.channels[index];
        const std::string path = "$.channels[" + std::to_string(index) + "]";
        if (!numbers.insert(channel.channel).second) {
            errors.push_back(
                path + ".channel: is " + std::to_string(channel.channel) + "; must be a number that no other channel has");
        }
        SweepCheck check(channel, path, errors);
        for (std::size_t sweep = 0; sweep < channel.sweeps.size() && errors.size() <= mostErrors; ++sweep) {
            check.check(sweep);
        }
    }
    return errors;
}

ChannelResult outOfFile(ChannelInFile&& channel)
{
    return {.channel = channel.channel,
        .unitTypeText = std::move(channel.unitTypeText),
        .filterWidth_kHz = channel.filterWidth_kHz,
        .plan = channel.plan,
        .sweeps = {std::move_iterator(channel.sweeps.begin()), std::move_iterator(channel.sweeps.end())}};
}

/// Of many errors the first are told.
void throwIfAny(std::vector<std::string> errors, const std::string& file)
{
    if (!errors.empty()) {
        const bool hasMore = errors.size() > mostErrors;
        errors.resize(std::min(errors.size(), mostErrors));
        throw ResultError(support::listed(file, errors) + (hasMore ? "\n" + file + ": and more" : ""));
    }
}

std::string readAll(std::istream& stream, const std::string& file)
{
    constexpr std::size_t largest_MiB = 64;
    try {
        return support::readToEnd(stream, largest_MiB);
    } catch (const std::runtime_error& error) {
        throw ResultError(file + ": " + error.what());
    }
}

} // namespace

ScanResult parseResult(std::string_view text, const std::string& file)
{
    ResultInFile read;
    throwIfAny(readJson(text, resultForm(), &read), file);
    throwIfAny(contradictions(read), file);
    ScanResult result{
        .scenario = std::move(read.scenario), .description = std::move(read.description), .kind = read.kind, .channels = {}};
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
    if (std::filesystem::is_directory(file)) {
        throw ResultError(name + ": is a folder; a file that 'sdc scan --json' wrote is needed");
    }
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw ResultError(name + ": cannot be read: " + std::generic_category().message(errno));
    }
    return parseResult(readAll(stream, name), name);
}

} // namespace sdc
