#pragma once

#include "simulator/scenario/Scenario.h"

#include <nlohmann/json.hpp>

#include <string>

namespace tests {

/// A scenario in which every key of the format stands once, with values that differ from each other.
inline nlohmann::json fullScenario()
{
    return nlohmann::json::parse(R"({
        "$schema": "scenario.schema.json",
        "name": "full",
        "description": "all there is",
        "sources": ["Channel plan: mine.", "typical: the rest."],
        "seed": 77,
        "channels": [{
            "number": 3,
            "unit_type": "KLM6 18G",
            "properties": {"long_haul": false, "extended_rx_wait": true, "slow_rx_wait": false, "spare_flag": true},
            "band_GHz": 18,
            "receive_kHz": {"lowest": 18700000, "highest": 19700000, "configured": 19177500},
            "raster": {"base_kHz": 18000000, "step_kHz": 250, "lowest_step": 2801, "highest_step": 6799},
            "channel_spacing_kHz": 27500,
            "receiver": {"filter_kHz": 27000, "noise_figure_dB": 5.5, "settling_ms": 30.5, "jitter_dB": 0.25,
                "ultimate_rejection_dB": 61, "saturation_dBm": -21},
            "emitters": {
                "carriers": [{"centre_kHz": 19177500.5, "level_dBm": -35, "symbol_rate_kBd": 21560, "roll_off": 0.25,
                    "shoulders": {"channel_width_kHz": 27400, "adjacent_dB": 31, "further_dB": 51},
                    "row": {"count": 3, "spacing_kHz": 55000},
                    "schedule": {"from_ms": 11, "duration_ms": 12, "every_ms": 13}, "fades": true}],
                "continuous_waves": [{"frequency_kHz": 19441000, "level_dBm": -84,
                    "drift": {"reach_kHz": 14, "period_ms": 15}, "schedule": {"from_ms": 16}, "fades": true}],
                "noise_bands": [{"lowest_kHz": 18700001, "highest_kHz": 18700002, "rise_dB": 17,
                    "schedule": {"duration_ms": 18}}],
                "edges": [{"edge_kHz": 18700003, "density_dBm_per_MHz": -71, "slope_dB_per_MHz": 1.5,
                    "schedule": {"from_ms": 19}}],
                "recordings": [{"file": "recordings/hops.csv", "lowest_kHz": 19000000, "bandwidth_kHz": 3500,
                    "schedule": {"from_ms": 20}, "fades": true},
                    {"rows": ["1, , 19100000000, 19100002000, 1000, 1, -31, -32"]}]
            },
            "fading": {
                "rain": [{"from_ms": 21, "rate_dB_per_s": 0.5, "depth_dB": 22, "hold_ms": 23}],
                "notches": [{"begin_kHz": 19100000, "end_kHz": 19200000, "speed_kHz_per_s": 24, "width_kHz": 25,
                    "depth_dB": 26}]
            },
            "faults": [{"operation": "readRssi", "action": "answer", "first_call": 27, "calls": 28, "value": -29,
                "text": "thirty"}]
        }]
    })");
}

/// In the folder of the built-in scenarios, where the recording is.
const std::string fileName = std::string(SDC_SCENARIOS) + "/full.json";

inline simulator::Scenario parse(const nlohmann::json& file)
{
    return simulator::parseScenario(file.dump(), fileName);
}

/// What a text is refused for, without the file's name before each line; empty when it is not.
inline std::string errorsOfText(const std::string& text)
{
    try {
        simulator::parseScenario(text, fileName);
        return {};
    } catch (const simulator::ScenarioError& error) {
        std::string what = error.what();
        const std::string prefix = fileName + ": ";
        for (std::size_t at = what.find(prefix); at != std::string::npos; at = what.find(prefix)) {
            what.erase(at, prefix.size());
        }
        return what;
    }
}

inline std::string errorsOf(const nlohmann::json& file)
{
    return errorsOfText(file.dump());
}

} // namespace tests
