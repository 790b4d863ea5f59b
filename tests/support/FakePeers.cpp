#include "tests/support/FakePeers.h"

#include "Platform/Host/InterfaceBroker.h"

#include <utility>

namespace support {

FakePeers::FakePeers(CallLog& log)
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

/// The names are written out here rather than formed by the code under test.
void FakePeers::registerFor(std::uint32_t channel, const IInterface* butNot)
{
    const std::string suffix = "_" + std::to_string(channel);
    const std::string suffixButForZero = channel == 0 ? "" : suffix;
    const std::pair<std::string, IInterface*> peers[] = {
        {"ISystemPowerController" + suffix, &systemPowerController},
        {"IFrameFormat" + suffix, &frameFormat},
        {"IFrequencyController" + suffixButForZero, &frequencyController},
        {"IRssiHandler" + suffixButForZero, &rssiHandler},
        {"IRadioCapability" + suffix, &radioCapability},
        {"IRadio" + suffixButForZero, &radio},
    };
    for (const auto& [name, peer] : peers) {
        if (peer != butNot) {
            InterfaceBroker::getInstance().registerInterface(name, peer);
            m_names.push_back(name);
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

} // namespace support
