#include "terminal/PublishedPeers.h"

#include "Platform/Host/IInterface.h"
#include "Platform/Host/InterfaceBroker.h"
#include "Platform/Radio/IFrameFormat.h" // IWYU pragma: keep (a cast needs it)
#include "Platform/Radio/IFrequencyController.h"
#include "Platform/Radio/IRadio.h"
#include "Platform/Radio/IRadioCapability.h"
#include "Platform/Radio/IRssiHandler.h"
#include "Platform/Radio/ISystemPowerController.h" // IWYU pragma: keep (a cast needs it)

#include <atomic>
#include <stdexcept>
#include <string>

namespace terminal {

namespace {

/// Stands before a radio's frequency controller and counts the calls.
class CountingFrequencyController : public IFrequencyController {
public:
    explicit CountingFrequencyController(IFrequencyController& radio)
        : m_radio(radio)
    {
    }

    std::uint32_t getRxFrequency() override
    {
        const CountedCall call(getCalls);
        return m_radio.getRxFrequency();
    }

    std::int32_t setRxFrequency(std::uint32_t frequency_kHz, bool flag) override
    {
        const CountedCall call(setCalls);
        return m_radio.setRxFrequency(frequency_kHz, flag);
    }

    std::atomic<std::uint64_t> getCalls{0};
    std::atomic<std::uint64_t> setCalls{0};

private:
    /// Counts at its end, however the call ends.
    class CountedCall {
    public:
        explicit CountedCall(std::atomic<std::uint64_t>& calls)
            : m_calls(calls)
        {
        }
        ~CountedCall() { ++m_calls; }
        CountedCall(const CountedCall&) = delete;
        CountedCall& operator=(const CountedCall&) = delete;

    private:
        std::atomic<std::uint64_t>& m_calls;
    };

    IFrequencyController& m_radio;
};

/// One entry in the broker, for as long as it lives.
class Registration {
public:
    Registration(const std::string& name, IInterface& interface)
        : m_name(name)
    {
        if (InterfaceBroker::getInstance().registerInterface(name, &interface) != 0) {
            throw std::runtime_error("cannot register the interface " + name + ": the name is taken");
        }
    }
    ~Registration() { InterfaceBroker::getInstance().unregisterInterface(m_name); }

    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;

private:
    const std::string m_name;
};

} // namespace

/// Registrations made before one that fails end with the constructor that throws.
struct PublishedPeers::Entries {
    explicit Entries(const Channel& channel);

    CountingFrequencyController counting;
    Registration systemPowerController;
    Registration frameFormat;
    Registration frequencyController;
    Registration rssiHandler;
    Registration radioCapability;
    Registration radio;
};

PublishedPeers::Entries::Entries(const Channel& channel)
    : counting(channel.peers.frequencyController)
    , systemPowerController(
          IInterface::interfaceName("ISystemPowerController", channel.number), channel.peers.systemPowerController)
    , frameFormat(IInterface::interfaceName("IFrameFormat", channel.number), channel.peers.frameFormat)
    , frequencyController(IFrequencyController::interfaceName(static_cast<std::uint32_t>(channel.number)), counting)
    , rssiHandler(IRssiHandler::interfaceName(static_cast<std::uint32_t>(channel.number)), channel.peers.rssiHandler)
    , radioCapability(IRadioCapability::interfaceName(channel.number), channel.peers.radioCapability)
    , radio(IRadio::interfaceName(static_cast<std::uint32_t>(channel.number)), channel.peers.radio)
{
}

PublishedPeers::PublishedPeers(const Channel& channel)
    : m_entries(std::make_unique<Entries>(channel))
{
}

PublishedPeers::~PublishedPeers() = default;

std::uint64_t PublishedPeers::getRxFrequencyCalls() const
{
    return m_entries->counting.getCalls;
}

std::uint64_t PublishedPeers::setRxFrequencyCalls() const
{
    return m_entries->counting.setCalls;
}

} // namespace terminal
