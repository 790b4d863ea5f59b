#pragma once

#include "terminal/Peers.h"

#include <cstdint>
#include <memory>

namespace terminal {

/// The peers of a channel, published with the InterfaceBroker for as long as this object lives, and what is asked of the
/// frequency controller among them counted.
///
/// Make and end it on the host's thread. Modules keep pointers to the interfaces, so end it after the modules of its
/// channel.
class PublishedPeers {
public:
    /// @throws std::runtime_error that names the interface when one of the names is taken. Nothing stays published then.
    explicit PublishedPeers(const Channel& channel);
    ~PublishedPeers();

    PublishedPeers(const PublishedPeers&) = delete;
    PublishedPeers& operator=(const PublishedPeers&) = delete;

    // Number of calls that have ended, also with a failure or an exception: what they did can be seen. Any thread.
    std::uint64_t getRxFrequencyCalls() const;
    std::uint64_t setRxFrequencyCalls() const;

private:
    struct Entries;

    std::unique_ptr<Entries> m_entries;
};

} // namespace terminal
