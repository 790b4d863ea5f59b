#pragma once

#include "tests/soak/ScanCheck.h"
#include "tests/support/Dice.h"

#include "host/Clock.h"
#include "simulator/Radios.h"
#include "terminal/Terminal.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace soak {

using tests::Dice;

/// What has been done so far.
struct Tally {
    std::uint64_t terminals = 0;
    std::uint64_t scans = 0;
    std::uint64_t stops = 0;
    std::uint64_t faults = 0; ///< injected
    std::uint64_t deaths = 0; ///< workers ended by an exception
};

/// One random terminal from its coming up to its going down, with all that happens to it in between.
class Round {
public:
    Round(const std::vector<simulator::Link>& links, std::uint64_t seed, Tally& tally);

    /// @throws SoakFailure when something does not hold that must
    void run();

private:
    /// One channel. Has dice of its own, so that the others' choices do not depend on when a stop reaches it.
    struct Lane {
        simulator::TerminalChannel channel;
        Dice dice;
        ScanRecord scan{};
        std::optional<simulator::Fault> startFault{};
        bool isAlive = true;
        bool isScanning = false;
    };

    bool bringUp();
    void plugIn(const std::vector<simulator::TerminalChannel>& channels);
    void bringUpInVain();
    void scanSome();
    void startSome();
    void injectSome(Lane& lane);
    void inject(Lane& lane, const simulator::Fault& fault);
    void askForProperties(Lane& lane);
    void start(Lane& lane);
    void accept(Lane& lane, const std::optional<simulator::Fault>& fault, terminal::ScanStart started);
    void acceptException(const Lane& lane, const std::optional<simulator::Fault>& fault, const std::exception& exception);
    void stop(Lane& lane);
    void finish(Lane& lane);
    void finishStopped();

    const std::vector<simulator::Link>& m_links;
    Dice m_dice;
    Tally& m_tally;
    std::unique_ptr<host::Clock> m_clock;
    std::vector<Lane> m_lanes;
    std::unique_ptr<simulator::Radios> m_radios;
    std::unique_ptr<terminal::Terminal> m_terminal;
};

} // namespace soak
