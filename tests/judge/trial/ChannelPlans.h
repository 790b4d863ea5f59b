#pragma once

#include <cstdint>
#include <vector>

namespace judge {

/// One half of a band in which links are made: its channels of the widest raster, and by how much they may be halved. The
/// channels of a finer raster fill those of the coarser one, as those of ITU-R F.749 do.
struct ChannelPlan {
    std::uint32_t band_GHz;
    std::uint32_t lowest_kHz; ///< ends of the half
    std::uint32_t highest_kHz;
    std::uint32_t first_kHz; ///< centre of the lowest channel
    std::uint32_t spacing_kHz;
    std::uint32_t channels;
    std::uint32_t halvings; ///< so many times at most is the spacing halved
    bool hasSatellites;     ///< downlinks share the band
};

/// From the recommendations ITU-R F.383, F.384, F.385, F.387, F.497, F.636, F.595, F.637, F.748, F.1520, F.749, F.2005,
/// F.2006 and ECC/REC(02)06 and ERC/REC 12-06; upper halves unless told otherwise.
inline const std::vector<ChannelPlan>& channelPlans()
{
    static const std::vector<ChannelPlan> plans{
        {6, 5925000, 6175000, 5945200, 29650, 8, 0, false}, // the lower half
        {6, 6175000, 6425000, 6197240, 29650, 8, 0, false},
        {6, 6770000, 7125000, 6800000, 40000, 8, 2, false},
        {7, 7575000, 7725000, 7589000, 7000, 20, 1, false},
        {8, 8000000, 8275000, 8030500, 28000, 9, 2, false},
        {11, 11200000, 11700000, 11265000, 40000, 11, 0, true},
        {11, 11200000, 11700000, 11255000, 56000, 8, 1, true},
        {13, 12750000, 13000000, 12765000, 28000, 8, 3, false}, // the lower half
        {13, 13000000, 13250000, 13031000, 28000, 8, 3, false},
        {15, 14440000, 14500000, 14448500, 7000, 8, 1, false},
        {18, 17700000, 18700000, 17727500, 27500, 35, 1, true}, // the lower half
        {18, 18700000, 19700000, 18737500, 27500, 35, 1, true},
        {23, 22400000, 23600000, 22470000, 28000, 40, 1, false},
        {26, 25557000, 26453000, 25571000, 28000, 32, 3, false},
        {28, 28556500, 29452500, 28570500, 28000, 32, 1, false},
        {32, 32600000, 33400000, 32641000, 28000, 27, 3, false},
        {38, 38250000, 39500000, 38290000, 28000, 43, 3, false},
        {42, 42000000, 43500000, 42064000, 28000, 48, 2, false},
        {80, 71000000, 76000000, 71250000, 250000, 19, 1, false}, // the lower half
        {80, 81000000, 86000000, 81250000, 250000, 19, 1, false},
    };
    return plans;
}

} // namespace judge
