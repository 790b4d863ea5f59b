#include "tests/support/FakePeers.h"

#include "Platform/Host/InterfaceBroker.h"

namespace tests {

FakePeers::FakePeers(CallLog* log)
    : frameFormat(log)
    , frequencyController(log)
    , rssiHandler(log)
    , radioCapability(log)
    , radio(log)
{
}

FakePeers::~FakePeers()
{
    unregister();
}

std::vector<IInterface*> FakePeers::all()
{
    return {&systemPowerController, &frameFormat, &frequencyController, &rssiHandler, &radioCapability, &radio};
}

std::vector<std::string> peerNames(std::uint32_t channel)
{
    const std::string suffix = "_" + std::to_string(channel);
    const std::string suffixButForZero = channel == 0 ? "" : suffix;
    return {"ISystemPowerController" + suffix, "IFrameFormat" + suffix, "IFrequencyController" + suffixButForZero,
        "IRssiHandler" + suffixButForZero, "IRadioCapability" + suffix, "IRadio" + suffixButForZero};
}

void FakePeers::registerFor(std::uint32_t channel, const IInterface* butNot)
{
    const std::vector<std::string> names = peerNames(channel);
    const std::vector<IInterface*> peers = all();
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (peers[i] != butNot) {
            InterfaceBroker::getInstance().registerInterface(names[i], peers[i]);
            m_names.push_back(names[i]);
        }
    }
}

void FakePeers::unregister()
{
    for (const std::string& name : m_names) {
        InterfaceBroker::getInstance().unregisterInterface(name);
    }
    m_names.clear();
}

} // namespace tests
