#include "simulator/radio/Radio.h"

#include "simulator/radio/FaultPlan.h"

#include "Platform/Host/ResultCode.h"
#include "Platform/Radio/IFrameFormat.h"
#include "Platform/Radio/IFrequencyController.h"
#include "Platform/Radio/IRadio.h"
#include "Platform/Radio/IRadioCapability.h"
#include "Platform/Radio/IRssiHandler.h"
#include "Platform/Radio/ISystemPowerController.h"
#include "simulator/radio/Fault.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace simulator {

namespace {

/// Holds copies and shares the faults: its owner, a module, may end at any time.
class PropertiesProvider : public IRadioPropertiesProvider {
public:
    PropertiesProvider(const Link& link, std::shared_ptr<FaultPlan> faults)
        : m_properties(link.properties)
        , m_unitTypeText(link.unitTypeText)
        , m_faults(std::move(faults))
    {
    }

    std::int32_t getProperties(SDCProperties& properties) override
    {
        const FaultPlan::Call call(*m_faults, Operation::getProperties);
        if (call.does(FaultAction::refuse)) {
            return PLX_RC_FAILED;
        }
        properties = m_properties;
        return PLX_RC_OK;
    }

    void getUnitInfo(UnitInfo& unitInfo) override
    {
        const FaultPlan::Call call(*m_faults, Operation::getUnitInfo);
        unitInfo.typeText = call.textOr(m_unitTypeText);
    }

private:
    const SDCProperties m_properties;
    const std::string m_unitTypeText;
    const std::shared_ptr<FaultPlan> m_faults;
};

class PowerController : public ISystemPowerController {};

class FrameFormat : public IFrameFormat {
public:
    FrameFormat(const Link& link, FaultPlan& faults)
        : m_channelSpacing_kHz(link.channelSpacing_kHz)
        , m_faults(faults)
    {
    }

    std::uint32_t getChannelSpacing() override
    {
        const FaultPlan::Call call(m_faults, Operation::getChannelSpacing);
        return static_cast<std::uint32_t>(call.valueOr(m_channelSpacing_kHz));
    }

private:
    const std::uint32_t m_channelSpacing_kHz;
    FaultPlan& m_faults;
};

class FrequencyController : public IFrequencyController {
public:
    FrequencyController(const Link& link, Receiver& receiver, FaultPlan& faults)
        : m_rxFrequency_kHz(link.rxFrequency_kHz)
        , m_receiver(receiver)
        , m_faults(faults)
    {
    }

    std::uint32_t getRxFrequency() override
    {
        const FaultPlan::Call call(m_faults, Operation::getRxFrequency);
        return static_cast<std::uint32_t>(call.valueOr(m_rxFrequency_kHz));
    }

    std::int32_t setRxFrequency(std::uint32_t frequency_kHz, bool) override
    {
        const FaultPlan::Call call(m_faults, Operation::setRxFrequency);
        if (call.does(FaultAction::refuse)) {
            return PLX_RC_FAILED;
        }
        if (call.does(FaultAction::stick)) {
            return PLX_RC_OK;
        }
        return static_cast<std::int32_t>(call.valueOr(m_receiver.tune(frequency_kHz)));
    }

private:
    const std::uint32_t m_rxFrequency_kHz;
    Receiver& m_receiver;
    FaultPlan& m_faults;
};

class RssiHandler : public IRssiHandler {
public:
    RssiHandler(Receiver& receiver, FaultPlan& faults)
        : m_receiver(receiver)
        , m_faults(faults)
    {
    }

    std::int32_t readRssi(std::int32_t& rssi) override
    {
        const FaultPlan::Call call(m_faults, Operation::readRssi);
        if (call.does(FaultAction::refuse)) {
            return PLX_RC_FAILED;
        }
        const std::lock_guard<std::mutex> guard(m_guard);
        if (call.does(FaultAction::answer)) {
            m_last = static_cast<std::int32_t>(call.valueOr(0));
        } else if (!call.does(FaultAction::stick) || !m_last) {
            m_last = m_receiver.reading();
        }
        rssi = *m_last;
        return PLX_RC_OK;
    }

private:
    Receiver& m_receiver;
    FaultPlan& m_faults;
    std::mutex m_guard;
    std::optional<std::int32_t> m_last; ///< what was read before
};

class RadioCapability : public IRadioCapability {
public:
    RadioCapability(const Link& link, FaultPlan& faults)
        : m_parameters(link.frequencyParameters)
        , m_faults(faults)
    {
    }

    RadioFrequencyParameters getFrequencyParameters() override
    {
        const FaultPlan::Call call(m_faults, Operation::getFrequencyParameters);
        return m_parameters;
    }

private:
    const RadioFrequencyParameters m_parameters;
    FaultPlan& m_faults;
};

class Unit : public IRadio {
public:
    Unit(const Link& link, std::shared_ptr<FaultPlan> faults)
        : m_link(link)
        , m_faults(std::move(faults))
    {
    }

    std::unique_ptr<IRadioPropertiesProvider> createPropertiesProvider() override
    {
        const FaultPlan::Call call(*m_faults, Operation::createPropertiesProvider);
        return std::make_unique<PropertiesProvider>(m_link, m_faults);
    }

private:
    const Link& m_link;
    const std::shared_ptr<FaultPlan> m_faults;
};

Link withoutEmitters(const Link& link)
{
    Link rest = link;
    rest.emitters.clear();
    rest.emitters.shrink_to_fit();
    return rest;
}

} // namespace

/// Declared in the order of dependence.
struct Radio::Parts {
    Parts(const Link& theLink, host::Clock& clock);

    const Link link; ///< without its emitters, which may be large and are the receiver's
    Receiver receiver;

    std::mutex injecting;
    std::vector<Fault> knownFaults; ///< those of the link and those injected
    std::shared_ptr<FaultPlan> faults;

    PowerController powerController;
    FrameFormat frameFormat;
    FrequencyController frequencyController;
    RssiHandler rssiHandler;
    RadioCapability radioCapability;
    Unit unit;
};

Radio::Parts::Parts(const Link& theLink, host::Clock& clock)
    : link(withoutEmitters(theLink))
    , receiver(theLink, clock)
    , knownFaults(theLink.faults)
    , faults(std::make_shared<FaultPlan>(theLink.faults))
    , frameFormat(link, *faults)
    , frequencyController(link, receiver, *faults)
    , rssiHandler(receiver, *faults)
    , radioCapability(link, *faults)
    , unit(link, faults)
{
}

Radio::Radio(const Link& link, host::Clock& clock)
    : m_parts(std::make_unique<Parts>(link, clock))
{
}

Radio::~Radio() = default;

terminal::Peers Radio::peers() const
{
    Parts& parts = *m_parts;
    return {parts.powerController, parts.frameFormat, parts.frequencyController, parts.rssiHandler, parts.radioCapability,
        parts.unit};
}

const Receiver& Radio::receiver() const
{
    return m_parts->receiver;
}

void Radio::inject(const Fault& fault)
{
    const std::lock_guard<std::mutex> guard(m_parts->injecting);
    Link link = m_parts->link;
    link.faults = m_parts->knownFaults;
    link.faults.push_back(fault);
    requirePossible(link);
    m_parts->knownFaults = std::move(link.faults);
    m_parts->faults->inject(fault);
}

std::uint64_t Radio::calls(Operation operation) const
{
    return m_parts->faults->calls(operation);
}

} // namespace simulator
