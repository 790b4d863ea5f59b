#pragma once

#include "support/Fields.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace simulator {

/// The operations of the radio peers that can be made to fail.
enum class Operation : std::uint8_t {
    setRxFrequency,
    readRssi,
    getRxFrequency,
    getChannelSpacing,
    getFrequencyParameters,
    createPropertiesProvider,
    getProperties,
    getUnitInfo,
};

/// Their names in scenario files and messages.
inline constexpr std::array<std::string_view, 8> operationNames{"setRxFrequency", "readRssi", "getRxFrequency",
    "getChannelSpacing", "getFrequencyParameters", "createPropertiesProvider", "getProperties", "getUnitInfo"};

/// What a faulty call does.
enum class FaultAction : std::uint8_t {
    refuse, ///< returns 32768 and does nothing: setRxFrequency, readRssi, getProperties
    fail,   ///< throws std::runtime_error: every operation
    answer, ///< answers something odd: setRxFrequency (its result code; the receiver is tuned all the same), readRssi (the
            ///< reading), getRxFrequency, getChannelSpacing (the value), getUnitInfo (the text)
    stick,  ///< setRxFrequency: returns 0, the receiver does not move. readRssi: the reading before once more; the first
            ///< reading of all has none before it and is taken
};

inline constexpr std::array<std::string_view, 4> faultActionNames{"refuse", "throw", "answer", "stick"};

/// Calls of one operation that go wrong.
struct Fault {
    static constexpr std::uint64_t all = std::numeric_limits<std::uint64_t>::max();

    Operation operation{};
    FaultAction action{};
    std::uint64_t firstCall = 1; ///< the first call that goes wrong; the first call of all is 1
    std::uint64_t calls = 1;     ///< number of calls in a row that go wrong; `all`: every one from the first on
    std::int64_t value = 0;      ///< what a number is answered with: signed 32-bit for a result code or a reading, unsigned
                                 ///< 32-bit for a frequency or the spacing
    std::string text{}; ///< what the exception says, or the unit type text that is answered. For an exception without
                        ///< a text: the operation and the call, as in "simulated fault in setRxFrequency, call 3"

    static const support::Record<Fault>& record();
};

/// Whether the fault's value is what a radio word is answered with: the configured frequency, or the channel spacing.
bool answersWithWord(const Fault& fault);

constexpr std::string_view toString(Operation operation)
{
    return operationNames.at(static_cast<std::size_t>(operation));
}

constexpr std::string_view toString(FaultAction action)
{
    return faultActionNames.at(static_cast<std::size_t>(action));
}

/// Whether an operation can do that.
bool knows(Operation operation, FaultAction action);

} // namespace simulator
