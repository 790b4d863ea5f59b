#include "apps/sdc/results/ResultCheck.h"

#include "apps/sdc/results/ResultWords.h"
#include "apps/sdc/results/TimeText.h"

#include <set>

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
        expect(sweep.end >= sweep.start, "end", inQuotes(rfc3339(sweep.end)), "not before the start");
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

} // namespace

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

} // namespace sdc
