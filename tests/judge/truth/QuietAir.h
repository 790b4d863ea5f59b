#pragma once

#include "simulator/radio/Emitters.h"
#include "simulator/radio/Link.h"
#include "tests/judge/Answer.h"
#include "tests/judge/trial/Scan.h"

#include <cstdint>
#include <span>
#include <vector>

namespace judge {

using Emitters = std::vector<simulator::Emitter>;

/// What the receiver of a link would read without jitter and faults, with any set of emitters on the air.
class QuietAir {
public:
    QuietAir(const simulator::Link& link, const Course& course);

    const simulator::Link& link() const { return m_link; }
    const Course& course() const { return m_course; }
    const Emitters& emitters() const { return m_link.emitters; } ///< all

    /// As the controller stores it, at some samples, ascending.
    std::vector<std::int32_t> readings(const Emitters& emitters, std::span<const std::int64_t> samples) const;

    /// The receiver's own noise, as the controller stores it.
    std::int32_t noise() const;

    double readAt_ms(std::int64_t sample) const;

private:
    simulator::Link m_link;
    const Course m_course;
};

/// A level as the controller stores it.
std::int32_t stored(double level_dBm);

/// What an emitter that is always on is called. A line that moves by more than half a channel sweeps.
sdc::InterferenceKind natureOf(const simulator::Emitter& emitter, double spacing_kHz);

/// Whether it is as wide as two channels or wider, so that nobody can say where it ends.
bool looksWide(const simulator::Emitter& emitter, double spacing_kHz);

} // namespace judge
