#include "Platform/Host/InterfaceBroker.h"

#include "host/HostObserver.h"

#include "Platform/Host/ResultCode.h"

InterfaceBroker& InterfaceBroker::getInstance()
{
    host::tellHostObserver("broker.getInstance");
    static InterfaceBroker broker;
    return broker;
}

std::int32_t InterfaceBroker::registerInterface(const std::string& name, IInterface* interface)
{
    host::tellHostObserver("broker.register " + name);
    return m_interfaces.emplace(name, interface).second ? PLX_RC_OK : PLX_RC_FAILED;
}

std::int32_t InterfaceBroker::unregisterInterface(const std::string& name)
{
    host::tellHostObserver("broker.unregister " + name);
    return m_interfaces.erase(name) == 1 ? PLX_RC_OK : PLX_RC_FAILED;
}

const std::map<std::string, IInterface*>& InterfaceBroker::interfaces() const
{
    host::tellHostObserver("broker.interfaces");
    return m_interfaces;
}
