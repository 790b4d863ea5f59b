#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <stdexcept>

/// The n-th call of an operation goes wrong: the same script for the fake peers and for what is expected of the controller.
namespace tests {

enum class Operation : std::uint8_t {
    getChannelSpacing,
    getRxFrequency,
    getFrequencyParameters,
    getUnitInfo,
    getProperties,
    setRxFrequency,
    readRssi,
    getSleepService,
    sleepMs,
};
constexpr std::size_t nrOfOperations = 9;

enum class Misbehaviour : std::uint8_t {
    refuses,        ///< answers 32768 where there is a code, and leaves undone what it was asked for
    answersOddly,   ///< a code below zero, a level far below the floor, no type text
    throwsStandard, ///< std::runtime_error "peer"
    throwsOther,    ///< an int
};
constexpr std::size_t nrOfMisbehaviours = 4;

struct Fault {
    Operation operation{};
    std::uint32_t nth = 1; ///< counted from 1, over the life of all controllers of one run
    Misbehaviour misbehaviour{};

    bool operator==(const Fault&) const = default;
};

inline std::ostream& operator<<(std::ostream& stream, const Fault& fault)
{
    constexpr std::array<const char*, nrOfOperations> operations{"getChannelSpacing", "getRxFrequency",
        "getFrequencyParameters", "getUnitInfo", "getProperties", "setRxFrequency", "readRssi", "getSleepService",
        "sleepMs"};
    constexpr std::array<const char*, nrOfMisbehaviours> misbehaviours{
        "refuses", "answersOddly", "throwsStandard", "throwsOther"};
    return stream << operations.at(static_cast<std::size_t>(fault.operation)) << " no. " << fault.nth << ' '
                  << misbehaviours.at(static_cast<std::size_t>(fault.misbehaviour));
}

/// Counts the calls of one run and says which of them is to go wrong.
class FaultScript {
public:
    explicit FaultScript(std::optional<Fault> fault = {})
        : m_fault(fault)
    {
    }

    /// A call of the operation. Throws where the fault is that it throws.
    /// @return whether, and how, this call is to go wrong otherwise
    std::optional<Misbehaviour> call(Operation operation)
    {
        const std::uint32_t number = ++m_calls.at(static_cast<std::size_t>(operation));
        if (!m_fault || m_fault->operation != operation || m_fault->nth != number) {
            return {};
        }
        m_hasStruck = true;
        if (m_fault->misbehaviour == Misbehaviour::throwsStandard) {
            throw std::runtime_error("peer");
        }
        if (m_fault->misbehaviour == Misbehaviour::throwsOther) {
            throw 1;
        }
        return m_fault->misbehaviour;
    }

    bool hasStruck() const { return m_hasStruck; }

    void plan(const Fault& fault)
    {
        m_fault = fault;
        m_fault->nth += m_calls.at(static_cast<std::size_t>(fault.operation)); // from now on
    }

private:
    std::optional<Fault> m_fault;
    std::array<std::uint32_t, nrOfOperations> m_calls{};
    bool m_hasStruck = false;
};

} // namespace tests
