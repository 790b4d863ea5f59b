#pragma once

#include "simulator/radio/Link.h"
#include "simulator/scenario/EmbeddedText.h"

#include "Platform/Host/RadioChannel.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// One radio channel of a terminal and the link that it serves.
struct TerminalChannel {
    RadioChannel number{};
    Link link;
};

/// A terminal, its radio channels, and what is on the air around it.
struct Scenario {
    std::string name;
    std::string description;          ///< for people, one line
    std::vector<std::string> sources; ///< where the figures come from, each a sentence
    std::vector<TerminalChannel> channels;
    std::uint64_t seed = 0; ///< from which the seeds of the links are made
    std::string text;       ///< out of which it was read
};

/// A scenario that cannot be used. what() names the file, the place in it as a JSON path, what is wrong and what would be
/// right.
class ScenarioError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The files of all built-in scenarios, as they stand in the tree, ordered by name.
std::span<const embedded::Text> builtInScenarios();

/// The scenario of a terminal that is told nothing else.
inline constexpr std::string_view defaultScenario = "18-f595";

/// Of the file of a scenario, without those of its recordings.
inline constexpr std::size_t largestScenario_MiB = 1;

/// Loads a built-in scenario by its name, or else the file of that name.
/// @throws ScenarioError when there is none, or it cannot work; names that are nearly right are suggested
Scenario loadScenario(const std::string& nameOrFile);

/// Reads a scenario out of its text.
/// @param file  its name in messages; recordings are looked for beside it
/// @throws ScenarioError when the text is no scenario, or the scenario cannot work
Scenario parseScenario(std::string_view text, const std::string& file);

} // namespace simulator
