#include "Platform/Host/InterfaceBroker.h"

#include "host/HostObserver.h"

namespace {

constexpr std::int32_t failed = 32768;

} // namespace

InterfaceBroker& InterfaceBroker::getInstance()
{
    host::tellHostObserver("broker.getInstance");
    static InterfaceBroker broker;
    return broker;
}

std::int32_t InterfaceBroker::registerInterface(const std::string& name, IInterface* interface)
{
    host::tellHostObserver("broker.register " + name);
    return m_interfaces.emplace(name, interface).second ? 0 : failed;
}

std::int32_t InterfaceBroker::unregisterInterface(const std::string& name)
{
    host::tellHostObserver("broker.unregister " + name);
    return m_interfaces.erase(name) == 1 ? 0 : failed;
}

const std::map<std::string, IInterface*>& InterfaceBroker::interfaces() const
{
    host::tellHostObserver("broker.interfaces");
    return m_interfaces;
}
