#pragma once

#include "host/Clock.h"
#include "simulator/radio/Fault.h"
#include "simulator/radio/Link.h"
#include "simulator/radio/Receiver.h"
#include "terminal/Peers.h"

#include <cstdint>
#include <memory>

namespace simulator {

/// A simulated radio that serves one link: the six peers through which modules see it.
///
/// Modules keep pointers to the peers, so end the radio after the terminal that it is plugged into. A properties provider
/// that a module has taken over stands alone: it may end before or after. The peers, and all operations here, may be used
/// from any thread.
///
/// Calls go wrong as the link's faults say. An exception of theirs is a std::runtime_error with the fault's text.
class Radio {
public:
    /// The link is copied; the clock must outlive the radio.
    /// @throws std::invalid_argument when a terminal cannot work with the link
    Radio(const Link& link, host::Clock& clock);
    ~Radio();

    Radio(const Radio&) = delete;
    Radio& operator=(const Radio&) = delete;

    terminal::Peers peers() const;

    /// The receiver itself: where it is tuned to now. IFrequencyController::getRxFrequency tells the configured frequency.
    const Receiver& receiver() const;

    /// Makes calls of an operation go wrong; for the fault the next call of it is the first. Faults that are there already
    /// come first where both match a call.
    /// @throws std::invalid_argument for a fault with which a terminal cannot work, alone or together with those there are
    void inject(const Fault& fault);

    /// Number of calls of an operation that have ended, those that went wrong included.
    std::uint64_t calls(Operation operation) const;

private:
    struct Parts;

    std::unique_ptr<Parts> m_parts;
};

} // namespace simulator
