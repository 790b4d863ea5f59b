#pragma once

#include "simulator/scenario/Scenario.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <string>
#include <vector>

namespace simulator {

/// Reads the recording of a name that stands in a scenario.
/// @throws ScenarioError
using RecordingReader = std::function<Recording(const std::string& file)>;

/// A channel as it stands in a file, and where in the file.
struct ReadChannel {
    TerminalChannel channel;
    std::string path;                      ///< $.channels[0]
    std::vector<std::string> emitterPaths; ///< of each emitter of the link, relative to the channel
};

/// A scenario file that matches the schema, read.
struct ReadScenario {
    std::string name;
    std::string description;
    std::vector<std::string> sources;
    std::vector<ReadChannel> channels;
};

/// @param file  matches the schema
/// @throws ScenarioError when a recording cannot be read
ReadScenario readScenario(const nlohmann::json& file, const RecordingReader& readRecording);

/// The link of a channel, but for its emitters.
Link readLink(const nlohmann::json& channel);

/// An emitter and its path below the channel.
struct ReadEmitter {
    Emitter emitter;
    std::string path;
};

/// @param path  of the channel, for errors
std::vector<ReadEmitter> readEmitters(
    const nlohmann::json& emitters, const RecordingReader& readRecording, const std::string& path);

/// The JSON path of something in a channel's link: links have their emitters in one list, files have a list for each kind.
/// @param path  within the link, such as `receiver.jitter_dB` or `emitters[2]`; empty for the link as a whole
std::string pathInFile(const ReadChannel& channel, const std::string& path);

/// What stands in the way of a scenario, one finding per line, "PATH: what is wrong; what would be right".
std::vector<std::string> scenarioFindings(const ReadScenario& scenario);

} // namespace simulator
