#include "simulator/radio/RadioPeers.h"

#include "Platform/Host/InterfaceBroker.h"
#include "Platform/Radio/IFrameFormat.h"
#include "Platform/Radio/IFrequencyController.h"
#include "Platform/Radio/IRadio.h"
#include "Platform/Radio/IRadioCapability.h"
#include "Platform/Radio/IRssiHandler.h"
#include "Platform/Radio/ISystemPowerController.h"

#include <stdexcept>

namespace simulator {

namespace {

/// Holds copies: its owner, a module, may end at any time.
class PropertiesProvider : public IRadioPropertiesProvider {
public:
    explicit PropertiesProvider(const Link& link)
        : m_properties(link.properties)
        , m_unitTypeText(link.unitTypeText)
    {
    }

    std::int32_t getProperties(SDCProperties& properties) override
    {
        properties = m_properties;
        return 0;
    }

    void getUnitInfo(UnitInfo& unitInfo) override { unitInfo.typeText = m_unitTypeText; }

private:
    const SDCProperties m_properties;
    const std::string m_unitTypeText;
};

class PowerController : public ISystemPowerController {};

class FrameFormat : public IFrameFormat {
public:
    explicit FrameFormat(const Link& link)
        : m_link(link)
    {
    }

    std::uint32_t getChannelSpacing() override { return m_link.channelSpacing_kHz; }

private:
    const Link& m_link;
};

class FrequencyController : public IFrequencyController {
public:
    FrequencyController(const Link& link, Receiver& receiver)
        : m_link(link)
        , m_receiver(receiver)
    {
    }

    std::uint32_t getRxFrequency() override { return m_link.rxFrequency_kHz; }
    std::int32_t setRxFrequency(std::uint32_t frequency_kHz, bool) override { return m_receiver.tune(frequency_kHz); }

private:
    const Link& m_link;
    Receiver& m_receiver;
};

class RssiHandler : public IRssiHandler {
public:
    explicit RssiHandler(Receiver& receiver)
        : m_receiver(receiver)
    {
    }

    std::int32_t readRssi(std::int32_t& rssi) override
    {
        rssi = m_receiver.reading();
        return 0;
    }

private:
    Receiver& m_receiver;
};

class RadioCapability : public IRadioCapability {
public:
    explicit RadioCapability(const Link& link)
        : m_link(link)
    {
    }

    RadioFrequencyParameters getFrequencyParameters() override { return m_link.frequencyParameters; }

private:
    const Link& m_link;
};

class Radio : public IRadio {
public:
    explicit Radio(const Link& link)
        : m_link(link)
    {
    }

    std::unique_ptr<IRadioPropertiesProvider> createPropertiesProvider() override
    {
        return std::make_unique<PropertiesProvider>(m_link);
    }

private:
    const Link& m_link;
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

/// Declared in the order of dependence: what ends first stands last. Registrations made before one that fails end with the
/// constructor that throws.
struct RadioPeers::Published {
    Published(const Link& theLink, RadioChannel channel, Clock& clock);

    const Link link;
    Receiver receiver;

    PowerController powerController;
    FrameFormat frameFormat;
    FrequencyController frequencyController;
    RssiHandler rssiHandler;
    RadioCapability radioCapability;
    Radio radio;

    Registration powerControllerEntry;
    Registration frameFormatEntry;
    Registration frequencyControllerEntry;
    Registration rssiHandlerEntry;
    Registration radioCapabilityEntry;
    Registration radioEntry;
};

RadioPeers::Published::Published(const Link& theLink, RadioChannel channel, Clock& clock)
    : link(theLink)
    , receiver(link, clock)
    , frameFormat(link)
    , frequencyController(link, receiver)
    , rssiHandler(receiver)
    , radioCapability(link)
    , radio(link)
    , powerControllerEntry(IInterface::interfaceName("ISystemPowerController", channel), powerController)
    , frameFormatEntry(IInterface::interfaceName("IFrameFormat", channel), frameFormat)
    , frequencyControllerEntry(IFrequencyController::interfaceName(static_cast<std::uint32_t>(channel)), frequencyController)
    , rssiHandlerEntry(IRssiHandler::interfaceName(static_cast<std::uint32_t>(channel)), rssiHandler)
    , radioCapabilityEntry(IRadioCapability::interfaceName(channel), radioCapability)
    , radioEntry(IRadio::interfaceName(static_cast<std::uint32_t>(channel)), radio)
{
}

RadioPeers::RadioPeers(const Link& link, RadioChannel channel, Clock& clock)
    : m_published(std::make_unique<Published>(link, channel, clock))
{
}

RadioPeers::~RadioPeers() = default;

const Receiver& RadioPeers::receiver() const
{
    return m_published->receiver;
}

} // namespace simulator
