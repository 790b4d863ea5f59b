#pragma once

#include "Platform/Host/IInterface.h"

#include <cstdint>
#include <memory>
#include <string>

struct SDCProperties;

/// What a radio unit says of itself. Further members go behind the first, and need the modules to be built anew.
struct UnitInfo {
    std::string typeText; ///< text that names the unit's type, for example "KLM6 18G"; may hold more than the type
};

/// Gives the properties of one radio unit. Owned by whoever asked IRadio for it.
///
/// Called from the threads that command a controller and from the controller's worker, possibly at the same time.
class IRadioPropertiesProvider {
public:
    virtual ~IRadioPropertiesProvider() = default;

    /// Fills all four bytes of the record. Returns 0, or 32768 or more for a failure; controllers do not look at the result,
    /// so the record must hold something sensible in any case. Called at the start of each sweep on the worker thread, where
    /// an exception ends the worker, and for each properties query on the thread that asks, which the exception reaches.
    virtual std::int32_t getProperties(SDCProperties& properties) = 0;

    /// Fills the record, which comes empty. Called once for each start, on its thread; an exception reaches the caller.
    virtual void getUnitInfo(UnitInfo& unitInfo) = 0;
};

/// The radio unit of one channel.
class IRadio : public IInterface {
public:
    /// Unsigned form: "IRadio" for channel 0, else "IRadio_" and the channel.
    static std::string interfaceName(unsigned int channel) { return IInterface::interfaceName("IRadio", channel); }

    /// A new properties provider, owned by the caller; never null. Called in each initialisation of a controller, on the
    /// host's thread, which an exception reaches.
    virtual std::unique_ptr<IRadioPropertiesProvider> createPropertiesProvider() = 0;
};
