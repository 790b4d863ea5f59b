#pragma once

#include "Platform/Host/RadioChannel.h"
#include "host/Clock.h"
#include "simulator/radio/Link.h"
#include "simulator/radio/Receiver.h"

#include <memory>

namespace simulator {

/// The six interfaces through which modules see the radio of one channel, published with the InterfaceBroker for as long as
/// this object lives.
///
/// Make and end it on the host's thread. Modules keep pointers to the interfaces, so end it after the modules of its
/// channel. A properties provider that a module has taken over stands alone: it may end before or after. The interfaces, and
/// all operations here, may be used from any thread.
///
/// Calls go wrong as the link's faults say. An exception of theirs is a std::runtime_error with the fault's text.
class RadioPeers {
public:
    /// The link is copied; the clock must outlive the peers.
    /// @throws std::invalid_argument when a terminal cannot work with the link; std::runtime_error that names the interface
    /// when one of the names is taken. Nothing stays published then.
    RadioPeers(const Link& link, RadioChannel channel, host::Clock& clock);
    ~RadioPeers();

    RadioPeers(const RadioPeers&) = delete;
    RadioPeers& operator=(const RadioPeers&) = delete;

    /// The receiver itself: where it is tuned to now. IFrequencyController::getRxFrequency tells the configured frequency.
    const Receiver& receiver() const;

    /// Makes calls of an operation go wrong; for the fault the next call of it is the first. Faults that are there already
    /// come first where both match a call.
    /// @throws std::invalid_argument for a fault with which a terminal cannot work, alone or together with those there are
    void inject(const Fault& fault);

    /// Number of calls of an operation that have ended, those that went wrong included.
    std::uint64_t calls(Operation operation) const;

private:
    struct Published;

    std::unique_ptr<Published> m_published;
};

} // namespace simulator
