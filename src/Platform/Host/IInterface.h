#pragma once

#include "Platform/Host/RadioChannel.h"

#include <cstdint>
#include <string>

/// Root of every interface that modules publish through the InterfaceBroker.
///
/// The broker holds interfaces by name. A name is the interface's type name followed by the radio channel that the instance
/// serves; publisher and user must form it alike, to the letter. Numbers in names are plain decimals whatever the global
/// locale says.
class IInterface {
public:
    virtual ~IInterface() = default;

    /// Name in the unsigned form: the bare prefix for channel 0, else prefix, "_" and the channel in unsigned decimal.
    static std::string interfaceName(const std::string& prefix, unsigned int channel)
    {
        return channel == 0 ? prefix : prefix + "_" + std::to_string(channel);
    }

    /// Name in the RadioChannel form: prefix, "_" and the channel in unsigned decimal, for every channel, 0 included.
    static std::string interfaceName(const std::string& prefix, const RadioChannel& channel)
    {
        return prefix + "_" + std::to_string(static_cast<std::uint32_t>(channel));
    }

private:
    std::string m_instanceName; ///< The host's own; modules leave it empty.
};
