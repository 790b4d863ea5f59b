#pragma once

#include "Platform/Host/IInterface.h"

#include <cstdint>

/// The frame format in force on one channel. Published under the RadioChannel form of "IFrameFormat".
class IFrameFormat : public IInterface {
public:
    /// Channel spacing in kHz, taken unchecked: 0 makes some plans endless. Called once for each start, on its thread; an
    /// exception reaches the caller of the start.
    virtual std::uint32_t getChannelSpacing() = 0;
};
