#pragma once

#include "Platform/Radio/IRadioCapability.h"
#include "simulator/radio/Link.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <optional>
#include <string>

// The parts of which the check of a link is made.

namespace simulator {

/// Returns the link.
/// @throws std::invalid_argument that says why when a terminal cannot work with it
const Link& requirePossible(const Link& link);

constexpr double largestWord = std::numeric_limits<std::uint32_t>::max();
constexpr double longestTime_ms = 100000000000; ///< three years

/// A figure of a link and the range in which a terminal can work with it.
struct Quantity {
    const char* what;
    double value;
    double lowest;
    double highest;
    const char* unit;
};

/// Numbers in messages look alike whatever the global locale says.
std::string number(double value, const char* unit = "");

/// Empty when the figure is in its range. Not a number is in none.
std::string outOfRange(const Quantity& quantity);

/// The first that is not empty.
std::string firstOutOfRange(std::initializer_list<Quantity> quantities);

std::string wrongWayRound(const char* lowest, double low, const char* highest, double high, const char* unit);

std::optional<Complaint> complaint(std::string path, std::string text); ///< nothing for an empty text
std::string element(const char* list, std::size_t index);               ///< "emitters[0]"

std::optional<Complaint> checkEmitters(const Link& link);
std::optional<Complaint> checkFading(const Link& link);

/// What a controller plans its sweeps with.
struct PlanInputs {
    explicit PlanInputs(const Link& link)
        : parameters(link.frequencyParameters)
        , spacing_kHz(link.channelSpacing_kHz)
        , configured_kHz(link.rxFrequency_kHz)
        , mayBeLongHaul(link.properties.longHaul != 0)
    {
    }

    RadioFrequencyParameters parameters;
    std::uint32_t spacing_kHz;
    std::uint32_t configured_kHz;
    bool mayBeLongHaul; ///< before its first look at the properties a controller plans without
};

std::optional<Complaint> checkPlans(const PlanInputs& inputs);

std::optional<Complaint> checkFaults(const Link& link);

} // namespace simulator
