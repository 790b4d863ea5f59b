#pragma once

#include "Platform/Host/IInterface.h"

#include <cstdint>
#include <map>
#include <string>

/// The host's one registry of interfaces, from name to interface. Defined by the host.
///
/// The broker owns no interface: who registers one keeps it alive until after unregisterInterface. Registration happens on
/// the host's thread while modules are constructed and destroyed; lookups by other threads must not overlap with that.
class InterfaceBroker {
public:
    /// The one broker of the process.
    static InterfaceBroker& getInstance();

    InterfaceBroker(const InterfaceBroker&) = delete;
    InterfaceBroker& operator=(const InterfaceBroker&) = delete;

    /// Publishes an interface under a name. Returns 0, or 32768 when the name is taken (the first entry stays).
    /// A null interface is entered as it is: whoever looks it up finds an entry that holds nothing.
    std::int32_t registerInterface(const std::string& name, IInterface* interface);

    /// Takes a name out. Returns 0, or 32768 when the name is not there.
    std::int32_t unregisterInterface(const std::string& name);

    /// All entries, for lookup with find. The reference stays valid for the life of the process.
    const std::map<std::string, IInterface*>& interfaces() const;

private:
    InterfaceBroker() = default;

    std::map<std::string, IInterface*> m_interfaces;
};
