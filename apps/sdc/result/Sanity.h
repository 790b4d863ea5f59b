#pragma once

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "apps/sdc/result/ReceiverData.h"
#include "apps/sdc/result/Sweep.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Whether readings can be what a receiver measured. Levels in hundredths of a dBm.

namespace sdc {

/// What is odd about one reading.
enum class SampleFlag : std::uint8_t {
    atFloor,         ///< the lowest that the controller stores: the level may be any below it
    aboveSaturation, ///< where readings level off: the level may be any above it
    refused,         ///< no reading: the controller stores 0.00 dBm when the radio refuses to read
    repeated,        ///< to the hundredth the reading before; now and then this comes about by chance
};
inline constexpr std::array<std::string_view, 4> sampleFlags{"at_floor", "above_saturation", "refused", "repeated"};

constexpr std::string_view toText(SampleFlag flag)
{
    return sampleFlags.at(static_cast<std::size_t>(flag));
}

class SampleFlags {
public:
    void set(SampleFlag flag) { m_bits = static_cast<std::uint8_t>(m_bits | bitOf(flag)); }
    bool has(SampleFlag flag) const { return (m_bits & bitOf(flag)) != 0; }
    bool areNone() const { return m_bits == 0; }

    /// Those that are set, in the order of the enumerators.
    std::vector<SampleFlag> listed() const;

    bool operator==(const SampleFlags&) const = default;

private:
    static constexpr unsigned bitOf(SampleFlag flag) { return 1U << static_cast<unsigned>(flag); }

    std::uint8_t m_bits = 0;
};

/// @param before  the reading before it, of the same sweep or the one before; null for the first
SampleFlags flagsOf(const Sample& sample, const Sample* before, const ReceiverData& receiver);

/// Whether a reading is a level at all: not a refused one, nor one far above where readings level off.
bool isLevel(const Sample& sample, const ReceiverData& receiver);

/// The readings that are levels, in the order taken.
std::vector<SDCResult> levelsIn(const Sweep& sweep, const ReceiverData& receiver);

/// What is odd about the readings of a channel.
enum class Oddity : std::uint8_t {
    allEqual,        ///< all of them to the hundredth
    tooLow,          ///< at the floor of readings, far below the receiver's own noise
    stuck,           ///< many in a row are equal to the hundredth
    aboveSaturation, ///< as of one reading
    refused,         ///< as of one reading
};
inline constexpr std::array<std::string_view, 5> oddities{"all_equal", "too_low", "stuck", "above_saturation", "refused"};

struct Finding {
    Oddity oddity{};
    std::size_t readings = 0; ///< so many of them
    std::size_t of = 0;       ///< so many there were
    std::int32_t level = 0;   ///< the one repeated, the floor, or where the receiver saturates

    bool operator==(const Finding&) const = default;
};

/// For people, as in "all 13 readings are equal, -45.12 dBm: the receiver may be dead".
std::string sentenceOf(const Finding& finding);

/// Looks at all readings of a channel, in memory that does not grow with their number.
///
/// Readings that scatter by 0.3 dB are equal to the one before, to the hundredth, in one case of a hundred; six in a row in
/// less than one of a thousand million. The floor is no sign of anything where the receiver's own noise lies near it or
/// below, as with filters narrower than some 10 MHz.
class ReceiverCheck {
public:
    void add(const Sweep& sweep, const ReceiverData& receiver);

    /// In the order of the oddities; none of a receiver that seems well.
    std::vector<Finding> findings() const;

    /// Whether the readings can tell quiet from a dead receiver: with nothing but one and the same reading they cannot, even
    /// where that may well be right.
    bool canTell() const;

private:
    void addReading(const Sample& sample, const ReceiverData& receiver);
    bool areAllEqual() const { return m_longestRun.count + m_refused == m_readings; }

    struct Run {
        std::int32_t level = 0;
        std::size_t count = 0;
    };

    std::size_t m_readings = 0;
    std::size_t m_atFloor = 0;
    std::size_t m_aboveSaturation = 0;
    std::size_t m_refused = 0;
    Run m_run;        ///< of equal readings, up to now
    Run m_longestRun; ///< so far
    Run m_longestRunAboveFloor;
    double m_quiet = 0.0; ///< what the receiver's own noise reads
    std::int32_t m_saturation = 0;
};

} // namespace sdc
