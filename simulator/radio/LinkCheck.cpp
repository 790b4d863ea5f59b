#include "simulator/radio/LinkChecks.h"

#include <charconv>
#include <cstddef>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace simulator {

std::string number(double value, const char* unit)
{
    char text[32];
    const auto result = std::to_chars(std::begin(text), std::end(text), value, std::chars_format::general, 12);
    return std::string(std::begin(text), result.ptr) + unit;
}

std::string outOfRange(const Quantity& quantity)
{
    const auto& [what, value, lowest, highest, unit] = quantity;
    if (lowest <= value && value <= highest) {
        return {};
    }
    return std::string("the ") + what + " is " + number(value, unit) + "; it must be " + number(lowest) + " to "
        + number(highest, unit);
}

std::string firstOutOfRange(std::initializer_list<Quantity> quantities)
{
    for (const Quantity& quantity : quantities) {
        std::string why = outOfRange(quantity);
        if (!why.empty()) {
            return why;
        }
    }
    return {};
}

std::string wrongWayRound(const char* lowest, double low, const char* highest, double high, const char* unit)
{
    return std::string("the ") + lowest + ", " + number(low, unit) + ", lies above the " + highest + ", "
        + number(high, unit) + "; it must not";
}

std::optional<Complaint> complaint(std::string path, std::string text)
{
    return text.empty() ? std::nullopt : std::optional(Complaint{std::move(path), std::move(text)});
}

std::string element(const char* list, std::size_t index)
{
    return std::string(list) + '[' + std::to_string(index) + ']';
}

namespace {

std::optional<Complaint> checkReceiver(const Link& link)
{
    const struct {
        const char* path;
        Quantity quantity;
    } rows[] = {
        {"receiver.filter_kHz", {"receive filter's width", link.filterWidth_kHz, 1, 10000000, " kHz"}},
        {"receiver.noise_figure_dB", {"noise figure", link.noiseFigure_dB, 0, 50, " dB"}},
        {"receiver.settling_ms", {"settling time", link.settlingTime_ms, 0.01, 60000, " ms"}},
        {"receiver.jitter_dB", {"jitter", link.jitter_dB, 0, 20, " dB"}},
        {"receiver.ultimate_rejection_dB", {"ultimate rejection", link.ultimateRejection_dB, 0, 300, " dB"}},
        {"receiver.saturation_dBm", {"saturation", link.saturation_dBm, -200, 200, " dBm"}},
    };
    for (const auto& [path, quantity] : rows) {
        if (auto why = complaint(path, outOfRange(quantity))) {
            return why;
        }
    }
    return std::nullopt;
}

std::optional<Complaint> checkPlansOfLink(const Link& link)
{
    return checkPlans(PlanInputs(link));
}

} // namespace

std::optional<Complaint> whyImpossible(const Link& link)
{
    for (const auto check : {checkPlansOfLink, checkReceiver, checkEmitters, checkFading, checkFaults}) {
        if (auto why = check(link)) {
            return why;
        }
    }
    return std::nullopt;
}

const Link& requirePossible(const Link& link)
{
    if (const auto why = whyImpossible(link)) {
        throw std::invalid_argument(why->path + ": " + why->text);
    }
    return link;
}

} // namespace simulator
