#pragma once

namespace sdc {

/// What the data sheet tells of a receiver.
struct ReceiverData {
    double filterWidth_kHz = 0.0;
    double noiseFigure_dB = 0.0;
    double ultimateRejection_dB = 0.0; ///< of what lies outside the filter
    double saturation_dBm = 0.0;       ///< where readings level off

    bool operator==(const ReceiverData&) const = default;
};

} // namespace sdc
