#pragma once

#include "Platform/Host/IInterface.h"

/// The power supply of one channel's radio unit. A module that works with the unit requires it to be there; a spectrum scan
/// asks nothing of it. Published under the RadioChannel form of "ISystemPowerController".
class ISystemPowerController : public IInterface {};
