#include "simulator/scenario/Scenario.h"

#include "simulator/radio/Emitters.h"
#include "simulator/radio/emitters/Recording.h"
#include "simulator/scenario/RecordingFiles.h"
#include "simulator/scenario/ScenarioRecord.h"
#include "support/Errors.h"
#include "support/FieldsJson.h"
#include "support/Suggestion.h"
#include "support/Text.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <ios>
#include <system_error>
#include <variant>

namespace embedded {

std::span<const Text> scenarios();
std::span<const Text> recordings();

} // namespace embedded

namespace simulator {

namespace {

const embedded::Text* findIn(std::span<const embedded::Text> texts, std::string_view name)
{
    const auto text = std::find_if(texts.begin(), texts.end(), [name](const auto& one) { return one.name == name; });
    return text == texts.end() ? nullptr : &*text;
}

/// Mixes the bits of two numbers, so that channels with neighbouring numbers have nothing in common.
std::uint64_t seedOfChannel(std::uint64_t seed, RadioChannel channel)
{
    std::uint64_t mixed = (seed << 32U) ^ static_cast<std::uint32_t>(channel);
    for (const std::uint64_t factor : {0xBF58476D1CE4E5B9ULL, 0x94D049BB133111EBULL}) {
        mixed = (mixed ^ (mixed >> 30U)) * factor;
    }
    return mixed ^ (mixed >> 31U);
}

/// @param path  of the channel, for errors
void readRecordings(Link& link, const std::string& path, RecordingFiles& files)
{
    std::size_t index = 0;
    for (Emitter& emitter : link.emitters) {
        auto* const recording = std::get_if<Recording>(&emitter.signal);
        if (recording == nullptr) {
            continue;
        }
        try {
            files.read(*recording);
        } catch (const ScenarioError& error) {
            throw ScenarioError(support::elementPath(path + ".emitters.recordings", index)
                + (recording->file ? ".file: " : ".") + error.what());
        }
        ++index;
    }
}

Scenario parse(std::string_view text, const std::string& file, RecordingFiles recordings)
{
    Scenario scenario;
    support::Errors errors;
    support::readJson(text, scenarioRecord(), scenario, errors);
    for (std::size_t index = 0; errors.areNone() && index < scenario.channels.size(); ++index) {
        auto& [number, link] = scenario.channels[index];
        link.seed = seedOfChannel(scenario.seed, number);
        try {
            readRecordings(link, support::elementPath("$.channels", index), recordings);
        } catch (const ScenarioError& error) {
            errors.add(error.what());
        }
    }
    if (!errors.areNone()) {
        throw ScenarioError(errors.listed(file));
    }
    scenario.text = text;
    return scenario;
}

std::ifstream openFile(const std::filesystem::path& file)
{
    std::error_code error;
    if (std::filesystem::is_directory(file, error)) {
        throw ScenarioError(support::shown(file.string()) + ": is a folder; must be a file");
    }
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw ScenarioError(support::shown(file.string()) + ": cannot be read: " + std::generic_category().message(errno));
    }
    return stream;
}

std::string readWhole(const std::filesystem::path& file, std::size_t largest_MiB)
{
    std::ifstream stream = openFile(file);
    try {
        return support::readToEnd(stream, largest_MiB);
    } catch (const std::runtime_error& error) {
        throw ScenarioError(support::shown(file.string()) + ": " + error.what());
    }
}

constexpr std::string_view builtIn = "built-in:"; ///< before the name of a recording that is part of the program

std::string builtInRecording(std::string_view name)
{
    std::vector<std::string> known;
    for (const embedded::Text& recording : embedded::recordings()) {
        known.push_back(std::string(builtIn) + std::string(recording.name) + ".csv");
        if (known.back() == name) {
            return std::string(recording.text);
        }
    }
    throw ScenarioError(support::shown(name) + ": no such built-in recording; must be " + support::joined(known));
}

[[noreturn]] void refuseName(const std::string& name)
{
    std::vector<std::string_view> known;
    for (const embedded::Text& one : builtInScenarios()) {
        known.push_back(one.name);
    }
    const auto near = support::nearest(name, known);
    throw ScenarioError(support::shown(name) + ": is neither a built-in scenario nor a file; "
        + (near ? "did you mean '" + std::string(*near) + "'? " : std::string())
        + "'sdc scenarios list' lists the built-in ones");
}

} // namespace

std::span<const embedded::Text> builtInScenarios()
{
    return embedded::scenarios();
}

Scenario loadScenario(const std::string& nameOrFile)
{
    if (const embedded::Text* known = findIn(builtInScenarios(), nameOrFile)) {
        return parseScenario(known->text, nameOrFile + ".json");
    }
    std::error_code error;
    if (nameOrFile.empty() || !std::filesystem::exists(nameOrFile, error)) {
        refuseName(nameOrFile);
    }
    return parseScenario(readWhole(nameOrFile, largestScenario_MiB), nameOrFile);
}

Scenario parseScenario(std::string_view text, const std::string& file)
{
    const std::filesystem::path folder = std::filesystem::path(file).parent_path();
    return parse(text, file, RecordingFiles([&folder](const std::string& name) {
        return name.starts_with(builtIn) ? builtInRecording(name) : readWhole(folder / name, RecordingFiles::largest_MiB);
    }));
}

} // namespace simulator
